// The operations of favourite list.
#include "ipc/src/plugin/tolm_favourite_list_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmFavouriteListAdaptorIpc;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "favourite_list",
        "[ipc_videobroadcast]",
        "tolm_favourite_list_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"Release", &Adaptor::Release},
            {"GetLength", &Adaptor::GetLength},
            {"GetFavID", &Adaptor::GetFavID},
            {"SetName", &Adaptor::SetName},
            {"GetName", &Adaptor::GetName},
            {"Item", &Adaptor::Item},
            {"GetChannel", &Adaptor::GetChannel},
            {"GetChannelByTriplet", &Adaptor::GetChannelByTriplet},
            {"GetChannelBySourceID", &Adaptor::GetChannelBySourceID},
            {"InsertBefore", &Adaptor::InsertBefore},
            {"Remove", &Adaptor::Remove},
            {"Commit", &Adaptor::Commit},
        },
    };
    return family;
}

}  // namespace hbbtv::test
