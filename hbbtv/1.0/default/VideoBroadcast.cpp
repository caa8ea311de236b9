#include "VideoBroadcast.h"

#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_registered_client.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmVideoBroadcastAdaptorIpc;

namespace {

TolmRegisteredClient<IVideoBroadcastCallback> mVBCallback;  // of all video/broadcast objects

}  // namespace

VideoBroadcast::VideoBroadcast()
    : TolmHidlClientMonitor(tolm::kVideoBroadcastTag, mVBCallback, tolm::families::kVideoBroadcast) {}

Return<void> VideoBroadcast::Create(int64_t context, Create_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Create, Handle(context));
}

Return<int32_t> VideoBroadcast::Destroy(int64_t vb) {
    return Status(&Adaptor::Destroy, Handle(vb));
}

Return<int32_t> VideoBroadcast::Release(int64_t vb) {
    return Status(&Adaptor::Release, Handle(vb));
}

Return<int32_t> VideoBroadcast::RegisterCallback(int64_t vb, const sp<IVideoBroadcastCallback>& cb, int64_t context) {
    return mVBCallback.Register(this, cb, &Adaptor::RegisterCallback, Handle(vb), TolmVideoBroadcastHidlCallback,
                                Handle(context));
}

Return<int32_t> VideoBroadcast::UnregisterCallback(int64_t vb) {
    return mVBCallback.Unregister(this, &Adaptor::UnregisterCallback, Handle(vb));
}

Return<int32_t> VideoBroadcast::SetWindow(int64_t vb, const TolmRect& rect) {
    return Status(&Adaptor::SetWindow, Handle(vb), rect.x, rect.y, rect.width, rect.height);
}

Return<void> VideoBroadcast::GetFullScreen(int64_t vb, GetFullScreen_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFullScreen, Handle(vb));
}

Return<int32_t> VideoBroadcast::SetFullScreen(int64_t vb, bool fullScreen) {
    return Status(&Adaptor::SetFullScreen, Handle(vb), fullScreen);
}

Return<void> VideoBroadcast::GetPlayState(int64_t vb, GetPlayState_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetPlayState, Handle(vb));
}

Return<void> VideoBroadcast::BindToCurrentChannel(int64_t vb, BindToCurrentChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::BindToCurrentChannel, Handle(vb));
}

Return<void> VideoBroadcast::CreateChannel_1(int64_t vb, int32_t idType, const hidl_string& dsd, int32_t sid,
                                             CreateChannel_1_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateChannel_1, Handle(vb), idType, dsd, sid);
}

Return<void> VideoBroadcast::CreateChannel_2(int64_t vb, int32_t idType, int32_t onid, int32_t tsid, int32_t sid,
                                             int32_t sourceId, const hidl_string& ipBroadcastId,
                                             CreateChannel_2_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateChannel_2, Handle(vb), idType, onid, tsid, sid, sourceId, ipBroadcastId);
}

Return<int32_t> VideoBroadcast::SetChannel(int64_t vb, int64_t channel, bool trickPlay, const hidl_string& url) {
    return Status(&Adaptor::SetChannel, Handle(vb), Handle(channel), trickPlay, url);
}

Return<int32_t> VideoBroadcast::SetChannel_Ext(int64_t vb, int64_t channel, bool trickPlay, const hidl_string& url,
                                               int32_t quiet) {
    return Status(&Adaptor::SetChannel_Ext, Handle(vb), Handle(channel), trickPlay, url, quiet);
}

Return<int32_t> VideoBroadcast::SetChannel_Quiet(int64_t vb, int64_t channel, bool trickPlay, const hidl_string& url,
                                                 int32_t quiet) {
    return Status(&Adaptor::SetChannel_Quiet, Handle(vb), Handle(channel), trickPlay, url, quiet);
}

Return<int32_t> VideoBroadcast::PrevChannel(int64_t vb) {
    return Status(&Adaptor::PrevChannel, Handle(vb));
}

Return<int32_t> VideoBroadcast::NextChannel(int64_t vb) {
    return Status(&Adaptor::NextChannel, Handle(vb));
}

Return<int32_t> VideoBroadcast::Stop(int64_t vb) {
    return Status(&Adaptor::Stop, Handle(vb));
}

Return<int32_t> VideoBroadcast::SetVolume(int64_t vb, uint32_t volume) {
    return Status(&Adaptor::SetVolume, Handle(vb), volume);
}

