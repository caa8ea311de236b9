// The platform's commands to the browser's tabs: how they are read, in all their forms, what is answered, and whom they
// reach from when to when.

#include <android/log.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "ipc/src/mtm/tolm_mtm_adaptor_ipc.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "recording_mtm.h"
#include "rows.h"
#include "scratch_directory.h"
#include "wire/endpoint.h"
#include "wire_texts.h"

namespace hbbtv::test {

namespace {

using Mtm = TolmMtmAdaptorIpc;
using Lines = std::vector<std::string>;

constexpr char kTag[] = "[ipc_mtm]";
constexpr char kCommand[] = R"({"type": 0, "method": 24, "tabid": 5})";
constexpr char kCall[] = "DestroyApp 5";
constexpr char kRefused[] = "{\n\t\"ret\" : -1\n}\n";
constexpr char kNoReply[] = "null\n";
constexpr char kNobody[] = "5 callback is null";
constexpr char kAsserted[] = "5 MTM_Assert failed";

class MtmCommands : public ::testing::Test {
  protected:
    MtmCommands() { Mtm::GetInstance(); }
    ~MtmCommands() override { Mtm::DeleteInstance(); }

    Mtm& Adaptor() { return *Mtm::GetInstance(); }

    std::string ServedSocket() const { return mDirectory / EventsOf(UnderTest().Wire()).socket; }

    // One-way commands on one connection; gives when they were handled.
    void Send(const Lines& commands) const {
        RawConnection connection = RawConnection::To(ServedSocket());
        for (const std::string& command : commands) EXPECT_TRUE(connection.Write(FrameBytes(kOneWay, 1, command)));
        // Messages of a connection are handled in order, and this one is answered.
        EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 1, "nonsense")));
        EXPECT_TRUE(connection.ReadFrame().has_value());
    }

    // What the browser was told by one-way commands.
    Lines CallsOf(const Lines& commands) {
        mBrowser.Forget();
        Send(commands);
        return mBrowser.Calls();
    }

    // The reply to a command that asks for one.
    std::string Ask(const std::string& command) const {
        RawConnection connection = RawConnection::To(ServedSocket());
        EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 1, command)));
        const std::optional<Frame> reply = connection.ReadFrame();
        if (!reply) return "no reply";
        EXPECT_EQ(reply->type, kReply);
        EXPECT_EQ(reply->port, 1);
        return reply->payload;
    }

    // Lines of the adaptor about commands, as "priority message".
    Lines Complaints() const {
        Lines lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != kTag || line.message == "ENTER" || line.message == "LEAVE") continue;
            EXPECT_EQ(line.file, "tolm_mtm_adaptor_ipc.cpp");
            lines.push_back(std::to_string(line.priority) + " " + line.message);
        }
        return lines;
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    RecordingMtm mBrowser;
};

class CommandsToABrowser : public MtmCommands {
  protected:
    CommandsToABrowser() { Adaptor().RegisterCallback(&mBrowser); }
};

struct Command {
    const char* name;
    const char* members;  // besides "type"
    const char* call;     // empty when it reaches nobody
    const char* complaint;
};

