#include "families/video_broadcast/object_events.h"

#include "common/text/pointer_text.h"

namespace hbbtv::sim {

void ObjectEvents::Send(const char* event, Json::Value members) {
    if (!mContext) return;
    members["context"] = PointerText(*mContext);
    mSink.Send(event, members);
}

void ObjectEvents::ChannelError(Handle channel, int error) {
    Json::Value members;
    members["channelHandle"] = PointerText(channel);
    members["errorState"] = error;
    Send("TOLM_VB_EVENT_CHANNEL_ERROR", members);
}

void ObjectEvents::PlayState(int state, int error) {
    Json::Value members;
    members["state"] = state;
    members["error"] = error;
    Send("TOLM_VB_EVENT_PLAY_STATE", members);
}

void ObjectEvents::ChannelChanged(Handle channel, Handle viewerChannel, int quiet) {
    Json::Value members;
    members["channelHandle"] = PointerText(channel);
    members["viewerChannelHandle"] = PointerText(viewerChannel);
    members["quiet"] = quiet;
    Send("TOLM_VB_EVENT_CHANNEL_CHANGED", members);
}

void ObjectEvents::FullScreen(bool full) {
    Json::Value members;
    members["isFullScreen"] = full ? 1 : 0;
    Send("TOLM_VB_EVENT_FULL_SCREEN", members);
}

void ObjectEvents::PlaySpeed(double speed) {
    Json::Value members;
    members["speed"] = speed;
    Send("TOLM_VB_EVENT_PLAY_SPEED", members);
}

void ObjectEvents::PlayPosition(int milliseconds) {
    Json::Value members;
    members["position"] = milliseconds;
    Send("TOLM_VB_EVENT_PLAY_POSITION", members);
}

void ObjectEvents::Recording(int state, int error, const std::string& id) {
    Json::Value members;
    members["state"] = state;
    members["error"] = error;
    members["recordingId"] = id;
    Send("TOLM_VB_EVENT_RECORDING", members);
}

// 11 and 15 both carry a component type; which of them reports a change of the selection is not public.
void ObjectEvents::SelectedComponent(int componentType) {
    Json::Value members;
    members["componentType"] = componentType;
    Send("TOLM_VB_EVENT_COMPONENT_TYPE_11", members);
}

// Broadcast content has no id and no DRM of its own.
void ObjectEvents::ParentalRatingChange(Handle ratings, bool blocked) {
    Json::Value members;
    members["contentID"] = "";
    members["PRCollectionHandle"] = PointerText(ratings);
    members["drmSystemID"] = "";
    members["blocked"] = blocked;
    Send("TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED", members);
}

void ObjectEvents::StreamEvent(const std::string& url, const std::string& name, const std::string& data,
                               const std::string& text, const std::string& status) {
    Json::Value members;
    members["url"] = url;
    members["eventName"] = name;
    members["data"] = data;
    members["textLen"] = static_cast<unsigned>(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        members["text" + std::to_string(i)] = static_cast<unsigned>(static_cast<unsigned char>(text[i]));
    }
    members["status"] = status;
    Send("TOLM_VB_EVENT_STREAM_EVENT", members);
}

}  // namespace hbbtv::sim
