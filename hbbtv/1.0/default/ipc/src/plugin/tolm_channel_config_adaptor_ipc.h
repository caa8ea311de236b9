// The platform's channel configuration: its lists, its current channel, and the event that tells that they changed.
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
    char reserved;  // the first byte of the platform's text, 0 when it is empty
};

// Told of an event on the endpoint's server thread, one at a time.
using TolmChannelConfigEventCallback = void (*)(const TolmChannelConfigEvent& event,
                                                const TolmChannelConfigEventInfo& info, const void* context);

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success. Objects are given by their handles, which are
// valid until they are released.
class TolmChannelConfigAdaptorIpc : public tolm::TolmAdaptorClient,
                                    public TolmBaseServer,
                                    public tolm::TolmAdaptorInstance<TolmChannelConfigAdaptorIpc> {
  public:
    // Makes `callback` the receiver of the events, in place of any earlier one, whether the platform answers or not.
    int RegisterCallback(TolmChannelConfigEventCallback callback, const void* context);
    int UnregisterCallback();

    int GetCurrentChannel(void*& channel);
    int GetChannelList(void*& list);
    int GetBroadcastSupervisor(void*& supervisor);
    int GetFavouriteListCollection(void*& collection);
    int GetCurrentFavouriteList(void*& list);
    int SetChannelList(const void* list);

    // Makes a list of channels, in their order.
    int CreateChannelList(const std::vector<void*>& channels, void*& list);

    // Makes a list of the channels that are blocked, favourite or hidden as asked for, and in the favourite list of the
    // identifier unless it is empty.
    int CreateFilteredList(bool blocked, bool favourite, bool hidden, const std::string& favouriteListID, void*& list);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmChannelConfigAdaptorIpc>;
    TolmChannelConfigAdaptorIpc();
    ~TolmChannelConfigAdaptorIpc() override;

    tolm::TolmCallbackSlot<TolmChannelConfigEventCallback> mCallback;
};
