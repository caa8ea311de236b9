// The operations of favourite list collection.
#include "ipc/src/plugin/tolm_favourite_list_collection_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmFavouriteListCollectionAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "favourite_list_collection",
        "[ipc_videobroadcast]",
        "tolm_favourite_list_collection_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Release", &Adaptor::Release},
            {"GetLength", &Adaptor::GetLength},
            {"Item", &Adaptor::Item},
            {"GetFavouriteList", &Adaptor::GetFavouriteList},
            {"CreateFavouriteList", &Adaptor::CreateFavouriteList},
            {"Remove", &Adaptor::Remove},
            {"Commit", &Adaptor::Commit},
            {"ActivateFavouriteList", &Adaptor::ActivateFavouriteList},
        },
    };
    return family;
}

}  // namespace hbbtv::test
