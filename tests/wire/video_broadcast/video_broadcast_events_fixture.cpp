#include "video_broadcast_events_fixture.h"
#include "rows.h"

#include <cstring>
#include <mutex>

#include "lenient_readings.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

std::mutex gMutex;
std::vector<ReceivedEvent> gReceived;  // guarded by gMutex

std::string ShowOwned(const TolmOwnedText& owned) {
    if (owned.text == nullptr) return "null";
    if (owned.text[owned.length] != '\0') return "not terminated";
    return Show(std::string(owned.text, owned.length));
}

std::string ShowBytes(const TolmOwnedText& owned) {
    if (owned.text == nullptr) return "null";
    std::string text;
    for (uint32_t i = 0; i < owned.length; ++i) {
        char byte[4];
        std::snprintf(byte, sizeof(byte), "%s%02x", i == 0 ? "" : " ", static_cast<unsigned char>(owned.text[i]));
        text += byte;
    }
    return text;
}

std::string ShowText(const char* text) {
    return text == nullptr ? "null" : Show(std::string(text));
}

using Shown = std::vector<std::pair<std::string, std::string>>;

std::string Joined(const Shown& members) {
    std::string text;
    for (const auto& [key, value] : members) text += (text.empty() ? "" : "; ") + key + "=" + value;
    return text;
}

template <typename Record>
bool AllZero(const Record& info) {
    static const char zeros[sizeof(Record)] = {};
    return memcmp(&info, zeros, sizeof(info)) == 0;
}

std::string ShowPayload(int code, const TolmVideoBroadcastEventInfo& info) {
    switch (code) {
        case 0:
            return Joined({{"channelHandle", Show(info.channelError.channel)},
                           {"errorState", Show(info.channelError.errorState)}});
        case 1:
            return Joined({{"state", Show(info.playState.state)}, {"error", Show(info.playState.error)}});
        case 2:
            return Joined({{"channelHandle", Show(info.channelChanged.channel)},
                           {"viewerChannelHandle", Show(info.channelChanged.viewerChannel)},
                           {"quiet", Show(info.channelChanged.quiet)}});
        case 3:
            return Joined({{"isFullScreen", Show(info.fullScreen)}});
        case 6:
            return Joined({{"speed", Show(info.playSpeed)}});
        case 7:
            return Joined({{"position", Show(info.playPosition)}});
        case 8:
            return Joined({{"state", Show(info.recording.state)},
                           {"error", Show(info.recording.error)},
                           {"recordingId", ShowOwned(info.recording.recordingId)}});
        case 11:
        case 15:
            return Joined({{"componentType", Show(info.componentType)}});
        case 12:
        case 13: {
            Shown shown = {{"contentID", ShowOwned(info.parentalRating.contentId)},
                           {"PRCollectionHandle", Show(info.parentalRating.ratings)},
                           {"drmSystemID", ShowOwned(info.parentalRating.drmSystemId)}};
            if (code == 13 || info.parentalRating.blocked) {
                shown.emplace_back("blocked", Show(info.parentalRating.blocked));
            }
            return Joined(shown);
        }
        case 14:
            return Joined({{"error", Show(info.drmRightsError.error)},
                           {"contentID", ShowOwned(info.drmRightsError.contentId)},
                           {"drmSystemId", ShowOwned(info.drmRightsError.drmSystemId)},
                           {"rightsIssuerUrl", ShowOwned(info.drmRightsError.rightsIssuerUrl)}});
        case 16:
            return Joined({{"url", ShowOwned(info.streamEvent.url)},
                           {"eventName", ShowOwned(info.streamEvent.eventName)},
                           {"data", ShowOwned(info.streamEvent.data)},
                           {"textLen", Show(info.streamEvent.text.length)},
                           {"text%d", ShowBytes(info.streamEvent.text)},
                           {"status", ShowOwned(info.streamEvent.status)}});
        default:
            return "";
    }
}

