// The commands for traffic with a platform in Python that shares no code with the tools, so that what they find is not
// only what they have written themselves.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kUrl = "http://first.example/?user=anna";

class OnAnotherPlatform : public InFrontOfTheSystem {
  protected:
    void StartPlatform() override {
        mPython = std::make_unique<PlatformInPython>();
        ASSERT_TRUE(mPython->Ready()) << mPython->Output();
    }

    static std::string Get(const std::vector<std::string>& call, const std::string& result) {
        std::vector<std::string> words{"call"};
        words.insert(words.end(), call.begin(), call.end());
        words.insert(words.end(), {"--get", result});
        const FinishedRun run = Ctl(words);
        EXPECT_EQ(run.exit, 0) << run.Text();
        return run.output.substr(0, run.output.find('\n'));
    }

    static std::string Name(const std::string& channel) { return Get({"IChannel.GetName", channel}, "name"); }

    // A client finds a channel, gives it a name, and changes to it. Sets mChannel and mObject.
    void Use() {
        mChannel = Get({"IChannelConfig.GetCurrentChannel"}, "channel");
        EXPECT_EQ(Name(mChannel), "First");
        mObject = Get({"IVideoBroadcast.Create", "7"}, "vb");
        Listener listener(
            {"channel_config", "video_broadcast", "--with", "vb=" + mObject, "--with", "context=7", "--count", "4"});
        EXPECT_TRUE(listener.Listens()) << listener.Output();
        EXPECT_EQ(Ctl({"call", "IChannel.SetName", mChannel, "Uno"}).exit, 0);
        EXPECT_EQ(Ctl({"call", "IVideoBroadcast.SetChannel", mObject, mChannel, "false", kUrl}).exit, 0);
        EXPECT_EQ(listener.WaitForExit(), 0) << listener.Output();
        EXPECT_EQ(Name(mChannel), "Uno");
        EXPECT_EQ(Get({"ILocalSystem.GetSerialNumber"}, "serialNumber"), "PY-2204-118842");
    }

    // Returns the file of a recording of Use().
    std::string Recorded() {
        const std::string file = mDirectory / "recorded.ndjson";
        CtlProcess monitor({"monitor", "--record", file});
        EXPECT_TRUE(monitor.WaitForOutput("listening; press Ctrl-C to stop\n")) << monitor.Output();
        Use();
        monitor.Signal(SIGINT);
        EXPECT_EQ(monitor.WaitForExit(), 0) << monitor.Output();
        return file;
    }

    // Returns the operations of the lines, without repetitions.
    static std::vector<std::string> Operations(const std::string& lines) {
        std::vector<std::string> operations;
        for (const Json::Value& record : Documents(lines)) {
            const std::string name = record["family"].asString() + "." + record["operation"].asString();
            if (record["kind"] == "exchange" && (operations.empty() || operations.back() != name)) {
                operations.push_back(name);
            }
        }
        return operations;
    }

    void EndPlatformAndService() {
        mService.reset();
        mPython->Signal(SIGTERM);
        EXPECT_EQ(mPython->WaitForExit(), 0);
    }

    void StartService() {
        mService = std::make_unique<ServiceProcess>();
        ASSERT_NE(FindVideoBroadcast(), nullptr) << mService->Output();
    }

    std::unique_ptr<PlatformInPython> mPython;
    std::string mChannel;
    std::string mObject;
};

TEST_F(OnAnotherPlatform, TheMonitorShowsWhatTheFilterSelects) {
    CtlProcess monitor({"monitor", "--filter", "event | op:SetName | kind:connected & family:channel"});
    ASSERT_TRUE(monitor.WaitForOutput("18 sockets in " + mDirectory.Path() + "; listening")) << monitor.Output();
    Use();
    ASSERT_TRUE(monitor.WaitForOutput("_PLAY_STATE context=0x00000007 error=0 state=2\n")) << monitor.Output();
    monitor.Signal(SIGINT);
    EXPECT_EQ(monitor.WaitForExit(), 0);
    const std::string shown = monitor.Output();
    EXPECT_THAT(shown, ContainsRegex("\\+ channel connection [0-9]+: library [^\n]*hbbtv@1.0-service \\(" +
                                     std::to_string(mService->Pid()) + "\\), platform python3[^\n]* \\(" +
                                     std::to_string(mPython->Pid()) + "\\)\n"));
    EXPECT_THAT(shown, HasSubstr("  channel.SetName c_handle=" + mChannel + " \"Uno\" name=\"Uno\" -> 0  "));
    EXPECT_THAT(shown, HasSubstr(" * channel_config.changed reserved=\"\\u0001\"\n"));
    EXPECT_THAT(shown, HasSubstr(" * video_broadcast.TOLM_VB_EVENT_CHANNEL_CHANGED channelHandle=" + mChannel));
    EXPECT_THAT(shown, Not(HasSubstr("GetCurrentChannel")));
}

