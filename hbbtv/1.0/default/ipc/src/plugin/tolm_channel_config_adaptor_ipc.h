// The platform's channel configuration: its lists, its current channel, and the event of their changes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

// The platform sends 0 when channel lists or favourites have changed.
using TolmChannelConfigEvent = int32_t;

struct TolmChannelConfigEventInfo {
    char reserved;  // the first byte of the platform's string; 0 if it is empty
};

// Called for one event at a time, on the endpoint's server thread.
using TolmChannelConfigEventCallback = void (*)(const TolmChannelConfigEvent& event,
                                                const TolmChannelConfigEventInfo& info, const void* context);

// Channels, lists and collections are handles.
class TolmChannelConfigAdaptorIpc : public tolm::TolmAdaptorClient,
                                    public TolmBaseServer,
                                    public tolm::TolmAdaptorInstance<TolmChannelConfigAdaptorIpc> {
  public:
    // Replaces the receiver of the events, even if the platform does not reply.
    int RegisterCallback(TolmChannelConfigEventCallback callback, const void* context);
    int UnregisterCallback();

    int GetCurrentChannel(void*& channel);
    int GetChannelList(void*& list);
    int GetBroadcastSupervisor(void*& supervisor);
    int GetFavouriteListCollection(void*& collection);
    int GetCurrentFavouriteList(void*& list);
    int SetChannelList(const void* list);

    // Creates a list of channels in the given order.
    int CreateChannelList(const std::vector<void*>& channels, void*& list);

    // Creates a list of the channels with the given properties. A favourite list with an empty identifier means any.
    int CreateFilteredList(bool blocked, bool favourite, bool hidden, const std::string& favouriteListID, void*& list);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmChannelConfigAdaptorIpc>;
    TolmChannelConfigAdaptorIpc();
    ~TolmChannelConfigAdaptorIpc() override;

    tolm::TolmCallbackSlot<TolmChannelConfigEventCallback> mCallback;
};
