// The television's commands to the browser, from the tuning of a service with an application to its end.
#include "applications/browser_fixture.h"

namespace hbbtv::test {
namespace {

class Commands : public BrowserFixture {
  protected:
    void SetUp() override { Start(); }
};

TEST_F(Commands, FollowAnApplicationFromTheTuningOfItsServiceToItsEnd) {
    EXPECT_EQ(Tell("zap 2"), "ok Red");
    EXPECT_EQ(NextCommand(), CreateCommand("http://red.test/", R"("http://red.test/","https://red.test/")"));
    EXPECT_EQ(Ret("mtm.OnTabCreated", {{"tabid", 3}}), 0) << "the browser reports the tab before it answers";
    EXPECT_EQ(TabEntry(3), "tab 3: no application, empty, hidden");
    Reply(R"({"ret": 0, "tabid": 3})");
    EXPECT_EQ(NextCommand(), "SetAppConfig isBR=true tabid=3");
    EXPECT_EQ(NextCommand(), "SetDvbOrigin origin=\"dvb://1.1.2\" tabid=3");
    EXPECT_EQ(NextCommand(),
              "LoadURLInTab appMode=\"hbbtv\" auto_show=true "
              "boundaries=[\"http://red.test/\",\"https://red.test/\"] isBR=true tabid=3 url=\"http://red.test/\"");
    EXPECT_EQ(NextCommand(), "ShowHideTab isMulti=false showHide=true tabid=3");
    EXPECT_EQ(NextCommand(), "GetRenderProcessId tabid=3");
    Reply(R"({"ret": 0, "render_id": 4711})");
    EXPECT_TRUE(WaitFor([&] { return TabEntry(3) == "tab 3: Start (11.1), empty, hidden, render process 4711"; }))
        << TabEntry(3);
    EXPECT_EQ(Ret("mtm.OnTabShow", {{"tabid", 3}}), 0);
    EXPECT_EQ(Ret("mtm.OnTabLoadFinished", {{"tabid", 3}, {"url", "http://red.test/"}}), 0);
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), loaded, shown, url http://red.test/, render process 4711");

    EXPECT_EQ(Tell("key RED"), "ok Start");
    EXPECT_EQ(NextCommand(), "SendKey key=403 keyType=0 keyeventId=1");
    EXPECT_EQ(Tell("key 5"), "ok no application takes it");
    EXPECT_EQ(Tell("key ENTER"), "ok Start");
    EXPECT_EQ(NextCommand(), "SendKey key=13 keyType=0 keyeventId=2");

    EXPECT_EQ(Tell("zap 1"), "ok Plain");
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=3");
    EXPECT_EQ(TabEntry(3).find("tab 3: Start (11.1), closing"), 0u) << "the browser has not said that it is gone";
    EXPECT_EQ(Ret("mtm.OnTabDestroyed", {{"tabid", 3}}), 0);
    EXPECT_EQ(Tell("tabs"), "ok browser there, status 0, memory 0");
}

TEST_F(Commands, ShowAndHideFollowTheApplicationManager) {
    TuneToTab(2, 3);
    Send("application_manager.HideApp", {{"appid", 1}, {"orgid", 17}});
    EXPECT_EQ(NextCommand(), "ShowHideTab isMulti=false showHide=false tabid=3");
    Send("application_manager.HideApp", {{"appid", 1}, {"orgid", 17}});
    EXPECT_EQ(Tell("key RED"), "ok no application takes it") << "it is hidden";
    Send("application_manager.ShowApp", {{"appid", 1}, {"orgid", 17}});
    EXPECT_EQ(NextCommand(), "ShowHideTab isMulti=false showHide=true tabid=3") << "hiding it twice was no change";
    EXPECT_EQ(Tell("start 11.2"), "ok Text");
    AnswerCreateApp(4);
    EXPECT_EQ(NextCommand(), "SetAppConfig isBR=true tabid=4");
    EXPECT_EQ(NextCommand(), "SetDvbOrigin origin=\"dvb://1.1.2\" tabid=4");
    EXPECT_EQ(NextCommand().rfind("LoadURLInTab ", 0), 0u);
    EXPECT_EQ(NextCommand(), "ShowHideTab isMulti=true showHide=true tabid=4") << "two are shown";
}

TEST_F(Commands, AKeyGoesToTheTopmostShownApplicationThatTakesIt) {
    TuneToTab(2, 3);
    EXPECT_EQ(Tell("start 11.2"), "ok Text");
    NextCommand();
    Reply(R"({"ret": 0, "tabid": 4})");
    FillTab(4);
    EXPECT_EQ(Tell("key 5"), "ok Text");
    EXPECT_EQ(NextCommand(), "SendKey key=53 keyType=0 keyeventId=1");
    EXPECT_EQ(Tell("key TELETEXT"), "ok Text");
    EXPECT_EQ(NextCommand(), "SendKey key=459 keyType=0 keyeventId=2");
    EXPECT_EQ(Tell("key RECORD"), "ok no application takes it");
    EXPECT_EQ(Tell("key BACK"), "ok Start") << "the upper one takes no navigation";
    EXPECT_EQ(NextCommand(), "SendKey key=461 keyType=0 keyeventId=3");
    EXPECT_EQ(Tell("key REED"), "error: the remote control has no key \"REED\"; did you mean \"RED\"?");
    EXPECT_EQ(Tell("key"), "error: usage: key NAME");
}

TEST_F(Commands, ATabThatComesAfterItsServiceWasLeftIsDestroyed) {
    Tell("zap 2");
    EXPECT_EQ(NextCommand().rfind("CreateApp ", 0), 0u);
    Tell("zap 1");
    EXPECT_EQ(Ret("mtm.OnTabCreated", {{"tabid", 8}}), 0);
    Reply(R"({"ret": 0, "tabid": 8})");
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=8");
    EXPECT_EQ(TabEntry(8), "tab 8: no application, closing, hidden");
}

TEST_F(Commands, AnApplicationThatIsSignalledInXmlIsLoadedFromThePlaceInTheFile) {
    Tell("zap 6");
    EXPECT_EQ(NextCommand(), "GetXmlFile appID=\"15.1\" url=\"http://xml.test/ait.aitx\"");
    Json::Value reply;
    reply["ret"] = 0;
    reply["xmlFile"] = R"(<?xml version="1.0"?><mhp:ServiceDiscovery><mhp:applicationTransport>
        <mhp:URLBase> http://xml.test/app/ </mhp:URLBase></mhp:applicationTransport>
        <mhp:applicationLocation>start.html?a=1&amp;b=2</mhp:applicationLocation></mhp:ServiceDiscovery>)";
    Reply(reply.toStyledString());
    EXPECT_EQ(NextCommand(), CreateCommand("http://xml.test/app/start.html?a=1&b=2"));
}

TEST_F(Commands, AHugeFileOfSignallingIsReadQuickly) {
    const std::string tags(1000000, '<');
    std::string escapes;
    for (int i = 0; i < 300000; ++i) escapes += "&amp;";
    for (const std::string& text : {tags, tags + "><a>", "<URLBase>" + escapes + "</URLBase>"}) {
        Tell("zap 6");
        EXPECT_EQ(NextCommand().rfind("GetXmlFile ", 0), 0u);
        Json::Value reply;
        reply["ret"] = 0;
        reply["xmlFile"] = text;
        Reply(reply.toStyledString());
        Tell("zap 1");
    }
    TuneToTab(2, 3);
}

class BadSignalling : public Commands, public testing::WithParamInterface<const char*> {};

TEST_P(BadSignalling, GivesNoTabAndOneLogLine) {
    Tell("zap 6");
    EXPECT_EQ(NextCommand().rfind("GetXmlFile ", 0), 0u);
    Reply(GetParam());
    ExpectSaid("no tab for Signalled: the browser responds, but it returns no application location", 1);
    Tell("zap 2");
    EXPECT_NE(NextCommand().find("http://red.test/"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Every, BadSignalling,
                         testing::Values(R"({"ret": -1, "xmlFile": "<applicationLocation>http://x/</a>"})",
                                         R"({"ret": 0})", R"({"ret": 0, "xmlFile": 7})", R"({"ret": 0, "xmlFile": ""})",
                                         R"({"ret": 0, "xmlFile": "<a><b></a>"})",
                                         R"({"ret": 0, "xmlFile": "<URLBase>http://x/"})",
                                         R"({"ret": 0, "xmlFile": "<URLBase"})",
                                         R"({"ret": 0, "xmlFile": "<applicationLocation>a</applicationLocation>"})",
                                         R"([0])"));

class BadTab : public Commands, public testing::WithParamInterface<const char*> {};

TEST_P(BadTab, GivesNoTabAndOneLogLineAndTheNextTuningTriesAgain) {
    Tell("zap 2");
    EXPECT_EQ(NextCommand().rfind("CreateApp ", 0), 0u);
    Reply(GetParam());
    ExpectSaid("mtm: no tab for Start: the browser responds, but ", 1);
    EXPECT_EQ(AppEntry("11.1"), "11.1 Start, broadcast-related, shown, keys 0x1f") << "it runs anyway";
    EXPECT_EQ(Tell("key RED"), "ok no application takes it");
    EXPECT_EQ(Ret("mtm.OnMemoryWarningDetected", {{"mem_status", 1}}), 0);
    Tell("zap 1");
    TuneToTab(2, 3);
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), empty, hidden, render process 1003");
}

INSTANTIATE_TEST_SUITE_P(Every, BadTab,
                         testing::Values(R"({"ret": -1})", R"({"ret": 0})", R"({"ret": 0, "tabid": "3"})",
                                         R"({"ret": 0, "tabid": -1})", R"({"ret": 0, "tabid": 1e30})",
                                         R"({"ret": "0", "tabid": 3})", R"({"tabid": 3})", R"([3])", R"("tab")"));

TEST_F(Commands, ATabThatBelongsToAnotherApplicationIsNotTaken) {
    TuneToTab(2, 3);
    Tell("start 11.2");
    AnswerCreateApp(3);
    ExpectSaid("no tab for Text: the browser responds, but tab 3 is used by another application", 1);
    EXPECT_EQ(TabEntry(3).find("tab 3: Start (11.1)"), 0u);
}

TEST_F(Commands, AReplyWithoutARenderProcessLeavesItUnknown) {
    for (const char* reply : {R"({"ret": -1})", R"({"ret": 0, "render_id": "x"})", "null", "nonsense"}) {
        Tell("zap 2");
        AnswerCreateApp(3);
        std::string command;
        while (command.rfind("GetRenderProcessId ", 0) != 0 && !HasFailure()) command = NextCommand();
        Reply(reply);
        Tell("zap 1");
        EXPECT_EQ(NextCommand(), "DestroyApp tabid=3");
        EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), closing, hidden");
    }
}

TEST_F(Commands, CloseTabsEndsAllApplications) {
    TuneToTab(2, 3);
    EXPECT_EQ(Tell("close-tabs"), "ok");
    EXPECT_EQ(NextCommand(), "DestroyAllApps");
    EXPECT_EQ(Tell("apps"), "ok screen 1920x1080");
    EXPECT_EQ(Ret("mtm.OnAllTabsDestroyed"), 0);
    EXPECT_EQ(Tell("tabs"), "ok browser there, status 0, memory 0");
    EXPECT_EQ(Tell("close-tabs now"), "error: usage: close-tabs");
}

TEST_F(Commands, ACrashedTabIsDestroyedAndItsApplicationEnds) {
    TuneToTab(2, 3);
    EXPECT_EQ(Tell("crash 3"), "ok");
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=3");
    EXPECT_EQ(AppEntry("11.1"), "");
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), crashed, hidden, render process 1003");
    ExpectSaid("mtm: tab 3 has crashed, Start ends", 1);
    EXPECT_EQ(Tell("crash 4"), "error: there is no tab 4");
    EXPECT_EQ(Tell("crash"), "error: usage: crash TAB");
    EXPECT_EQ(Tell("start 11.1"), "ok Start");
    AnswerCreateApp(3);
    FillTab(3);
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), empty, hidden, render process 1003") << "the number is used again";
}

class AtTheStart : public BrowserFixture {};

TEST_F(AtTheStart, TheFirstServicesApplicationStartsToo) {
    const std::string lineUp = mDirectory / "one.json";
    WriteFile(lineUp, LineUpText(ServiceText(1, "One", R"("applications": [{"name": "First", "organisation": 1,
        "application": 2, "control": "autostart", "url": "http://first.test/"}])")));
    ServeEvents("application_manager");
    ServeEvents("mtm");
    mSimulator = Launch({"--line-up", lineUp, "--tune-time", "0ms", "--ping-interval", "0ms", "--trace"});
    EXPECT_EQ(NextCommand(), CreateCommand("http://first.test/"));
    Reply(R"({"ret": 0, "tabid": 3})");
    EXPECT_TRUE(mSimulator->WaitForOutput("* CreateApp appMode=\"hbbtv\" auto_show=true boundaries=[] isBr=true"));
    EXPECT_TRUE(mSimulator->WaitForOutput("url=\"http://first.test/\" | waiting for a reply\n"));
    EXPECT_TRUE(mSimulator->WaitForOutput("* CreateApp | < ret=0 tabid=3\n")) << mSimulator->Output();
}

}  // namespace
}  // namespace hbbtv::test
