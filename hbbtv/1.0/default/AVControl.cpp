#include "AVControl.h"

#include <cstring>
#include <vector>

#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_registered_client.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmAVControlAdaptorIpc;

namespace {

TolmRegisteredClient<IAVControlCallback> mAVControlCallback;

// The memory of a struct arrives as the client has written it, so the byte of a bool may be neither 0 nor 1.
bool IsSet(const bool& flag) {
    unsigned char byte = 0;
    memcpy(&byte, &flag, sizeof(byte));
    return byte != 0;
}

TolmAVCtrlComponentData ToAdaptorComponent(const TolmAvComponentData& component) {
    return {IsSet(component.actived),
            component.componentTag,
            static_cast<::TolmHbbtvAVComponentType>(component.type),
            TolmHeapText(strdup(component.encoding.c_str())),
            TolmHeapText(strdup(component.language.c_str())),
            component.audioChannels,
            IsSet(component.hearingImpaired),
            IsSet(component.audioDescription)};
}

}  // namespace

AVControl::AVControl() : TolmHidlClientMonitor(tolm::kAVControlTag, mAVControlCallback, tolm::families::kAVControl) {}

Return<int32_t> AVControl::RegisterCallback(const sp<IAVControlCallback>& cb, int64_t) {
    return mAVControlCallback.Register(this, cb, &Adaptor::RegisterCallback, TolmAVControlComponentCallback);
}

Return<int32_t> AVControl::UnregisterCallback() {
    return mAVControlCallback.Unregister(this, &Adaptor::UnregisterCallback);
}

Return<int32_t> AVControl::ComponentUpdate(V1_0::TolmHbbtvAVCtrlEvent event, V1_0::TolmHbbtvAVComponentType type,
                                           const hidl_vec<TolmAvComponentData>& components, int32_t currentIndex) {
    Adaptor* adaptor = Adaptor::GetInstance();
    if (adaptor == nullptr) return -1;
    std::vector<TolmAVCtrlComponentData> list;
    for (const TolmAvComponentData& component : components) list.push_back(ToAdaptorComponent(component));
    return adaptor->ComponentUpdate(static_cast<::TolmHbbtvAVCtrlEvent>(event),
                                    {static_cast<::TolmHbbtvAVComponentType>(type)}, list, currentIndex);
}

void AVControl::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    mAVControlCallback.OnDied(this, who, &Adaptor::UnregisterCallback);
}

TOLM_ERR TolmAVControlComponentCallback(TolmPluginIPCAvContrl event, ::TolmHbbtvAVComponentType type, int index) {
    const sp<IAVControlCallback> client = mAVControlCallback.Get();
    if (client == nullptr) {
        TOLM_LOG(ANDROID_LOG_INFO, tolm::kAVControlTag, "TolmAVControlComponentCallback callback null");
        return -1;
    }
    tolm::Received(client->onComponentSelect(event, static_cast<V1_0::TolmHbbtvAVComponentType>(type), index),
                   tolm::kAVControlTag);
    return 0;
}

IAVControl* HIDL_FETCH_IAVControl(const char*) {
    return new AVControl();
}

}  // namespace vantorel::hardware::hbbtv::implementation
