// Files of the broadcast: IDsmcc over the platform's DSM-CC adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IDsmcc.h>

#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_hidl_client_monitor.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IDsmcc;
using V1_0::IDsmccCallback;

class Dsmcc : public TolmService<IDsmcc>, public TolmHidlClientMonitor {
  public:
    Dsmcc();

    Return<int32_t> RegisterCallback(const sp<IDsmccCallback>& cb) override;
    Return<int32_t> UnregisterCallback() override;
    Return<int32_t> OnRequestFile(const hidl_string& url, int64_t context) override;
    Return<int32_t> OnReleaseFile(const hidl_string& url, int64_t context) override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;
};

// Forwards an event of the adaptor to the registered client. Called on the adaptor's server thread.
void TolmBacBrowserDSMCCFileCallback(TolmDSMCCFileEventType type, const char* filePath, const void* context);

extern "C" IDsmcc* HIDL_FETCH_IDsmcc(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
