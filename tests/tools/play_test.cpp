// hbbtvctl play: each statement where it holds and where it does not, errors with their place, and what ends a play.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const char* const kPresent = R"(IVideoBroadcast.Create(7) -> 0, $vb
IVideoBroadcast.RegisterCallback($vb, @listen, 7)
IVideoBroadcast.BindToCurrentChannel($vb) -> 0, $one
)";

class Play : public InFrontOfTheSystem {
  protected:
    FinishedRun Run(const std::string& text, std::vector<std::string> options = {}) const {
        const bool presents = text.find(kPresent) != std::string::npos;
        WriteFile(mDirectory / "a.play", text + (presents ? "\nfinally\nIVideoBroadcast.Destroy($vb)\n" : ""));
        options.insert(options.begin(), {"play", mDirectory / "a.play", "--timeout", "5s"});
        return Ctl(options);
    }

    void ExpectHolds(const std::string& text, const std::string& output = "") const {
        const FinishedRun run = Run(text);
        EXPECT_EQ(run.exit, 0) << text << run.Text();
        EXPECT_EQ(run.output, output) << text;
        EXPECT_EQ(run.errors, "") << text;
    }

    // The last line of the text does not hold, for this reason.
    void ExpectFails(const std::string& text, const std::string& expected, const std::string& came) const {
        const FinishedRun run = Run(text);
        EXPECT_EQ(run.exit, 7) << text << run.Text();
        const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
        const std::string last = text.substr(text.rfind('\n') + 1);
        EXPECT_EQ(run.errors, "hbbtvctl: " + mDirectory / "a.play" + ":" + std::to_string(lines) + ": " + last +
                                  "\n  expected: " + expected + "\n  got:      " + came + "\n");
    }
};

TEST_F(Play, ComparesResultsWithPatternsAndBindsTheirNames) {
    ExpectHolds(R"(IChannelConfig.GetCurrentChannel() -> 0, $one
IChannel.GetName($one) -> 0, "Das Erste HD"
IChannel.GetName($one) -> _, ~"Erste"
IChannel.GetLocked($one) -> 0, $locked?
IChannel.GetChannelType($one) -> 0, TV
IChannel.GetChannelType($one) -> 0, TolmChannelType.TV
IChannel.GetLocked($one) -> 0, $locked
print "{$locked}")",
                "false\n");
    ExpectFails("IChannelConfig.GetCurrentChannel() -> 0, $one\nIChannel.GetName($one) -> 0, \"ZDF\"", "0, \"ZDF\"",
                "0, \"Das Erste HD\"");
    ExpectFails("IChannelConfig.GetCurrentChannel() -> 0, $one\nIChannel.GetName($one) -> 0, ~\"ZDF\"", "0, ~\"ZDF\"",
                "0, \"Das Erste HD\"");
    ExpectFails("IChannelConfig.GetCurrentChannel() -> 0, $one\nIChannel.GetLocked($one) -> 0, $locked", "0, $locked",
                "0, false");
    ExpectFails("IChannelConfig.GetCurrentChannel() -> 0, $one\nIChannel.GetChannelType($one) -> 0, RADIO",
                "0, \"RADIO\"", "0, 0");
    ExpectFails("IChannel.GetSid(1) -> 0, _", "0, _", "-1, 0");
    ExpectFails("IChannelList.Release(1)", "status 0", "-1");
    ExpectFails("until IChannelList.Release(1) -> 0 within 50ms", "0", "-1");
}

