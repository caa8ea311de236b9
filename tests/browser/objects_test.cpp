// What the objects of pages do on the platform, where the page cannot see it, and what they do without one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "common/failure.h"
#include "system.h"

namespace hbbtv::test {

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

std::string Page(const std::string& script) {
    return "<!DOCTYPE html><title>Page</title><style>#video { position: absolute; left: 10px; top: 20px; width: 640px; "
           "height: 360px; }</style><body><object id='video' type='video/broadcast'></object><script>\n"
           "const video = document.getElementById('video');\n" +
           script + "</script>";
}

}  // namespace

TEST(BrowserObjects, TellThePlatformWhereTheyShowTheirPicture) {
    BrowserSystem system({"--trace"});
    ASSERT_TRUE(system.ready);
    const std::string page = system.Write("page.html", Page("video.bindToCurrentChannel();\n"
                                                            "setTimeout(() => { video.style.left = '300px'; });\n"));
    const FinishedRun run = BrowserSystem::Run(
        {page, "--until", "video.getBoundingClientRect().x === 300", "--print", "[innerWidth, innerHeight]"});
    EXPECT_EQ(run.output, "[1280,720]\n") << run.Text();
    EXPECT_THAT(system.platform.Output(), HasSubstr("> SetWindow rect_h=360 rect_w=640 rect_x=10 rect_y=20 "));
    EXPECT_TRUE(system.platform.WaitForOutput("> SetWindow rect_h=360 rect_w=640 rect_x=300 rect_y=20 "));
}

TEST(BrowserObjects, AskThePlatformForNothingWhenTheyAreOnlyInTheDocument) {
    BrowserSystem system({"--trace"});
    ASSERT_TRUE(system.ready);
    const std::string page =
        system.Write("page.html", Page("const states = [video.playState, video.currentChannel];\n"));
    const FinishedRun run = BrowserSystem::Run({"--alone", page, "--print", "states"});
    EXPECT_EQ(run.output, "[0,null]\n") << run.Text();
    EXPECT_THAT(system.platform.Output(), Not(HasSubstr("> Create ")));
}

TEST(BrowserObjects, HaveDefaultsWhileThePlatformIsAway) {
    BrowserSystem system;
    ASSERT_TRUE(system.ready);
    system.platform.Kill();
    const std::string page = system.Write(
        "page.html",
        Page(
            "const config = oipfObjectFactory.createChannelConfig();\n"
            "const {configuration} = oipfObjectFactory.createConfigurationObject();\n"
            "const got = [config.channelList, config.currentChannel, config.favouriteLists, video.getChannelConfig(),\n"
            "    video.bindToCurrentChannel(), video.playState, video.programmes.length, video.getVolume(),\n"
            "    configuration.countryId === undefined, configuration.deviceId,\n"
            "    oipfObjectFactory.createCapabilitiesObject().xmlCapabilities,\n"
            "    oipfObjectFactory.createCapabilitiesObject().hasCapability('+DVB_S'),\n"
            "    oipfObjectFactory.createParentalControlManagerObject().parentalRatingSchemes.length,\n"
            "    oipfObjectFactory.createSearchManagerObject().createSearch(1)];\n"));
    const FinishedRun run = BrowserSystem::Run({"--alone", page, "--console", "--print", "got"});
    EXPECT_EQ(run.output, "[null,null,null,null,null,0,0,100,true,\"#2\",null,false,0,null]\n") << run.Text();
}

TEST(BrowserObjects, GiveThePlatformUrlsOfTheCarousel) {
    const ScratchDirectory files;
    std::filesystem::create_directory(files / "app");
    std::ofstream(files / "app/index.html") << Page(
        "video.bindToCurrentChannel();\n"
        "video.addStreamEventListener('../events/quiz', 'quiz', () => { window.came = true; });\n"
        "oipfObjectFactory.createApplicationManagerObject().getOwnerApplication(document)\n"
        "    .createApplication('other.html?a=b', false);\n");
    BrowserSystem system({"--carousel", files.Path(), "--trace", "--stream-event-interval", "20ms"});
    ASSERT_TRUE(system.ready);
    const FinishedRun run = BrowserSystem::Run(
        {"--alone", "dvb://1.3fb.283d.17/app/index.html", "--until", "window.came", "--print", "location.hostname"});
    EXPECT_EQ(run.output, "\"1.3fb.283d.17.dvb.localhost\"\n") << run.Text();
    EXPECT_THAT(system.platform.Output(),
                HasSubstr("> AddStreamEventListener dvburl=\"dvb://1.3fb.283d.17/events/quiz\" event_name=\"quiz\" "
                          "strurl=\"../events/quiz\""));
    EXPECT_THAT(system.platform.Output(), HasSubstr("url=\"dvb://1.3fb.283d.17/app/other.html?a=b\""));
}

TEST(BrowserObjects, AreAllThatAnApplicationNeeds) {
    const BrowserSystem system({"--stream-event-interval", "50ms"});
    ASSERT_TRUE(system.ready);
    const FinishedRun run = BrowserSystem::Run(
        {"--alone", "index.html", "--serve", HBBTV_SOURCE_DIR "/tools/demo/application", "--console", "--keys",
         "RED,DOWN,DOWN,OK,YELLOW,GREEN", "--until",
         "/arte HD/.test((document.querySelector('#channels .current') || {}).textContent) && "
         "document.querySelectorAll('#details *').length === 2 && "
         "document.getElementById('event').textContent.startsWith('quiz: ')",
         "--print",
         "['#channels .focus', '#language', '#mark'].map(name => document.querySelector(name).textContent)"});
    EXPECT_EQ(run.output, "[\"3  arte HD  \\u2605\",\"eng\",\"remove the mark\"]\n") << run.Text();
}

TEST(BrowserObjects, WorkAgainAfterARestartOfThePlatform) {
    BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const std::string page = system.Write("page.html", Page("const config = oipfObjectFactory.createChannelConfig();\n"
                                                            "let updated = false;\n"
                                                            "config.onChannelListUpdate = () => { updated = true; };\n"
                                                            "video.bindToCurrentChannel();\n"
                                                            "console.log('bound to ' + config.channelList[0].name);\n"
                                                            "function works() {\n"
                                                            "    video.stop();\n"
                                                            "    video.bindToCurrentChannel();\n"
                                                            "    return updated && video.playState > 0 &&\n"
                                                            "        config.channelList.length > 0;\n"
                                                            "}\n"));
    ChildProcess browser({HBBTV_BROWSER_PROGRAM, "--alone", page, "--console", "--until", "works()", "--print",
                          "config.channelList[0].name"});
    ASSERT_TRUE(browser.WaitForOutput("bound to Das Erste HD")) << browser.Output();
    system.platform.Kill();
    SimulatedPlatform next;
    ASSERT_TRUE(next.Ready());
    EXPECT_EQ(browser.WaitForExit(std::chrono::seconds(40)), kDone);
    EXPECT_THAT(browser.Output(), HasSubstr("\"Das Erste HD\"\n"));
}

}  // namespace hbbtv::test
