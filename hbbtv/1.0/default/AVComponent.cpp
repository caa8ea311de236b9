#include "AVComponent.h"

#include "ipc/src/plugin/tolm_av_component_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmAVComponentAdaptorIpc;

Return<int32_t> AVComponent::Release(int64_t component) {
    return Status(&Adaptor::Release, Handle(component));
}

Return<void> AVComponent::GetComponentTag(int64_t component, GetComponentTag_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetComponentTag, Handle(component));
}

Return<void> AVComponent::GetPid(int64_t component, GetPid_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetPid, Handle(component));
}

Return<void> AVComponent::GetType(int64_t component, GetType_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetType, Handle(component));
}

Return<void> AVComponent::GetEncoding(int64_t component, GetEncoding_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetEncoding, Handle(component));
}

Return<void> AVComponent::GetEncrypted(int64_t component, GetEncrypted_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetEncrypted, Handle(component));
}

Return<void> AVComponent::GetAspectRatio(int64_t component, GetAspectRatio_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAspectRatio, Handle(component));
}

Return<void> AVComponent::GetLanguage(int64_t component, GetLanguage_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLanguage, Handle(component));
}

Return<void> AVComponent::GetAudioDescription(int64_t component, GetAudioDescription_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAudioDescription, Handle(component));
}

Return<void> AVComponent::GetAudioChannelNum(int64_t component, GetAudioChannelNum_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAudioChannelNum, Handle(component));
}

Return<void> AVComponent::GetHearingImpaired(int64_t component, GetHearingImpaired_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetHearingImpaired, Handle(component));
}

Return<void> AVComponent::GetLabel(int64_t component, GetLabel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLabel, Handle(component));
}

IAVComponent* HIDL_FETCH_IAVComponent(const char*) {
    return new AVComponent();
}

}  // namespace vantorel::hardware::hbbtv::implementation