TEST_F(OnAnotherPlatform, AKilledMonitorIsRepaired) {
    CtlProcess killed({"monitor"});
    ASSERT_TRUE(killed.WaitForOutput("listening; press Ctrl-C to stop\n")) << killed.Output();
    killed.Kill();
    EXPECT_EQ(Ctl({"send", "channel_config.GetCurrentChannel"}).exit, 3);
    EXPECT_THAT(Ctl({"doctor"}).output, HasSubstr("was killed; restored 18 sockets that it had left\n"));
    Use();
}

TEST_F(OnAnotherPlatform, TheDoctorTellsWhetherItHangsOrIsDead) {
    CtlProcess monitor({"monitor"});
    ASSERT_TRUE(monitor.WaitForOutput("listening; ")) << monitor.Output();
    EXPECT_EQ(Ctl({"send", "channel_config.GetCurrentChannel"}).exit, 0);
    mPython->Signal(SIGSTOP);
    CtlProcess asking({"send", "channel_config.GetCurrentChannel", "--timeout", "20s"});
    ASSERT_TRUE(monitor.WaitForOutput("  open for 1.")) << monitor.Output();
    const std::string process = " \\(" + std::to_string(mPython->Pid()) + "\\)";
    EXPECT_THAT(Ctl({"doctor"}).output,
                ContainsRegex("PROBLEM  requests +channel_config.GetCurrentChannel has been open for [0-9.]+ s; the "
                              "platform, python3[0-9.]*" +
                              process + ", is stopped; continue it"));
    mPython->Kill();
    EXPECT_EQ(asking.WaitForExit(), 6) << "the request ends with its platform";
    ASSERT_TRUE(WaitFor([] {
        return Ctl({"doctor"}).output.find("18 of 18 sockets are stale; its process has ended") != std::string::npos;
    })) << Ctl({"doctor"}).output;
    EXPECT_THAT(Ctl({"doctor"}).output, Not(HasSubstr("has been open")));
}

TEST_F(OnAnotherPlatform, TheLogOfTheServiceHasWhatTheMonitorHasSeen) {
    ASSERT_EQ(Ctl({"log", "debug"}).exit, 0);
    const std::string recorded = Recorded();
    WriteFile(mDirectory / "service.log", mService->Output());
    const FinishedRun import = Ctl({"record", "import", mDirectory / "service.log"});
    EXPECT_EQ(import.exit, 0) << import.errors;
    EXPECT_THAT(import.errors, HasSubstr(" 0 messages cut, 0 mixed, 0 unknown; 0 lines lost\n"));
    for (const char* filter : {"op:GetName", "op:SetName", "event & family:video_broadcast", "op:GetSerialNumber"}) {
        std::vector<Json::Value> bodies[2];
        for (const bool log : {false, true}) {
            const FinishedRun show =
                CtlWithInput({"show", "-", "--json", "--filter", filter}, log ? import.output : ReadFile(recorded));
            for (const Json::Value& record : Documents(show.output)) {
                bodies[log].push_back(record["message"]["json"]);
                bodies[log].push_back(record["reply"]["json"]);
            }
        }
        EXPECT_EQ(bodies[true], bodies[false]) << filter;
        EXPECT_FALSE(bodies[true].empty()) << filter;
    }
}

