#include "families/video_broadcast/object_events.h"

namespace hbbtv::sim {

void ObjectEvents::Send(const char* name, int event, Json::Value members) {
    if (!mContext) return;
    members["type"] = "videobroadcast";
    members["event"] = event;
    members["context"] = PointerText(*mContext);
    mSink.Send(name, members);
}

void ObjectEvents::ChannelError(Handle channel, int error) {
    Json::Value members;
    members["channelHandle"] = PointerText(channel);
    members["errorState"] = error;
    Send("ChannelError", 0, members);
}

void ObjectEvents::PlayState(int state, int error) {
    Json::Value members;
    members["state"] = state;
    members["error"] = error;
    Send("PlayState", 1, members);
}

void ObjectEvents::ChannelChanged(Handle channel, Handle viewerChannel, int quiet) {
    Json::Value members;
    members["channelHandle"] = PointerText(channel);
    members["viewerChannelHandle"] = PointerText(viewerChannel);
    members["quiet"] = quiet;
    Send("ChannelChanged", 2, members);
}

void ObjectEvents::FullScreen(bool full) {
    Json::Value members;
    members["isFullScreen"] = full ? 1 : 0;
    Send("FullScreen", 3, members);
}

void ObjectEvents::PlaySpeed(double speed) {
    Json::Value members;
    members["speed"] = speed;
    Send("PlaySpeed", 6, members);
}

void ObjectEvents::PlayPosition(int milliseconds) {
    Json::Value members;
    members["position"] = milliseconds;
    Send("PlayPosition", 7, members);
}

void ObjectEvents::Recording(int state, int error, const std::string& id) {
    Json::Value members;
    members["state"] = state;
    members["error"] = error;
    members["recordingId"] = id;
    Send("Recording", 8, members);
}

// 11 and 15 both carry a component type, and no published text says which of them is the change of the selection.
void ObjectEvents::SelectedComponent(int componentType) {
    Json::Value members;
    members["componentType"] = componentType;
    Send("SelectedComponent", 11, members);
}

// Broadcast content has no id, and no protection of its own.
void ObjectEvents::ParentalRatingChange(Handle ratings, bool blocked) {
    Json::Value members;
    members["contentID"] = "";
    members["PRCollectionHandle"] = PointerText(ratings);
    members["drmSystemID"] = "";
    members["blocked"] = blocked;
    Send("ParentalRatingChange", 13, members);
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
    Send("StreamEvent", 16, members);
}

}  // namespace hbbtv::sim