std::string ShowPayload(int code, const TolmMediaSyncEventInfo& info) {
    switch (code) {
        case 0:
            return Joined({{"available", Show(info.timing.available)},
                           {"unitsPerTick", Show(info.timing.unitsPerTick)},
                           {"unitsPerSecond", Show(info.timing.unitsPerSecond)},
                           {"contentTime", Show(info.timing.contentTime)},
                           {"wallClockTime", Show(info.timing.wallClockTime)}});
        case 1:
            return Joined({{"speed", Show(info.speed)}});
        case 2:
            return Joined({{"bTimelineOptionsChange", Show(info.content.timelineOptionsChange)},
                           {"timelineSelector", ShowText(info.content.timelineSelector)},
                           {"unitsPerTick", Show(info.content.unitsPerTick)},
                           {"unitsPerSecond", Show(info.content.unitsPerSecond)},
                           {"bContentIdChange", Show(info.content.contentIdChange)},
                           {"contentId", ShowText(info.content.contentId)},
                           {"contentIdStatus", Show(info.content.contentIdStatus)},
                           {"bMrsUrlChange", Show(info.content.mrsUrlChange)},
                           {"mrsUrl", ShowText(info.content.mrsUrl)}});
        case 3:
            return Joined({{"state", Show(info.playState.state)}, {"error", Show(info.playState.error)}});
        default:
            return "";
    }
}

// Takes the record, as every receiver has to.
void ReceiveVideoBroadcast(const TolmVideoBroadcastEvent& event, const TolmVideoBroadcastEventInfo& info,
                           const void* context) {
    TolmVideoBroadcastEventInfo mine = info;
    std::lock_guard<std::mutex> lock(gMutex);
    gReceived.push_back({"videobroadcast", event, ShowPayload(event, info), AllZero(info), context});
    TolmFreeVideoBroadcastEventInfo(event, mine);
}

void ReceiveMediaSync(const TolmMediaSyncEvent& event, const TolmMediaSyncEventInfo& info, const void* context) {
    std::lock_guard<std::mutex> lock(gMutex);
    gReceived.push_back({"mediasync", event, ShowPayload(event, info), AllZero(info), context});
}

}  // namespace

