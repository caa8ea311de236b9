// The file events of the DSM-CC adaptor: how they are read, in all their forms, and who receives them from when to
// when.

#include "event_rows.h"
#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "lenient_readings.h"
#include "rows.h"
#include "wire_texts.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmDsmccAdaptorIpc;
using Lines = std::vector<std::string>;

constexpr char kEvent[] = R"({"method": 4, "event": 0, "context": "0x80c0ffee", "url": "dvb://1", "filePath": "/f"})";

// "receiver type path context"
void Note(const char* receiver, TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    NoteEvent(std::string(receiver) + " " + std::to_string(type) + " " + filePath + " " + Show(context));
}

void First(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    Note("first", type, filePath, context);
}

void Second(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    Note("second", type, filePath, context);
}

void Asking(TolmDSMCCFileEventType type, const char* filePath, const void* context) {
    EXPECT_EQ(Adaptor::GetInstance()->ReleaseFile("dvb://1", context), 0);
    Note("asking", type, filePath, context);
}

int Register(Receiver receiver) {
    const TolmDsmccBrowserCallback functions[] = {nullptr, &First, &Second, &Asking};
    return Adaptor::GetInstance()->BrowserRegisterCallback(functions[static_cast<int>(receiver)]);
}

class DsmccEvents : public Events {
  protected:
    // The lines of the adaptor for one event, as "priority function message".
    Lines LogOf(const std::string& event) {
        mLog.Clear();
        Send({event});
        Lines lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != UnderTest().tag || line.message == EventsUnderTest().refusal) continue;
            EXPECT_EQ(line.file, UnderTest().sourceFile);
            lines.push_back(std::to_string(line.priority) + " " + line.function + " " + line.message);
        }
        return lines;
    }
};

std::string EventOf(int event) {
    return WithMember(kEvent, "event", std::to_string(event));
}

}  // namespace

const EventFamily& EventsUnderTest() {
    static const EventFamily family{[] { Adaptor::GetInstance(); },
                                    &Register,
                                    kEvent,
                                    "0 /f 0x80c0ffee",
                                    "5 m_browserCb is null",
                                    "Should not be called here",
                                    "0 /data/dsmcc/17/index.html 0x5a10",
                                    ANDROID_LOG_WARN,
                                    "url:"};
    return family;
}

