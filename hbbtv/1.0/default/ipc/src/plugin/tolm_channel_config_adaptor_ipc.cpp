#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kChannelConfig.tag;

}  // namespace

TolmChannelConfigAdaptorIpc::TolmChannelConfigAdaptorIpc()
    : TolmAdaptorClient(families::kChannelConfig),
      TolmBaseServer(*families::kChannelConfig.events, families::kChannelConfig.port) {
    Start();
}

TolmChannelConfigAdaptorIpc::~TolmChannelConfigAdaptorIpc() {
    TolmBaseServer::Stop();
}

int TolmChannelConfigAdaptorIpc::RegisterCallback(TolmChannelConfigEventCallback callback, const void* context) {
    mCallback.Set(callback, context);
    return Call(0, {Pointer("context", context)});
}

int TolmChannelConfigAdaptorIpc::UnregisterCallback() {
    mCallback.Clear();
    return Call(1, {});
}

int TolmChannelConfigAdaptorIpc::GetCurrentChannel(void*& channel) {
    return Call(2, {}, {ToPointer("handle", channel)});
}

int TolmChannelConfigAdaptorIpc::GetChannelList(void*& list) {
    return Call(3, {}, {ToPointer("handle", list)});
}

int TolmChannelConfigAdaptorIpc::GetBroadcastSupervisor(void*& supervisor) {
    return Call(4, {}, {ToPointer("handle", supervisor)});
}

int TolmChannelConfigAdaptorIpc::GetFavouriteListCollection(void*& collection) {
    return Call(5, {}, {ToPointer("handle", collection)});
}

int TolmChannelConfigAdaptorIpc::GetCurrentFavouriteList(void*& list) {
    return Call(6, {}, {ToPointer("handle", list)});
}

int TolmChannelConfigAdaptorIpc::SetChannelList(const void* list) {
    return Call(7, {Pointer("list", list)});
}

int TolmChannelConfigAdaptorIpc::CreateChannelList(const std::vector<void*>& channels, void*& list) {
    return Call(8, {UInt("size", static_cast<unsigned>(channels.size())), NumberedPointers("channel", channels)},
                {ToPointer("list", list)});
}

int TolmChannelConfigAdaptorIpc::CreateFilteredList(bool blocked, bool favourite, bool hidden,
                                                    const std::string& favouriteListID, void*& list) {
    return Call(9,
                {Bool("blocked", blocked), Bool("favourite", favourite), Bool("hidden", hidden),
                 Text("favouriteListID", favouriteListID)},
                {ToPointer("handle", list)});
}

void TolmChannelConfigAdaptorIpc::ReceiveIpc(const Json::Value& msg) {
    const auto receiver = mCallback.Get();
    if (receiver.function == nullptr) return;
    const TolmChannelConfigEvent event = ReadInt(msg, "event");
    TolmChannelConfigEventInfo info{};
    if (event != 0) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event type %d", event);
    } else if (const std::string reserved = ReadText(msg, "reserved"); !reserved.empty()) {
        info.reserved = reserved[0];
    } else {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "reserved is empty");
    }
    receiver.function(event, info, receiver.context);
}

void TolmChannelConfigAdaptorIpc::ReceiveIpc(const Json::Value&, Json::Value&) {
    TOLM_LOG(ANDROID_LOG_ERROR, kTag, "Could not be called here");
}
