// The event of the channel configuration: how it is read, in all its forms, and who receives it from when to when.

#include <android/log.h>
#include <gtest/gtest.h>

#include <future>
#include <mutex>

#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "log_capture.h"
#include "protocol_file.h"
#include "raw_socket.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Config = TolmChannelConfigAdaptorIpc;
using Lines = std::vector<std::string>;

constexpr char kTag[] = "[ipc_videobroadcast]";
constexpr char kEvent[] = "{\"event\": 0, \"reserved\": \"A\"}";
constexpr char kNoReply[] = "null\n";

const void* Pointer(uintptr_t bits) {
    return reinterpret_cast<const void*>(bits);
}

std::mutex gMutex;
Lines gReceived;  // guarded by gMutex

// "receiver code byte context"
void Note(const char* receiver, int code, const TolmChannelConfigEventInfo& info, const void* context) {
    char line[128];
    snprintf(line, sizeof(line), "%s %d %d 0x%lx", receiver, code, static_cast<unsigned char>(info.reserved),
             static_cast<unsigned long>(reinterpret_cast<uintptr_t>(context)));
    std::lock_guard<std::mutex> lock(gMutex);
    gReceived.push_back(line);
}

void First(const TolmChannelConfigEvent& event, const TolmChannelConfigEventInfo& info, const void* context) {
    Note("first", event, info, context);
}

void Second(const TolmChannelConfigEvent& event, const TolmChannelConfigEventInfo& info, const void* context) {
    Note("second", event, info, context);
}

void AskInHandler(const TolmChannelConfigEvent& event, const TolmChannelConfigEventInfo& info, const void*) {
    void* channel = nullptr;
    Config::GetInstance()->GetCurrentChannel(channel);
    Note("asked", event, info, channel);
}

class ChannelConfigEvents : public ::testing::Test {
  protected:
    ChannelConfigEvents() { Config::GetInstance(); }
    ~ChannelConfigEvents() override { Config::DeleteInstance(); }

    Config& Adaptor() { return *Config::GetInstance(); }

    std::string ServedSocket() const { return mDirectory / "service_hbbtv_to_plugin_vb_chn_config"; }

    // One-way events on one connection, and what the receivers got by the time they were handled.
    Lines Send(const Lines& events) const {
        {
            std::lock_guard<std::mutex> lock(gMutex);
            gReceived.clear();
        }
        RawConnection connection = RawConnection::To(ServedSocket());
        for (const std::string& event : events) EXPECT_TRUE(connection.Write(FrameBytes(kOneWay, 3, event)));
        // Messages of a connection are handled in order, and this one is answered.
        EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 3, "{}")));
        EXPECT_TRUE(connection.ReadFrame().has_value());
        std::lock_guard<std::mutex> lock(gMutex);
        return gReceived;
    }

    // Lines of the adaptor about events, as "priority message".
    Lines Complaints() const {
        Lines lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != kTag || line.function != "ReceiveIpc" || line.message == "Could not be called here")
                continue;
            lines.push_back(std::to_string(line.priority) + " " + line.message);
        }
        return lines;
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
};

class ChannelConfigEventsOfAPlatform : public ChannelConfigEvents {
  protected:
    FakePlatform mPlatform{"service_plugin_to_hbbtv_vb_chn_config", "{\"ret\": 0}"};
};

struct Form {
    const char* name;
    const char* event;
    const char* received;   // code and byte
    const char* complaint;  // "priority message", or empty
};

constexpr char kEmpty[] = "5 reserved is empty";