TEST_F(DsmccEvents, GiveTheBrowserItsTypes) {
    Register(Receiver::kFirst);
    EXPECT_EQ(
        Send({EventOf(0), EventOf(1), EventOf(2), EventOf(3)}),
        (Lines{"first 0 /f 0x80c0ffee", "first 2 /f 0x80c0ffee", "first 4 /f 0x80c0ffee", "first 1 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, AreLoggedOnTheirWay) {
    Register(Receiver::kFirst);
    EXPECT_EQ(LogOf(EventOf(2)),
              (Lines{"2 ReceiveIpc ENTER", "3 ReceiveIpc url:dvb://1 filePath:/f event:2 context:0x80c0ffee",
                     "2 DsmccFileCallback ENTER", "3 DsmccFileCallback filePath:/f type:4 context:0x80c0ffee",
                     "2 DsmccFileCallback LEAVE", "2 ReceiveIpc LEAVE"}));
}

TEST_F(DsmccEvents, OfCodeFourAreDroppedSilently) {
    Register(Receiver::kFirst);
    EXPECT_EQ(Send({EventOf(4)}), Lines{});
    EXPECT_EQ(LogOf(EventOf(4)),
              (Lines{"2 ReceiveIpc ENTER", "3 ReceiveIpc url:dvb://1 filePath:/f event:4 context:0x80c0ffee",
                     "2 DsmccFileCallback ENTER", "2 ReceiveIpc LEAVE"}));
}

TEST_F(DsmccEvents, AreDroppedWithAWarningIfTheCodeIsUnknown) {
    Register(Receiver::kFirst);
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

TEST_F(DsmccEvents, AreDroppedWithAWarningIfTheMethodIsWrong) {
    Register(Receiver::kFirst);
    for (const char* method : {"", "0", "1", "3", "5", "-4", "4294967300", "\"4\"", "null", "true", "[4]", "{}"}) {
        SCOPED_TRACE(method);
        const std::string event = WithMember(kEvent, "method", method);
        EXPECT_EQ(Send({event}), Lines{});
        EXPECT_EQ(LogOf(event), (Lines{"2 ReceiveIpc ENTER", "5 ReceiveIpc wrong method"}));
    }
    EXPECT_EQ(Send({WithMember(kEvent, "method", "4.0")}), (Lines{"first 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, AreDroppedWithAWarningIfTheContextIsNotAString) {
    Register(Receiver::kFirst);
    char complaint[128];
    snprintf(complaint, sizeof(complaint), "5 ReceiveIpc ParsePointerValue failed context:(nil) this:%p",
             static_cast<void*>(Adaptor::GetInstance()));
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
    Register(Receiver::kFirst);
    for (const char* code : {"", "null", "false", "\"3\"", "2147483648", "[3]", "{\"a\": 3}", "0.5"}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(Send({WithMember(kEvent, "event", code)}), (Lines{"first 0 /f 0x80c0ffee"}));
    }
    EXPECT_EQ(Send({WithMember(kEvent, "event", "true")}), (Lines{"first 2 /f 0x80c0ffee"}));
    EXPECT_EQ(Send({WithMember(kEvent, "event", "3.5")}), (Lines{"first 1 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, HaveTheirPathReadLeniently) {
    Register(Receiver::kFirst);
    for (const char* path : {"", "null", "\"\"", "[\"/f\"]", "{\"a\": \"/f\"}", "\"\\u0000/f\""}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(Send({WithMember(kEvent, "filePath", path)}), (Lines{"first 0  0x80c0ffee"}));
    }
    EXPECT_EQ(Send({WithMember(kEvent, "filePath", "7")}), (Lines{"first 0 7 0x80c0ffee"}));
    EXPECT_EQ(Send({WithMember(kEvent, "filePath", "true")}), (Lines{"first 0 true 0x80c0ffee"}));
}

TEST_F(DsmccEvents, NeedNoUrl) {
    Register(Receiver::kFirst);
    for (const char* url : {"", "null", "7", "[]", "{}", "\"%s%n%d\""}) {
        SCOPED_TRACE(url);
        EXPECT_EQ(Send({WithMember(kEvent, "url", url)}), (Lines{"first 0 /f 0x80c0ffee"}));
    }
}

TEST_F(DsmccEvents, GiveThePathAsItIsUpToAZeroByte) {
    Register(Receiver::kFirst);
    for (const WireText& text : WireTexts()) {
        SCOPED_TRACE(text.name);
        const std::string path = text.readBack.substr(0, text.readBack.find('\0'));
        EXPECT_EQ(Send({WithMember(kEvent, "filePath", text.onTheWire)}), (Lines{"first 0 " + path + " 0x80c0ffee"}));
    }
}

TEST_F(DsmccEvents, MayHaveUnknownMembers) {
    Register(Receiver::kFirst);
    EXPECT_EQ(Send({WithMember(WithMember(kEvent, "more", "[1, {\"event\": 5}]"), "type", "20")}),
              (Lines{"first 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, AreDroppedWithAWarningWithoutAReceiver) {
    EXPECT_EQ(Send({kEvent}), Lines{});
    EXPECT_EQ(LogOf(kEvent),
              (Lines{"2 ReceiveIpc ENTER", "3 ReceiveIpc url:dvb://1 filePath:/f event:0 context:0x80c0ffee",
                     "2 DsmccFileCallback ENTER", "5 DsmccFileCallback m_browserCb is null",
                     "2 DsmccFileCallback LEAVE", "2 ReceiveIpc LEAVE"}));
    Register(Receiver::kFirst);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 0 /f 0x80c0ffee"}));
}

TEST_F(DsmccEvents, AreRegisteredWithoutARequest) {
    FakePlatform platform(UnderTest().Socket(), "{\"ret\": 0}");
    Register(Receiver::kFirst);
    Register(Receiver::kNone);
    // A request that is answered comes after anything that was sent before.
    EXPECT_EQ(Adaptor::GetInstance()->ReleaseFile("u", nullptr), 0);
    EXPECT_EQ(platform.Frames().size(), 1u);
}

TEST_F(DsmccEvents, AreRowsOfTheProtocol) {
    const Json::Value& protocol = UnderTest().Wire().protocol;
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

}  // namespace hbbtv::test