TEST_F(Play, WaitsForEventsInTheirOrderAndAmongOthers) {
    const std::string zapped = "tell zap 1\n" + std::string(kPresent) + "tell zap 2\n";
    ExpectHolds(zapped + R"(event IVideoBroadcastCallback.onPlayStateChange(2, 0)
event IVideoBroadcastCallback.onPlayStateChange(1, 0)
event IVideoBroadcastCallback.onChannelChangeSucceeded($two, _, 0)
event video_broadcast 1: IVideoBroadcastCallback.onPlayStateChange(TolmVBPlayState.PRESENTING, 0) within 2s
no event)");
    ExpectHolds(zapped + R"(await IVideoBroadcastCallback.onChannelChangeSucceeded($two, _, 0)
await IVideoBroadcastCallback.onPlayStateChange(2, 0)
no event IVideoBroadcastCallback.onChannelChangeSucceeded)");
    ExpectHolds(zapped + R"(next IVideoBroadcastCallback.onPlayStateChange(2, 0)
ignore IVideoBroadcastCallback.onPlayStateChange
next IVideoBroadcastCallback.onChannelChangeSucceeded($two, _, 0))");
    ExpectFails(zapped + "event IVideoBroadcastCallback.onPlayStateChange(1, 0)",
                "IVideoBroadcastCallback.onPlayStateChange(1, 0)", "IVideoBroadcastCallback.onPlayStateChange(2, 0)");
    ExpectFails(zapped + "await IVideoBroadcastCallback.onFullScreenChange(1) within 50ms",
                "IVideoBroadcastCallback.onFullScreenChange(1)", "nothing of it within 50 ms");
    ExpectFails(zapped + "next IVideoBroadcastCallback.onFullScreenChange(1)",
                "IVideoBroadcastCallback.onFullScreenChange(1)", "IVideoBroadcastCallback.onPlayStateChange(2, 0)");
    ExpectFails(std::string(kPresent) + "until IVideoBroadcast.GetPlayState($vb) -> 0, PRESENTING\nwait 50ms\nno event",
                "no event", "IVideoBroadcastCallback.onPlayStateChange(2, 0)");
}

TEST_F(Play, AnswersAsTheBrowser) {
    ExpectHolds(R"(ignore IMtmCallback.Ping
answer IMtmCallback.CreateApp -> 0, 7
answer IMtmCallback.GetRenderProcessId -> 0, 1007
IMtm.RegisterCallback(@listen)
tell zap 2
event mtm 23: IMtmCallback.CreateApp(~"http://zdf.example/", true, true, "hbbtv", [$boundary])
await IMtmCallback.GetRenderProcessId(7)
IMtm.UnregisterCallback())");
}

TEST_F(Play, SendsAndEmitsOnTheWire) {
    ExpectHolds(R"(send channel_config.GetCurrentChannel -> {ret: 0, handle: $one}
IChannelConfig.GetCurrentChannel() -> 0, $one
send dsmcc.RequestFile {url: "dvb://1.2.3", context: 7}
IChannelConfig.RegisterCallback(@listen, 5)
emit channel_config 0 {reserved: "A"}
event IChannelConfigCallback.OnChannelConfigEvent(0, {reserved: 65}, 5)
IConfiguration.RegisterCallback(@listen)
emit configuration 8 {age: 16}
event configuration 8: IConfigurationCallback.onConfigurationEvent(8, {ratingAge: 16})
answer IMtmCallback.Ping -> 0, 42
IMtm.RegisterCallback(@listen)
emit mtm 34 -> {ret: 0, status: 42})");
    ExpectFails("send channel.GetSid {c_handle: 1} -> {ret: 0}", "{\"ret\": 0}", "{\"ret\":-1}");
    ExpectFails("send channel.GetSid {c_handle: 1}", "\"ret\" 0", "{\"ret\":-1}");
}

TEST_F(Play, TellsTheSimulatedPlatform) {
    ExpectHolds(
        "tell zap 2 -> ok ZDF HD\ntell zap 3 -> ok ar...D\ntell zap 1\nuntil tell tabs -> ok browser not asked...");
    ExpectFails("tell zap 2 -> ok arte HD", "ok arte HD", "ok ZDF HD");
    ExpectFails("tell zap 999", "ok...", "error: there is no such channel in the list");
    mPlatform->Kill();
    EXPECT_EQ(Run("tell zap 2").exit, 3);
}

TEST_F(Play, LoopsAndPrints) {
    ExpectHolds(R"(let $sum = "none"
for [$name, {x: $x}] in [["a", {x: 0}],
                         ["b", {x: 2}]]  # a bracket continues the line
    print "{$name} {$x:>3}|{$name:4}|{$x:?yes}|{$x:hex}"
    let $sum = "{$name}{$x}"
end
quiet
    for $i from 1 below 3
        print "{$i:TolmVBPlayState}"
    end
end
print "{$sum}")",
                "a   0|a   ||0x00000000\nb   2|b   |yes|0x00000002\nCONNECTING\nPRESENTING\nb2\n");
    EXPECT_THAT(Run("let $list = 1\nfor $x in $list\nend").errors,
                HasSubstr(":2: for $x in $list\n  expected: a list\n  got:      1\n"));
}