TEST_F(OnAnotherPlatform, ItsRecordingIsShownInEveryForm) {
    const std::string recorded = Recorded();
    EXPECT_THAT(Operations(Ctl({"show", recorded, "--json", "--filter", "!family:video_broadcast"}).output),
                testing::IsSupersetOf({"channel_config.GetCurrentChannel", "channel.GetName", "channel.SetName",
                                       "channel_config.changed", "local_system.GetSerialNumber"}));
    const Json::Value statistics = Document(Ctl({"show", recorded, "--stats", "--json"}));
    for (const Json::Value& operation : statistics["operations"]) {
        if (operation["operation"] == "GetName") {
            EXPECT_EQ(operation["calls"].asInt(), 2);
        }
    }
    EXPECT_THAT(Ctl({"show", recorded, "--follow", mObject}).output,
                HasSubstr("\nfrom the reply of video_broadcast.Create (record "));
    EXPECT_THAT(Ctl({"show", recorded, "--ladder"}).output, HasSubstr("|- channel.GetName c_handle=" + mChannel));
    EXPECT_THAT(Ctl({"show", recorded, "--slow"}).output, HasSubstr("channel.SetName"));
    EXPECT_THAT(Ctl({"show", recorded, "--diff", recorded, "--json"}).output, HasSubstr("GetSerialNumber"));
    const FinishedRun redacted = Ctl({"show", recorded, "--redact", "--filter", "op:GetSerialNumber"});
    EXPECT_THAT(redacted.output, HasSubstr("serialNumber=\"redacted-"));
    EXPECT_THAT(redacted.output, Not(HasSubstr("118842")));
}

TEST_F(OnAnotherPlatform, ItsRecordingIsExported) {
    const std::string recorded = Recorded();
    const std::string capture = mDirectory / "capture.pcapng";
    ASSERT_EQ(Ctl({"show", recorded, "--pcapng", capture}).exit, 0);
    const FinishedRun tshark = RunToEnd({"tshark", "-X", "lua_script:" HBBTV_DISSECTOR, "-r", capture, "-Y",
                                         "hbbtv.op == \"GetName\"", "-T", "fields", "-e", "hbbtv.channel.name"},
                                        "", {"HOME=" + mDirectory.Path()});
    EXPECT_EQ(tshark.output, "\nFirst\n\nUno\n") << tshark.errors;
    const FinishedRun trace =
        RunToEnd({"python3", "-c",
                  "import json, sys\n"
                  "events = json.load(sys.stdin)['traceEvents']\n"
                  "print(sum(event['ph'] == 'X' and event['name'] == 'channel.GetName' for event in events))"},
                 Ctl({"show", recorded, "--perfetto", "-"}).output);
    EXPECT_EQ(trace.output, "4\n") << "two exchanges, on either side; " << trace.errors;
    ASSERT_EQ(Ctl({"show", recorded, "--html", mDirectory / "page.html"}).exit, 0);
    EXPECT_THAT(ReadFile(mDirectory / "page.html"), HasSubstr("\"name\":\"Uno\""));
}

TEST_F(OnAnotherPlatform, APlayOfItsRecordingHoldsOnIt) {
    const std::string recorded = Recorded();
    ASSERT_EQ(Ctl({"show", recorded, "--walk", mDirectory / "walk.play"}).exit, 0);
    const std::string play = ReadFile(mDirectory / "walk.play");
    EXPECT_THAT(play, HasSubstr("IChannel.GetName($channel1) -> 0, \"First\"\n"));
    EndPlatformAndService();
    ASSERT_NO_FATAL_FAILURE(StartPlatform());
    ASSERT_NO_FATAL_FAILURE(StartService());
    const FinishedRun run = Ctl({"play", mDirectory / "walk.play"});
    EXPECT_EQ(run.exit, 0) << run.Text() << play;
}

TEST_F(OnAnotherPlatform, ItsRecordingTakesItsPlace) {
    const std::string recorded = Recorded();
    EndPlatformAndService();
    CtlProcess replay({"replay", recorded, "--as", "platform"});
    ASSERT_TRUE(replay.WaitForOutput("listening; press Ctrl-C to stop\n")) << replay.Output();
    ASSERT_NO_FATAL_FAILURE(StartService());
    Use();
    replay.Signal(SIGINT);
    EXPECT_EQ(replay.WaitForExit(), 0);
    EXPECT_THAT(replay.Output(), HasSubstr("\n0 not in the recording, 0 replied differently, "));
}

TEST_F(OnAnotherPlatform, ItsRecordingAsTheLibraryFindsNoDifference) {
    const std::string recorded = Recorded();
    EndPlatformAndService();
    ASSERT_NO_FATAL_FAILURE(StartPlatform());
    const FinishedRun replay = Ctl({"replay", recorded, "--as", "library"});
    EXPECT_EQ(replay.exit, 0) << replay.Text();
    EXPECT_THAT(replay.output, HasSubstr("replayed 11 of 11 requests and 4 of 4 events\n"));
}

