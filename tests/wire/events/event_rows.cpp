#include "event_rows.h"

#include <android/log.h>

#include <atomic>
#include <future>
#include <mutex>
#include <thread>

#include "lenient_readings.h"
#include "name_difference.h"
#include "wire/endpoint.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Lines = std::vector<std::string>;

std::mutex gMutex;
Lines gNoted;  // guarded by gMutex

const Json::Value& Protocol() {
    return UnderTest().Wire().protocol;
}

int Register(Receiver receiver) {
    return EventsUnderTest().registerReceiver(receiver);
}

std::string Event() {
    return EventsUnderTest().event;
}

Lines ReceivedBy(const char* receiver, int times = 1) {
    return Lines(times, std::string(receiver) + " " + EventsUnderTest().received);
}

Lines Complaint(const std::string& complaint, int times = 1) {
    return complaint.empty() ? Lines{} : Lines(times, complaint);
}

}  // namespace

void NoteEvent(const std::string& line) {
    std::lock_guard<std::mutex> lock(gMutex);
    gNoted.push_back(line);
}

void PrintTo(const EventRow& row, std::ostream* out) {
    *out << row.name;
}

void PrintTo(const EventMemberRow& row, std::ostream* out) {
    *out << row.name;
}

void PrintTo(const ProtocolEventRow& row, std::ostream* out) {
    *out << row.name;
}

std::vector<ProtocolEventRow> RowsOf(const std::vector<std::string>& events, NotedAs noted) {
    std::vector<ProtocolEventRow> rows;
    for (const std::string& name : events) {
        const ProtocolEvent event(name);
        rows.push_back({event.TestName(), event.Text(), noted(event.Definition(), ShownOf(event))});
    }
    return rows;
}

std::vector<EventMemberRow> MemberRowsOf(const std::vector<std::string>& events, NotedAs noted, const char* unchanged) {
    std::vector<EventMemberRow> rows;
    for (const std::string& name : events) {
        const ProtocolEvent event(name);
        for (const Json::Value& member : event.Definition()["members"]) {
            const std::string key = member["key"].asString();
            ShownMembers shown = ShownOf(event);
            shown[key] = "%";
            rows.push_back({TestNameOf(key), event.Text(), key, member["type"].asString(),
                            noted(event.Definition(), shown), unchanged});
        }
    }
    return rows;
}

void ExpectTheProtocolsEvents(const std::vector<std::string>& events, const char* codeKey, const char* callback) {
    const Json::Value& protocol = Protocol();
    EXPECT_EQ(protocol["event_envelope"]["code"]["key"].asString(), codeKey);
    EXPECT_EQ(protocol["event_envelope"]["code"]["type"].asString(), "int");
    std::vector<std::string> names;
    for (const Json::Value& event : protocol["events"]) {
        names.push_back(event["name"].asString());
        SCOPED_TRACE(names.back());
        ASSERT_EQ(event["forms"].size(), 1u);
        EXPECT_EQ(event["forms"][0].asString(), "one-way");
        EXPECT_EQ(event["callback"].asString(), callback);
    }
    EXPECT_EQ(NameDifference(events, names), "");
    EXPECT_TRUE(names == events) << "the same names in another order";
}

Events::Events() {
    EventsUnderTest().makeInstance();
}

Lines Events::Send(const Lines& events) const {
    {
        std::lock_guard<std::mutex> lock(gMutex);
        gNoted.clear();
    }
    EventConnection connection(ServedSocket(), Port());
    EXPECT_TRUE(connection.Send(events));
    return Noted();
}

Lines Events::Noted() const {
    std::lock_guard<std::mutex> lock(gMutex);
    return gNoted;
}

Lines Events::Complaints() const {
    Lines lines;
    for (const LogLine& line : mLog.Lines()) {
        if (line.tag != UnderTest().tag) continue;
        EXPECT_EQ(line.file, UnderTest().sourceFile);
        if (line.message == "ENTER" || line.message == "LEAVE" || line.message == EventsUnderTest().refusal) continue;
        if (EventsUnderTest().story != nullptr && line.message.rfind(EventsUnderTest().story, 0) == 0) continue;
        lines.push_back(std::to_string(line.priority) + " " + line.message);
    }
    return lines;
}

