// The AV control object of the HbbTV browser: IAVControl over the platform's AV-control adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IAVControl.h>

#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_hidl_client_monitor.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using V1_0::IAVControl;
using V1_0::IAVControlCallback;
using V1_0::TolmAvComponentData;

class AVControl : public TolmService<IAVControl>, public TolmHidlClientMonitor {
  public:
    AVControl();

    Return<int32_t> RegisterCallback(const sp<IAVControlCallback>& cb, int64_t context) override;
    Return<int32_t> UnregisterCallback() override;
    Return<int32_t> ComponentUpdate(V1_0::TolmHbbtvAVCtrlEvent event, V1_0::TolmHbbtvAVComponentType type,
                                    const hidl_vec<TolmAvComponentData>& components, int32_t currentIndex) override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;
};

// Forwards an event of the adaptor to the registered client. Returns 0, or -1 without a client. Called on the adaptor's
// server thread.
TOLM_ERR TolmAVControlComponentCallback(TolmPluginIPCAvContrl event, ::TolmHbbtvAVComponentType type, int index);

extern "C" IAVControl* HIDL_FETCH_IAVControl(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
