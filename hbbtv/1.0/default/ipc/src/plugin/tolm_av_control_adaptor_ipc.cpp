#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"

#include <string>

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr char kTag[] = "[ipc_avcontrol]";
constexpr Family kFamily{kTag, 2};
constexpr int kPort = 19;

constexpr TolmPluginIPCAvContrl kSelectComponent = 1;

std::string ToString(const TolmHeapText& text) {
    return text != nullptr ? text.get() : "";
}

Json::Value ToJson(const TolmAVCtrlComponentData& component) {
    const std::string encoding = ToString(component.encoding);
    const std::string language = ToString(component.language);
    return Object({Bool("actived", component.actived), Int("comp_type", component.componentType),
                   Text("encoding", encoding), Text("language", language),
                   UInt("audio_channelNum", component.audioChannels), Bool("impaired", component.hearingImpaired),
                   Bool("desc", component.audioDescription), Int("compTag", component.componentTag)});
}

}  // namespace

TolmAVControlAdaptorIpc::TolmAVControlAdaptorIpc()
    : TolmAdaptorClient(TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_AV_CTRL, kPort, kFamily),
      TolmBaseServer(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_AV_CTRL, kPort) {
    Start();
}

TolmAVControlAdaptorIpc::~TolmAVControlAdaptorIpc() {
    TolmBaseServer::Stop();
}

int TolmAVControlAdaptorIpc::RegisterCallback(TolmAVControlCallback callback) {
    const Method here(-1);
    LogEnter(kTag, here);
    mCallback.Set(callback, nullptr);
    LogLeave(kTag, here);
    return 0;
}

int TolmAVControlAdaptorIpc::UnregisterCallback() {
    const Method here(-1);
    LogEnter(kTag, here);
    mCallback.Clear();
    LogLeave(kTag, here);
    return 0;
}

int TolmAVControlAdaptorIpc::ComponentUpdate(TolmHbbtvAVCtrlEvent, const TolmAVCtrlEventInfo& info,
                                             std::vector<TolmAVCtrlComponentData>& components, int currentIndex) {
    Json::Value elements;  // without components, null goes out
    for (const TolmAVCtrlComponentData& component : components) elements.append(ToJson(component));
    const auto count = static_cast<unsigned>(components.size());
    components.clear();
    return Post(0, {Int("component_type", info.componentType), UInt("component_count", count),
                    Int("current_component_index", currentIndex), Array("components", elements)});
}

void TolmAVControlAdaptorIpc::ReceiveIpc(const Json::Value& msg) {
    const auto receiver = mCallback.Get();
    if (receiver.function == nullptr) {
        TOLM_LOG(ANDROID_LOG_DEBUG, kTag, "callback is null");
        return;
    }
    const TolmPluginIPCAvContrl event = ReadInt(msg, "method");
    if (event != kSelectComponent) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event type %d", event);
        return;
    }
    receiver.function(event, ReadInt(msg, "component_type"), ReadInt(msg, "component_index"));
}

void TolmAVControlAdaptorIpc::ReceiveIpc(const Json::Value&, Json::Value&) {
    TOLM_LOG(ANDROID_LOG_ERROR, kTag, "Could not be called here");
}