std::string Events::ServedSocket() const {
    return mDirectory / EventsOf(UnderTest().Wire()).socket;
}

int Events::Port() const {
    return EventsOf(UnderTest().Wire()).port;
}

EventsOfAPlatform::EventsOfAPlatform() : mPlatform(UnderTest().Socket(), "{\"ret\": 0}") {}

TEST_P(ProtocolEvents, ReachTheReceiver) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    EXPECT_EQ(Send({GetParam().event}), (Lines{"first " + GetParam().received}));
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

TEST_P(EventForms, AreReadLeniently) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    const Lines received = Send({GetParam().event});
    if (GetParam().received != nullptr) {
        EXPECT_EQ(received, (Lines{std::string("first ") + GetParam().received}));
    } else {
        EXPECT_EQ(received, Lines{});
    }
    EXPECT_EQ(Complaints(), Complaint(GetParam().complaint)) << mLog.Text();
}

TEST_P(EventMembers, AreReadLeniently) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    for (const Reading& reading : ReadingsOf(GetParam().type, GetParam().unchanged)) {
        SCOPED_TRACE(reading.json);
        std::string expected = "first " + GetParam().received;
        expected.replace(expected.find('%'), 1, reading.shown != nullptr ? reading.shown : GetParam().unchanged);
        EXPECT_EQ(Send({WithMember(GetParam().event, GetParam().key, reading.json)}), Lines{expected});
    }
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

TEST_F(EventsOfAPlatform, AreDroppedIfTheyAreNotObjects) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    int failures = 0;
    for (const std::string& event :
         {std::string("nonsense"), std::string(" "), std::string("null"), std::string("0"), std::string("\"A\""),
          "[" + Event() + "]", Event().substr(0, Event().size() - 1)}) {
        SCOPED_TRACE(event);
        EXPECT_EQ(Send({event}), Lines{});
        EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), ++failures);
    }
    // The endpoint lives on.
    EXPECT_EQ(Send({Event()}), ReceivedBy("first"));
}

TEST_F(EventsOfAPlatform, ComeOneByOne) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    EXPECT_EQ(Send({Event(), Event(), Event()}), ReceivedBy("first", 3));
}

TEST_F(EventsOfAPlatform, AreDroppedBeforeTheRegistration) {
    EXPECT_EQ(Send({Event(), Event()}), Lines{});
    EXPECT_EQ(Complaints(), Complaint(EventsUnderTest().withoutReceiver, 2)) << mLog.Text();
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    EXPECT_EQ(Send({Event()}), ReceivedBy("first"));
}

TEST_F(EventsOfAPlatform, AreDroppedWhenNoFunctionIsRegistered) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    ASSERT_EQ(Register(Receiver::kNone), 0);
    EXPECT_EQ(Send({Event()}), Lines{});
}

TEST_F(EventsOfAPlatform, ReachTheLastRegisteredReceiver) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    ASSERT_EQ(Register(Receiver::kSecond), 0);
    EXPECT_EQ(Send({Event()}), ReceivedBy("second"));
}

TEST_F(EventsOfAPlatform, AreDroppedByARecreatedAdaptor) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    UnderTest().deleteInstance();
    EventsUnderTest().makeInstance();
    EXPECT_EQ(Send({Event()}), Lines{});
}

TEST_F(EventsOfAPlatform, MayNotAskForAReply) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    Send({});
    mLog.Clear();
    EventConnection connection(ServedSocket(), Port());
    for (const std::string& event : {Event(), std::string("{\"event\": 3}"), std::string("{}")}) {
        const std::optional<Frame> reply = connection.Ask(event);
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->type, kReply);
        EXPECT_EQ(reply->port, Port());
        EXPECT_EQ(reply->payload, "null\n");
    }
    EXPECT_EQ(mLog.Count(EventsUnderTest().refusalPriority, UnderTest().tag, EventsUnderTest().refusal), 3)
        << mLog.Text();
    EXPECT_EQ(Noted(), Lines{});
}

