// The platform's searches among programmes, and the event that tells how they go on.
#pragma once

#include <cstdint>
#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

// The platform sends 0 when the state of a search has changed.
using TolmSearchManagerEvent = int32_t;

struct TolmSearchManagerEventInfo {
    int32_t state;
    void* searchHandle;  // null when the platform named none
};

// Told of an event on the endpoint's server thread, one at a time.
using TolmSearchManagerEventCallback = void (*)(const TolmSearchManagerEvent& event,
                                                const TolmSearchManagerEventInfo& info, const void* context);

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success. Search managers, searches, queries and result
// sets are given by their handles, valid until they are given back.
class TolmSearchManagerAdaptor : public tolm::TolmAdaptorClient,
                                 public TolmBaseServer,
                                 public tolm::TolmAdaptorInstance<TolmSearchManagerAdaptor> {
  public:
    int SearchManager_Create(void*& manager);
    int SearchManager_Destroy(const void* manager);

    // Makes `callback` the receiver of the events of all search managers, in place of any earlier one, whether the
    // platform answers or not.
    int SearchManager_RegisterCallback(const void* manager, TolmSearchManagerEventCallback callback,
                                       const void* context);

    int SearchManager_CreateSearch(const void* manager, unsigned target, void*& search);
    int SearchManager_DestroySearch(const void* search);
    int MetaSearch_CreateQuery(const void* search, const std::string& field, int comparison, const std::string& value,
                               void*& query);
    int MetaSearch_GetResult(const void* search, void*& results);
    int MetaSearch_GetSearchTarget(const void* search, unsigned& target);
    int MetaSearch_SetQuery(const void* search, const void* query);

    // Makes the query of a search: programmes of a channel from a time on, in seconds since 1970.
    int MetaSearch_FindProgrammesFromStream(const void* search, const void* channel, uint32_t startTime, int count);

    int MetaSearch_AddChannelConstraint(const void* search, const void* channel);
    int SearchResults_Release(const void* results);
    int SearchResults_GetOffset(const void* results, unsigned& offset);
    int SearchResults_GetLength(const void* results, unsigned& length);
    int SearchResults_GetTotalSize(const void* results, unsigned& size);
    int SearchResults_GetProgramme(const void* results, unsigned index, void*& programme);

    // Runs the search. The results are announced by an event.
    int SearchResults_GetResults(const void* results, unsigned offset, unsigned count);

    int SearchResults_Abort(const void* results);
    int Query_Release(const void* query);
    int Query_And(const void* first, const void* second, void*& query);
    int Query_Or(const void* first, const void* second, void*& query);
    int Query_Not(const void* query, void*& negated);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmSearchManagerAdaptor>;
    TolmSearchManagerAdaptor();
    ~TolmSearchManagerAdaptor() override;

    tolm::TolmCallbackSlot<TolmSearchManagerEventCallback> mCallback;
};
