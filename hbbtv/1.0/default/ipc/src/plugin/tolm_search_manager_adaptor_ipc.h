// The platform's searches among programmes, and their event.
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
    void* searchHandle;  // null if the event has none
};

// Called for one event at a time, on the endpoint's server thread.
using TolmSearchManagerEventCallback = void (*)(const TolmSearchManagerEvent& event,
                                                const TolmSearchManagerEventInfo& info, const void* context);

// Search managers, searches, queries and result sets are handles.
class TolmSearchManagerAdaptor : public tolm::TolmAdaptorClient,
                                 public TolmBaseServer,
                                 public tolm::TolmAdaptorInstance<TolmSearchManagerAdaptor> {
  public:
    int SearchManager_Create(void*& manager);
    int SearchManager_Destroy(const void* manager);

    // Replaces the receiver of the events of all search managers, even if the platform does not reply.
    int SearchManager_RegisterCallback(const void* manager, TolmSearchManagerEventCallback callback,
                                       const void* context);

    int SearchManager_CreateSearch(const void* manager, unsigned target, void*& search);
    int SearchManager_DestroySearch(const void* search);
    int MetaSearch_CreateQuery(const void* search, const std::string& field, int comparison, const std::string& value,
                               void*& query);
    int MetaSearch_GetResult(const void* search, void*& results);
    int MetaSearch_GetSearchTarget(const void* search, unsigned& target);
    int MetaSearch_SetQuery(const void* search, const void* query);

    // Sets the query of a search: programmes of a channel from a start time on, in seconds since 1970-01-01 UTC.
    int MetaSearch_FindProgrammesFromStream(const void* search, const void* channel, uint32_t startTime, int count);

    int MetaSearch_AddChannelConstraint(const void* search, const void* channel);
    int SearchResults_Release(const void* results);
    int SearchResults_GetOffset(const void* results, unsigned& offset);
    int SearchResults_GetLength(const void* results, unsigned& length);
    int SearchResults_GetTotalSize(const void* results, unsigned& size);
    int SearchResults_GetProgramme(const void* results, unsigned index, void*& programme);

    // Runs the search. An event reports the results.
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
