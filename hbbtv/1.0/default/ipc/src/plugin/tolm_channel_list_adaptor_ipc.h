// The platform's channel lists.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// `list` is a channel list's handle.
class TolmChannelListAdaptorIpc : public tolm::TolmAdaptorClient,
                                  public tolm::TolmAdaptorInstance<TolmChannelListAdaptorIpc> {
  public:
    int Release(const void* list);
    int GetLength(const void* list, unsigned& len);
    int Item(const void* list, int index, void*& channel);
    int GetChannel(const void* list, const std::string& channelID, void*& channel);
    int GetChannelByTriplet(const void* list, int onid, int tsid, int sid, int nid, void*& channel);
    int GetChannelBySourceID(const void* list, int sourceID, void*& channel);

  private:
    friend class tolm::TolmAdaptorInstance<TolmChannelListAdaptorIpc>;
    TolmChannelListAdaptorIpc();
    ~TolmChannelListAdaptorIpc() = default;
};
