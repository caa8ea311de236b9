#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"

#include <string>

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kAVControl.tag;

constexpr TolmPluginIPCAvContrl kSelectComponent = 1;

std::string ToString(const TolmHeapText& text) {
    return text != nullptr ? text.get() : "";
}

std::string ToElement(const TolmAVCtrlComponentData& component) {
    const std::string encoding = ToString(component.encoding);
    const std::string language = ToString(component.language);
    return Element({Bool("actived", component.actived), Int("comp_type", component.componentType),
                    Text("encoding", encoding), Text("language", language),
                    UInt("audio_channelNum", component.audioChannels), Bool("impaired", component.hearingImpaired),
                    Bool("desc", component.audioDescription), Int("compTag", component.componentTag)});
}

}  // namespace

TolmAVControlAdaptorIpc::TolmAVControlAdaptorIpc()
    : TolmAdaptorClient(families::kAVControl), TolmBaseServer(*families::kAVControl.events, families::kAVControl.port) {
    Start();
}

TolmAVControlAdaptorIpc::~TolmAVControlAdaptorIpc() {
    TolmBaseServer::Stop();
}

int TolmAVControlAdaptorIpc::RegisterCallback(TolmAVControlCallback callback) {
    LogScope scope(kTag);
    mCallback.Set(callback, nullptr);
    return 0;
}

int TolmAVControlAdaptorIpc::UnregisterCallback() {
    LogScope scope(kTag);
    mCallback.Clear();
    return 0;
}

int TolmAVControlAdaptorIpc::ComponentUpdate(TolmHbbtvAVCtrlEvent, const TolmAVCtrlEventInfo& info,
                                             std::vector<TolmAVCtrlComponentData>& components, int currentIndex) {
    std::vector<std::string> elements;
    for (const TolmAVCtrlComponentData& component : components) elements.push_back(ToElement(component));
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