const Command kCommands[] = {
    {"SetAppConfig", R"("method": 21, "isBR": true, "tabid": -5)", "SetAppConfig -5 true", ""},
    {"SetAppConfigOff", R"("method": 21, "isBR": false, "tabid": 5)", "SetAppConfig 5 false", ""},
    {"SetAppConfigLacks", R"("method": 21)", "SetAppConfig 0 false", ""},
    {"SetAppConfigWithTheOtherSpelling", R"("method": 21, "isBr": true, "tabid": 5)", "SetAppConfig 5 false", ""},
    {"SetAppConfigMistyped", R"("method": 21, "isBR": "true", "tabid": "5")", "SetAppConfig 0 false", ""},
    {"SetDvbOrigin", R"("method": 22, "tabid": 5, "origin": "dvb://1.2.3")", "SetDvbOrigin 5 'dvb://1.2.3'", ""},
    {"SetDvbOriginLacks", R"("method": 22)", "SetDvbOrigin 0 ''", ""},
    {"SetDvbOriginMistyped", R"("method": 22, "tabid": [5], "origin": ["o"])", "SetDvbOrigin 0 ''", ""},
    {"DestroyApp", R"("method": 24, "tabid": -5)", "DestroyApp -5", ""},
    {"DestroyAppLacks", R"("method": 24)", "DestroyApp 0", ""},
    {"DestroyAppOutOfRange", R"("method": 24, "tabid": 2147483648)", "DestroyApp 0", ""},
    {"DestroyAllApps", R"("method": 25)", "DestroyAllApps", ""},
    {"ShowHideTab", R"("method": 26, "tabid": 5, "showHide": true, "isMulti": false)", "ShowHideTab 5 true false", ""},
    {"ShowHideTabMulti", R"("method": 26, "tabid": 5, "showHide": false, "isMulti": true)", "ShowHideTab 5 false true",
     ""},
    {"ShowHideTabLacks", R"("method": 26)", "ShowHideTab 0 false false", ""},
    {"ShowHideTabNumbers", R"("method": 26, "tabid": true, "showHide": 2, "isMulti": 0)", "ShowHideTab 1 true false",
     ""},
    {"SendKey", R"("method": 27, "key": -415, "keyType": -2, "keyeventId": -3)", "SendKey -415 -2 -3", ""},
    {"SendKeyLacks", R"("method": 27)", "SendKey 0 0 0", ""},
    {"SendKeyWithAnotherSpelling", R"("method": 27, "key": 1, "keyType": 2, "keyEventId": 3)", "SendKey 1 2 0", ""},
    {"LoadURLInTab",
     R"("method": 30, "tabid": -5, "url": "u", "auto_show": true, "isBR": false, "appMode": "m", "boundaries": ["a", "b"])",
     "LoadURLInTab -5 'u' true false 'm' ['a' 'b']", ""},
    {"LoadURLInTabBroadcastRelated",
     R"("method": 30, "tabid": 5, "auto_show": false, "isBR": true, "boundaries": ["a"])",
     "LoadURLInTab 5 '' false true '' ['a']", ""},
    {"LoadURLInTabLacks", R"("method": 30)", "LoadURLInTab 0 '' false false '' []", ""},
    {"LoadURLInTabWithTheOtherSpelling", R"("method": 30, "tabid": 5, "isBr": true)",
     "LoadURLInTab 5 '' false false '' []", ""},
    {"LoadURLInTabWithoutBoundaries", R"("method": 30, "tabid": 5, "boundaries": [])",
     "LoadURLInTab 5 '' false false '' []", ""},
    {"LoadURLInTabWithAText", R"("method": 30, "tabid": 5, "boundaries": "a")", "LoadURLInTab 5 '' false false '' []",
     ""},
    {"LoadURLInTabWithAnObject", R"("method": 30, "tabid": 5, "boundaries": {"0": "a"})",
     "LoadURLInTab 5 '' false false '' []", ""},
    {"LoadURLInTabWithNull", R"("method": 30, "tabid": 5, "boundaries": null)", "LoadURLInTab 5 '' false false '' []",
     ""},
    {"LoadURLInTabWithOtherElements",
     R"("method": 30, "tabid": 5, "boundaries": ["", 7, true, null, 2.5, ["x"], {"a": "x"}, "z"])",
     "LoadURLInTab 5 '' false false '' ['' '7' 'true' '' '2.5' '' '' 'z']", ""},
    {"CreateAppWaits", R"("method": 23, "url": "u")", "", "5 unsupported methods:23"},
    {"GetXmlFileWaits", R"("method": 28, "url": "u")", "", "5 unsupported methods:28"},
    {"Method29", R"("method": 29)", "", "5 unsupported methods:29"},
    {"Method31", R"("method": 31)", "", "5 unsupported methods:31"},
    {"GetRenderProcessIdWaits", R"("method": 32, "tabid": 5)", "", "5 unsupported methods:32"},
    {"PingWaits", R"("method": 34)", "", "5 unsupported methods:34"},
    {"Method33", R"("method": 33)", "", "5 unsupported methods:33"},
    {"Method0", R"("method": 0)", "", "5 unsupported methods:0"},
    {"NegativeMethod", R"("method": -21)", "", "5 unsupported methods:-21"},
    {"GreatestMethod", R"("method": 2147483647)", "", "5 unsupported methods:2147483647"},
    {"NoMethod", R"("tabid": 5)", "", "5 unsupported methods:0"},
    {"TextForMethod", R"("method": "24", "tabid": 5)", "", "5 unsupported methods:0"},
    {"MethodOutOfRange", R"("method": 4294967320, "tabid": 5)", "", "5 unsupported methods:0"},
    {"CodeUnderAnotherKey", R"("t": 24, "tabid": 5)", "", "5 unsupported methods:0"},
};

void PrintTo(const Command& command, std::ostream* out) {
    *out << command.name;
}

class OneWayCommand : public CommandsToABrowser, public ::testing::WithParamInterface<Command> {};

}  // namespace

