#include "ipc/src/plugin/tolm_video_broadcast_events.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

namespace {

using tolm::Read;
using tolm::Target;
using tolm::ToBool;
using tolm::ToInt;
using tolm::ToPointer;
using tolm::ToReal;
using tolm::ToText;
using tolm::ToUInt64;

constexpr const char* kTag = tolm::families::kVideoBroadcast.tag;

// A stream event carries a few dozen bytes. A larger one is not valid.
constexpr unsigned kMaxStreamEventText = 1u << 20;

char* Allocate(size_t size) {
    auto* block = static_cast<char*>(malloc(size));
    if (block == nullptr && size > 0) TOLM_LOG(ANDROID_LOG_ERROR, kTag, "malloc error");
    return block;
}

Target ToOwnedText(const char* key, TolmOwnedText& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                const std::string text = tolm::ReadText(object, k);
                char* copy = Allocate(text.size() + 1);
                if (copy == nullptr) return false;
                memcpy(copy, text.c_str(), text.size() + 1);
                *static_cast<TolmOwnedText*>(out) = {copy, static_cast<uint32_t>(text.size())};
                return true;
            }};
}

bool ReadHandle(const Json::Value& msg, const char* key, void*& to, const char* error) {
    if (Read(msg, {ToPointer(key, to)})) return true;
    TOLM_LOG(ANDROID_LOG_ERROR, kTag, "%s", error);
    return false;
}

bool ReadParentalRating(const Json::Value& msg, TolmVbParentalRating& to, const char* error) {
    return Read(msg, {ToOwnedText("contentID", to.contentId)}) &&
           ReadHandle(msg, "PRCollectionHandle", to.ratings, error) &&
           Read(msg, {ToOwnedText("drmSystemID", to.drmSystemId)});
}

// Each byte is a member of its own: "text0", "text1", ...
bool ReadStreamEventText(const Json::Value& msg, TolmOwnedText& to) {
    const unsigned length = tolm::ReadUInt(msg, "textLen");
    if (length > kMaxStreamEventText) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "textLen %u is too long", length);
        return false;
    }
    to.text = Allocate(length);
    if (to.text == nullptr && length > 0) return false;
    to.length = length;
    for (unsigned i = 0; i < length; ++i) {
        to.text[i] = static_cast<char>(tolm::ReadUInt(msg, ("text" + std::to_string(i)).c_str()));
    }
    return true;
}

bool Decode(const Json::Value& msg, TolmVideoBroadcastEvent event, TolmVideoBroadcastEventInfo& info) {
    switch (event) {
        case TOLM_VB_EVENT_CHANNEL_ERROR:
            return ReadHandle(msg, "channelHandle", info.channelError.channel, "parse channelHandle fail") &&
                   Read(msg, {ToInt("errorState", info.channelError.errorState)});
        case TOLM_VB_EVENT_PLAY_STATE:
            return Read(msg, {ToInt("state", info.playState.state), ToInt("error", info.playState.error)});
        case TOLM_VB_EVENT_CHANNEL_CHANGED:
            return ReadHandle(msg, "channelHandle", info.channelChanged.channel, "channelHandle fail") &&
                   ReadHandle(msg, "viewerChannelHandle", info.channelChanged.viewerChannel,
                              "viewerChannelHandle fail") &&
                   Read(msg, {ToInt("quiet", info.channelChanged.quiet)});
        case TOLM_VB_EVENT_FULL_SCREEN:
            return Read(msg, {ToInt("isFullScreen", info.fullScreen)});
        case TOLM_VB_EVENT_PLAY_SPEED:
            return Read(msg, {ToReal("speed", info.playSpeed)});
        case TOLM_VB_EVENT_PLAY_POSITION:
            return Read(msg, {ToInt("position", info.playPosition)});
        case TOLM_VB_EVENT_RECORDING:
            return Read(msg, {ToInt("state", info.recording.state), ToInt("error", info.recording.error),
                              ToOwnedText("recordingId", info.recording.recordingId)});
        case TOLM_VB_EVENT_COMPONENT_TYPE_11:
        case TOLM_VB_EVENT_COMPONENT_TYPE_15:
            return Read(msg, {ToInt("componentType", info.componentType)});
        // The line names a handle other than the missing one; log filters rely on it.
        case TOLM_VB_EVENT_PARENTAL_RATING:
            return ReadParentalRating(msg, info.parentalRating, "channelHandle fail");
        case TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED:
            return ReadParentalRating(msg, info.parentalRating, "PRCollectionHandle fail") &&
                   Read(msg, {ToBool("blocked", info.parentalRating.blocked)});
        // The platform spells "drmSystemId" here, but "drmSystemID" in the parental-rating events.
        case TOLM_VB_EVENT_DRM_RIGHTS_ERROR:
            return Read(msg, {ToInt("error", info.drmRightsError.error),
                              ToOwnedText("contentID", info.drmRightsError.contentId),
                              ToOwnedText("drmSystemId", info.drmRightsError.drmSystemId),
                              ToOwnedText("rightsIssuerUrl", info.drmRightsError.rightsIssuerUrl)});
        case TOLM_VB_EVENT_STREAM_EVENT:
            return Read(msg,
                        {ToOwnedText("url", info.streamEvent.url), ToOwnedText("eventName", info.streamEvent.eventName),
                         ToOwnedText("data", info.streamEvent.data)}) &&
                   ReadStreamEventText(msg, info.streamEvent.text) &&
                   Read(msg, {ToOwnedText("status", info.streamEvent.status)});
        case TOLM_VB_EVENT_PLAIN_4:
        case TOLM_VB_EVENT_PLAIN_5:
        case TOLM_VB_EVENT_PLAIN_9:
        case TOLM_VB_EVENT_PLAIN_10:
            return true;
        default:
            TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event type %d", event);
            return true;
    }
}

}  // namespace

