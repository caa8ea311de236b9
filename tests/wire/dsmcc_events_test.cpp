// The file events of the DSM-CC adaptor: how they are read, in all their forms, and who receives them from when to
// when.

#include <android/log.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "lenient_readings.h"
#include "log_capture.h"
#include "protocol_file.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "wire_texts.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Dsmcc = TolmDsmccAdaptorIpc;
using Lines = std::vector<std::string>;

constexpr char kTag[] = "[ipc_dsmcc]";
constexpr char kEvent[] = R"({"method": 4, "event": 0, "context": "0x80c0ffee", "url": "dvb://1", "filePath": "/f"})";

std::mutex gMutex;
Lines gReceived;  // guarded by gMutex

// "receiver type path context"
void Note(const char* receiver, TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    const std::string line = std::string(receiver) + " " + std::to_string(type) + " " + filePath + " " + Show(context);
    std::lock_guard<std::mutex> lock(gMutex);
    gReceived.push_back(line);
}

void First(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    Note("first", type, filePath, context);
}

void Second(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    Note("second", type, filePath, context);
}

void ReleaseInHandler(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    const int status = Dsmcc::GetInstance()->ReleaseFile("dvb://1", context);
    Note(("released " + std::to_string(status)).c_str(), type, filePath, context);
}

class DsmccEvents : public ::testing::Test {
  protected:
    DsmccEvents() { Dsmcc::GetInstance(); }
    ~DsmccEvents() override { Dsmcc::DeleteInstance(); }

    static void Register(TolmDsmccBrowserCallback callback) {
        EXPECT_EQ(Dsmcc::GetInstance()->BrowserRegisterCallback(callback), 0);
    }

    RawConnection Connect() const { return RawConnection::To(mDirectory / "service_hbbtv_to_dsmcc"); }

    // One-way events on one connection, and what the receivers got by the time they were handled.
    Lines Send(const Lines& events) const {
        {
            std::lock_guard<std::mutex> lock(gMutex);
            gReceived.clear();
        }
        RawConnection connection = Connect();
        for (const std::string& event : events) EXPECT_TRUE(connection.Write(FrameBytes(kOneWay, 2, event)));
        // Messages of a connection are handled in order, and this one is answered.
        EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 2, "{}")));
        EXPECT_TRUE(connection.ReadFrame().has_value());
        std::lock_guard<std::mutex> lock(gMutex);
        return gReceived;
    }

    // The lines of the adaptor for one event, as "priority function message".
    Lines LogOf(const std::string& event) const {
        mLog.Clear();
        Send({event});
        Lines lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != kTag || line.message == "Should not be called here") continue;
            EXPECT_EQ(line.file, "tolm_dsmcc_adaptor_ipc.cpp");
            lines.push_back(std::to_string(line.priority) + " " + line.function + " " + line.message);
        }
        return lines;
    }

    ScratchDirectory mDirectory;
    mutable LogCapture mLog;
};

std::string EventOf(int event) {
    return WithMember(kEvent, "event", std::to_string(event));
}

}  // namespace