TEST_P(OneWayCommand, IsReadLeniently) {
    const std::string call = GetParam().call;
    EXPECT_EQ(CallsOf({std::string(R"({"type": 0, )") + GetParam().members + "}"}),
              call.empty() ? Lines{} : Lines{call});
    const std::string complaint = GetParam().complaint;
    EXPECT_EQ(Complaints(), complaint.empty() ? Lines{} : Lines{complaint}) << mLog.Text();
}

INSTANTIATE_TEST_SUITE_P(Each, OneWayCommand, ::testing::ValuesIn(kCommands),
                         [](const auto& command) { return std::string(command.param.name); });

TEST_F(CommandsToABrowser, NeedNoTypeButNotAnother) {
    EXPECT_EQ(CallsOf({R"({"method": 24, "tabid": 5})", R"({"type": null, "method": 24, "tabid": 6})",
                       R"({"type": "mtm", "method": 24, "tabid": 7})"}),
              (Lines{kCall, "DestroyApp 6", "DestroyApp 7"}));
    EXPECT_EQ(Complaints(), Lines{});
    EXPECT_EQ(CallsOf({R"({"type": 1, "method": 24, "tabid": 5})", R"({"type": -1, "method": 99})", R"({"type": 3})"}),
              Lines{});
    EXPECT_EQ(Complaints(), (Lines{kAsserted, kAsserted, kAsserted}));
}

TEST_F(CommandsToABrowser, ThatAreNoObjectsReachNobody) {
    int failures = 0;
    for (const char* command : {"nonsense", " ", "null", "24", "\"24\"", "[{\"method\": 24}]", "{\"method\": 24"}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(CallsOf({command}), Lines{});
        failures += 2;  // with the one that Send() adds
        EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), failures);
    }
    EXPECT_EQ(CallsOf({kCommand}), (Lines{kCall}));
}

TEST_F(CommandsToABrowser, ComeInOrder) {
    EXPECT_EQ(CallsOf({kCommand, R"({"type": 0, "method": 25})", R"({"type": 0, "method": 99})", kCommand}),
              (Lines{kCall, "DestroyAllApps", kCall}));
}

TEST_F(CommandsToABrowser, AreNotStoppedByOneThatFails) {
    mBrowser.SetStatus(-3);
    EXPECT_EQ(CallsOf({kCommand, kCommand}), (Lines{kCall, kCall}));
    EXPECT_EQ(Complaints(), Lines{});
}

TEST_F(CommandsToABrowser, HoldTextsOfEveryKind) {
    for (const WireText& text : WireTexts()) {
        SCOPED_TRACE(text.name);
        const std::string& json = text.onTheWire;
        EXPECT_EQ(CallsOf({R"({"type": 0, "method": 30, "url": )" + json + R"(, "appMode": )" + json +
                           R"(, "boundaries": [)" + json + ", " + json + "]}"}),
                  (Lines{"LoadURLInTab 0 '" + text.readBack + "' false false '" + text.readBack + "' ['" +
                         text.readBack + "' '" + text.readBack + "']"}));
    }
}