TEST_F(Play, ShowsNamesOfEveryKindOnOneLineOfATable) {
    ExpectHolds(R"(IChannelConfig.GetCurrentChannel() -> 0, $one
for $name in ["K\u00f6ln", "\u001b[2Ja\nb\x7f\xc2\x9b31m"]
    IChannel.SetName($one, $name)
    IChannel.GetName($one) -> 0, $name
    print "{$name:14}|"
end)",
                "K\xc3\xb6ln          |\n.[2Ja.b..31m  |\n");
}

TEST_F(Play, RunsWhatStandsBehindFinallyAfterAFailure) {
    const std::string play = "tell zap 2 -> ok\nlet $late = 1\nfinally\nprint \"{$late}\"\nprint \"left\"\n";
    const FinishedRun run = Run(play);
    EXPECT_EQ(run.exit, 7);
    EXPECT_EQ(run.output, "left\n");
    EXPECT_THAT(run.errors, HasSubstr(":1: tell zap 2 -> ok\n"));
    ExpectHolds("let $x = 1\nfinally\nprint \"left\"", "left\n");
    ExpectFails("finally\ntell zap 2 -> ok", "ok", "ok ZDF HD");
}

TEST_F(Play, RunsEveryFileAndEndsWithTheCodeOfTheFirstThatFailed) {
    WriteFile(mDirectory / "b.play", "print \"b\"\n");
    const FinishedRun run = Run("tell zap 2 -> ok", {mDirectory / "b.play"});
    EXPECT_EQ(run.exit, 7);
    EXPECT_EQ(run.output, "b\n");
    EXPECT_EQ(CtlWithInput({"play", "-", "--set", "number=2", "--set", "word=x y"},
                           "tell zap {$number} -> ok ZDF HD\nprint \"{$word} {$directory}\"")
                  .output,
              "x y " + mDirectory.Path() + "\n");
}