// Fails for each secret of Use() that a text contains.
void ExpectNothingPrivate(const std::string& text, const std::string& from) {
    for (const char* secret : {"118842", "anna"}) EXPECT_THAT(text, Not(HasSubstr(secret))) << from;
}

TEST_F(OnAnotherPlatform, NothingPrivateLeavesAMonitorThatRedacts) {
    mChannel = Get({"IChannelConfig.GetCurrentChannel"}, "channel");
    mObject = Get({"IVideoBroadcast.Create", "7"}, "vb");
    const std::string file = mDirectory / "monitored.ndjson";
    for (const char* command : {"monitor", "monitor --json", "web"}) {
        std::vector<std::string> words{"--redact", "--record", file};
        std::istringstream stream(command);
        words.insert(words.begin(), std::istream_iterator<std::string>(stream), {});
        CtlProcess relay(words);
        ASSERT_TRUE(relay.WaitForOutput(words[0] == "web" ? "/\n" : "listening; ")) << relay.Output();
        EXPECT_EQ(Ctl({"send", "local_system.GetSerialNumber"}).output,
                  "ret           0\nserialNumber  \"PY-2204-118842\"\n");
        EXPECT_EQ(Ctl({"send", "video_broadcast.SetChannel", "vb_handle=" + mObject, "channel=" + mChannel,
                       "trickPlay=false", std::string("url=") + kUrl})
                      .exit,
                  0);
        relay.Signal(SIGINT);
        EXPECT_EQ(relay.WaitForExit(), 0) << relay.Output();
        ExpectNothingPrivate(relay.Output(), command);
        ExpectNothingPrivate(ReadFile(file), command);
        EXPECT_THAT(ReadFile(file), HasSubstr("\"serialNumber\":\"redacted-1\""));
        EXPECT_THAT(ReadFile(file), HasSubstr("http://first.example/?redacted-2"));
        EXPECT_THAT(ReadFile(file), Not(HasSubstr(mDirectory.Path())));
        std::filesystem::remove(file);
    }
}

// What the engineer sees while a request is open is a line of its own.
TEST_F(OnAnotherPlatform, NothingPrivateIsShownOfAnOpenRequest) {
    CtlProcess monitor({"monitor", "--redact", "--rule", "op:SetText hold"});
    ASSERT_TRUE(monitor.WaitForOutput("listening; ")) << monitor.Output();
    CtlProcess asking({"send", "configuration.SetText", "info=of anna", "--timeout", "20s"});
    ASSERT_TRUE(monitor.WaitForOutput("  open for 1.")) << monitor.Output();
    EXPECT_THAT(monitor.Output(), HasSubstr("configuration.SetText info=\"redacted-1\" -> no reply yet  [hold]  open"));
    ExpectNothingPrivate(monitor.Output(), "monitor");
}

TEST_F(OnAnotherPlatform, NothingPrivateLeavesARecordingOrALogThatIsRedacted) {
    ASSERT_EQ(Ctl({"log", "debug"}).exit, 0);
    const std::string recorded = Recorded();
    EXPECT_THAT(ReadFile(recorded), HasSubstr("?user=anna"));
    const std::string file = mDirectory / "out";
    for (const char* form : {"--record", "--svg", "--pcapng", "--perfetto", "--walk", "--html"}) {
        EXPECT_EQ(Ctl({"show", recorded, "--redact", form, file}).exit, 0) << form;
        ExpectNothingPrivate(ReadFile(file), form);
        std::filesystem::remove(file);
    }
    for (const char* form : {"--json", "--stats", "--slow", "--ladder", "--follow=0x4f20"}) {
        const FinishedRun show = Ctl({"show", recorded, "--redact", form});
        EXPECT_EQ(show.exit, 0) << show.Text();
        ExpectNothingPrivate(show.output, form);
    }
    WriteFile(mDirectory / "service.log", mService->Output());
    EXPECT_THAT(ReadFile(mDirectory / "service.log"), HasSubstr("118842"));
    const FinishedRun import = Ctl({"record", "import", mDirectory / "service.log", "--redact"});
    EXPECT_EQ(import.exit, 0) << import.errors;
    EXPECT_THAT(import.output, HasSubstr("\"serialNumber\":\"redacted-"));
    ExpectNothingPrivate(import.Text(), "record import");
}

struct Bent {
    const char* rule;
    const char* result;  // of a request for the name of the current channel
};