TEST_F(CommandsToABrowser, MayHoldManyBoundaries) {
    std::string json;
    std::string expected;
    for (int i = 0; i < 10000; ++i) {
        json += (i == 0 ? "\"" : ", \"") + std::to_string(i) + "\"";
        expected += (i == 0 ? "'" : " '") + std::to_string(i) + "'";
    }
    EXPECT_EQ(CallsOf({R"({"type": 0, "method": 30, "boundaries": [)" + json + "]}"}),
              (Lines{"LoadURLInTab 0 '' false false '' [" + expected + "]"}));
}

TEST_F(MtmCommands, AreDroppedWithoutABrowser) {
    Send({kCommand});
    Send({R"({"type": 0, "method": 99})"});
    EXPECT_EQ(Complaints(), (Lines{kNobody, kNobody}));
    // The type is looked at first.
    Send({R"({"type": 1, "method": 24})"});
    EXPECT_EQ(Complaints(), (Lines{kNobody, kNobody, kAsserted}));
    EXPECT_EQ(mBrowser.Calls(), Lines{});
}

TEST_F(CommandsToABrowser, AreDroppedAfterItHasGone) {
    Adaptor().UnRegisterCallback();
    EXPECT_EQ(CallsOf({kCommand}), Lines{});
    EXPECT_EQ(Complaints(), (Lines{kNobody}));
    Adaptor().RegisterCallback(&mBrowser);
    EXPECT_EQ(CallsOf({kCommand}), (Lines{kCall}));
    Adaptor().RegisterCallback(nullptr);
    EXPECT_EQ(CallsOf({kCommand}), Lines{});
}

TEST_F(CommandsToABrowser, ReachTheLastThatWasRegistered) {
    RecordingMtm second;
    Adaptor().RegisterCallback(&second);
    EXPECT_EQ(CallsOf({kCommand}), Lines{});
    EXPECT_EQ(second.Calls(), (Lines{kCall}));
}

TEST_F(CommandsToABrowser, AreDroppedByAnAdaptorMadeAnew) {
    Mtm::DeleteInstance();
    ASSERT_NE(Mtm::GetInstance(), nullptr);
    EXPECT_EQ(CallsOf({kCommand}), Lines{});
}

TEST_F(MtmCommands, RegisteringTellsThePlatformNothing) {
    const FakePlatform platform(UnderTest().Socket(), R"({"ret": 0})");
    Adaptor().RegisterCallback(&mBrowser);
    Adaptor().UnRegisterCallback();
    EXPECT_TRUE(platform.Frames().empty());
    Lines lines;
    for (const LogLine& line : mLog.Lines()) {
        if (line.tag == kTag) lines.push_back(line.function + " " + line.message);
    }
    EXPECT_EQ(lines, (Lines{"RegisterCallback ENTER", "RegisterCallback LEAVE", "UnRegisterCallback ENTER",
                            "UnRegisterCallback LEAVE"}));
}

TEST_F(MtmCommands, ComeWhileRegistrationsChange) {
    RecordingMtm second;
    std::atomic<bool> stop{false};
    std::thread sender([&] {
        while (!stop) {
            Send({kCommand, kCommand});
            EXPECT_NE(Ask(R"({"type": 0, "method": 34})"), "no reply");
        }
    });
    for (int i = 0; i < 1000; ++i) {
        Adaptor().RegisterCallback(&mBrowser);
        Adaptor().RegisterCallback(&second);
        Adaptor().UnRegisterCallback();
    }
    stop = true;
    sender.join();
    EXPECT_EQ(CallsOf({kCommand}), Lines{});
}

struct Question {
    const char* name;
    const char* members;  // besides "type"
    const char* call;
    const char* reply;         // on status 0
    const char* replyFailing;  // on any other
};