const std::vector<EventRow>& EventRows() {
    static const auto* const rows = new std::vector<EventRow>{
        {"videobroadcast",
         0,
         "TOLM_VB_EVENT_CHANNEL_ERROR",
         {{"channelHandle", "pointer", R"("0x80001111")", "0x80001111", "parse channelHandle fail"},
          {"errorState", "int", "100", "100"}}},
        {"videobroadcast", 1, "TOLM_VB_EVENT_PLAY_STATE", {{"state", "int", "2", "2"}, {"error", "int", "-11", "-11"}}},
        {"videobroadcast",
         2,
         "TOLM_VB_EVENT_CHANNEL_CHANGED",
         {{"channelHandle", "pointer", R"("0x80002222")", "0x80002222", "channelHandle fail"},
          {"viewerChannelHandle", "pointer", R"("0x90002222")", "0x90002222", "viewerChannelHandle fail"},
          {"quiet", "int", "1", "1"}}},
        {"videobroadcast", 3, "TOLM_VB_EVENT_FULL_SCREEN", {{"isFullScreen", "int", "1", "1"}}},
        {"videobroadcast", 4, "TOLM_VB_EVENT_PLAIN_4", {}},
        {"videobroadcast", 5, "TOLM_VB_EVENT_PLAIN_5", {}},
        {"videobroadcast", 6, "TOLM_VB_EVENT_PLAY_SPEED", {{"speed", "double", "-16.25", "-16.25"}}},
        {"videobroadcast", 7, "TOLM_VB_EVENT_PLAY_POSITION", {{"position", "int", "3600000", "3600000"}}},
        {"videobroadcast",
         8,
         "TOLM_VB_EVENT_RECORDING",
         {{"state", "int", "4", "4"},
          {"error", "int", "3", "3"},
          {"recordingId", "string", R"("rec\u0000\u00e9 \"1\"")", "\"rec\\0\xc3\xa9 \"1\"\""}}},
        {"videobroadcast", 9, "TOLM_VB_EVENT_PLAIN_9", {}},
        {"videobroadcast", 10, "TOLM_VB_EVENT_PLAIN_10", {}},
        {"videobroadcast", 11, "TOLM_VB_EVENT_COMPONENT_TYPE_11", {{"componentType", "int", "2", "2"}}},
        {"videobroadcast",
         12,
         "TOLM_VB_EVENT_PARENTAL_RATING",
         {{"contentID", "string", R"("content 12")", R"("content 12")"},
          {"PRCollectionHandle", "pointer", R"("0x8000cccc")", "0x8000cccc", "channelHandle fail"},
          {"drmSystemID", "string", R"("urn:dvb:casystemid:19188")", R"("urn:dvb:casystemid:19188")"}}},
        {"videobroadcast",
         13,
         "TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED",
         {{"contentID", "string", R"("content 13")", R"("content 13")"},
          {"PRCollectionHandle", "pointer", R"("0x8000dddd")", "0x8000dddd", "PRCollectionHandle fail"},
          {"drmSystemID", "string", R"("urn:dvb:casystemid:1")", R"("urn:dvb:casystemid:1")"},
          {"blocked", "bool", "true", "true"}}},
        {"videobroadcast",
         14,
         "TOLM_VB_EVENT_DRM_RIGHTS_ERROR",
         {{"error", "int", "1", "1"},
          {"contentID", "string", R"("content 14")", R"("content 14")"},
          {"drmSystemId", "string", R"("urn:dvb:casystemid:2")", R"("urn:dvb:casystemid:2")"},
          {"rightsIssuerUrl", "string", R"("https://rights.example/")", R"("https://rights.example/")"}}},
        {"videobroadcast", 15, "TOLM_VB_EVENT_COMPONENT_TYPE_15", {{"componentType", "int", "-1", "-1"}}},
        {"videobroadcast",
         16,
         "TOLM_VB_EVENT_STREAM_EVENT",
         {{"url", "string", R"("dvb://1.2.3.17/sevent")", R"("dvb://1.2.3.17/sevent")"},
          {"eventName", "string", R"("now")", R"("now")"},
          {"data", "string", R"("48656c6c6f")", R"("48656c6c6f")"},
          {"textLen", "uint", "0", "0"},
          {"text%d", "uint", "", ""},
          {"status", "string", R"("trigger")", R"("trigger")"}}},
        {"mediasync",
         0,
         "timing",
         {{"available", "bool", "true", "true"},
          {"unitsPerTick", "uint64", "4294967297", "4294967297"},
          {"unitsPerSecond", "uint64", "90000", "90000"},
          {"contentTime", "uint64", "18446744073709551615", "18446744073709551615"},
          {"wallClockTime", "uint64", "9223372036854775808", "9223372036854775808"}}},
        {"mediasync", 1, "speed", {{"speed", "double", "0.5", "0.5"}}},
        {"mediasync",
         2,
         "content",
         {{"bTimelineOptionsChange", "bool", "true", "true"},
          {"timelineSelector", "string", R"("urn:a:timeline")", R"("urn:a:timeline")", "", "bTimelineOptionsChange"},
          {"unitsPerTick", "uint64", "4294967298", "4294967298", "", "bTimelineOptionsChange"},
          {"unitsPerSecond", "uint64", "4294967299", "4294967299", "", "bTimelineOptionsChange"},
          {"bContentIdChange", "bool", "true", "true"},
          {"contentId", "string", R"("dvb://1.2.3;4")", R"("dvb://1.2.3;4")", "", "bContentIdChange"},
          {"contentIdStatus", "int", "-5", "-5", "", "bContentIdChange"},
          {"bMrsUrlChange", "bool", "true", "true"},
          {"mrsUrl", "string", R"("https://mrs.example/")", R"("https://mrs.example/")", "", "bMrsUrlChange"}}},
        {"mediasync", 3, "state", {{"state", "int", "1", "1"}, {"error", "int", "-3", "-3"}}},
        {"mediasync", 4, "event 4", {}},
        {"mediasync", 5, "event 5", {}},
    };
    return *rows;
}

void PrintTo(const EventRow& row, std::ostream* out) {
    *out << row.object << " " << row.code;
}

std::string NameOfEvent(const ::testing::TestParamInfo<EventRow>& row) {
    const bool named = std::string(row.param.object) == "videobroadcast";
    return named ? row.param.name : "MEDIASYNC_" + std::to_string(row.param.code);
}

std::string EventOf(const EventRow& row) {
    std::string text = "{\"type\": \"" + std::string(row.object) + "\", \"event\": " + std::to_string(row.code) +
                       ", \"context\": \"0xabcd\"";
    for (const EventMember& member : row.members) {
        if (member.json[0] != '\0') text += std::string(", \"") + member.key + "\": " + member.json;
    }
    return text + "}";
}

std::string PayloadOf(const EventRow& row, const std::map<std::string, std::string>& shown) {
    std::map<std::string, std::string> values;
    for (const EventMember& member : row.members) {
        const auto replaced = shown.find(member.key);
        values[member.key] = replaced != shown.end() ? replaced->second : member.shown;
    }
    Shown members;
    for (const EventMember& member : row.members) {
        const bool there = member.when[0] == '\0' || values[member.when] == "true";
        const std::string absent = std::string(member.type) == "string" ? "null" : "0";
        members.emplace_back(member.key, there ? values[member.key] : absent);
    }
    return Joined(members);
}

EventsFixture::EventsFixture(int leastPriority)
    : mLog(leastPriority),
      mConnection((Vb::GetInstance(), RawConnection::To(mDirectory / EventsOf(UnderTest().Wire()).socket))) {
    std::lock_guard<std::mutex> lock(gMutex);
    gReceived.clear();
}

EventsFixture::~EventsFixture() {
    Vb::DeleteInstance();
}

void EventsFixture::Register(const void* context) {
    ASSERT_EQ(Adaptor().RegisterCallback(Pointer(0x8000a1b2), &ReceiveVideoBroadcast, context), 0);
    mLinesSeen = mLog.Lines().size();
}

void EventsFixture::RegisterMediaSync(const void* context) {
    Adaptor().RegisterMediaSyncCallback(&ReceiveMediaSync, context);
    mLinesSeen = mLog.Lines().size();
}

void EventsFixture::SendEvent(const std::string& text, int port) {
    ASSERT_TRUE(mConnection.Write(FrameBytes(kOneWay, port, text)));
}

std::string EventsFixture::Ask(const std::string& text, int port) {
    if (!mConnection.Write(FrameBytes(kRequest, port, text))) return "not sent";
    const std::optional<Frame> reply = mConnection.ReadFrame();
    if (!reply) return "no reply";
    EXPECT_EQ(reply->type, kReply);
    EXPECT_EQ(reply->port, port);
    return reply->payload;
}

// Messages of a connection are handled in order, so the reply to this one comes after all before it. It goes to a port
// that nobody receives, which leaves no lines of the adaptor.
std::vector<ReceivedEvent> EventsFixture::Received() {
    EXPECT_EQ(Ask("{}", 4711), "");
    std::lock_guard<std::mutex> lock(gMutex);
    return gReceived;
}

std::vector<std::string> EventsFixture::AdaptorLines() {
    std::vector<std::string> lines = LinesOf("[ipc_vb]");
    mLinesSeen = mLog.Lines().size();
    return lines;
}

std::vector<std::string> EventsFixture::LinesOf(const std::string& tag) {
    Received();
    const std::vector<LogLine> all = mLog.Lines();
    std::vector<std::string> lines;
    for (size_t i = mLinesSeen; i < all.size(); ++i) {
        if (all[i].tag == tag && all[i].message.find("port(4711)") == std::string::npos) {
            lines.push_back(std::to_string(all[i].priority) + " " + all[i].message);
        }
    }
    return lines;
}

void EventRowTest::RegisterForRow(const void* context) {
    if (std::string(GetParam().object) == "mediasync") {
        RegisterMediaSync(context);
    } else {
        Register(context);
    }
}

}  // namespace hbbtv::test