void TolmFreeVideoBroadcastEventInfo(TolmVideoBroadcastEvent event, TolmVideoBroadcastEventInfo& info) {
    switch (event) {
        case TOLM_VB_EVENT_RECORDING:
            free(info.recording.recordingId.text);
            break;
        case TOLM_VB_EVENT_PARENTAL_RATING:
        case TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED:
            free(info.parentalRating.contentId.text);
            free(info.parentalRating.drmSystemId.text);
            break;
        case TOLM_VB_EVENT_DRM_RIGHTS_ERROR:
            free(info.drmRightsError.contentId.text);
            free(info.drmRightsError.drmSystemId.text);
            free(info.drmRightsError.rightsIssuerUrl.text);
            break;
        case TOLM_VB_EVENT_STREAM_EVENT:
            free(info.streamEvent.url.text);
            free(info.streamEvent.eventName.text);
            free(info.streamEvent.data.text);
            free(info.streamEvent.text.text);
            free(info.streamEvent.status.text);
            break;
        default:
            break;
    }
    memset(&info, 0, sizeof(info));
}

bool TolmDecodeVideoBroadcastEvent(const Json::Value& msg, TolmVideoBroadcastEvent event,
                                   TolmVideoBroadcastEventInfo& info) {
    memset(&info, 0, sizeof(info));
    if (Decode(msg, event, info)) return true;
    TolmFreeVideoBroadcastEventInfo(event, info);
    return false;
}

namespace {

void DecodeContent(const Json::Value& msg, TolmMediaSyncContent& content, TolmMediaSyncTexts& texts) {
    Read(msg, {ToBool("bTimelineOptionsChange", content.timelineOptionsChange),
               ToBool("bContentIdChange", content.contentIdChange), ToBool("bMrsUrlChange", content.mrsUrlChange)});
    if (content.timelineOptionsChange) {
        Read(msg, {ToText("timelineSelector", texts.timelineSelector), ToUInt64("unitsPerTick", content.unitsPerTick),
                   ToUInt64("unitsPerSecond", content.unitsPerSecond)});
        content.timelineSelector = texts.timelineSelector.c_str();
    }
    if (content.contentIdChange) {
        Read(msg, {ToText("contentId", texts.contentId), ToInt("contentIdStatus", content.contentIdStatus)});
        content.contentId = texts.contentId.c_str();
    }
    if (content.mrsUrlChange) {
        Read(msg, {ToText("mrsUrl", texts.mrsUrl)});
        content.mrsUrl = texts.mrsUrl.c_str();
    }
}

}  // namespace

void TolmDecodeMediaSyncEvent(const Json::Value& msg, TolmMediaSyncEvent event, TolmMediaSyncEventInfo& info,
                              TolmMediaSyncTexts& texts) {
    memset(&info, 0, sizeof(info));
    switch (event) {
        case 0:
            Read(msg, {ToBool("available", info.timing.available), ToUInt64("unitsPerTick", info.timing.unitsPerTick),
                       ToUInt64("unitsPerSecond", info.timing.unitsPerSecond),
                       ToUInt64("contentTime", info.timing.contentTime),
                       ToUInt64("wallClockTime", info.timing.wallClockTime)});
            break;
        case 1:
            Read(msg, {ToReal("speed", info.speed)});
            break;
        case 2:
            DecodeContent(msg, info.content, texts);
            break;
        case 3:
            Read(msg, {ToInt("state", info.playState.state), ToInt("error", info.playState.error)});
            break;
        case 4:
        case 5:
            break;
        default:
            TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event type %d", event);
            break;
    }
}