const Form kForms[] = {
    {"Letter", "{\"event\": 0, \"reserved\": \"A\"}", "0 65", ""},
    {"FirstLetterOfMany", "{\"event\": 0, \"reserved\": \"Apple\"}", "0 65", ""},
    {"FirstByteOfUtf8", "{\"event\": 0, \"reserved\": \"\\u00e9\"}", "0 195", ""},
    {"ZeroByteFirst", "{\"event\": 0, \"reserved\": \"\\u0000A\"}", "0 0", ""},
    {"EmptyText", "{\"event\": 0, \"reserved\": \"\"}", "0 0", kEmpty},
    {"NoText", "{\"event\": 0}", "0 0", kEmpty},
    {"NullText", "{\"event\": 0, \"reserved\": null}", "0 0", kEmpty},
    {"ArrayForText", "{\"event\": 0, \"reserved\": [\"A\"]}", "0 0", kEmpty},
    {"ObjectForText", "{\"event\": 0, \"reserved\": {\"A\": \"A\"}}", "0 0", kEmpty},
    {"NumberForText", "{\"event\": 0, \"reserved\": 7}", "0 55", ""},
    {"BoolForText", "{\"event\": 0, \"reserved\": true}", "0 116", ""},
    {"OtherMembers", "{\"event\": 0, \"reserved\": \"A\", \"context\": \"0x9\", \"type\": 19}", "0 65", ""},
    {"AnotherCode", "{\"event\": 3, \"reserved\": \"A\"}", "3 0", "5 wrong event type 3"},
    {"AnotherCodeAlone", "{\"event\": 1}", "1 0", "5 wrong event type 1"},
    {"NegativeCode", "{\"event\": -1, \"reserved\": \"A\"}", "-1 0", "5 wrong event type -1"},
    {"GreatestCode", "{\"event\": 2147483647}", "2147483647 0", "5 wrong event type 2147483647"},
    {"LeastCode", "{\"event\": -2147483648}", "-2147483648 0", "5 wrong event type -2147483648"},
    {"CodeOutOfRange", "{\"event\": 2147483648, \"reserved\": \"A\"}", "0 65", ""},
    {"TextForCode", "{\"event\": \"3\", \"reserved\": \"A\"}", "0 65", ""},
    {"NullForCode", "{\"event\": null, \"reserved\": \"A\"}", "0 65", ""},
    {"NoCode", "{\"reserved\": \"A\"}", "0 65", ""},
    {"Nothing", "{}", "0 0", kEmpty},
};

void PrintTo(const Form& form, std::ostream* out) {
    *out << form.name;
}

class ChannelConfigEventForms : public ChannelConfigEventsOfAPlatform, public ::testing::WithParamInterface<Form> {};

}  // namespace

TEST_P(ChannelConfigEventForms, AreReadLeniently) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(0x80c0ffee)), 0);
    EXPECT_EQ(Send({GetParam().event}), (Lines{std::string("first ") + GetParam().received + " 0x80c0ffee"}));
    const std::string complaint = GetParam().complaint;
    EXPECT_EQ(Complaints(), complaint.empty() ? Lines{} : Lines{complaint}) << mLog.Text();
    for (const LogLine& line : mLog.Lines()) {
        if (line.function == "ReceiveIpc" && line.tag == kTag) {
            EXPECT_EQ(line.file, "tolm_channel_config_adaptor_ipc.cpp");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Each, ChannelConfigEventForms, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param.name); });

TEST_F(ChannelConfigEventsOfAPlatform, ThatAreNoObjectsReachNobody) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, nullptr), 0);
    int failures = 0;
    for (const char* event : {"nonsense", " ", "null", "0", "\"A\"", "[{\"event\": 0}]", "{\"event\": 0"}) {
        SCOPED_TRACE(event);
        EXPECT_EQ(Send({event}), Lines{});
        EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), ++failures);
    }
    // The endpoint lives on.
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 65 0x0"}));
}

TEST_F(ChannelConfigEventsOfAPlatform, ComeInOrder) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    EXPECT_EQ(Send({kEvent, "{\"event\": 0, \"reserved\": \"B\"}", "{\"event\": 2}", kEvent}),
              (Lines{"first 0 65 0x7", "first 0 66 0x7", "first 2 0 0x7", "first 0 65 0x7"}));
}

TEST_F(ChannelConfigEventsOfAPlatform, AreDroppedBeforeTheRegistration) {
    EXPECT_EQ(Send({kEvent, "{\"event\": 0}"}), Lines{});
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 65 0x7"}));
}

TEST_F(ChannelConfigEventsOfAPlatform, AreDroppedAfterTheRegistrationsEnd) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    ASSERT_EQ(Adaptor().UnregisterCallback(), 0);
    EXPECT_EQ(Send({kEvent, "{\"event\": 0}"}), Lines{});
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(8)), 0);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 65 0x8"}));
}

TEST_F(ChannelConfigEventsOfAPlatform, ReachNobodyWhenNoFunctionIsRegistered) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    ASSERT_EQ(Adaptor().RegisterCallback(nullptr, Pointer(7)), 0);
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(ChannelConfigEventsOfAPlatform, ReachTheLastRegisteredReceiverWithItsContext) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    ASSERT_EQ(Adaptor().RegisterCallback(&Second, Pointer(0xffffffff)), 0);
    EXPECT_EQ(Send({kEvent}), (Lines{"second 0 65 0xffffffff"}));
}