Return<void> VideoBroadcast::GetVolume(int64_t vb, GetVolume_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetVolume, Handle(vb));
}

Return<void> VideoBroadcast::GetProgrammeNum(int64_t vb, GetProgrammeNum_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetProgrammeNum, Handle(vb));
}

Return<void> VideoBroadcast::GetProgrammeByIndex(int64_t vb, uint32_t index, GetProgrammeByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetProgrammeByIndex, Handle(vb), index);
}

Return<void> VideoBroadcast::GetCurrentChannel(int64_t vb, GetCurrentChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCurrentChannel, Handle(vb));
}

Return<void> VideoBroadcast::GetAVComponentNumByType(int64_t vb, TolmHbbtvAVComponentType type,
                                                     GetAVComponentNumByType_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAVComponentNumByType, Handle(vb), type);
}

Return<void> VideoBroadcast::GetSpecificTypeAVComponentByIndex(int64_t vb, TolmHbbtvAVComponentType type,
                                                               uint32_t index,
                                                               GetSpecificTypeAVComponentByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSpecificTypeAVComponentByIndex, Handle(vb), type, index);
}

Return<void> VideoBroadcast::GetCurrentActiveAVComponentNumByType(int64_t vb, TolmHbbtvAVComponentType type,
                                                                  GetCurrentActiveAVComponentNumByType_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCurrentActiveAVComponentNumByType, Handle(vb), type);
}

Return<void> VideoBroadcast::GetSpecificTypeCurrentActiveAVComponentByIndex(
    int64_t vb, TolmHbbtvAVComponentType type, uint32_t index,
    GetSpecificTypeCurrentActiveAVComponentByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSpecificTypeCurrentActiveAVComponentByIndex, Handle(vb), type, index);
}

Return<int32_t> VideoBroadcast::SelectComponent(int64_t vb, int64_t component) {
    return Status(&Adaptor::SelectComponent, Handle(vb), Handle(component));
}

Return<int32_t> VideoBroadcast::UnselectComponent(int64_t vb, int64_t component) {
    return Status(&Adaptor::UnselectComponent, Handle(vb), Handle(component));
}

Return<int32_t> VideoBroadcast::SelectComponentByType(int64_t vb, TolmHbbtvAVComponentType type) {
    return Status(&Adaptor::SelectComponentByType, Handle(vb), type);
}

Return<int32_t> VideoBroadcast::UnselectComponentByType(int64_t vb, TolmHbbtvAVComponentType type) {
    return Status(&Adaptor::UnselectComponentByType, Handle(vb), type);
}

Return<void> VideoBroadcast::CreateAudioComponent(int64_t vb, int32_t componentTag, const hidl_string& language,
                                                  bool audioDescription, int32_t channels, const hidl_string& encoding,
                                                  CreateAudioComponent_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateAudioComponent, Handle(vb), componentTag, language, audioDescription,
                  channels, encoding);
}

Return<void> VideoBroadcast::CreateVideoComponent(int64_t vb, int32_t componentTag, double aspectRatio,
                                                  const hidl_string& encoding, CreateVideoComponent_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateVideoComponent, Handle(vb), componentTag, aspectRatio, encoding);
}

Return<void> VideoBroadcast::CreateAVComponentList(bool isActive, TolmHbbtvAVComponentType type,
                                                   CreateAVComponentList_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateAVComponentList, isActive, type);
}

Return<void> VideoBroadcast::CreateProgrammeList(CreateProgrammeList_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::CreateProgrammeList);
}

Return<int32_t> VideoBroadcast::AddStreamEventListener(const hidl_string& strurl, const hidl_string& dvburl,
                                                       const hidl_string& eventName) {
    return Status(&Adaptor::AddStreamEventListener, strurl, dvburl, eventName);
}

Return<int32_t> VideoBroadcast::RemoveStreamEventListener(const hidl_string& strurl, const hidl_string& dvburl,
                                                          const hidl_string& eventName) {
    return Status(&Adaptor::RemoveStreamEventListener, strurl, dvburl, eventName);
}

Return<int32_t> VideoBroadcast::ChangeDisplaySource(int32_t source) {
    return Status(&Adaptor::ChangeDisplaySource, source);
}

void VideoBroadcast::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    mVBCallback.OnDied(this, who, &Adaptor::ClearCallback);
}

