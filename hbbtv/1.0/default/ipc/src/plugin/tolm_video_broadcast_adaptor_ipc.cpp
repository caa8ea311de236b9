#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kVideoBroadcast.tag;

}  // namespace

TolmVideoBroadcastAdaptorIpc::TolmVideoBroadcastAdaptorIpc()
    : TolmAdaptorClient(families::kVideoBroadcast),
      TolmBaseServer(*families::kVideoBroadcast.events, families::kVideoBroadcast.port) {
    Start();
}

TolmVideoBroadcastAdaptorIpc::~TolmVideoBroadcastAdaptorIpc() {
    TolmBaseServer::Stop();
}

int TolmVideoBroadcastAdaptorIpc::Create(const void* context, void*& vb) {
    return Call(0, {Pointer("context", context)}, {ToPointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::Release(const void* vb) {
    return Call(1, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::Destroy(const void* vb) {
    return Call(2, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::RegisterCallback(const void* vb, TolmVideoBroadcastCallback callback,
                                                   const void* context) {
    // The slot is set first, so that no event of the object is missed.
    mCallback.Set(callback, context);
    return Call(3, {Pointer("vb_handle", vb), Pointer("context", context)});
}

int TolmVideoBroadcastAdaptorIpc::UnregisterCallback(const void* vb) {
    mCallback.Clear();
    return Call(4, {Pointer("vb_handle", vb)});
}

void TolmVideoBroadcastAdaptorIpc::ClearCallback() {
    LogScope scope(kTag);
    mCallback.Clear();
}

void TolmVideoBroadcastAdaptorIpc::RegisterMediaSyncCallback(TolmMediaSyncCallback callback, const void* context) {
    mMediaSyncCallback.Set(callback, context);
}

int TolmVideoBroadcastAdaptorIpc::SetWindow(const void* vb, int x, int y, int w, int h) {
    return Call(5, {Pointer("vb_handle", vb), Int("rect_x", x), Int("rect_y", y), Int("rect_w", w), Int("rect_h", h)});
}

int TolmVideoBroadcastAdaptorIpc::GetFullScreen(const void* vb, bool& fullScreen) {
    return Call(6, {Pointer("vb_handle", vb)}, {ToBool("fullscreen", fullScreen)});
}

int TolmVideoBroadcastAdaptorIpc::GetPlayState(const void* vb, int& state) {
    return Call(7, {Pointer("vb_handle", vb)}, {ToInt("state", state)});
}

int TolmVideoBroadcastAdaptorIpc::BindToCurrentChannel(const void* vb, void*& channel) {
    return Call(8, {Pointer("vb_handle", vb)}, {ToPointer("channel", channel)});
}

int TolmVideoBroadcastAdaptorIpc::CreateChannel_1(const void* vb, int idType, const std::string& dsd, int sid,
                                                  void*& channel) {
    return Call(9, {Pointer("vb_handle", vb), Int("idType", idType), Text("dsd", dsd), Int("sid", sid)},
                {ToPointer("channel", channel)});
}

int TolmVideoBroadcastAdaptorIpc::CreateChannel_2(const void* vb, int idType, int onid, int tsid, int sid, int sourceId,
                                                  const std::string& ipBroadcastId, void*& channel) {
    return Call(10,
                {Pointer("vb_handle", vb), Int("idType", idType), Int("onid", onid), Int("tsid", tsid), Int("sid", sid),
                 Int("sourceId", sourceId), Text("ipBroadcastId", ipBroadcastId)},
                {ToPointer("channel", channel)});
}

int TolmVideoBroadcastAdaptorIpc::SetChannel(const void* vb, const void* channel, bool trickPlay,
                                             const std::string& url) {
    return Call(
        11, {Pointer("vb_handle", vb), Pointer("channel", channel), Bool("trickPlay", trickPlay), Text("url", url)});
}

int TolmVideoBroadcastAdaptorIpc::PrevChannel(const void* vb) {
    return Call(12, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::NextChannel(const void* vb) {
    return Call(13, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::SetFullScreen(const void* vb, bool fullScreen) {
    return Call(14, {Pointer("vb_handle", vb), Bool("fullscreen", fullScreen)});
}

int TolmVideoBroadcastAdaptorIpc::SetVolume(const void* vb, unsigned volume) {
    return Call(15, {Pointer("vb_handle", vb), UInt("volume", volume)});
}

int TolmVideoBroadcastAdaptorIpc::GetVolume(const void* vb, unsigned& volume) {
    return Call(16, {Pointer("vb_handle", vb)}, {ToUInt("volume", volume)});
}

int TolmVideoBroadcastAdaptorIpc::Stop(const void* vb) {
    return Call(17, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::GetPlaybackOffset(const void* vb, unsigned& offset) {
    return Call(18, {Pointer("vb_handle", vb)}, {ToUInt("offset", offset)});
}

int TolmVideoBroadcastAdaptorIpc::GetMaxOffset(const void* vb, unsigned& offset) {
    return Call(19, {Pointer("vb_handle", vb)}, {ToUInt("offset", offset)});
}

int TolmVideoBroadcastAdaptorIpc::GetRecordingState(const void* vb, int& state) {
    return Call(20, {Pointer("vb_handle", vb)}, {ToInt("state", state)});
}

int TolmVideoBroadcastAdaptorIpc::GetPlayPosition(const void* vb, unsigned& position) {
    return Call(21, {Pointer("vb_handle", vb)}, {ToUInt("position", position)});
}

int TolmVideoBroadcastAdaptorIpc::GetPlaySpeed(const void* vb, double& speed) {
    return Call(22, {Pointer("vb_handle", vb)}, {ToReal("speed", speed)});
}

int TolmVideoBroadcastAdaptorIpc::GetPlaySpeedNum(const void* vb, unsigned& num) {
    return Call(23, {Pointer("vb_handle", vb)}, {ToUInt("num", num)});
}

int TolmVideoBroadcastAdaptorIpc::GetPlaySpeedByIndex(const void* vb, unsigned index, double& speed) {
    return Call(24, {Pointer("vb_handle", vb), UInt("index", index)}, {ToReal("speed", speed)});
}

int TolmVideoBroadcastAdaptorIpc::SetTimeShiftMode(const void* vb, int mode) {
    return Call(25, {Pointer("vb_handle", vb), Int("mode", mode)});
}

int TolmVideoBroadcastAdaptorIpc::GetTimeShiftMode(const void* vb, int& mode) {
    return Call(26, {Pointer("vb_handle", vb)}, {ToInt("mode", mode)});
}

int TolmVideoBroadcastAdaptorIpc::GetCurrentTimeShiftMode(const void* vb, int& mode) {
    return Call(27, {Pointer("vb_handle", vb)}, {ToInt("mode", mode)});
}

int TolmVideoBroadcastAdaptorIpc::RecordNow(const void*, unsigned, std::string&) {
    LogScope scope(kTag);
    return 0;
}

int TolmVideoBroadcastAdaptorIpc::StopRecording(const void* vb) {
    return Call(28, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::Pause(const void* vb) {
    return Call(29, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::Resume(const void* vb) {
    return Call(30, {Pointer("vb_handle", vb)});
}

int TolmVideoBroadcastAdaptorIpc::SetSpeed(const void* vb, double speed) {
    return Call(31, {Pointer("vb_handle", vb), Real("speed", speed)});
}

int TolmVideoBroadcastAdaptorIpc::Seek(const void* vb, int offset, int reference) {
    return Call(32, {Pointer("vb_handle", vb), Int("offset", offset), Int("reference", reference)});
}

int TolmVideoBroadcastAdaptorIpc::StopTimeShift(const void* vb) {
    return Call(33, {Pointer("vb_handle", vb)});
}

// Its code on the wire, 34, is never sent.
int TolmVideoBroadcastAdaptorIpc::SetChannel_Ext(const void*, const void*&, bool, const std::string&, int) {
    LogScope scope(kTag);
    return 0;
}

int TolmVideoBroadcastAdaptorIpc::SetChannel_Quiet(const void* vb, const void* channel, bool trickPlay,
                                                   const std::string& url, int quiet) {
    return Call(35, {Pointer("vb_handle", vb), Pointer("channel", channel), Bool("trickPlay", trickPlay),
                     Text("url", url), Int("quiet", quiet)});
}

int TolmVideoBroadcastAdaptorIpc::GetProgrammeNum(const void* vb, unsigned& num) {
    return Call(36, {Pointer("vb_handle", vb)}, {ToUInt("num", num)});
}

int TolmVideoBroadcastAdaptorIpc::GetProgrammeByIndex(const void* vb, unsigned index, void*& programme) {
    return Call(37, {Pointer("vb_handle", vb), UInt("index", index)}, {ToPointer("programme", programme)});
}

int TolmVideoBroadcastAdaptorIpc::GetCurrentChannel(const void* vb, void*& channel) {
    return Call(38, {Pointer("vb_handle", vb)}, {ToPointer("channel", channel)});
}

int TolmVideoBroadcastAdaptorIpc::GetAVComponentNumByType(const void* vb, int comType, unsigned& num) {
    return Call(39, {Pointer("vb_handle", vb), Int("comType", comType)}, {ToUInt("num", num)});
}

int TolmVideoBroadcastAdaptorIpc::GetSpecificTypeAVComponentByIndex(const void* vb, int comType, unsigned index,
                                                                    void*& component) {
    return Call(40, {Pointer("vb_handle", vb), Int("comType", comType), UInt("index", index)},
                {ToPointer("component", component)});
}

int TolmVideoBroadcastAdaptorIpc::GetCurrentActiveAVComponentNumByType(const void* vb, int comType, unsigned& num) {
    return Call(41, {Pointer("vb_handle", vb), Int("comType", comType)}, {ToUInt("num", num)});
}

// Unlike the operation for all components, this one sends no component type.
int TolmVideoBroadcastAdaptorIpc::GetSpecificTypeCurrentActiveAVComponentByIndex(const void* vb, int, unsigned index,
                                                                                 void*& component) {
    return Call(42, {Pointer("vb_handle", vb), UInt("index", index)}, {ToPointer("component", component)});
}

int TolmVideoBroadcastAdaptorIpc::SelectComponent(const void* vb, const void* component) {
    return Call(43, {Pointer("vb_handle", vb), Pointer("component", component)});
}

int TolmVideoBroadcastAdaptorIpc::UnselectComponent(const void* vb, const void* component) {
    return Call(44, {Pointer("vb_handle", vb), Pointer("component", component)});
}

int TolmVideoBroadcastAdaptorIpc::SelectComponentByType(const void* vb, int comType) {
    return Call(45, {Pointer("vb_handle", vb), Int("comType", comType)});
}

int TolmVideoBroadcastAdaptorIpc::UnselectComponentByType(const void* vb, int comType) {
    return Call(46, {Pointer("vb_handle", vb), Int("comType", comType)});
}

int TolmVideoBroadcastAdaptorIpc::CreateAudioComponent(const void* vb, int componentTag, const std::string& language,
                                                       bool audioDescription, int channels, const std::string& encoding,
                                                       void*& component) {
    return Call(47,
                {Pointer("vb_handle", vb), Int("componentTag", componentTag), Text("language", language),
                 Bool("audioDescription", audioDescription), Int("channels", channels), Text("encoding", encoding)},
                {ToPointer("component", component)});
}

int TolmVideoBroadcastAdaptorIpc::CreateVideoComponent(const void* vb, int componentTag, double aspectRatio,
                                                       const std::string& encoding, void*& component) {
    return Call(48,
                {Pointer("vb_handle", vb), Int("componentTag", componentTag), Real("aspectRatio", aspectRatio),
                 Text("encoding", encoding)},
                {ToPointer("component", component)});
}

// The lists do not belong to an object, and the keys of the first one are in a style of their own.
int TolmVideoBroadcastAdaptorIpc::CreateAVComponentList(bool isActive, int type, void*& list) {
    return Call(49, {Bool("is_active", isActive), Int("avcmp_type", type)}, {ToPointer("avcmp_coll", list)});
}

int TolmVideoBroadcastAdaptorIpc::CreateProgrammeList(void*& list) {
    return Call(50, {}, {ToPointer("prog_coll", list)});
}

int TolmVideoBroadcastAdaptorIpc::ChangeDisplaySource(int source) {
    return Call(63, {Int("source", source)});
}

int TolmVideoBroadcastAdaptorIpc::AddStreamEventListener(const std::string& strurl, const std::string& dvburl,
                                                         const std::string& eventName) {
    return Call(64, {Text("strurl", strurl), Text("dvburl", dvburl), Text("event_name", eventName)});
}

int TolmVideoBroadcastAdaptorIpc::RemoveStreamEventListener(const std::string& strurl, const std::string& dvburl,
                                                            const std::string& eventName) {
    return Call(65, {Text("strurl", strurl), Text("dvburl", dvburl), Text("event_name", eventName)});
}

void TolmVideoBroadcastAdaptorIpc::ReceiveIpc(const Json::Value& msg) {
    LogScope scope(kTag);
    const std::string type = ReadText(msg, "type");
    if (type == "videobroadcast") {
        if (!ForwardVideoBroadcastEvent(msg)) return scope.Abandon();
    } else if (type == "mediasync") {
        if (!ForwardMediaSyncEvent(msg)) return scope.Abandon();
    } else {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event obj type %s", type.c_str());
    }
}

bool TolmVideoBroadcastAdaptorIpc::ForwardVideoBroadcastEvent(const Json::Value& msg) {
    const auto receiver = mCallback.Get();
    if (receiver.function == nullptr) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "m_cb is null");
        return false;
    }
    const TolmVideoBroadcastEvent event = ReadInt(msg, "event");
    TolmVideoBroadcastEventInfo info;
    if (!TolmDecodeVideoBroadcastEvent(msg, event, info)) return false;
    receiver.function(event, info, receiver.context);
    return true;
}

bool TolmVideoBroadcastAdaptorIpc::ForwardMediaSyncEvent(const Json::Value& msg) {
    const auto receiver = mMediaSyncCallback.Get();
    if (receiver.function == nullptr) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "m_cbMS is null");
        return false;
    }
    const TolmMediaSyncEvent event = ReadInt(msg, "event");
    TolmMediaSyncEventInfo info;
    TolmMediaSyncTexts texts;
    TolmDecodeMediaSyncEvent(msg, event, info, texts);
    receiver.function(event, info, receiver.context);
    return true;
}

// On a failed assertion the reply stays null, which tells the platform that nothing received its event.
#define VB_ASSERT_RET(condition)                                   \
    if (!(condition)) {                                            \
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "VB_Assert_Ret failed!"); \
        return scope.Abandon();                                    \
    }

// The payload of such an event is not decoded: its receiver gets the code and an all-zero record.
void TolmVideoBroadcastAdaptorIpc::ReceiveIpc(const Json::Value& msg, Json::Value& reply) {
    LogScope scope(kTag);
    const std::string type = ReadText(msg, "type");
    void* context = nullptr;
    VB_ASSERT_RET(Read(msg, {ToPointer("context", context)}));
    if (type == "videobroadcast") {
        const auto receiver = mCallback.Get();
        VB_ASSERT_RET(receiver.function != nullptr);
        VB_ASSERT_RET(receiver.context != nullptr);
        VB_ASSERT_RET(receiver.context == context);
        TolmVideoBroadcastEventInfo info;
        memset(&info, 0, sizeof(info));
        receiver.function(ReadInt(msg, "event"), info, receiver.context);
    }
    reply["ret"] = 0;
}
