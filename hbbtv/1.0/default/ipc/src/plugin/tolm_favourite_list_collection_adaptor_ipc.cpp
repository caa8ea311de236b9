#include "ipc/src/plugin/tolm_favourite_list_collection_adaptor_ipc.h"

using namespace tolm;

TolmFavouriteListCollectionAdaptorIpc::TolmFavouriteListCollectionAdaptorIpc()
    : TolmAdaptorClient(families::kFavouriteListCollection) {}

int TolmFavouriteListCollectionAdaptorIpc::Release(const void* collection) {
    return Call(12, {Pointer("flc_handle", collection)});
}

int TolmFavouriteListCollectionAdaptorIpc::GetLength(const void* collection, unsigned& len) {
    return Call(13, {Pointer("flc_handle", collection)}, {ToUInt("len", len)});
}

int TolmFavouriteListCollectionAdaptorIpc::Item(const void* collection, int index, void*& list) {
    return Call(14, {Pointer("flc_handle", collection), Int("index", index)}, {ToPointer("list", list)});
}

int TolmFavouriteListCollectionAdaptorIpc::GetFavouriteList(const void* collection, const std::string& favId,
                                                            void*& list) {
    return Call(15, {Pointer("flc_handle", collection), Text("favId", favId)}, {ToPointer("list", list)});
}

int TolmFavouriteListCollectionAdaptorIpc::CreateFavouriteList(const void* collection, const std::string& name,
                                                               void*& list) {
    return Call(16, {Pointer("flc_handle", collection), Text("name", name)}, {ToPointer("list", list)});
}

int TolmFavouriteListCollectionAdaptorIpc::Remove(const void* collection, int index) {
    return Call(17, {Pointer("flc_handle", collection), Int("index", index)});
}

int TolmFavouriteListCollectionAdaptorIpc::Commit(const void* collection) {
    return Call(18, {Pointer("flc_handle", collection)});
}

int TolmFavouriteListCollectionAdaptorIpc::ActivateFavouriteList(const void* collection, const std::string& favId) {
    return Call(19, {Pointer("flc_handle", collection), Text("favId", favId)});
}
