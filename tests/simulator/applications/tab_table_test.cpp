// What the browser reports about its tabs, notification by notification, and how the television reacts.
#include "applications/browser_fixture.h"
#include "wire/message.h"

namespace hbbtv::test {
namespace {

class TabTable : public BrowserFixture {
  protected:
    TabTable() { mFamily = "mtm"; }
    void SetUp() override { Start(); }

    // Returns the part of the table about the whole browser.
    std::string Head() {
        const std::string table = Tell("tabs");
        return table.substr(0, table.find(';'));
    }
};

TEST_F(TabTable, TabsComeAndGoAsTheBrowserReports) {
    EXPECT_EQ(Tell("tabs"), "ok browser not asked, status 0, memory 0");
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 7}}), 0);
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 7}}), 0) << "reported twice";
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 0}}), 0);
    EXPECT_EQ(Tell("tabs"),
              "ok browser there, status 0, memory 0; tab 0: no application, empty, hidden; "
              "tab 7: no application, empty, hidden");
    EXPECT_EQ(Ret("OnTabDestroyed", {{"tabid", 7}}), 0);
    EXPECT_EQ(TabEntry(7), "");
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 8}}), 0);
    EXPECT_EQ(Ret("OnAllTabsDestroyed"), 0);
    EXPECT_EQ(Tell("tabs"), "ok browser there, status 0, memory 0");
    EXPECT_EQ(Tell("tabs 3"), "error: usage: tabs");
}

TEST_F(TabTable, ATabIsShownHiddenAndFocused) {
    for (const int tab : {1, 2}) EXPECT_EQ(Ret("OnTabCreated", {{"tabid", tab}}), 0);
    EXPECT_EQ(Ret("OnTabShow", {{"tabid", 1}}), 0);
    EXPECT_EQ(Ret("OnTabFocus", {{"tabid", 1}}), 0);
    EXPECT_EQ(TabEntry(1), "tab 1: no application, empty, shown, focused");
    EXPECT_EQ(Ret("OnTabFocus", {{"tabid", 2}}), 0);
    EXPECT_EQ(Ret("OnTabHide", {{"tabid", 1}}), 0);
    EXPECT_EQ(TabEntry(1), "tab 1: no application, empty, hidden");
    EXPECT_EQ(TabEntry(2), "tab 2: no application, empty, hidden, focused");
}

TEST_F(TabTable, TheLoadingStateHasTheCodeOfTabShowAndNoTab) {
    EXPECT_EQ(Ret("OnLoadingStateChanged", {{"is_loading", true}, {"can_back", true}, {"can_forward", false}}), 0);
    EXPECT_EQ(Head(), "ok browser there, status 0, memory 0, loading, can go back");
    EXPECT_EQ(Ret("OnLoadingStateChanged", {{"is_loading", false}, {"can_back", false}, {"can_forward", true}}), 0);
    EXPECT_EQ(Head(), "ok browser there, status 0, memory 0, can go forward");
    EXPECT_EQ(Ret("OnLoadingStateChanged", {{"is_loading", true}, {"can_back", true}, {"can_forward", 1}}), -1);
    EXPECT_EQ(Head(), "ok browser there, status 0, memory 0, can go forward") << "nothing of it was taken";
}

TEST_F(TabTable, APageLoadsAndIsShownWithItsTitleAndUrl) {
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 1}}), 0);
    EXPECT_EQ(Ret("OnLoadProgressChanged", {{"tabid", 1}, {"progress", 0.5}}), 0);
    EXPECT_EQ(TabEntry(1), "tab 1: no application, loading (0.5), hidden");
    EXPECT_EQ(Ret("OnAddressBarChanged", {{"tabid", 1}, {"url", "http://a.test/address"}}), 0);
    EXPECT_EQ(Ret("OnTabTitleChanged", {{"tabid", 1}, {"title", "A \"title\""}}), 0);
    EXPECT_EQ(Ret("OnTabURLChanged", {{"tabid", 1}, {"title", "http://a.test/url"}}), 0)
        << "the url comes as the title";
    EXPECT_EQ(Ret("OnTabDocumentLoadedInFrame", {{"tabid", 1}}), 0);
    EXPECT_EQ(TabEntry(1),
              "tab 1: no application, loading (0.5), document, hidden, title \"A \"title\"\", url http://a.test/url, "
              "address http://a.test/address");
    EXPECT_EQ(Ret("OnLoadProgressChanged", {{"tabid", 1}, {"progress", 1}}), 0);
    EXPECT_EQ(Ret("OnTabLoadFinished", {{"tabid", 1}, {"url", "http://a.test/end"}}), 0);
    EXPECT_EQ(TabEntry(1).find("tab 1: no application, loaded, document, hidden"), 0u);
    EXPECT_NE(TabEntry(1).find("url http://a.test/end"), std::string::npos);
}

