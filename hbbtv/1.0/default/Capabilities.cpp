#include "Capabilities.h"

#include "ipc/src/plugin/tolm_capabilities_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmCapabilitiesAdaptorIpc;

Return<void> Capabilities::HasCapability(int32_t type, HasCapability_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::HasCapability, type);
}

Return<void> Capabilities::GetTerminalCapability(GetTerminalCapability_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetTerminalCapability);
}

Return<void> Capabilities::GetXmlCapabilities(GetXmlCapabilities_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetXmlCapabilities);
}

Return<void> Capabilities::GetExtraSDVideoDecodes(GetExtraSDVideoDecodes_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetExtraSDVideoDecodes);
}

Return<void> Capabilities::GetExtraHDVideoDecodes(GetExtraHDVideoDecodes_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetExtraHDVideoDecodes);
}

ICapabilities* HIDL_FETCH_ICapabilities(const char*) {
    return new Capabilities();
}

}  // namespace vantorel::hardware::hbbtv::implementation
