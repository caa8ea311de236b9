#include "ApplicationPrivatedata.h"

#include "ipc/src/plugin/tolm_application_private_data_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmApplicationPrivateDataAdaptorIpc;

Return<void> ApplicationPrivatedata::GetFreeMem(GetFreeMem_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::getFreeMem);
}

Return<void> ApplicationPrivatedata::GetCurrentChannel(GetCurrentChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::getCurrentChannel);
}

IApplicationPrivatedata* HIDL_FETCH_IApplicationPrivatedata(const char*) {
    return new ApplicationPrivatedata();
}

}  // namespace vantorel::hardware::hbbtv::implementation
