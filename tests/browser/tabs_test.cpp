// The tabs of applications, as the platform commands them and as the browser reports them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "application_system.h"
#include "common/failure.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::Not;

using System = ApplicationSystem;

constexpr const char* kCall =
    "<script>function call(...calls) {\n"
    "    const request = new XMLHttpRequest();\n"
    "    request.open('POST', '/.hbbtv/call', false);\n"
    "    request.send(JSON.stringify({calls}));\n"
    "    return JSON.parse(request.responseText).answers;\n"
    "}</script>";

// A Chromium that runs scripts with these flags. Returns the variable that makes the browser find it.
std::string ChromiumWithFlags(const System& system, const std::string& flags) {
    std::filesystem::create_directory(system.directory / "bin");
    const std::string program =
        system.Write("bin/chromium", "#!/bin/sh\nPATH=${PATH#*:}\nexec chromium '--js-flags=" + flags + "' \"$@\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    return "PATH=" + (system.directory / "bin") + ":" + std::getenv("PATH");
}

// Sends a command to the browser as a platform does. Returns the exit code.
std::optional<int> Emit(std::vector<std::string> words) {
    words.insert(words.begin(), {HBBTVCTL_PROGRAM, "emit", "mtm"});
    return RunToEnd(words).exit;
}

}  // namespace

TEST(Tabs, FollowThePlatformAndReportWhatBecomesOfThem) {
    const System system("<script>addEventListener('keydown', e => document.title = 'key ' + e.keyCode);</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    EXPECT_TRUE(System::ShowsTab("browser there, status 1")) << System::Tell("tabs");
    EXPECT_TRUE(
        System::ShowsTab("loaded, document, shown, focused, title \"arte\", url http://arte.example/hbbtv/, "
                         "address http://arte.example/hbbtv/"))
        << System::Tell("tabs");
    EXPECT_TRUE(System::ShowsTab("render process "));
    EXPECT_TRUE(std::filesystem::exists("/proc/" + std::to_string(System::RenderProcess())));
    EXPECT_EQ(System::Tell("key RED"), "ok arte Start\n");
    EXPECT_TRUE(System::ShowsTab("title \"key 403\"")) << System::Tell("tabs");
    System::Tell("zap 1");
    EXPECT_TRUE(System::HasNoTab()) << System::Tell("tabs");
    for (const char* report :
         {"OnTabCreated tabid=1", "OnTabShow tabid=1", "OnTabFocus tabid=1",
          "OnLoadingStateChanged can_back=false can_forward=false is_loading=true",
          "OnLoadingStateChanged can_back=false can_forward=false is_loading=false",
          "OnLoadProgressChanged progress=1.0 tabid=1", "OnTabDestroyed tabid=1", "OnAllTabsDestroyed"}) {
        EXPECT_TRUE(system.platform.WaitForOutput(std::string("> ") + report)) << report;
    }
}

TEST(Tabs, KnowTheirNumberTheirOriginAndWhetherTheyAreBroadcastRelated) {
    const System system(std::string(kCall) +
                        "<script>const [{results}] = call({host: 'tab'});\n"
                        "document.title = [results.tab, results.broadcastRelated, results.origin, results.mode];"
                        "</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    EXPECT_TRUE(System::ShowsTab("title \"1,true,dvb://1.3fb.283e,hbbtv\"")) << System::Tell("tabs");
}