TEST_F(TabTable, AFailedPageShowsItsErrorAndItsApplicationStays) {
    TuneToTab(2, 3);
    EXPECT_EQ(Ret("OnTabLoadFailed",
                  {{"tabid", 3}, {"url", "http://red.test/"}, {"error_code", -105}, {"description", "no name"}}),
              0);
    EXPECT_EQ(TabEntry(3),
              "tab 3: Start (11.1), failed (-105 no name), hidden, url http://red.test/, render process 1003");
    EXPECT_NE(AppEntry("11.1"), "");
}

TEST_F(TabTable, TheBrowsersMemoryAndThatOfATabAreKept) {
    EXPECT_EQ(Ret("OnMemoryWarningDetected", {{"mem_status", 2}}), 0);
    EXPECT_EQ(Head(), "ok browser there, status 0, memory 2");
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 1}}), 0);
    EXPECT_EQ(Ret("OnMemoryReduced", {{"tabid", 1}, {"level", 4}}), 0);
    EXPECT_EQ(TabEntry(1), "tab 1: no application, empty, hidden, memory level 4");
}

TEST_F(TabTable, ATabWithoutMemoryHasCrashedAndItsApplicationEnds) {
    TuneToTab(2, 3);
    EXPECT_EQ(Ret("OnBlinkOutOfMemory", {{"tabid", 3}}), 0);
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=3");
    EXPECT_EQ(AppEntry("11.1"), "");
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), crashed, hidden, render process 1003");
    EXPECT_EQ(Ret("OnTabDestroyed", {{"tabid", 3}}), 0);
    EXPECT_EQ(TabEntry(3), "");
}

TEST_F(TabTable, WhatIsTooLateAboutAPageDoesNotBringItsTabBack) {
    TuneToTab(2, 3);
    EXPECT_EQ(Ret("OnBlinkOutOfMemory", {{"tabid", 3}}), 0);
    EXPECT_EQ(Ret("OnLoadProgressChanged", {{"tabid", 3}, {"progress", 0.5}}), 0);
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), crashed, hidden, render process 1003");
    EXPECT_EQ(Ret("OnTabLoadFinished", {{"tabid", 3}, {"url", "http://red.test/"}}), 0);
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), crashed, hidden, url http://red.test/, render process 1003");
    EXPECT_EQ(Ret("OnTabLoadFailed", {{"tabid", 3}, {"url", "u"}, {"error_code", -1}, {"description", ""}}), 0);
    EXPECT_EQ(TabEntry(3), "tab 3: Start (11.1), crashed, hidden, url u, render process 1003");
}

TEST_F(TabTable, APageThatWantsToBeClosedIsAndItsApplicationEnds) {
    TuneToTab(2, 3);
    EXPECT_EQ(Ret("OnRenderRequestCloseTab", {{"tabid", 3}}), 0);
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=3");
    EXPECT_EQ(AppEntry("11.1"), "");
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 9}}), 0);
    EXPECT_EQ(Ret("OnRenderRequestCloseTab", {{"tabid", 9}}), 0);
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=9") << "also one without an application";
}

