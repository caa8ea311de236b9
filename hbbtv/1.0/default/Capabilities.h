// The capabilities of the television: ICapabilities over the platform's capabilities adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/ICapabilities.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::Return;
using V1_0::ICapabilities;

class Capabilities : public TolmService<ICapabilities> {
  public:
    Return<void> HasCapability(int32_t type, HasCapability_cb _hidl_cb) override;
    Return<void> GetTerminalCapability(GetTerminalCapability_cb _hidl_cb) override;
    Return<void> GetXmlCapabilities(GetXmlCapabilities_cb _hidl_cb) override;
    Return<void> GetExtraSDVideoDecodes(GetExtraSDVideoDecodes_cb _hidl_cb) override;
    Return<void> GetExtraHDVideoDecodes(GetExtraHDVideoDecodes_cb _hidl_cb) override;
};

extern "C" ICapabilities* HIDL_FETCH_ICapabilities(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
