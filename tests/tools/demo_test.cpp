// The demo against the simulated platform: what a new user sees first.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ctl.h"

namespace hbbtv::test {

namespace {

const std::string kDemo = std::string(HBBTV_SOURCE_DIR) + "/tools/demo/demo.play";

// The strings stand there in this order, whatever stands between.
void ExpectInOrder(const std::string& output, const std::vector<std::string>& strings) {
    size_t at = 0;
    for (const std::string& string : strings) {
        const size_t found = output.find(string, at);
        ASSERT_NE(found, std::string::npos) << string << " is not where it should be in:\n" << output;
        at = found + string.size();
    }
}

class Demo : public InFrontOfTheSystem {};

TEST_F(Demo, ShowsTheChannelChangesAndAnApplicationAndEndsWell) {
    const FinishedRun demo = Ctl({"play", "--verbose", kDemo});
    EXPECT_EQ(demo.exit, 0) << demo.Text();
    ExpectInOrder(demo.output, {"Walk through the channel list",
                                "-> 35 ",
                                "no  name                        type   onid  tsid   sid",
                                "   1  Das Erste HD                TV        1  1019 10301",
                                "ZDF HD                      TV        1  1011 11110",
                                "Dlf                         RADIO     1  1011 11191",
                                "350 steps",
                                "Find programmes by a word of their title: news",
                                "CONTAINS, \"news\"",
                                "OnSearchManagerEvent",
                                "finished",
                                "SearchResults_GetLength",
                                "-> 5 ",
                                "News",
                                "IVideoBroadcast.Create(0x0000beef)",
                                "RegisterCallback",
                                "BindToCurrentChannel",
                                "PRESENTING",
                                "Tune to Das Erste HD",
                                "onChannelChangeSucceeded",
                                "Das Erste HD\n",
                                "PRESENTING",
                                "Tune to ZDF HD",
                                "onChannelChangeSucceeded",
                                "ZDF HD\n",
                                "PRESENTING",
                                "NextChannel",
                                "onChannelChangeSucceeded",
                                "PrevChannel",
                                "onChannelChangeSucceeded",
                                "GetCurrentChannel",
                                "ZDF HD (0x",
                                "GetPlayState",
                                "PRESENTING",
                                "GetVolume",
                                "-> 35",
                                "VIDEO",
                                "AUDIO",
                                "Ask what is on now and next",
                                "GetProgrammeNum",
                                "-> 2",
                                "GetStartTime",
                                "minutes",
                                "GetStartTime",
                                "minutes",
                                "Rai 1 HD",
                                "onChannelChangeError",
                                "ENCRYPTED",
                                "Be the browser",
                                "IMtm.RegisterCallback",
                                "IApplicationManager.RegisterCallback(APPLICATION_EVENT_1",
                                "Tune to arte HD",
                                "whose application gets a tab",
                                "OnTabCreated(1)",
                                "OnTabLoadFinished(1",
                                "onApplicationEvent",
                                "application 1 of organisation 20",
                                "GetCurrentApp",
                                "application 1 of organisation 20",
                                "GetValue",
                                "key sets 0x00000033",
                                "KeyConsumedByBrowser(1, 403)",
                                "true",
                                "Tune to tagesschau24 HD",
                                "goes with its service",
                                "OnTabDestroyed(1)",
                                "Leave",
                                "IApplicationManager.UnregisterCallback(APPLICATION_EVENT_1",
                                "IMtm.UnregisterCallback",
                                "IVideoBroadcast.UnregisterCallback",
                                "IVideoBroadcast.Destroy"});
    // What the platform does by itself comes between the calls, at its own time.
    ExpectInOrder(demo.output, {"<- CreateApp", "http://arte.example/hbbtv/ -> 1", "<- SetAppConfig",
                                "tab 1, broadcast-related", "<- SetDvbOrigin", "tab 1, dvb://1.3fb.283e",
                                "<- LoadURLInTab", "tab 1, http://arte.example/hbbtv/", "<- ShowHideTab", "tab 1, show",
                                "<- GetRenderProcessId", "tab 1 -> 4711", "<- DestroyApp", "tab 1"});
}

TEST_F(Demo, ShowsNamesOfEveryKindOnOneLineOfItsTable) {
    const FinishedRun names = CtlWithInput({"play", "-", "--set", "long=" + std::string(65536, 'x')},
                                           R"(IChannelConfig.GetChannelList() -> 0, $list
for [$i, $name] in [[18, "K\u00f6ln"], [19, "\u001b[2Ja\nb\x7f\xc2\x9b31m"], [20, $long]]
    IChannelList.Item($list, $i) -> 0, $channel
    IChannel.SetName($channel, $name)
end)");
    ASSERT_EQ(names.exit, 0) << names.Text();
    const FinishedRun demo = Ctl({"play", kDemo});
    EXPECT_EQ(demo.exit, 0) << demo.Text();
    ExpectInOrder(demo.output, {"  19  K\xc3\xb6ln                        TV        1  1107 17500\n",
                                "  20  .[2Ja.b..31m                TV        1  1107 17501\n",
                                "  21  " + std::string(60, 'x') + "  TV        1  1111  7200\n"});
}

TEST_F(Demo, ShowsByTheStatusThatThePlatformIsDown) {
    mPlatform->Kill();
    const FinishedRun demo = Ctl({"play", "--verbose", kDemo});
    EXPECT_EQ(demo.exit, 7);
    EXPECT_THAT(demo.output, testing::HasSubstr("status -1"));
    EXPECT_THAT(demo.errors, testing::HasSubstr("IChannelConfig.GetChannelList() -> 0, $list\n  expected: 0, $list\n"));
}

TEST(DemoAlone, ReportsThatNoServiceIsThere) {
    ScratchDirectory directory;
    const FinishedRun demo = Ctl({"play", "--timeout", "2s", kDemo});
    EXPECT_EQ(demo.exit, 3);
    EXPECT_THAT(demo.errors, testing::HasSubstr("start the service"));
}

}  // namespace

}  // namespace hbbtv::test
