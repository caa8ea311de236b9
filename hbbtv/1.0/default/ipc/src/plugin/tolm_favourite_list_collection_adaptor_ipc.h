// The platform's collection of favourite lists.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// `collection` is the collection's handle. Favourite lists have a handle and an identifier, `favId`.
class TolmFavouriteListCollectionAdaptorIpc : public tolm::TolmAdaptorClient,
                                              public tolm::TolmAdaptorInstance<TolmFavouriteListCollectionAdaptorIpc> {
  public:
    int Release(const void* collection);
    int GetLength(const void* collection, unsigned& len);
    int Item(const void* collection, int index, void*& list);
    int GetFavouriteList(const void* collection, const std::string& favId, void*& list);
    int CreateFavouriteList(const void* collection, const std::string& name, void*& list);
    int Remove(const void* collection, int index);
    int Commit(const void* collection);
    int ActivateFavouriteList(const void* collection, const std::string& favId);

  private:
    friend class tolm::TolmAdaptorInstance<TolmFavouriteListCollectionAdaptorIpc>;
    TolmFavouriteListCollectionAdaptorIpc();
    ~TolmFavouriteListCollectionAdaptorIpc() = default;
};