TEST_F(EventsOfAPlatform, LetAReceiverMakeRequests) {
    ASSERT_EQ(Register(Receiver::kAsking), 0);
    mPlatform.ForgetFrames();
    EXPECT_EQ(Send({Event()}), ReceivedBy("asking"));
    EXPECT_TRUE(mPlatform.WaitForFrames(1));
}

TEST_F(EventsOfAPlatform, ComeWhileRegistrationsChange) {
    std::atomic<bool> stop{false};
    std::thread sender([&] {
        while (!stop) Send({Event(), Event(), Event()});
    });
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Register(Receiver::kFirst), 0);
        EXPECT_EQ(Register(Receiver::kNone), 0);
        EXPECT_EQ(Register(Receiver::kSecond), 0);
    }
    stop = true;
    sender.join();
    EXPECT_EQ(Send({Event()}), ReceivedBy("second"));
}

TEST_F(EventsOfAPlatform, HaveAnExampleInTheProtocol) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    EXPECT_EQ(Send({Protocol()["examples"]["event"]["document"].toStyledString()}),
              (Lines{std::string("first ") + EventsUnderTest().protocolsExample}));
}

// Not every family has these.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ProtocolEvents);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EventForms);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EventMembers);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EndOfEvents);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RegistrationRequest);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EndRequest);

TEST_P(EndOfEvents, ComesWithTheRegistrations) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    ASSERT_EQ(GetParam().unregister(), 0);
    EXPECT_EQ(Send({Event()}), Lines{});
    EXPECT_EQ(Complaints(), Complaint(EventsUnderTest().withoutReceiver)) << mLog.Text();
    ASSERT_EQ(Register(Receiver::kSecond), 0);
    EXPECT_EQ(Send({Event()}), ReceivedBy("second"));
}

TEST_P(EndOfEvents, MayComeWhileEventsCome) {
    std::atomic<bool> stop{false};
    std::thread sender([&] {
        while (!stop) Send({Event(), Event(), Event()});
    });
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Register(Receiver::kFirst), 0);
        EXPECT_EQ(GetParam().unregister(), 0);
    }
    stop = true;
    sender.join();
    EXPECT_EQ(Send({Event()}), Lines{});
}

TEST_P(RegistrationRequest, IsSentWhenTheReceiverIsInPlace) {
    std::promise<Lines> received;
    mPlatform.SetAnswer([&](const Frame& request) {
        EXPECT_NE(request.payload.find(GetParam().registering), std::string::npos) << request.payload;
        received.set_value(Send({Event()}));
        return std::string("{\"ret\": 0}");
    });
    EXPECT_EQ(Register(Receiver::kFirst), 0);
    EXPECT_EQ(received.get_future().get(), ReceivedBy("first"));
}

TEST_P(RegistrationRequest, MayBeRefusedAndTheReceiverStays) {
    mPlatform.SetReply("{\"ret\": -3}");
    EXPECT_EQ(Register(Receiver::kFirst), -3);
    EXPECT_EQ(Send({Event()}), ReceivedBy("first"));
    mPlatform.SetReply("nonsense");
    EXPECT_EQ(Register(Receiver::kSecond), -1);
    EXPECT_EQ(Send({Event()}), ReceivedBy("second"));
}

TEST_P(EndRequest, IsSentWhenTheReceiverIsGone) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    std::promise<Lines> received;
    mPlatform.SetAnswer([&](const Frame& request) {
        EXPECT_NE(request.payload.find(GetParam().unregistering), std::string::npos) << request.payload;
        received.set_value(Send({Event()}));
        return std::string("{\"ret\": 0}");
    });
    EXPECT_EQ(GetParam().unregister(), 0);
    EXPECT_EQ(received.get_future().get(), Lines{});
}

TEST_P(EndRequest, MayBeRefusedAndTheReceiverIsGone) {
    ASSERT_EQ(Register(Receiver::kFirst), 0);
    mPlatform.SetReply("{\"ret\": -3}");
    EXPECT_EQ(GetParam().unregister(), -3);
    EXPECT_EQ(Send({Event()}), Lines{});
    ASSERT_EQ(Register(Receiver::kFirst), -3);
    mPlatform.SetReply("");
    EXPECT_EQ(GetParam().unregister(), -1);
    EXPECT_EQ(Send({Event()}), Lines{});
}

}  // namespace hbbtv::test