// A status of 1 or 2 is what the platform replies to a request that it does not understand.
constexpr Bent kBent[] = {
    {"delay=50ms", "ret 0 First"},
    {"drop", "exit 4"},
    {"hold", "exit 4"},
    {"close", "exit 6"},
    {"cut", "exit 6"},
    {"cut=5", "exit 6"},
    {"slow=2000", "ret 0 First"},
    {"duplicate", "ret 0 First"},
    {"corrupt=200 seed=1", "ret 2"},
    {"set=method:99", "ret 1"},
    {"set=c_handle:\"0x1\"", "ret 2"},
    {"set=method:\"none\"", "ret 1"},
    {"answer={\"ret\":7}", "ret 7"},
    {"answer=[1]", "exit 5"},
    {"on=reply delay=50ms", "ret 0 First"},
    {"on=reply drop", "exit 4"},
    {"on=reply hold", "exit 4"},
    {"on=reply close", "exit 6"},
    {"on=reply cut", "exit 6"},
    {"on=reply corrupt=200 seed=1", "exit 5"},
    {"on=reply set=name:\"Bent\"", "ret 0 Bent"},
    {"on=reply slow=2000", "ret 0 First"},
    {"on=reply duplicate", "ret 0 First"},
};

std::string ResultOf(const FinishedRun& send) {
    if (!send.exit || *send.exit > 1) return "exit " + std::to_string(send.exit.value_or(-1));
    const Json::Value reply = Documents(send.output)[0]["reply"];
    return "ret " + reply["ret"].asString() + (reply.isMember("name") ? " " + reply["name"].asString() : "");
}

TEST_F(OnAnotherPlatform, RulesBendItsMessages) {
    mChannel = Get({"IChannelConfig.GetCurrentChannel"}, "channel");
    CtlProcess monitor({"monitor", "--filter", "ruled", "--rules", "-"});
    ASSERT_TRUE(monitor.WaitForOutput(" sockets in ")) << monitor.Output();
    const auto tell = [&monitor](const std::string& line, const std::string& answer) {
        const size_t before = monitor.Output().size();
        monitor.Write(line + "\n");
        return WaitFor([&] { return monitor.Output().find(answer, before) != std::string::npos; });
    };
    const auto ask = [this](bool inVain) {
        return Ctl(
            {"send", "channel.GetName", "c_handle=" + mChannel, "--json", "--timeout", inVain ? "400ms" : "20s"});
    };
    for (const Bent& bent : kBent) {
        ASSERT_TRUE(tell(std::string("op:GetName ") + bent.rule, "(applied 0 times)")) << monitor.Output();
        EXPECT_EQ(ResultOf(ask(bent.result == std::string("exit 4"))), bent.result) << bent.rule;
        ASSERT_TRUE(tell("remove all", "no rules\n")) << monitor.Output();
        EXPECT_EQ(ResultOf(ask(false)), "ret 0 First") << "after " << bent.rule;
    }
    EXPECT_FALSE(mPython->WaitForExit(std::chrono::milliseconds(0)));
}

TEST_F(OnAnotherPlatform, RulesBendItsEvents) {
    mObject = Get({"IVideoBroadcast.Create", "7"}, "vb");
    mChannel = Get({"IChannelConfig.GetCurrentChannel"}, "channel");
    Listener listener({"video_broadcast", "--with", "vb=" + mObject, "--with", "context=7", "--count", "3"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    CtlProcess monitor({"monitor", "--rule", "op:onPlayStateChange set=error:3 count=1", "--rule",
                        "op:onPlayStateChange duplicate count=1", "--rule", "op:onChannelChangeSucceeded drop"});
    ASSERT_TRUE(monitor.WaitForOutput("listening; press Ctrl-C to stop\n")) << monitor.Output();
    EXPECT_EQ(Ctl({"send", "video_broadcast.SetChannel", "vb_handle=" + mObject, "channel=" + mChannel,
                   "trickPlay=false", "url="})
                  .exit,
              0);
    EXPECT_EQ(listener.WaitForExit(), 0) << listener.Output();
    std::vector<std::string> events;
    for (const Json::Value& event : listener.Events()) {
        events.push_back(event["method"].asString() + " " + event["arguments"]["error"].asString());
    }
    EXPECT_THAT(events, ElementsAre("onPlayStateChange 3", "onPlayStateChange 3", "onPlayStateChange 0"));
}

}  // namespace

}  // namespace hbbtv::test