TEST(Tabs, ThatHangStopNeitherPingsNorOthersAndCanBeClosed) {
    const System system("<script>addEventListener('keydown', () => { for (;;) {} });</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    System::Tell("key RED");
    System::Tell("zap 2");
    EXPECT_TRUE(System::ShowsTab("ZDF Start (11.1), loaded")) << System::Tell("tabs");
    EXPECT_TRUE(WaitFor([] { return System::Tell("tabs").find("arte") == std::string::npos; })) << System::Tell("tabs");
    EXPECT_THAT(System::Tell("tabs"), HasSubstr("browser there"));
    EXPECT_THAT(system.platform.Output(), Not(HasSubstr("does not respond")));
}

TEST(Tabs, WhoseProcessCrashesAreReportedAndEnd) {
    const System system("");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    ASSERT_TRUE(System::ShowsTab("render process "));
    ASSERT_GT(System::RenderProcess(), 1);
    kill(System::RenderProcess(), SIGKILL);
    EXPECT_TRUE(system.platform.WaitForOutput("the process of the page has ended"));
    EXPECT_TRUE(System::HasNoTab()) << System::Tell("tabs");
    EXPECT_THAT(System::Tell("apps"), Not(HasSubstr("arte")));
}

TEST(Tabs, WhoseMemoryRunsOutAreReportedAndEnd) {
    const System system(
        "<script>addEventListener('keydown', () => {\n"
        "    for (const all = [];;) all.push(new Array(10000).fill(all.length));\n"
        "});</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command(), {ChromiumWithFlags(system, "--max-heap-size=64")});
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    System::Tell("key RED");
    EXPECT_TRUE(system.platform.WaitForOutput("> OnBlinkOutOfMemory tabid=1")) << System::Tell("tabs");
    EXPECT_TRUE(System::HasNoTab()) << System::Tell("tabs");
    EXPECT_THAT(system.platform.Output(), Not(HasSubstr("OnTabLoadFailed")));
}

TEST(Tabs, ThatUseTooMuchMemoryAreReportedUntilTheyHaveReleasedIt) {
    const System system(
        "<script>let all = [];\n"
        "oipfObjectFactory.createApplicationManagerObject().onLowMemory = () => { document.title = 'low'; };\n"
        "function fill() { while (all.length < 40) all.push(new Array(1000000).fill(all.length + 0.5)); }\n"
        "addEventListener('keydown', ({keyCode}) => {\n"
        "    if (keyCode === VK_RED) return fill();\n"
        "    all = [];\n"
        "    gc();\n"
        "});</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command(), {ChromiumWithFlags(system, "--expose-gc")});
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    EXPECT_THAT(System::Tell("tabs"), HasSubstr("memory 0"));
    System::Tell("key RED");
    EXPECT_TRUE(System::ShowsTab("memory 1")) << System::Tell("tabs");
    EXPECT_TRUE(System::ShowsTab("title \"low\"")) << System::Tell("tabs");
    System::Tell("key DOWN");
    EXPECT_TRUE(System::ShowsTab("memory 0")) << System::Tell("tabs");
    EXPECT_TRUE(System::ShowsTab("memory level ")) << System::Tell("tabs");
    System::Tell("key RED");
    EXPECT_TRUE(System::ShowsTab("memory 1")) << System::Tell("tabs");
    System::Tell("zap 1");
    EXPECT_TRUE(System::ShowsTab("memory 0")) << System::Tell("tabs");
}

TEST(Tabs, ThatCannotBeLoadedReportTheCodeAndTheReason) {
    const System system("");
    ASSERT_TRUE(system.ready);
    std::filesystem::remove(system.directory / "arte/index.html");
    ChildProcess browser(system.Command());
    System::Tell("zap 3");
    EXPECT_TRUE(System::ShowsTab("arte Start (14.1), failed (404 Not Found)")) << System::Tell("tabs");
}

TEST(Tabs, SeeThatTheyAreHiddenAndShown) {
    const System system(
        "<script>const seen = [];\n"
        "document.onvisibilitychange = ({isTrusted, bubbles}) => {\n"
        "    seen.push(document.visibilityState, document.hidden, bubbles);\n"
        "    document.title = seen;\n"
        "};</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    EXPECT_EQ(Emit({"ShowHideTab", "tabid=1", "showHide=false", "isMulti=false"}), 0);
    EXPECT_TRUE(System::ShowsTab("title \"hidden,true,true\"")) << System::Tell("tabs");
    EXPECT_EQ(Emit({"ShowHideTab", "tabid=1", "showHide=true", "isMulti=false"}), 0);
    EXPECT_TRUE(System::ShowsTab("title \"hidden,true,true,visible,false,true\"")) << System::Tell("tabs");
}

TEST(Tabs, GetKeysThatArePressedHeldAndReleased) {
    const System system(
        "<script>const seen = [];\n"
        "for (const type of ['keydown', 'keyup']) addEventListener(type, ({keyCode, repeat, isTrusted}) => {\n"
        "    seen.push(type.slice(3) + keyCode + (repeat ? ' again' : '') + (isTrusted ? '' : ' not trusted'));\n"
        "    document.title = seen;\n"
        "});</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    std::string seen;
    const std::vector<std::pair<std::string, std::string>> keys{{"keyType=0", "down40,up40"},
                                                                {"keyType=1", ",down40"},
                                                                {"keyType=1", ",down40 again"},
                                                                {"keyType=2", ",up40"},
                                                                {"keyType=1", ",down40"}};
    for (const auto& [type, events] : keys) {
        EXPECT_EQ(Emit({"SendKey", "key=40", type, "keyeventId=1"}), 0);
        seen += events;
        ASSERT_TRUE(System::ShowsTab("title \"" + seen + "\"")) << System::Tell("tabs");
    }
}

TEST(Tabs, AreClosedByThePlatformWhenTheirPageAsksForThat) {
    const System system("<script>addEventListener('keydown', () => window.close());</script>");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    System::Tell("key RED");
    EXPECT_TRUE(system.platform.WaitForOutput("> OnRenderRequestCloseTab tabid=1"));
    EXPECT_TRUE(System::HasNoTab()) << System::Tell("tabs");
}

TEST(Tabs, AreReportedGoneWhenChromiumIsKilledWhichIsStartedAgain) {
    const System system("");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    const pid_t first = system.Chromium();
    ASSERT_GT(first, 0);
    kill(first, SIGKILL);
    EXPECT_TRUE(System::HasNoTab()) << System::Tell("tabs");
    EXPECT_TRUE(browser.WaitForOutput("hbbtv-browser: Chromium has ended"));
    EXPECT_TRUE(WaitFor([&] { return system.Chromium() != first && system.Chromium() != 0; }));
    System::Tell("zap 1");
    EXPECT_TRUE(System::OpenArte()) << browser.Output();
}

TEST(Tabs, AreCreatedAgainAfterThePlatformWasKilled) {
    System system("");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    system.platform.Kill();
    SimulatedPlatform next;
    ASSERT_TRUE(next.Ready());
    EXPECT_TRUE(System::OpenArte()) << System::Tell("tabs");
}

TEST(Tabs, GetEventsOfAPlatformThatWasStartedAgain) {
    BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const std::string page = system.Write("page.html",
                                          "<!DOCTYPE html><title>Events</title><script>\n"
                                          "const config = oipfObjectFactory.createChannelConfig();\n"
                                          "config.onChannelListUpdate = () => console.log('updated');\n"
                                          "console.log('ready');</script>");
    ChildProcess browser({HBBTV_BROWSER_PROGRAM, "--headless", "--alone", "--console", page});
    ASSERT_TRUE(browser.WaitForOutput("ready")) << browser.Output();
    EXPECT_TRUE(WaitFor([&] {
        BrowserSystem::Tell("hide 12");
        BrowserSystem::Tell("show 12");
        return browser.Output().find("updated") != std::string::npos;
    }));
    system.platform.Kill();
    SimulatedPlatform next;
    ASSERT_TRUE(next.Ready());
    const size_t before = browser.Output().size();
    EXPECT_TRUE(WaitFor([&] {
        BrowserSystem::Tell("hide 12");
        BrowserSystem::Tell("show 12");
        return browser.Output().find("updated", before) != std::string::npos;
    })) << browser.Output();
}

TEST(Tabs, AreCreatedAgainAfterTheServiceWasKilled) {
    System system("");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    System::Tell("zap 1");
    ASSERT_TRUE(System::HasNoTab());
    system.service.Kill();
    ServiceProcess next;
    EXPECT_TRUE(WaitFor([] {
        System::Tell("zap 1");
        System::Tell("zap 3");
        return WaitFor([] { return System::Tell("tabs").find("loaded") != std::string::npos; },
                       std::chrono::milliseconds(5000));
    })) << System::Tell("tabs");
}

TEST(Tabs, AreReportedGoneAtTheEndOfTheBrowserWhichLeavesNothingBehind) {
    const System system("");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    browser.Signal(SIGINT);
    EXPECT_EQ(browser.WaitForExit(), kDone);
    EXPECT_EQ(browser.Output(), "");
    EXPECT_TRUE(System::HasNoTab()) << System::Tell("tabs");
    EXPECT_EQ(FilesOfChromium(system.directory.Path()), std::vector<std::string>());
    EXPECT_EQ(system.Chromium(), 0);
}

TEST(Tabs, BelongToOneBrowser) {
    const System system("");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    const FinishedRun second = RunToEnd(system.Command());
    EXPECT_EQ(second.exit, kUnavailable);
    EXPECT_EQ(second.errors, "hbbtv-browser: another browser is registered: hbbtv-browser (" +
                                 std::to_string(browser.Pid()) +
                                 "); end it, or use another TMPDIR with a service of its own\n");
}

TEST(Tabs, GetXmlFilesForThePlatform) {
    const System system("");
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(System::OpenArte()) << browser.Output();
    system.Write("arte/ait.aitx", "<ait>file</ait>");
    const FinishedRun run =
        RunToEnd({HBBTVCTL_PROGRAM, "emit", "mtm", "GetXmlFile", "url=http://arte.example/hbbtv/ait.aitx", "appID=1"});
    EXPECT_THAT(run.output, HasSubstr("<ait>file</ait>")) << run.Text();
    const FinishedRun missing =
        RunToEnd({HBBTVCTL_PROGRAM, "emit", "mtm", "GetXmlFile", "url=http://127.0.0.1:1/ait.aitx", "appID=1"});
    EXPECT_THAT(missing.output, HasSubstr("-1")) << missing.Text();
}

}  // namespace hbbtv::test
