#include "video_broadcast_events_fixture.h"
#include "rows.h"

#include <cstring>
#include <mutex>

#include "lenient_readings.h"
#include "shown_event.h"
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

std::string ComplaintOf(int code, const std::string& handle) {
    if (code == 0) return "parse channelHandle fail";
    if (code == 12) return "channelHandle fail";
    return handle + " fail";
}

EventRow RowOf(const std::string& object, int code) {
    const ProtocolEvent event(object + ":" + std::to_string(code));
    ShownMembers shown = ShownOf(event);
    EventRow row{object, code, event.Definition()["name"].asString(), event.Text(), {}};
    for (const Json::Value& member : event.Definition()["members"]) {
        const std::string key = member["key"].asString();
        row.members.push_back({key, member["type"].asString(), shown[key], member["when"].asString()});
        if (member["type"] == "pointer") row.members.back().complaint = ComplaintOf(code, key);
    }
    return row;
}

}  // namespace

const std::vector<EventRow>& EventRows() {
    static const std::vector<EventRow> rows = [] {
        std::vector<EventRow> all;
        for (int code = 0; code <= 16; ++code) all.push_back(RowOf("videobroadcast", code));
        for (int code = 0; code <= 5; ++code) all.push_back(RowOf("mediasync", code));
        return all;
    }();
    return rows;
}

void PrintTo(const EventRow& row, std::ostream* out) {
    *out << row.object << " " << row.code;
}

std::string NameOfEvent(const ::testing::TestParamInfo<EventRow>& row) {
    const bool named = row.param.object == "videobroadcast";
    return named ? row.param.name : "MEDIASYNC_" + std::to_string(row.param.code);
}

std::string PayloadOf(const EventRow& row, const std::map<std::string, std::string>& shown) {
    std::map<std::string, std::string> values;
    for (const EventMember& member : row.members) {
        const auto replaced = shown.find(member.key);
        values[member.key] = replaced != shown.end() ? replaced->second : member.shown;
    }
    Shown members;
    for (const EventMember& member : row.members) {
        const bool there = member.when.empty() || values[member.when] == "true";
        const std::string absent = member.type == "string" ? "null" : "0";
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
// without a receiver, which leaves no lines of the adaptor.
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
    if (GetParam().object == "mediasync") {
        RegisterMediaSync(context);
    } else {
        Register(context);
    }
}

}  // namespace hbbtv::test
