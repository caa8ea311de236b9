// A browser that is away, hangs, dies or comes back: the television continues, and the tabs come when they can.
#include "applications/browser_fixture.h"

namespace hbbtv::test {
namespace {

class Absence : public BrowserFixture {
  protected:
    // Answers all commands with success, up to this one, which it does not answer.
    void AnswerUntil(const std::string& last) {
        std::string command = NextCommand();
        for (; command != last && !HasFailure(); command = NextCommand()) {
            if (command == "Ping") Reply(R"({"ret": 0, "status": 0})");
            if (command.rfind("CreateApp ", 0) == 0) Reply(R"({"ret": 0, "tabid": 3})");
        }
    }

    // Starts, tunes to a channel while there is no browser, and lets the browser come.
    void StartAndMissTheBrowser(const std::string& zap, const std::string& ping = "0ms") {
        Start(ping);
        StopServingEvents("mtm");
        Tell(zap);
        ExpectSaid("no browser responds", 1);
        ServeEvents("mtm");
    }

    // Expects that the simulator still answers others.
    void ExpectAlive() { EXPECT_EQ(Tell("apps").rfind("ok ", 0), 0u); }
};

TEST_F(Absence, LeavesTheApplicationWithoutATabAndIsLoggedOnce) {
    Start();
    StopServingEvents("mtm");
    for (const char* zap : {"zap 2", "zap 1", "zap 2", "zap 3"}) Tell(zap);
    ExpectSaid("mtm: no tab for Start: no browser responds", 1);
    ExpectSaid("mtm: ", 1);
    EXPECT_EQ(AppEntry("12.1f5"), "12.1f5 Library, broadcast-independent, shown, keys 0x1f");
    EXPECT_EQ(Tell("tabs"), "ok browser not there, status 0, memory 0");
    EXPECT_EQ(Tell("key RED"), "ok no application takes it");
    EXPECT_EQ(Tell("close-tabs"), "ok");
    EXPECT_EQ(Tell("apps"), "ok screen 1920x1080");
}

TEST_F(Absence, IsLoggedOnOneLineWhateverTheNamesAre) {
    mLineUp = LineUpText(ServiceText(1, R"(K\u00f6ln\n\u001b[2J\u007f!)",
                                     R"("applications": [{"name": "A\r\nready\u001b[2J", "organisation": 17,
                                         "application": 1, "control": "autostart", "url": "http://a.test/"}])"));
    SimulatorFixture::Start();
    EXPECT_NE(mSimulator->Output().find(", on: K\xc3\xb6ln  [2J !\n"), std::string::npos) << mSimulator->Output();
    ExpectSaid("mtm: no tab for A  ready [2J: no browser responds\n", 1);
    EXPECT_EQ(Tell("zap 1"), "ok K\xc3\xb6ln  [2J !");
}

TEST_F(Absence, EndsWithTheNextTuning) {
    StartAndMissTheBrowser("zap 2");
    Tell("zap 1");
    TuneToTab(2, 3);
}

TEST_F(Absence, EndsForOtherApplicationsTooWhenATabIsMade) {
    StartAndMissTheBrowser("zap 3");
    TuneToTab(2, 3);
    EXPECT_NE(NextCommand().find("https://free.test/"), std::string::npos);
}

TEST_F(Absence, EndsWithAnyNotificationOfTheBrowser) {
    StartAndMissTheBrowser("zap 2");
    EXPECT_EQ(Ret("mtm.OnMemoryWarningDetected", {{"mem_status", 0}}), 0);
    EXPECT_NE(NextCommand().find("http://red.test/"), std::string::npos);
}

TEST_F(Absence, EndsWithAPing) {
    StartAndMissTheBrowser("zap 2", "20ms");
    EXPECT_EQ(NextCommand(), "Ping");
    Reply(R"({"ret": 0, "status": 5})");
    EXPECT_NE(NextCommand().find("http://red.test/"), std::string::npos);
    EXPECT_EQ(Tell("tabs"), "ok browser there, status 5, memory 0");
}

TEST_F(Absence, IsWhatAReplyOfNullMeans) {
    Start();
    Tell("zap 2");
    EXPECT_EQ(NextCommand().rfind("CreateApp ", 0), 0u);
    Reply("null\n");  // no client has registered
    ExpectSaid("mtm: no tab for Start: no browser responds", 1);
    EXPECT_EQ(Tell("tabs"), "ok browser not there, status 0, memory 0");
}

TEST_F(Absence, OfAnAnswerIsNoticedAndBlocksNothing) {
    Start();
    Tell("zap 2");
    EXPECT_EQ(NextCommand().rfind("CreateApp ", 0), 0u);
    ExpectAlive();
    Tell("zap 3");
    ExpectSaid("mtm: no tab for ", 0);
    LibraryOf("mtm").Disconnect();
    EXPECT_NE(NextCommand().find("http://red.test/"), std::string::npos) << "once more, to whoever is there now";
    Reply(R"({"ret": 0, "tabid": 1})");
    EXPECT_NE(NextCommand().find("https://free.test/"), std::string::npos);
    Reply(R"({"ret": 0, "tabid": 2})");
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=1") << "its service was left meanwhile";
}

TEST_F(Absence, OfAnAnswerForTooLongGivesNoTabAndALateAnswerIsHarmless) {
    Start();
    Tell("zap 2");
    EXPECT_EQ(NextCommand().rfind("CreateApp ", 0), 0u);
    ExpectSaid("mtm: no tab for Start: no browser responds", 1);
    Reply(R"({"ret": 0, "tabid": 3})");
    ExpectAlive();
    EXPECT_EQ(TabEntry(3), "");
    LibraryOf("mtm").Disconnect();
    Tell("zap 1");
    TuneToTab(2, 4);
}

TEST_F(Absence, OfAnAnswerToAPingTakesTheTabsAwayUntilABrowserAnswersAgain) {
    Start("20ms");
    Tell("zap 2");
    AnswerUntil("GetRenderProcessId tabid=3");
    Reply(R"({"ret": 0, "render_id": 1})");
    EXPECT_EQ(NextCommand(), "Ping");
    Reply(R"({"ret": -1})");  // as for a client that has died
    ExpectSaid("mtm: the browser does not respond; its tabs are removed", 1);
    EXPECT_EQ(Tell("tabs"), "ok browser not there, status 0, memory 0");
    EXPECT_EQ(AppEntry("11.1"), "11.1 Start, broadcast-related, shown, keys 0x1f");
    EXPECT_EQ(NextCommand(), "Ping");
    Reply(R"({"ret": 0, "status": 0})");
    EXPECT_EQ(NextCommand(), "DestroyAllApps") << "it may still have unknown tabs";
    EXPECT_NE(NextCommand().find("http://red.test/"), std::string::npos);
}

TEST_F(Absence, OfApplicationsAndTabsNeedsNoPings) {
    Start("1ms");
    Tell("zap 2");
    AnswerUntil("GetRenderProcessId tabid=3");
    Reply(R"({"ret": 0, "render_id": 1})");
    Tell("zap 1");
    EXPECT_EQ(Ret("mtm.OnTabDestroyed", {{"tabid", 3}}), 0);
    // After the pings on their way, the next command is that of the next application.
    Tell("zap 3");
    std::string command = NextCommand();
    int pings = 0;
    for (; command == "Ping" || command == "DestroyApp tabid=3"; command = NextCommand()) {
        if (command == "Ping") Reply(R"({"ret": 0, "status": 0})");
        if (command == "Ping") ++pings;
        if (HasFailure()) return;
    }
    EXPECT_NE(command.find("https://free.test/"), std::string::npos) << command;
    EXPECT_LE(pings, 2);
}

TEST_F(Absence, OfABrowserWithATabOfItsOwnIsWatchedForToo) {
    Start("20ms");
    EXPECT_EQ(Ret("mtm.OnTabCreated", {{"tabid", 7}}), 0);
    EXPECT_EQ(NextCommand(), "Ping");
    Reply(R"({"ret": 0, "status": 5})");
    EXPECT_EQ(NextCommand(), "Ping");
    EXPECT_EQ(Tell("tabs"), "ok browser there, status 5, memory 0; tab 7: no application, empty, hidden");
    Reply("null");
    ExpectSaid("mtm: the browser does not respond; its tabs are removed", 1);
}

TEST_F(Absence, OfPingsIsWhatAnIntervalOf0Means) {
    Start("0ms");
    TuneToTab(2, 3);
    Tell("key RED");
    EXPECT_EQ(NextCommand().rfind("SendKey ", 0), 0u);
}

}  // namespace
}  // namespace hbbtv::test
