// An audio, video or subtitle component: IAVComponent over the platform's component adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IAVComponent.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::Return;
using V1_0::IAVComponent;

class AVComponent : public TolmService<IAVComponent> {
  public:
    Return<int32_t> Release(int64_t component) override;
    Return<void> GetComponentTag(int64_t component, GetComponentTag_cb _hidl_cb) override;
    Return<void> GetPid(int64_t component, GetPid_cb _hidl_cb) override;
    Return<void> GetType(int64_t component, GetType_cb _hidl_cb) override;
    Return<void> GetEncoding(int64_t component, GetEncoding_cb _hidl_cb) override;
    Return<void> GetEncrypted(int64_t component, GetEncrypted_cb _hidl_cb) override;
    Return<void> GetAspectRatio(int64_t component, GetAspectRatio_cb _hidl_cb) override;
    Return<void> GetLanguage(int64_t component, GetLanguage_cb _hidl_cb) override;
    Return<void> GetAudioDescription(int64_t component, GetAudioDescription_cb _hidl_cb) override;
    Return<void> GetAudioChannelNum(int64_t component, GetAudioChannelNum_cb _hidl_cb) override;
    Return<void> GetHearingImpaired(int64_t component, GetHearingImpaired_cb _hidl_cb) override;
    Return<void> GetLabel(int64_t component, GetLabel_cb _hidl_cb) override;
};

extern "C" IAVComponent* HIDL_FETCH_IAVComponent(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
