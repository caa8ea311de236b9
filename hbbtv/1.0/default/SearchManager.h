// Searches among programmes: ISearchManager over the platform's search adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>

#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_hidl_client_monitor.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::ISearchManager;
using V1_0::ISearchManagerCallback;
using V1_0::TolmQueryComparisonType;

class SearchManager : public TolmService<ISearchManager>, public TolmHidlClientMonitor {
  public:
    SearchManager();

    Return<void> SearchManager_Create(SearchManager_Create_cb _hidl_cb) override;
    Return<int32_t> SearchManager_Destroy(int64_t manager) override;
    Return<int32_t> SearchManager_RegisterCallback(int64_t manager, const sp<ISearchManagerCallback>& callback,
                                                   int64_t context) override;
    Return<void> SearchManager_CreateSearch(int64_t manager, uint32_t target,
                                            SearchManager_CreateSearch_cb _hidl_cb) override;
    Return<int32_t> SearchManager_DestroySearch(int64_t search) override;
    Return<void> MetaSearch_CreateQuery(int64_t search, const hidl_string& field, TolmQueryComparisonType comparison,
                                        const hidl_string& value, MetaSearch_CreateQuery_cb _hidl_cb) override;
    Return<void> MetaSearch_GetResult(int64_t search, MetaSearch_GetResult_cb _hidl_cb) override;
    Return<void> MetaSearch_GetSearchTarget(int64_t search, MetaSearch_GetSearchTarget_cb _hidl_cb) override;
    Return<int32_t> MetaSearch_SetQuery(int64_t search, int64_t query) override;
    Return<int32_t> MetaSearch_FindProgrammesFromStream(int64_t search, int64_t channel, uint64_t startTime,
                                                        int32_t count) override;
    Return<int32_t> MetaSearch_AddChannelConstraint(int64_t search, int64_t channel) override;
    Return<int32_t> SearchResults_Release(int64_t results) override;
    Return<void> SearchResults_GetOffset(int64_t results, SearchResults_GetOffset_cb _hidl_cb) override;
    Return<void> SearchResults_GetLength(int64_t results, SearchResults_GetLength_cb _hidl_cb) override;
    Return<void> SearchResults_GetTotalSize(int64_t results, SearchResults_GetTotalSize_cb _hidl_cb) override;
    Return<void> SearchResults_GetProgramme(int64_t results, uint32_t index,
                                            SearchResults_GetProgramme_cb _hidl_cb) override;
    Return<int32_t> SearchResults_GetResults(int64_t results, uint32_t offset, uint32_t count) override;
    Return<int32_t> SearchResults_Abort(int64_t results) override;
    Return<int32_t> Query_Release(int64_t query) override;
    Return<void> Query_And(int64_t first, int64_t second, Query_And_cb _hidl_cb) override;
    Return<void> Query_Or(int64_t first, int64_t second, Query_Or_cb _hidl_cb) override;
    Return<void> Query_Not(int64_t query, Query_Not_cb _hidl_cb) override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;
};

// Forwards an event of the adaptor to the registered client. Called on the adaptor's server thread.
void TolmSearchManagerCallback(const TolmSearchManagerEvent& event, const ::TolmSearchManagerEventInfo& info,
                               const void* context);

extern "C" ISearchManager* HIDL_FETCH_ISearchManager(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
