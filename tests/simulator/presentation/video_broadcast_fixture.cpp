#include "presentation/video_broadcast_fixture.h"

#include <sstream>

namespace hbbtv::test {

namespace {

struct EventWords {
    const char* word;
    std::vector<const char*> members;
};

const std::map<std::string, EventWords> kEventWords{
    {"TOLM_VB_EVENT_CHANNEL_ERROR", {"ChannelError", {"channelHandle", "errorState"}}},
    {"TOLM_VB_EVENT_PLAY_STATE", {"PlayState", {"state", "error"}}},
    {"TOLM_VB_EVENT_CHANNEL_CHANGED", {"ChannelChanged", {"channelHandle", "quiet"}}},
    {"TOLM_VB_EVENT_FULL_SCREEN", {"FullScreen", {"isFullScreen"}}},
    {"TOLM_VB_EVENT_PLAY_SPEED", {"PlaySpeed", {"speed"}}},
    {"TOLM_VB_EVENT_PLAY_POSITION", {"PlayPosition", {}}},
    {"TOLM_VB_EVENT_RECORDING", {"Recording", {"state"}}},
    {"TOLM_VB_EVENT_COMPONENT_TYPE_11", {"SelectedComponent", {"componentType"}}},
    {"TOLM_VB_EVENT_STREAM_EVENT", {"StreamEvent", {"eventName", "status"}}}};

}  // namespace

std::string VideoBroadcastFixture::NewObject(const std::string& context) {
    const std::string vb = Handle("video_broadcast.Create", {{"context", context}});
    EXPECT_EQ(RetOf(vb, "video_broadcast.RegisterCallback", {{"context", context}}), 0);
    return vb;
}

std::string VideoBroadcastFixture::ObjectIn(const std::string& state, const std::string& context) {
    const std::string vb = NewObject(context);
    Channel(vb, 1);
    if (state == "connecting") {
        EXPECT_EQ(SetChannel(vb, Channel(vb, 5)), 0);
        EventsUntil("PlayState 1 3");
        EXPECT_EQ(State(vb), 1);
    }
    if (state == "presenting" || state == "stopped") {
        Tune(vb, 1);
        EXPECT_EQ(State(vb), 2);
    }
    if (state == "stopped") {
        EXPECT_EQ(RetOf(vb, "video_broadcast.Stop"), 0);
        EXPECT_EQ(NextEvent(), "PlayState 3 0");
        EXPECT_EQ(State(vb), 3);
    }
    return vb;
}

std::string VideoBroadcastFixture::Presenting(int sid) {
    const std::string vb = NewObject();
    Tune(vb, sid);
    return vb;
}

std::string VideoBroadcastFixture::Channel(const std::string& vb, int sid) {
    static const std::map<int, std::string> names{{1, "One"},  {2, "Two"},    {3, "Scrambled"},
                                                  {4, "Dark"}, {5, "Locked"}, {9, "Hidden"}};
    const std::string handle = CreateChannel(vb, 11, 1, 1, sid);
    mChannelNames[handle] = names.count(sid) != 0 ? names.at(sid) : "Unknown";
    return handle;
}

std::string VideoBroadcastFixture::CreateChannel(const std::string& vb, int idType, int onid, int tsid, int sid,
                                                 int sourceId, const std::string& ipBroadcastId) {
    return HandleOf(vb, "video_broadcast.CreateChannel_2",
                    {{"idType", idType},
                     {"onid", onid},
                     {"tsid", tsid},
                     {"sid", sid},
                     {"sourceId", sourceId},
                     {"ipBroadcastId", ipBroadcastId}});
}

int VideoBroadcastFixture::SetChannel(const std::string& vb, const std::string& channel) {
    return RetOf(vb, "video_broadcast.SetChannel", {{"channel", channel}, {"trickPlay", false}, {"url", ""}});
}

void VideoBroadcastFixture::Tune(const std::string& vb, int sid) {
    EXPECT_EQ(SetChannel(vb, Channel(vb, sid)), 0);
    EventsUntil("PlayState 2 0");
}

std::string VideoBroadcastFixture::Component(const std::string& vb, int type, unsigned index) {
    return HandleOf(vb, "video_broadcast.GetSpecificTypeAVComponentByIndex", {{"comType", type}, {"index", index}});
}

std::string VideoBroadcastFixture::ChannelName(const std::string& handle) const {
    if (handle.empty()) return "none";
    const auto known = mChannelNames.find(handle);
    return known == mChannelNames.end() ? "?" + handle : known->second;
}

std::string VideoBroadcastFixture::NextEvent() {
    const Event event = NextEventOf("video_broadcast");
    const auto known = kEventWords.find(event.name);
    if (known == kEventWords.end()) return event.name;
    if (event.members.isMember("viewerChannelHandle")) {
        EXPECT_EQ(event.members["channelHandle"], event.members["viewerChannelHandle"]);
    }
    std::ostringstream text;
    text << known->second.word;
    for (const std::string key : known->second.members) {
        const Json::Value& value = event.members[key];
        text << " ";
        if (key == "channelHandle") {
            text << ChannelName(value.asString());
        } else if (value.type() == Json::realValue) {
            text << value.asDouble();
        } else {
            text << value.asString();
        }
    }
    return text.str();
}

std::string VideoBroadcastFixture::NextStreamEvent() {
    const Event next = NextEventOf("video_broadcast");
    EXPECT_EQ(next.name, "TOLM_VB_EVENT_STREAM_EVENT");
    const Json::Value& event = next.members;
    std::string text;
    for (unsigned i = 0; i < event["textLen"].asUInt(); ++i) {
        text += static_cast<char>(event["text" + std::to_string(i)].asUInt());
    }
    return event["url"].asString() + " " + event["eventName"].asString() + " [" + event["data"].asString() + "] [" +
           text + "] " + event["status"].asString();
}

Events VideoBroadcastFixture::EventsUntil(const std::string& last) {
    Events events;
    do {
        events.push_back(NextEvent());
    } while (events.back() != last && !HasFailure());
    return events;
}

Events VideoBroadcastFixture::EventsSoFar(const std::string& vb) {
    const bool full = GetOf(vb, "video_broadcast.GetFullScreen").asBool();
    EXPECT_EQ(RetOf(vb, "video_broadcast.SetFullScreen", {{"fullscreen", !full}}), 0);
    Events events = EventsUntil(full ? "FullScreen 0" : "FullScreen 1");
    events.pop_back();
    return events;
}

}  // namespace hbbtv::test
