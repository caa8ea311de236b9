// The platform's favourite lists.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// `list` is a favourite list's handle. A channel is inserted by its identifier, `ccid`.
class TolmFavouriteListAdaptorIpc : public tolm::TolmAdaptorClient,
                                    public tolm::TolmAdaptorInstance<TolmFavouriteListAdaptorIpc> {
  public:
    int Release(const void* list);
    int GetLength(const void* list, unsigned& len);
    int GetFavID(const void* list, std::string& favId);
    int SetName(const void* list, const std::string& name);
    int GetName(const void* list, std::string& name);
    int Item(const void* list, int index, void*& channel);
    int GetChannel(const void* list, const std::string& channelID, void*& channel);
    int GetChannelByTriplet(const void* list, int onid, int tsid, int sid, void*& channel);
    int GetChannelBySourceID(const void* list, int sourceID, void*& channel);
    int InsertBefore(const void* list, int index, const std::string& ccid);
    int Remove(const void* list, int index);
    int Commit(const void* list);

  private:
    friend class tolm::TolmAdaptorInstance<TolmFavouriteListAdaptorIpc>;
    TolmFavouriteListAdaptorIpc();
    ~TolmFavouriteListAdaptorIpc() = default;
};
