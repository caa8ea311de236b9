#include "ipc/src/plugin/tolm_application_private_data_adaptor_ipc.h"

using namespace tolm;

namespace {

constexpr Family kFamily{"[ipc_app_priv]", 8};
constexpr int kPort = 17;

}  // namespace

TolmApplicationPrivateDataAdaptorIpc::TolmApplicationPrivateDataAdaptorIpc()
    : TolmAdaptorClient(TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_APP_PRIV, kPort, kFamily) {}

int TolmApplicationPrivateDataAdaptorIpc::getFreeMem(int& size) {
    return Call(0, {}, {ToInt("memSize", size)});
}

int TolmApplicationPrivateDataAdaptorIpc::getCurrentChannel(void*& channel) {
    return Call(1, {}, {ToPointer("channel", channel)});
}