TEST_F(TabTable, AnApplicationEndsWhenItsTabGoes) {
    TuneToTab(2, 3);
    EXPECT_EQ(Ret("OnTabDestroyed", {{"tabid", 3}}), 0);
    EXPECT_EQ(AppEntry("11.1"), "");
    Tell("zap 1");
    TuneToTab(2, 4);
    EXPECT_EQ(Ret("OnAllTabsDestroyed"), 0);
    EXPECT_EQ(AppEntry("11.1"), "");
    EXPECT_EQ(Tell("tabs"), "ok browser there, status 0, memory 0");
}

TEST_F(TabTable, UnknownTabsAreRefused) {
    const Members members{{"tabid", 5},         {"url", "u"},      {"title", "t"}, {"error_code", 1},
                          {"description", "d"}, {"progress", 0.1}, {"level", 1}};
    ExpectRequestsRefused(Without(OperationsOf("mtm"), {"mtm.OnTabCreated", "mtm.OnAllTabsDestroyed",
                                                        "mtm.OnLoadingStateChanged", "mtm.OnMemoryWarningDetected"}),
                          members);
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", -1}}), -1);
    EXPECT_EQ(Tell("tabs"), "ok browser there, status 0, memory 0");
}

TEST_F(TabTable, TheTwoHundredFiftySeventhTabIsRefused) {
    for (int tab = 0; tab < 256; ++tab) ASSERT_EQ(Ret("OnTabCreated", {{"tabid", tab}}), 0) << tab;
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 256}}), -1);
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 255}}), 0) << "a known one";
}

TEST_F(TabTable, EveryNotificationWithoutItsMembersIsRefusedAndNoneEndsTheProcess) {
    ExpectRequestsRefused(Without(OperationsOf("mtm"), {"mtm.OnAllTabsDestroyed"}));
    ExpectOtherCodesRefused("mtm");
    EXPECT_EQ(Ret("OnAllTabsDestroyed"), 0) << "has no members";
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 1}}), 0);
    ExpectRequestsRefused({"OnAddressBarChanged", "OnLoadProgressChanged", "OnTabTitleChanged", "OnTabURLChanged",
                           "OnTabLoadFinished", "OnTabLoadFailed", "OnMemoryReduced"},
                          {{"tabid", 1}});
    for (const char* text : {"", "nonsense", "null", "[]", "{}"}) {
        EXPECT_EQ(AnswerTo("mtm", text)["ret"], -1) << text;
    }
    const Json::Value& envelope = FindFamily("mtm").protocol["envelope"];
    const std::string type = envelope["type"]["key"].asString();
    const std::string code = envelope["code"]["key"].asString();
    const Json::Value valid = Operation("mtm.OnAllTabsDestroyed").Request({});
    Json::Value withoutCode = valid;
    withoutCode.removeMember(code);
    EXPECT_EQ(AnswerTo("mtm", WireText(withoutCode))["ret"], -1);
    for (const Json::Value& wrongType : {Json::Value(1), Json::Value("0")}) {
        EXPECT_EQ(AskRaw("OnAllTabsDestroyed", {{type, wrongType}})["ret"], -1) << wrongType.asString();
    }
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", "1"}}), -1);
    EXPECT_EQ(TabEntry(1), "tab 1: no application, empty, hidden");
}

TEST_F(TabTable, OddTextsAndNumbersAreKeptShortAndPrintable) {
    EXPECT_EQ(Ret("OnTabCreated", {{"tabid", 1}}), 0);
    EXPECT_EQ(Ret("OnTabTitleChanged", {{"tabid", 1}, {"title", std::string(1000000, 'x')}}), 0);
    EXPECT_EQ(TabEntry(1), "tab 1: no application, empty, hidden, title \"" + std::string(60, 'x') + "...\"");
    EXPECT_EQ(Ret("OnTabTitleChanged", {{"tabid", 1}, {"title", "a\nb\x01K\xc3\xb6ln"}}), 0);
    EXPECT_EQ(TabEntry(1), "tab 1: no application, empty, hidden, title \"a.b.K..ln\"");
    EXPECT_EQ(Ret("OnLoadProgressChanged", {{"tabid", 1}, {"progress", -1e300}}), 0);
    EXPECT_EQ(TabEntry(1).find("tab 1: no application, loading (-1"), 0u);
}

}  // namespace
}  // namespace hbbtv::test
