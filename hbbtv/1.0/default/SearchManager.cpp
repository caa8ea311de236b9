#include "SearchManager.h"

#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_registered_client.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmSearchManagerAdaptor;

namespace {

TolmRegisteredClient<ISearchManagerCallback> mSearchCallback;  // of all search managers

}  // namespace

SearchManager::SearchManager()
    : TolmHidlClientMonitor(tolm::kSearchManagerTag, mSearchCallback, tolm::families::kSearchManager) {}

Return<void> SearchManager::SearchManager_Create(SearchManager_Create_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::SearchManager_Create);
}

Return<int32_t> SearchManager::SearchManager_Destroy(int64_t manager) {
    return Status(&Adaptor::SearchManager_Destroy, Handle(manager));
}

Return<int32_t> SearchManager::SearchManager_RegisterCallback(int64_t manager,
                                                              const sp<ISearchManagerCallback>& callback,
                                                              int64_t context) {
    return mSearchCallback.Register(this, callback, &Adaptor::SearchManager_RegisterCallback, Handle(manager),
                                    TolmSearchManagerCallback, Handle(context));
}

Return<void> SearchManager::SearchManager_CreateSearch(int64_t manager, uint32_t target,
                                                       SearchManager_CreateSearch_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::SearchManager_CreateSearch, Handle(manager), target);
}

Return<int32_t> SearchManager::SearchManager_DestroySearch(int64_t search) {
    return Status(&Adaptor::SearchManager_DestroySearch, Handle(search));
}

Return<void> SearchManager::MetaSearch_CreateQuery(int64_t search, const hidl_string& field,
                                                   TolmQueryComparisonType comparison, const hidl_string& value,
                                                   MetaSearch_CreateQuery_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::MetaSearch_CreateQuery, Handle(search), field, comparison, value);
}

Return<void> SearchManager::MetaSearch_GetResult(int64_t search, MetaSearch_GetResult_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::MetaSearch_GetResult, Handle(search));
}

Return<void> SearchManager::MetaSearch_GetSearchTarget(int64_t search, MetaSearch_GetSearchTarget_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::MetaSearch_GetSearchTarget, Handle(search));
}

Return<int32_t> SearchManager::MetaSearch_SetQuery(int64_t search, int64_t query) {
    return Status(&Adaptor::MetaSearch_SetQuery, Handle(search), Handle(query));
}

// Times have 32 bits on the wire.
Return<int32_t> SearchManager::MetaSearch_FindProgrammesFromStream(int64_t search, int64_t channel, uint64_t startTime,
                                                                   int32_t count) {
    return Status(&Adaptor::MetaSearch_FindProgrammesFromStream, Handle(search), Handle(channel),
                  static_cast<uint32_t>(startTime), count);
}

Return<int32_t> SearchManager::MetaSearch_AddChannelConstraint(int64_t search, int64_t channel) {
    return Status(&Adaptor::MetaSearch_AddChannelConstraint, Handle(search), Handle(channel));
}

Return<int32_t> SearchManager::SearchResults_Release(int64_t results) {
    return Status(&Adaptor::SearchResults_Release, Handle(results));
}

Return<void> SearchManager::SearchResults_GetOffset(int64_t results, SearchResults_GetOffset_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::SearchResults_GetOffset, Handle(results));
}

Return<void> SearchManager::SearchResults_GetLength(int64_t results, SearchResults_GetLength_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::SearchResults_GetLength, Handle(results));
}

Return<void> SearchManager::SearchResults_GetTotalSize(int64_t results, SearchResults_GetTotalSize_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::SearchResults_GetTotalSize, Handle(results));
}

Return<void> SearchManager::SearchResults_GetProgramme(int64_t results, uint32_t index,
                                                       SearchResults_GetProgramme_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::SearchResults_GetProgramme, Handle(results), index);
}

Return<int32_t> SearchManager::SearchResults_GetResults(int64_t results, uint32_t offset, uint32_t count) {
    return Status(&Adaptor::SearchResults_GetResults, Handle(results), offset, count);
}

Return<int32_t> SearchManager::SearchResults_Abort(int64_t results) {
    return Status(&Adaptor::SearchResults_Abort, Handle(results));
}

Return<int32_t> SearchManager::Query_Release(int64_t query) {
    return Status(&Adaptor::Query_Release, Handle(query));
}

Return<void> SearchManager::Query_And(int64_t first, int64_t second, Query_And_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Query_And, Handle(first), Handle(second));
}

Return<void> SearchManager::Query_Or(int64_t first, int64_t second, Query_Or_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Query_Or, Handle(first), Handle(second));
}

Return<void> SearchManager::Query_Not(int64_t query, Query_Not_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Query_Not, Handle(query));
}

// The adaptor keeps the forwarding function, which drops further events.
void SearchManager::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    mSearchCallback.OnDied(this, who);
}

void TolmSearchManagerCallback(const TolmSearchManagerEvent& event, const ::TolmSearchManagerEventInfo& info,
                               const void* context) {
    const sp<ISearchManagerCallback> client = mSearchCallback.GetLiving();
    if (client == nullptr) return;
    tolm::Received(client->OnSearchManagerEvent(event, {info.state, ToHandle(info.searchHandle)}, ToHandle(context)),
                   tolm::kSearchManagerTag);
}

ISearchManager* HIDL_FETCH_ISearchManager(const char*) {
    return new SearchManager();
}

}  // namespace vantorel::hardware::hbbtv::implementation