TEST_F(Play, ShowsATranscriptWithNamesOfHandles) {
    const FinishedRun run = Run(std::string("step \"Present\"\nshow IVideoBroadcastCallback.onPlayStateChange "
                                            "\"{$state:TolmVBPlayState}\"\n") +
                                    kPresent +
                                    "await IVideoBroadcastCallback.onPlayStateChange(2, 0)\nname $one as \"One\"\n"
                                    "IChannel.GetName($one)\nIVideoBroadcast.GetCurrentChannel($vb) -> 0, $one\n"
                                    "quiet\nIChannel.GetSid($one)\nend",
                                {"--verbose"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_THAT(run.output, StartsWith("\nPresent\n   0.0"));
    EXPECT_THAT(run.output, testing::ContainsRegex("<- onPlayStateChange +PRESENTING\n"));
    EXPECT_THAT(run.output, testing::ContainsRegex("IChannel.GetName\\(One\\) +-> \"Das Erste HD\" +[0-9.]+ ms\n"));
    EXPECT_THAT(run.output,
                testing::ContainsRegex("IVideoBroadcast.GetCurrentChannel\\(\\$vb\\) +-> One \\(0x[0-9a-f]+\\) "));
    EXPECT_THAT(run.output, testing::ContainsRegex("1 steps +-> done"));
    EXPECT_THAT(run.output, testing::Not(HasSubstr("GetSid")));
}

TEST_F(Play, WritesOneObjectForEachStep) {
    const FinishedRun run =
        Run("IChannelConfig.GetCurrentChannel() -> 0, $one\nIChannel.GetSid(1) -> 0, 1", {"--json"});
    EXPECT_EQ(run.exit, 7);
    const std::vector<Json::Value> steps = Documents(run.output);
    ASSERT_EQ(steps.size(), 2u);
    EXPECT_EQ(steps[0]["file"], mDirectory / "a.play");
    EXPECT_EQ(steps[0]["line"], 1);
    EXPECT_EQ(steps[0]["step"], "call");
    EXPECT_EQ(steps[0]["outcome"], "held");
    EXPECT_EQ(steps[1]["outcome"], "failed");
    EXPECT_EQ(steps[1]["method"], "IChannel.GetSid");
    EXPECT_EQ(steps[1]["results"]["status"], -1);
    EXPECT_EQ(steps[1]["problem"], "expected: 0, 1\n  got:      -1, 0");
    EXPECT_TRUE(steps[1]["ms"].isInt());
}

TEST_F(Play, ListsWhatDidNotOccur) {
    const FinishedRun run = Run("IChannelConfig.GetCurrentChannel()", {"--coverage"});
    EXPECT_EQ(run.exit, 0);
    EXPECT_THAT(run.output, StartsWith("methods called: 1 of 277\n"));
    EXPECT_THAT(run.output, HasSubstr("\n  not IChannelConfig.GetChannelList\n"));
    EXPECT_THAT(run.output, testing::Not(HasSubstr("not IChannelConfig.GetCurrentChannel\n")));
    EXPECT_THAT(run.output, HasSubstr("\nevents seen: 0 of 65\n"));
    EXPECT_THAT(run.output, HasSubstr("\n  not video_broadcast mediasync:3\n"));
}

TEST_F(Play, EndsWhenTheServiceIsKilledWhileItWaits) {
    WriteFile(mDirectory / "a.play", std::string(kPresent) + "step \"now\"\nawait IMtmCallback.DestroyApp(1)");
    CtlProcess play({"play", mDirectory / "a.play", "--verbose"});
    ASSERT_TRUE(play.WaitForOutput("\nnow\n")) << play.Output();
    mService->Kill();
    EXPECT_EQ(play.WaitForExit(), 6) << play.Output();
    EXPECT_THAT(play.Output(), HasSubstr(":5: await IMtmCallback.DestroyApp(1)\n  the service went away"));
}

TEST_F(Play, EndsByCtrlCAndLeavesInOrder) {
    WriteFile(mDirectory / "a.play", std::string(kPresent) +
                                         "step \"now\"\nawait IMtmCallback.DestroyApp(1)\nfinally\n"
                                         "IVideoBroadcast.Destroy($vb)\nprint \"left\"");
    CtlProcess play({"play", mDirectory / "a.play", "--verbose"});
    ASSERT_TRUE(play.WaitForOutput("\nnow\n")) << play.Output();
    play.Signal(SIGINT);
    EXPECT_EQ(play.WaitForExit(), 130) << play.Output();
    EXPECT_THAT(play.Output(), HasSubstr("IVideoBroadcast.Destroy($vb)"));
    EXPECT_THAT(play.Output(), HasSubstr("left\n"));
    EXPECT_THAT(play.Output(), HasSubstr(":5: interrupted\n"));
}

TEST_F(Play, EndsWhenTheServiceHangs) {
    mService->Signal(SIGSTOP);
    WriteFile(mDirectory / "a.play", "IChannelConfig.GetCurrentChannel()");
    const FinishedRun run = Ctl({"play", mDirectory / "a.play", "--timeout", "100ms"});
    EXPECT_EQ(run.exit, 4) << run.Text();
}

class PlayAlone : public Alone {
  protected:
    FinishedRun Run(const std::string& text) const {
        WriteFile(mDirectory / "a.play", text);
        return Ctl({"play", mDirectory / "a.play", "--timeout", "2s"});
    }
};

TEST_F(PlayAlone, EndsWithoutAServiceOrASocket) {
    EXPECT_EQ(Run("IChannelConfig.GetCurrentChannel()").exit, 3);
    const FinishedRun run = Run("until IChannelConfig");
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.errors, HasSubstr(":1: until IChannelConfig\n  no process has registered IChannelConfig in "));
    EXPECT_EQ(Run("send channel_config.GetCurrentChannel").exit, 3);
    EXPECT_EQ(Run("emit channel_config 0").exit, 3);
    EXPECT_EQ(Run("tell zap 2").exit, 3);
    EXPECT_EQ(Ctl({"play", mDirectory / "none.play"}).exit, 2);
}

struct WrongPlay {
    const char* text;
    const char* error;  // behind the name of the file
};

// For the name of the test: the place.
void PrintTo(const WrongPlay& play, std::ostream* out) {
    const std::string error = play.error;
    *out << error.substr(0, error.find(' '));
}

class PlaySyntax : public Alone, public testing::WithParamInterface<WrongPlay> {};

TEST_P(PlaySyntax, ErrorsAreReportedWithTheirPlaceBeforeAnythingRuns) {
    WriteFile(mDirectory / "a.play", std::string("print \"runs\"\n") + GetParam().text);
    const FinishedRun run = Ctl({"play", mDirectory / "a.play"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, StartsWith("hbbtvctl: " + mDirectory / "a.play" + ":" + GetParam().error));
}

const WrongPlay kWrong[] = {
    {"prnt \"x\"",
     "2:1: expected a statement or INTERFACE.METHOD(...), not \"prnt\"; did you "
     "mean \"print\"?"},
    {"IChanel.GetName(1)", "2:1: unknown interface \"IChanel\"; did you mean \"IChannel\"?"},
    {"IChannel.GetNam(1)", "2:1: IChannel has no method \"GetNam\"; did you mean \"GetName\"?"},
    {"IChannel.GetName()", "2:1: arguments of GetName: expected 1, not 0: channel (int64_t)"},
    {"IChannel.GetName(\"a\")", "2:18: \"a\" is no"},
    {"IChannel.GetName(1) -> 0", "2:1: results of GetName: expected 2, not 1: status (int32_t), name (string)"},
    {"IChannel.GetName($x)", "2:18: unknown name \"$x\""},
    {"IChannel.GetName(1", "2:19: expected \")\" after a value, not the end of the line"},
    {"IChannel.GetName(1) 2", "2:21: expected the end of the line, not \"2\""},
    {"IMtmCallback.Ping() -> 0, 0", "2:1: IMtmCallback is implemented by clients: it cannot be called"},
    {"event IChannel.GetName(1)", "2:7: IChannel is implemented by the service: call it"},
    {"event mtm 23: IMtmCallback.Ping()", "2:15: mtm 23 does not lead to Ping but to \"CreateApp\""},
    {"event mtm 99: IMtmCallback.Ping()", "2:11: family mtm has no event \"99\""},
    {"send channel.GetNam", "2:14: the family channel has no operation \"GetNam\"; did you mean \"GetName\"?"},
    {"send channel.GetName {chanel: 1}", "2:22: channel.GetName has no member \"chanel\""},
    {"send channel.GetName", "2:21: channel.GetName lacks its member "},
    {"emit chanel 0", "2:6: unknown family \"chanel\""},
    {"tell zap {$x}", "2:1: unknown name \"$x\""},
    {"print \"{$x\"", "2:7: \"{$\" without its \"}\""},
    {"print \"{$directory:wide}\"", "2:7: \"wide\" is not a form of a value"},
    {"print \"x", "2:7: the string has no closing quote"},
    {"print \"\\q\"", "2:8: unknown escape"},
    {"let x = 1", "2:5: expected a name such as $channel, not \"x\""},
    {"let $x = 1 %", "2:12: unexpected character \"%\""},
    {"let $x = 99999999999999999999", "2:10: the number does not fit into 64 bits"},
    {"let $x = {a: 1, a: 2}", "2:17: duplicate member \"a\""},
    {"let $x = TolmVBPlayState.PRESENT", "2:10: TolmVBPlayState has no enumerator \"PRESENT\""},
    {"wait 3", "2:6: expected a time such as 300ms or 2s, not \"3\""},
    {"wait 3m", "2:6: \"3m\" is neither a number nor a time"},
    {"for $i in [1]\nprint \"{$i}\"", "3:1: the block has no \"end\""},
    {"for $i in [1]\nend\nprint \"{$i}\"", "4:7: unknown name \"$i\""},
    {"end", "2:1: \"end\" without"},
    {"quiet\nfinally\nend", "3:1: \"finally\" is not allowed inside a block"},
    {"finally\nfinally", "3:1: there can be one \"finally\" only"},
    {"show IMtmCallback.Ping \"{$tab}\"", "2:6: IMtmCallback.Ping has no \"tab\""},
    {"answer IMtmCallback.CreateApp -> 0", "2:8: results of CreateApp: expected 2, not 1"},
};

INSTANTIATE_TEST_SUITE_P(All, PlaySyntax, testing::ValuesIn(kWrong));

}  // namespace

}  // namespace hbbtv::test
