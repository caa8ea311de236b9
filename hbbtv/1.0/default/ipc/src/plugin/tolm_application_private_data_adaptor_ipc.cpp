#include "ipc/src/plugin/tolm_application_private_data_adaptor_ipc.h"

using namespace tolm;

TolmApplicationPrivateDataAdaptorIpc::TolmApplicationPrivateDataAdaptorIpc()
    : TolmAdaptorClient(families::kApplicationPrivateData) {}

int TolmApplicationPrivateDataAdaptorIpc::getFreeMem(int& size) {
    return Call(0, {}, {ToInt("memSize", size)});
}

int TolmApplicationPrivateDataAdaptorIpc::getCurrentChannel(void*& channel) {
    return Call(1, {}, {ToPointer("channel", channel)});
}
