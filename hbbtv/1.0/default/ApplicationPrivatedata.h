// Facts about the television for its applications: IApplicationPrivatedata over the platform's adaptor for them.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IApplicationPrivatedata.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::Return;
using V1_0::IApplicationPrivatedata;

class ApplicationPrivatedata : public TolmService<IApplicationPrivatedata> {
  public:
    Return<void> GetFreeMem(GetFreeMem_cb _hidl_cb) override;
    Return<void> GetCurrentChannel(GetCurrentChannel_cb _hidl_cb) override;
};

extern "C" IApplicationPrivatedata* HIDL_FETCH_IApplicationPrivatedata(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