const Question kQuestions[] = {
    {"CreateApp",
     R"("method": 23, "url": "u", "auto_show": true, "isBr": false, "appMode": "m", "boundaries": ["a", "b"])",
     "CreateApp 'u' true false 'm' ['a' 'b'] 0", "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n", kRefused},
    {"CreateAppBroadcastRelated", R"("method": 23, "url": "u", "isBr": true)", "CreateApp 'u' false true '' [] 0",
     "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n", kRefused},
    {"CreateAppWithTheOtherSpelling", R"("method": 23, "isBR": true)", "CreateApp '' false false '' [] 0",
     "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n", kRefused},
    {"CreateAppLacks", R"("method": 23)", "CreateApp '' false false '' [] 0",
     "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n", kRefused},
    {"CreateAppMistyped",
     R"("method": 23, "url": ["u"], "auto_show": "true", "isBr": {}, "appMode": null, "boundaries": "a")",
     "CreateApp '' false false '' [] 0", "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n", kRefused},
    {"CreateAppWithoutBoundaries", R"("method": 23, "url": "u", "boundaries": [])", "CreateApp 'u' false false '' [] 0",
     "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n", kRefused},
    {"GetXmlFile", R"("method": 28, "url": "u", "appID": "i")", "GetXmlFile 'u' 'i' ''",
     "{\n\t\"ret\" : 0,\n\t\"xmlFile\" : \"<a b=\\\"1\\\"/>\"\n}\n", "{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n"},
    {"GetXmlFileWithAnotherSpelling", R"("method": 28, "url": "u", "appId": "i")", "GetXmlFile 'u' '' ''",
     "{\n\t\"ret\" : 0,\n\t\"xmlFile\" : \"<a b=\\\"1\\\"/>\"\n}\n", "{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n"},
    {"GetXmlFileLacks", R"("method": 28)", "GetXmlFile '' '' ''",
     "{\n\t\"ret\" : 0,\n\t\"xmlFile\" : \"<a b=\\\"1\\\"/>\"\n}\n", "{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n"},
    {"GetRenderProcessId", R"("method": 32, "tabid": -5)", "GetRenderProcessId -5 0",
     "{\n\t\"render_id\" : -12,\n\t\"ret\" : 0\n}\n", kRefused},
    {"GetRenderProcessIdLacks", R"("method": 32)", "GetRenderProcessId 0 0",
     "{\n\t\"render_id\" : -12,\n\t\"ret\" : 0\n}\n", kRefused},
    {"Ping", R"("method": 34)", "Ping -1", "{\n\t\"ret\" : 0,\n\t\"status\" : -13\n}\n", kRefused},
};

void PrintTo(const Question& question, std::ostream* out) {
    *out << question.name;
}

class CommandWithReply : public CommandsToABrowser, public ::testing::WithParamInterface<Question> {
  protected:
    std::string Message(const char* type = "0") const {
        return std::string("{\"type\": ") + type + ", " + GetParam().members + "}";
    }
};

TEST_P(CommandWithReply, IsAnsweredByWhatTheBrowserGives) {
    EXPECT_EQ(Ask(Message()), GetParam().reply);
    EXPECT_EQ(mBrowser.Calls(), (Lines{GetParam().call}));
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

TEST_P(CommandWithReply, IsRefusedWhenTheBrowserFails) {
    for (const int status : {-1, 1, -2147483647 - 1, 2147483647}) {
        mBrowser.Forget();
        mBrowser.SetStatus(status);
        EXPECT_EQ(Ask(Message()), GetParam().replyFailing);
        EXPECT_EQ(mBrowser.Calls(), (Lines{GetParam().call}));
    }
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

TEST_P(CommandWithReply, OfAnotherTypeGetsNull) {
    EXPECT_EQ(Ask(Message("1")), kNoReply);
    EXPECT_EQ(mBrowser.Calls(), Lines{});
    EXPECT_EQ(Complaints(), (Lines{kAsserted}));
}

TEST_P(CommandWithReply, GetsNullWithoutABrowser) {
    Adaptor().UnRegisterCallback();
    EXPECT_EQ(Ask(Message()), kNoReply);
    EXPECT_EQ(mBrowser.Calls(), Lines{});
    EXPECT_EQ(Complaints(), (Lines{kNobody}));
}

INSTANTIATE_TEST_SUITE_P(Each, CommandWithReply, ::testing::ValuesIn(kQuestions),
                         [](const auto& question) { return std::string(question.param.name); });

TEST_F(CommandsToABrowser, ThatMayNotAskForAReplyAreRefused) {
    for (int method = -1; method <= 40; ++method) {
        if (method == 23 || method == 28 || method == 32 || method == 34) continue;
        SCOPED_TRACE(method);
        mLog.Clear();
        EXPECT_EQ(Ask(R"({"type": 0, "tabid": 5, "method": )" + std::to_string(method) + "}"), kRefused);
        EXPECT_EQ(Complaints(), (Lines{"5 unsupported methods:" + std::to_string(method)}));
    }
    EXPECT_EQ(mBrowser.Calls(), Lines{});
}

TEST_F(CommandsToABrowser, WithoutACodeThatAskForAReplyAreRefused) {
    EXPECT_EQ(Ask("{}"), kRefused);
    EXPECT_EQ(Ask(R"({"type": 0, "method": "34"})"), kRefused);
    EXPECT_EQ(Complaints(), (Lines{"5 unsupported methods:0", "5 unsupported methods:0"}));
}

TEST_F(MtmCommands, WithoutABrowserGetNullWhateverTheirCode) {
    EXPECT_EQ(Ask(R"({"type": 0, "method": 99})"), kNoReply);
    EXPECT_EQ(Complaints(), (Lines{kNobody}));
    EXPECT_EQ(Ask(R"({"type": 1, "method": 99})"), kNoReply);
    EXPECT_EQ(Complaints(), (Lines{kNobody, kAsserted}));
}

TEST_F(CommandsToABrowser, ThatAreNoObjectsGetAReplyOfSizeZero) {
    for (const char* command : {"nonsense", "null", "34", "[{\"method\": 34}]"}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(Ask(command), "");
    }
    EXPECT_EQ(mBrowser.Calls(), Lines{});
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), 4);
}

