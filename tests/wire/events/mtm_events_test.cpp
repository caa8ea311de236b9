// The platform's commands to the browser's tabs: how they are read, in all their forms, what is answered, and whom they
// reach from when to when.

#include <android/log.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>

#include "event_connection.h"
#include "ipc/src/mtm/tolm_mtm_adaptor_ipc.h"
#include "lenient_readings.h"
#include "log_capture.h"
#include "recording_mtm.h"
#include "rows.h"
#include "scratch_directory.h"
#include "shown_event.h"
#include "wire/endpoint.h"
#include "wire_texts.h"
#include "written_json.h"

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

    EventConnection Connection() const {
        const Endpoint events = EventsOf(UnderTest().Wire());
        return {mDirectory / events.socket, events.port};
    }

    // Sends one-way commands on one connection and waits until they have been handled.
    void Send(const Lines& commands) const { EXPECT_TRUE(Connection().Send(commands, "nonsense")); }

    // Returns the calls of the browser for one-way commands.
    Lines CallsOf(const Lines& commands) {
        mBrowser.Forget();
        Send(commands);
        return mBrowser.Calls();
    }

    std::string Ask(const std::string& command) const { return Connection().Reply(command); }

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

// The arguments of the browser's call are members of the command.
struct Command {
    const char* name;
    std::vector<std::string> arguments;
    const char* result = "";        // of the call, as it comes in
    const char* reply = "";         // when the status is 0
    const char* replyFailing = "";  // when it is another
};

const Command kCommands[] = {
    {"SetAppConfig", {"tabid", "isBR"}},
    {"SetDvbOrigin", {"tabid", "origin"}},
    {"DestroyApp", {"tabid"}},
    {"DestroyAllApps", {}},
    {"ShowHideTab", {"tabid", "showHide", "isMulti"}},
    {"SendKey", {"key", "keyType", "keyeventId"}},
    {"LoadURLInTab", {"tabid", "url", "auto_show", "isBR", "appMode", "boundaries"}},
};

const Command kQuestions[] = {
    {"CreateApp",
     {"url", "auto_show", "isBr", "appMode", "boundaries"},
     " 0",
     "{\n\t\"ret\" : 0,\n\t\"tabid\" : -11\n}\n",
     kRefused},
    {"GetXmlFile",
     {"url", "appID"},
     " \"\"",
     "{\n\t\"ret\" : 0,\n\t\"xmlFile\" : \"<a b=\\\"1\\\"/>\"\n}\n",
     "{\n\t\"ret\" : -1,\n\t\"xmlFile\" : \"\"\n}\n"},
    {"GetRenderProcessId", {"tabid"}, " 0", "{\n\t\"render_id\" : -12,\n\t\"ret\" : 0\n}\n", kRefused},
    {"Ping", {}, " -1", "{\n\t\"ret\" : 0,\n\t\"status\" : -13\n}\n", kRefused},
};

// How a list of strings is read.
const std::vector<Reading> kLists = {
    {"", "[]"},
    {"[]", "[]"},
    {"\"a\"", "[]"},
    {"null", "[]"},
    {R"({"0": "a"})", "[]"},
    {R"(["", 7, true, null, 2.5, ["x"], {"a": "x"}, "z"])", R"(["" "7" "true" "" "2.5" "" "" "z"])"},
};

void PrintTo(const Command& command, std::ostream* out) {
    *out << command.name;
}

class TabCommand : public CommandsToABrowser, public ::testing::WithParamInterface<Command> {
  protected:
    bool Asks() const { return mCommand.Definition()["forms"][0] == "request"; }

    // The calls of the browser for the command, which comes in its form.
    Lines CallsOf(const std::string& command) {
        if (!Asks()) return CommandsToABrowser::CallsOf({command});
        mBrowser.Forget();
        Ask(command);
        return mBrowser.Calls();
    }

    static Lines Calls(const ShownMembers& shown) {
        std::string call = GetParam().name;
        for (const std::string& argument : GetParam().arguments) call += " " + shown.at(argument);
        return {call + GetParam().result};
    }

    const ProtocolEvent mCommand{GetParam().name};
};

class CommandWithReply : public TabCommand {};

std::string NameOf(const ::testing::TestParamInfo<Command>& info) {
    return info.param.name;
}

}  // namespace

