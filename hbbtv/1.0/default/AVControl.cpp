#include "AVControl.h"

#include <cstring>
#include <mutex>
#include <vector>

#include "ipc/tolm_log.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmAVControlAdaptorIpc;

namespace {

constexpr char kTag[] = "[hidl_av_control_wrapper_client]";

TolmClientHolder<IAVControlCallback> mAVControlCallback;

// The client, the watch over it and the adaptor's receiver change together. Not taken by events.
std::mutex mRegistering;

TolmAVCtrlComponentData ToAdaptorComponent(const TolmAvComponentData& component) {
    return {component.actived,
            component.componentTag,
            static_cast<::TolmHbbtvAVComponentType>(component.type),
            TolmHeapText(strdup(component.encoding.c_str())),
            TolmHeapText(strdup(component.language.c_str())),
            component.audioChannels,
            component.hearingImpaired,
            component.audioDescription};
}

}  // namespace

AVControl::AVControl() : TolmHidlClientMonitor(kTag) {}

Return<int32_t> AVControl::RegisterCallback(const sp<IAVControlCallback>& cb, int64_t) {
    if (cb == nullptr) {
        TOLM_LOG(ANDROID_LOG_ERROR, kTag, "cb is null");
        return -1;
    }
    Adaptor* adaptor = Adaptor::GetInstance();
    if (adaptor == nullptr) return -1;
    std::lock_guard<std::mutex> lock(mRegistering);
    Hold(mAVControlCallback, cb);
    return adaptor->RegisterCallback(TolmAVControlComponentCallback);
}

Return<int32_t> AVControl::UnregisterCallback() {
    std::lock_guard<std::mutex> lock(mRegistering);
    Drop(mAVControlCallback);
    return Status(&Adaptor::UnregisterCallback);
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
    TOLM_LOG(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died");
    std::lock_guard<std::mutex> lock(mRegistering);
    if (!DropDead(mAVControlCallback, who)) return;
    if (Adaptor* adaptor = Adaptor::GetInstance()) adaptor->UnregisterCallback();
}

TOLM_ERR TolmAVControlComponentCallback(TolmPluginIPCAvContrl event, ::TolmHbbtvAVComponentType type, int index) {
    const sp<IAVControlCallback> client = mAVControlCallback.Get();
    if (client == nullptr) {
        TOLM_LOG(ANDROID_LOG_INFO, kTag, "TolmAVControlComponentCallback callback null");
        return -1;
    }
    // The client may have died just now: then there is nobody to tell.
    (void)client->onComponentSelect(event, static_cast<V1_0::TolmHbbtvAVComponentType>(type), index).isOk();
    return 0;
}

IAVControl* HIDL_FETCH_IAVControl(const char*) {
    return new AVControl();
}

}  // namespace vantorel::hardware::hbbtv::implementation