TEST_F(CommandsToABrowser, GetFilesOfEveryKind) {
    for (const WireText& text : WireTexts()) {
        SCOPED_TRACE(text.name);
        mBrowser.SetXmlFile(text.text);
        EXPECT_EQ(Ask(R"({"type": 0, "method": 28})"),
                  "{\n\t\"ret\" : 0,\n\t\"xmlFile\" : " + text.onTheWire + "\n}\n");
    }
}

TEST_F(CommandsToABrowser, AreThoseOfTheProtocol) {
    const Json::Value& protocol = UnderTest().Wire().protocol;
    EXPECT_EQ(protocol["event_envelope"]["type"]["key"].asString(), "type");
    EXPECT_EQ(protocol["event_envelope"]["type"]["value"].asInt(), 0);
    EXPECT_EQ(protocol["event_envelope"]["code"]["key"].asString(), "method");
    Lines events;
    for (const Json::Value& event : protocol["events"]) {
        EXPECT_EQ(event["forms"].size(), 1u);
        std::string line = event["code"].asString() + " " + event["forms"][0].asString() + " ";
        line += event["callback"].asString();
        for (const Json::Value& member : event["members"]) {
            line += " " + member["key"].asString() + ":" + member["type"].asString();
        }
        for (const Json::Value& member : event["reply"]) {
            line += " > " + member["key"].asString() + ":" + member["type"].asString();
        }
        events.push_back(line);
    }
    EXPECT_EQ(
        events,
        (Lines{"21 one-way SetAppConfig isBR:bool tabid:int", "22 one-way SetDvbOrigin tabid:int origin:string",
               "23 request CreateApp url:string auto_show:bool isBr:bool appMode:string boundaries:array > tabid:int",
               "24 one-way DestroyApp tabid:int", "25 one-way DestroyAllApps",
               "26 one-way ShowHideTab tabid:int showHide:bool isMulti:bool",
               "27 one-way SendKey key:int keyType:int keyeventId:int",
               "28 request GetXmlFile url:string appID:string > xmlFile:string",
               "30 one-way LoadURLInTab tabid:int url:string auto_show:bool isBR:bool appMode:string boundaries:array",
               "32 request GetRenderProcessId tabid:int > render_id:int", "34 request Ping > status:int"}));
    EXPECT_EQ(CallsOf({protocol["examples"]["event"]["document"].toStyledString()}),
              (Lines{"ShowHideTab 3 true false"}));
}

}  // namespace hbbtv::test