TEST_P(TabCommand, ReachesTheBrowser) {
    EXPECT_EQ(mCommand.Definition()["callback"].asString(), GetParam().name);
    EXPECT_EQ(mCommand.Definition()["members"].size(), GetParam().arguments.size());
    EXPECT_EQ(CallsOf(mCommand.Text()), Calls(ShownOf(mCommand)));
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

TEST_P(TabCommand, IsReadLeniently) {
    ShownMembers none;
    std::string alone = mCommand.Text();
    for (const Json::Value& member : mCommand.Definition()["members"]) {
        const std::string key = member["key"].asString();
        const std::string type = member["type"].asString();
        for (const Reading& reading : type == "array" ? kLists : ReadingsOf(type, nullptr)) {
            SCOPED_TRACE(key + ": " + reading.json);
            ShownMembers shown = ShownOf(mCommand);
            shown[key] = reading.shown;
            EXPECT_EQ(CallsOf(WithMember(mCommand.Text(), key, reading.json)), Calls(shown));
            if (*reading.json == '\0') none[key] = reading.shown;
        }
        alone = WithMember(alone, key, "");
    }
    EXPECT_EQ(CallsOf(alone), Calls(none));
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

INSTANTIATE_TEST_SUITE_P(OneWay, TabCommand, ::testing::ValuesIn(kCommands), NameOf);
INSTANTIATE_TEST_SUITE_P(WithReply, TabCommand, ::testing::ValuesIn(kQuestions), NameOf);

TEST_F(CommandsToABrowser, HaveOneSpellingForEachMember) {
    EXPECT_EQ(CallsOf({R"({"method": 21, "isBr": true, "tabid": 5})", R"({"method": 30, "tabid": 5, "isBr": true})",
                       R"({"method": 27, "key": 1, "keyType": 2, "keyEventId": 3})"}),
              (Lines{"SetAppConfig 5 false", R"(LoadURLInTab 5 "" false false "" [])", "SendKey 1 2 0"}));
    mBrowser.Forget();
    Ask(R"({"method": 23, "isBR": true})");
    Ask(R"({"method": 28, "url": "u", "appId": "i"})");
    EXPECT_EQ(mBrowser.Calls(), (Lines{R"(CreateApp "" false false "" [] 0)", R"(GetXmlFile "u" "" "")"}));
}

TEST_F(CommandsToABrowser, HaveOneFormAndACodeOfTheirOwn) {
    std::map<int, std::string> forms;
    for (const Json::Value& command : UnderTest().Wire().protocol["events"]) {
        EXPECT_EQ(command["forms"].size(), 1u);
        forms[command["code"].asInt()] = command["forms"][0].asString();
    }
    EXPECT_EQ(forms.size(), std::size(kCommands) + std::size(kQuestions));
    for (int method = -1; method <= 40; ++method) {
        SCOPED_TRACE(method);
        mBrowser.Forget();
        mLog.Clear();
        const std::string command = R"({"type": 0, "tabid": 5, "method": )" + std::to_string(method) + "}";
        Lines complaints;
        if (forms[method] != "one-way") {
            Send({command});
            complaints.push_back("5 unsupported methods:" + std::to_string(method));
        }
        if (forms[method] != "request") {
            EXPECT_EQ(Ask(command), kRefused);
            complaints.push_back("5 unsupported methods:" + std::to_string(method));
        }
        EXPECT_EQ(mBrowser.Calls(), Lines{});
        EXPECT_EQ(Complaints(), complaints);
    }
}

TEST_F(CommandsToABrowser, AreDroppedWithAWarningIfTheCodeIsUnknown) {
    const std::pair<const char*, const char*> codes[] = {
        {R"("method": -21)", "-21"}, {R"("method": 2147483647)", "2147483647"}, {R"("key": 5)", "0"},
        {R"("method": "24")", "0"},  {R"("method": 4294967320)", "0"},          {R"("t": 24)", "0"},
    };
    for (const auto& [member, shown] : codes) {
        SCOPED_TRACE(member);
        mLog.Clear();
        EXPECT_EQ(CallsOf({std::string(R"({"type": 0, "tabid": 5, )") + member + "}"}), Lines{});
        EXPECT_EQ(Complaints(), (Lines{std::string("5 unsupported methods:") + shown}));
    }
}

TEST_F(CommandsToABrowser, NeedNoTypeButNotAnother) {
    EXPECT_EQ(CallsOf({R"({"method": 24, "tabid": 5})", R"({"type": null, "method": 24, "tabid": 6})",
                       R"({"type": "mtm", "method": 24, "tabid": 7})"}),
              (Lines{kCall, "DestroyApp 6", "DestroyApp 7"}));
    EXPECT_EQ(Complaints(), Lines{});
    EXPECT_EQ(CallsOf({R"({"type": 1, "method": 24, "tabid": 5})", R"({"type": -1, "method": 99})", R"({"type": 3})"}),
              Lines{});
    EXPECT_EQ(Complaints(), (Lines{kAsserted, kAsserted, kAsserted}));
}

TEST_F(CommandsToABrowser, AreDroppedIfTheyAreNotObjects) {
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

TEST_F(CommandsToABrowser, MayHaveStringsOfEveryKind) {
    for (const WireText& text : WireTexts()) {
        SCOPED_TRACE(text.name);
        const std::string& json = text.onTheWire;
        const std::string shown = Show(text.readBack);
        EXPECT_EQ(CallsOf({R"({"type": 0, "method": 30, "url": )" + json + R"(, "appMode": )" + json +
                           R"(, "boundaries": [)" + json + ", " + json + "]}"}),
                  (Lines{"LoadURLInTab 0 " + shown + " false false " + shown + " [" + shown + " " + shown + "]"}));
    }
}

TEST_F(CommandsToABrowser, MayHoldManyBoundaries) {
    std::string json;
    std::string expected;
    for (int i = 0; i < 10000; ++i) {
        json += (i == 0 ? "\"" : ", \"") + std::to_string(i) + "\"";
        expected += (i == 0 ? "\"" : " \"") + std::to_string(i) + "\"";
    }
    EXPECT_EQ(CallsOf({R"({"type": 0, "method": 30, "boundaries": [)" + json + "]}"}),
              (Lines{R"(LoadURLInTab 0 "" false false "" [)" + expected + "]"}));
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

TEST_F(CommandsToABrowser, ReachTheLastRegisteredBrowser) {
    RecordingMtm second;
    Adaptor().RegisterCallback(&second);
    EXPECT_EQ(CallsOf({kCommand}), Lines{});
    EXPECT_EQ(second.Calls(), (Lines{kCall}));
}

TEST_F(CommandsToABrowser, AreDroppedByARecreatedAdaptor) {
    Mtm::DeleteInstance();
    ASSERT_NE(Mtm::GetInstance(), nullptr);
    EXPECT_EQ(CallsOf({kCommand}), Lines{});
}

TEST_F(MtmCommands, AreRegisteredWithoutARequest) {
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

TEST_P(CommandWithReply, IsAnsweredWithTheResultsOfTheBrowser) {
    EXPECT_EQ(Ask(mCommand.Text()), GetParam().reply);
    EXPECT_EQ(mBrowser.Calls(), Calls(ShownOf(mCommand)));
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

TEST_P(CommandWithReply, IsRefusedWhenTheBrowserFails) {
    for (const int status : {-1, 1, -2147483647 - 1, 2147483647}) {
        mBrowser.Forget();
        mBrowser.SetStatus(status);
        EXPECT_EQ(Ask(mCommand.Text()), GetParam().replyFailing);
        EXPECT_EQ(mBrowser.Calls(), Calls(ShownOf(mCommand)));
    }
    EXPECT_EQ(Complaints(), Lines{}) << mLog.Text();
}

TEST_P(CommandWithReply, OfAnotherTypeGetsNull) {
    EXPECT_EQ(Ask(WithMember(mCommand.Text(), "type", "1")), kNoReply);
    EXPECT_EQ(mBrowser.Calls(), Lines{});
    EXPECT_EQ(Complaints(), (Lines{kAsserted}));
}

TEST_P(CommandWithReply, GetsNullWithoutABrowser) {
    Adaptor().UnRegisterCallback();
    EXPECT_EQ(Ask(mCommand.Text()), kNoReply);
    EXPECT_EQ(mBrowser.Calls(), Lines{});
    EXPECT_EQ(Complaints(), (Lines{kNobody}));
}

INSTANTIATE_TEST_SUITE_P(Each, CommandWithReply, ::testing::ValuesIn(kQuestions), NameOf);

TEST_F(CommandsToABrowser, AreRefusedAsRequestsWithoutACode) {
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

TEST_F(CommandsToABrowser, GetAnEmptyReplyIfTheyAreNotObjects) {
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

TEST_F(CommandsToABrowser, HaveAnExampleInTheProtocol) {
    EXPECT_EQ(CallsOf({UnderTest().Wire().protocol["examples"]["event"]["document"].toStyledString()}),
              (Lines{"ShowHideTab 3 true false"}));
}

}  // namespace hbbtv::test