TEST_F(DsmccEvents, GiveTheBrowserItsTypes) {
    Register(&First);
    EXPECT_EQ(
        Send({EventOf(0), EventOf(1), EventOf(2), EventOf(3)}),
        (Lines{"first 0 /f 0x80c0ffee", "first 2 /f 0x80c0ffee", "first 4 /f 0x80c0ffee", "first 1 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, AreLoggedOnTheirWay) {
    Register(&First);
    EXPECT_EQ(LogOf(EventOf(2)),
              (Lines{"2 ReceiveIpc ENTER", "3 ReceiveIpc url:dvb://1 filePath:/f event:2 context:0x80c0ffee",
                     "2 DsmccFileCallback ENTER", "3 DsmccFileCallback filePath:/f type:4 context:0x80c0ffee",
                     "2 DsmccFileCallback LEAVE", "2 ReceiveIpc LEAVE"}));
}

TEST_F(DsmccEvents, OfCodeFourAreDroppedSilently) {
    Register(&First);
    EXPECT_EQ(Send({EventOf(4)}), Lines{});
    EXPECT_EQ(LogOf(EventOf(4)),
              (Lines{"2 ReceiveIpc ENTER", "3 ReceiveIpc url:dvb://1 filePath:/f event:4 context:0x80c0ffee",
                     "2 DsmccFileCallback ENTER", "2 ReceiveIpc LEAVE"}));
}

TEST_F(DsmccEvents, OfOtherCodesAreWarnedAboutAndDropped) {
    Register(&First);
    for (const char* code : {"5", "6", "-1", "256", "2147483647", "-2147483648"}) {
        SCOPED_TRACE(code);
        const std::string event = WithMember(kEvent, "event", code);
        EXPECT_EQ(Send({event}), Lines{});
        EXPECT_EQ(LogOf(event),
                  (Lines{"2 ReceiveIpc ENTER",
                         std::string("3 ReceiveIpc url:dvb://1 filePath:/f event:") + code + " context:0x80c0ffee",
                         "2 DsmccFileCallback ENTER", std::string("5 DsmccFileCallback wrong event:") + code,
                         "2 ReceiveIpc LEAVE"}));
    }
}

TEST_F(DsmccEvents, OfAnotherMethodAreWarnedAboutAndDropped) {
    Register(&First);
    for (const char* method : {"", "0", "1", "3", "5", "-4", "4294967300", "\"4\"", "null", "true", "[4]", "{}"}) {
        SCOPED_TRACE(method);
        const std::string event = WithMember(kEvent, "method", method);
        EXPECT_EQ(Send({event}), Lines{});
        EXPECT_EQ(LogOf(event), (Lines{"2 ReceiveIpc ENTER", "5 ReceiveIpc wrong method"}));
    }
    EXPECT_EQ(Send({WithMember(kEvent, "method", "4.0")}), (Lines{"first 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, WithoutAContextThatIsATextAreWarnedAboutAndDropped) {
    Register(&First);
    char complaint[128];
    snprintf(complaint, sizeof(complaint), "5 ReceiveIpc ParsePointerValue failed context:(nil) this:%p",
             static_cast<void*>(Dsmcc::GetInstance()));
    for (const Reading& reading : ReadingsOf("pointer", "0x0")) {
        SCOPED_TRACE(reading.json);
        const std::string event = WithMember(kEvent, "context", reading.json);
        if (reading.shown == nullptr) {
            EXPECT_EQ(Send({event}), Lines{});
            EXPECT_EQ(LogOf(event), (Lines{"2 ReceiveIpc ENTER", complaint}));
        } else {
            EXPECT_EQ(Send({event}), (Lines{std::string("first 0 /f ") + reading.shown}));
        }
    }
}

TEST_F(DsmccEvents, HaveTheirCodeReadLeniently) {
    Register(&First);
    for (const char* code : {"", "null", "false", "\"3\"", "2147483648", "[3]", "{\"a\": 3}", "0.5"}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(Send({WithMember(kEvent, "event", code)}), (Lines{"first 0 /f 0x80c0ffee"}));
    }
    EXPECT_EQ(Send({WithMember(kEvent, "event", "true")}), (Lines{"first 2 /f 0x80c0ffee"}));
    EXPECT_EQ(Send({WithMember(kEvent, "event", "3.5")}), (Lines{"first 1 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, HaveTheirPathReadLeniently) {
    Register(&First);
    for (const char* path : {"", "null", "\"\"", "[\"/f\"]", "{\"a\": \"/f\"}", "\"\\u0000/f\""}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(Send({WithMember(kEvent, "filePath", path)}), (Lines{"first 0  0x80c0ffee"}));
    }
    EXPECT_EQ(Send({WithMember(kEvent, "filePath", "7")}), (Lines{"first 0 7 0x80c0ffee"}));
    EXPECT_EQ(Send({WithMember(kEvent, "filePath", "true")}), (Lines{"first 0 true 0x80c0ffee"}));
}

TEST_F(DsmccEvents, NeedNoUrl) {
    Register(&First);
    for (const char* url : {"", "null", "7", "[]", "{}", "\"%s%n%d\""}) {
        SCOPED_TRACE(url);
        EXPECT_EQ(Send({WithMember(kEvent, "url", url)}), (Lines{"first 0 /f 0x80c0ffee"}));
    }
}

TEST_F(DsmccEvents, GiveThePathAsItIsUpToAZeroByte) {
    Register(&First);
    for (const WireText& text : WireTexts()) {
        SCOPED_TRACE(text.name);
        const std::string path = text.readBack.substr(0, text.readBack.find('\0'));
        EXPECT_EQ(Send({WithMember(kEvent, "filePath", text.onTheWire)}), (Lines{"first 0 " + path + " 0x80c0ffee"}));
    }
}

TEST_F(DsmccEvents, ThatAreNoObjectsReachNobody) {
    Register(&First);
    int failures = 0;
    for (const char* event : {"nonsense", " ", "null", "4", "\"A\"", "[{\"method\": 4}]", "{\"method\": 4"}) {
        SCOPED_TRACE(event);
        EXPECT_EQ(Send({event}), Lines{});
        EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), ++failures);
    }
    // The endpoint lives on.
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, MayHoldWhatNobodyReads) {
    Register(&First);
    EXPECT_EQ(Send({WithMember(WithMember(kEvent, "more", "[1, {\"event\": 5}]"), "type", "20")}),
              (Lines{"first 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, AreWarnedAboutWithoutAReceiver) {
    EXPECT_EQ(Send({kEvent}), Lines{});
    EXPECT_EQ(LogOf(kEvent),
              (Lines{"2 ReceiveIpc ENTER", "3 ReceiveIpc url:dvb://1 filePath:/f event:0 context:0x80c0ffee",
                     "2 DsmccFileCallback ENTER", "5 DsmccFileCallback m_browserCb is null",
                     "2 DsmccFileCallback LEAVE", "2 ReceiveIpc LEAVE"}));
    Register(&First);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, ReachNobodyAfterNullWasRegistered) {
    Register(&First);
    Register(nullptr);
    EXPECT_EQ(Send({kEvent}), Lines{});
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, kTag, "m_browserCb is null"), 1);
}

TEST_F(DsmccEvents, ReachTheLastRegisteredReceiver) {
    Register(&First);
    Register(&Second);
    EXPECT_EQ(Send({kEvent}), (Lines{"second 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, AreNotReceivedByAnAdaptorMadeAnew) {
    Register(&First);
    Dsmcc::DeleteInstance();
    ASSERT_NE(Dsmcc::GetInstance(), nullptr);
    EXPECT_EQ(Send({kEvent}), Lines{});
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, kTag, "m_browserCb is null"), 1);
}

TEST_F(DsmccEvents, NeedNoPlatformThatIsTold) {
    FakePlatform platform("service_dsmcc_to_hbbtv", "{\"ret\": 0}");
    Register(&First);
    Register(nullptr);
    // A request that is answered comes after anything that was sent before.
    EXPECT_EQ(Dsmcc::GetInstance()->ReleaseFile("u", nullptr), 0);
    EXPECT_EQ(platform.Frames().size(), 1u);
}

TEST_F(DsmccEvents, MayNotAskForAReply) {
    Register(&First);
    EXPECT_EQ(Send({}), Lines{});
    mLog.Clear();
    RawConnection connection = Connect();
    for (const std::string& event : {std::string(kEvent), EventOf(4), std::string("{}")}) {
        ASSERT_TRUE(connection.Write(FrameBytes(kRequest, 2, event)));
        const std::optional<Frame> reply = connection.ReadFrame();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->type, kReply);
        EXPECT_EQ(reply->port, 2);
        EXPECT_EQ(reply->payload, "null\n");
    }
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, kTag, "Should not be called here"), 3) << mLog.Text();
    std::lock_guard<std::mutex> lock(gMutex);
    EXPECT_EQ(gReceived, Lines{});
}

TEST_F(DsmccEvents, LetAReceiverMakeRequests) {
    FakePlatform platform("service_dsmcc_to_hbbtv", "{\"ret\": 3}");
    Register(&ReleaseInHandler);
    EXPECT_EQ(Send({kEvent}), (Lines{"released 3 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, ComeWhileRegistrationsChange) {
    std::atomic<bool> stop{false};
    std::thread sender([&] {
        while (!stop) Send({kEvent, kEvent, kEvent});
    });
    for (int i = 0; i < 100; ++i) {
        Register(&First);
        Register(&Second);
        Register(nullptr);
    }
    stop = true;
    sender.join();
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(DsmccEvents, AreRowsOfTheProtocol) {
    const Json::Value protocol = ReadProtocolFile("dsmcc");
    EXPECT_EQ(protocol["event_envelope"]["type"]["key"].asString(), "method");
    EXPECT_EQ(protocol["event_envelope"]["type"]["value"].asInt(), 4);
    EXPECT_EQ(protocol["event_envelope"]["code"]["key"].asString(), "event");
    EXPECT_EQ(protocol["event_envelope"]["context"]["key"].asString(), "context");
    ASSERT_EQ(protocol["events"].size(), 5u);
    for (int code = 0; code < 5; ++code) {
        SCOPED_TRACE(code);
        const Json::Value& event = protocol["events"][code];
        EXPECT_EQ(event["code"].asInt(), code);
        ASSERT_EQ(event["forms"].size(), 1u);
        EXPECT_EQ(event["forms"][0].asString(), "one-way");
        EXPECT_EQ(event["callback"].asString(), code != 4 ? "OnDsmccFileEvent" : "");
        ASSERT_EQ(event["members"].size(), 2u);
        EXPECT_EQ(event["members"][0]["key"].asString(), "url");
        EXPECT_EQ(event["members"][1]["key"].asString(), "filePath");
    }
}

TEST_F(DsmccEvents, HaveAnExampleInTheProtocol) {
    const Json::Value example = ReadProtocolFile("dsmcc")["examples"]["event"];
    EXPECT_EQ(example["code"].asInt(), 0);
    Register(&First);
    EXPECT_EQ(Send({example["document"].toStyledString()}), (Lines{"first 0 /data/dsmcc/17/index.html 0x5a10"}));
}

}  // namespace hbbtv::test