namespace {

hidl_string Text(const TolmOwnedText& text) {
    hidl_string result;
    if (text.text != nullptr) result.setToExternal(text.text, text.length);
    return result;
}

::android::hardware::hidl_vec<uint8_t> Bytes(const TolmOwnedText& bytes) {
    ::android::hardware::hidl_vec<uint8_t> result;
    result.setToExternal(reinterpret_cast<uint8_t*>(bytes.text), bytes.length);
    return result;
}

// Calls the client's method for an event. The caller must check the Return.
Return<void> Forward(IVideoBroadcastCallback& client, TolmVideoBroadcastEvent event,
                     const TolmVideoBroadcastEventInfo& info) {
    switch (event) {
        case TOLM_VB_EVENT_CHANNEL_ERROR:
            return client.onChannelChangeError(ToHandle(info.channelError.channel), info.channelError.errorState);
        case TOLM_VB_EVENT_PLAY_STATE:
            return client.onPlayStateChange(info.playState.state, info.playState.error);
        case TOLM_VB_EVENT_CHANNEL_CHANGED:
            return client.onChannelChangeSucceeded(ToHandle(info.channelChanged.channel),
                                                   ToHandle(info.channelChanged.viewerChannel),
                                                   info.channelChanged.quiet);
        case TOLM_VB_EVENT_FULL_SCREEN:
            return client.onFullScreenChange(info.fullScreen);
        case TOLM_VB_EVENT_PLAY_SPEED:
            return client.onPlaySpeedChanged(info.playSpeed);
        case TOLM_VB_EVENT_PLAY_POSITION:
            return client.onPlayPositionChanged(info.playPosition);
        case TOLM_VB_EVENT_RECORDING:
            return client.onRecordingEvent(info.recording.state, info.recording.error,
                                           Text(info.recording.recordingId));
        case TOLM_VB_EVENT_COMPONENT_TYPE_11:
            return client.onComponentType11(info.componentType);
        case TOLM_VB_EVENT_PARENTAL_RATING:
            return client.onParentalRating(Text(info.parentalRating.contentId), ToHandle(info.parentalRating.ratings),
                                           Text(info.parentalRating.drmSystemId));
        case TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED:
            return client.onParentalRatingBlocked(Text(info.parentalRating.contentId),
                                                  ToHandle(info.parentalRating.ratings),
                                                  Text(info.parentalRating.drmSystemId), info.parentalRating.blocked);
        case TOLM_VB_EVENT_DRM_RIGHTS_ERROR:
            return client.onDrmRightsError(info.drmRightsError.error, Text(info.drmRightsError.contentId),
                                           Text(info.drmRightsError.drmSystemId),
                                           Text(info.drmRightsError.rightsIssuerUrl));
        case TOLM_VB_EVENT_COMPONENT_TYPE_15:
            return client.onComponentType15(info.componentType);
        case TOLM_VB_EVENT_STREAM_EVENT:
            return client.onStreamEvent(Text(info.streamEvent.url), Text(info.streamEvent.eventName),
                                        Text(info.streamEvent.data), Bytes(info.streamEvent.text),
                                        Text(info.streamEvent.status));
        case TOLM_VB_EVENT_PLAIN_4:
        case TOLM_VB_EVENT_PLAIN_5:
        case TOLM_VB_EVENT_PLAIN_9:
        case TOLM_VB_EVENT_PLAIN_10:
        case 17:
        case 18:
        case 19:
        case 21:
        case 22:
            return client.onVideoBroadcastEvent(event);
        default:
            TOLM_LOG(ANDROID_LOG_WARN, tolm::kVideoBroadcastTag, "wrong event type %d", event);
            return ::android::hardware::Void();
    }
}

}  // namespace

void TolmVideoBroadcastHidlCallback(const TolmVideoBroadcastEvent& event, const TolmVideoBroadcastEventInfo& info,
                                    const void*) {
    TolmVideoBroadcastEventInfo owned = info;
    if (const sp<IVideoBroadcastCallback> client = mVBCallback.Get()) {
        tolm::Received(Forward(*client, event, owned), tolm::kVideoBroadcastTag);
    }
    TolmFreeVideoBroadcastEventInfo(event, owned);
}

IVideoBroadcast* HIDL_FETCH_IVideoBroadcast(const char*) {
    return new VideoBroadcast();
}

}  // namespace vantorel::hardware::hbbtv::implementation