TEST_F(ChannelConfigEventsOfAPlatform, AreDroppedByAnAdaptorMadeAnew) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    Config::DeleteInstance();
    ASSERT_NE(Config::GetInstance(), nullptr);
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(ChannelConfigEventsOfAPlatform, MayNotAskForAReply) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    mLog.Clear();
    RawConnection connection = RawConnection::To(ServedSocket());
    for (const char* event : {kEvent, "{\"event\": 3}", "{}"}) {
        ASSERT_TRUE(connection.Write(FrameBytes(kRequest, 3, event)));
        const std::optional<Frame> reply = connection.ReadFrame();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->type, kReply);
        EXPECT_EQ(reply->port, 3);
        EXPECT_EQ(reply->payload, kNoReply);
    }
    EXPECT_EQ(mLog.Count(ANDROID_LOG_ERROR, kTag, "Could not be called here"), 3) << mLog.Text();
    EXPECT_EQ(Send({}), Lines{});
}

TEST_F(ChannelConfigEventsOfAPlatform, AreReceivedAlthoughThePlatformRefusesTheRegistration) {
    mPlatform.SetReply("{\"ret\": -3}");
    EXPECT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), -3);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 65 0x7"}));
    EXPECT_EQ(Adaptor().UnregisterCallback(), -3);
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(ChannelConfigEvents, NeedNoPlatformThatAnswersToBeginAndEnd) {
    EXPECT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), -1);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 65 0x7"}));
    EXPECT_EQ(Adaptor().UnregisterCallback(), -1);
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(ChannelConfigEventsOfAPlatform, AreReceivedBeforeThePlatformKnowsOfTheRegistration) {
    std::promise<Lines> received;
    mPlatform.SetAnswer([&](const Frame& request) {
        EXPECT_NE(request.payload.find("\"method\" : 0,"), std::string::npos);
        received.set_value(Send({kEvent}));
        return std::string("{\"ret\": 0}");
    });
    EXPECT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    EXPECT_EQ(received.get_future().get(), (Lines{"first 0 65 0x7"}));
}

TEST_F(ChannelConfigEventsOfAPlatform, AreDroppedBeforeThePlatformKnowsOfTheEnd) {
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    std::promise<Lines> received;
    mPlatform.SetAnswer([&](const Frame& request) {
        EXPECT_NE(request.payload.find("\"method\" : 1,"), std::string::npos);
        received.set_value(Send({kEvent}));
        return std::string("{\"ret\": 0}");
    });
    EXPECT_EQ(Adaptor().UnregisterCallback(), 0);
    EXPECT_EQ(received.get_future().get(), Lines{});
}

TEST_F(ChannelConfigEventsOfAPlatform, LetAReceiverMakeRequests) {
    ASSERT_EQ(Adaptor().RegisterCallback(&AskInHandler, nullptr), 0);
    mPlatform.SetReply("{\"ret\": 0, \"handle\": \"0x4f10\"}");
    EXPECT_EQ(Send({kEvent}), (Lines{"asked 0 65 0x4f10"}));
}

TEST_F(ChannelConfigEventsOfAPlatform, ComeWhileRegistrationsChange) {
    std::atomic<bool> stop{false};
    std::thread sender([&] {
        while (!stop) Send({kEvent, kEvent, kEvent});
    });
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Adaptor().RegisterCallback(&First, Pointer(1)), 0);
        EXPECT_EQ(Adaptor().RegisterCallback(&Second, Pointer(2)), 0);
        EXPECT_EQ(Adaptor().UnregisterCallback(), 0);
    }
    stop = true;
    sender.join();
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(ChannelConfigEventsOfAPlatform, HaveAnExampleInTheProtocol) {
    const Json::Value protocol = ReadProtocolFile("channel_config");
    ASSERT_EQ(protocol["events"].size(), 1u);
    EXPECT_EQ(protocol["events"][0]["code"].asInt(), 0);
    EXPECT_EQ(protocol["events"][0]["forms"].size(), 1u);
    EXPECT_EQ(protocol["events"][0]["forms"][0].asString(), "one-way");
    EXPECT_EQ(protocol["events"][0]["callback"].asString(), "OnChannelConfigEvent");
    ASSERT_EQ(protocol["events"][0]["members"].size(), 1u);
    EXPECT_EQ(protocol["events"][0]["members"][0]["key"].asString(), "reserved");
    EXPECT_EQ(protocol["event_envelope"]["code"]["key"].asString(), "event");
    ASSERT_EQ(Adaptor().RegisterCallback(&First, Pointer(7)), 0);
    EXPECT_EQ(Send({protocol["examples"]["event"]["document"].toStyledString()}), (Lines{"first 0 65 0x7"}));
}

}  // namespace hbbtv::test
