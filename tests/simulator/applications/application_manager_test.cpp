// The application manager's requests and events, which depend on what was done before.
#include "applications/browser_fixture.h"

namespace hbbtv::test {
namespace {

class ApplicationManager : public BrowserFixture {
  protected:
    ApplicationManager() { mFamily = "application_manager"; }
    void SetUp() override { Start(); }

    static Members Id(int application, int organisation) { return {{"appid", application}, {"orgid", organisation}}; }

    static Members With(Members members, const Members& more) {
        members.insert(more.begin(), more.end());
        return members;
    }

    Json::Value Create(const Members& creator, const std::string& url, int child = 0, int opapp = 0) {
        return Ask("CreateApp", With(creator, {{"url", url}, {"child", child}, {"opapp", opapp}}));
    }

    // Returns the ids that a request returns, "17.1", or "none" for a refusal.
    std::string IdOf(const std::string& operation, const Members& members = {}) {
        const Json::Value reply = Ask(operation, members);
        return reply["ret"] == 0 ? reply["orgid"].asString() + "." + reply["appid"].asString() : "none";
    }

    std::string Current() { return IdOf("GetCurrentApp"); }
    std::string Owner(const Json::Value& application) { return IdOf("GetOwnerApp", {{"appid", application}}); }

    // Returns the number of other keys and the keys: "2: 459 416".
    std::string OtherKeys(const std::string& operation = "GetOtherKeys") {
        const Json::Value reply = Ask(operation, kStart);
        EXPECT_EQ(reply["ret"], 0);
        std::string keys = reply["num"].asString() + ":";
        for (int i = 0; reply.isMember("k" + std::to_string(i)); ++i)
            keys += " " + reply["k" + std::to_string(i)].asString();
        return keys;
    }

    // Asks for these sets of keys and other keys.
    void SetKeys(int sets, const std::vector<int>& others) {
        Send("SetValue", With(kStart, {{"value", sets}, {"k", List(others)}}));
    }

    // Changes to a channel whose application has a minimum age, and reads up to the question for the rating.
    void ZapToRated(int channel, const std::string& country = "DEU") {
        Tell("zap " + std::to_string(channel));
        EXPECT_EQ(NextManagerEvent(), "set broadcast full screen bValue=0 isDestroy=0");
        EXPECT_EQ(NextManagerEvent(), "local parental rating countryCode=\"" + country + "\"");
    }

    // Starts the application 11.1 of the channel Red in tab 3.
    void StartRed() { TuneToTab(2, 3); }

    const Members kStart = Id(1, 17);
};

TEST_F(ApplicationManager, KnowsNoApplicationWhenTheServiceAnnouncesNone) {
    EXPECT_EQ(Current(), "none");
    ExpectRequestsRefused(
        {"GetOwnerApp", "GetChildApps", "GetValue", "GetOtherKeys", "GetMaxiMumValue", "GetMaxiMumOtherKeys"}, kStart);
    EXPECT_EQ(Create(kStart, "http://x.test/")["ret"], -1);
    EXPECT_EQ(Ret("GetKeyIcon", With(kStart, {{"code", 403}})), -1);
    EXPECT_EQ(Ret("GetKeyLabel", With(kStart, {{"code", 403}})), -1);
    ExpectRequestsRefused({"GetVBResouceAllowed", "GetAppType"}, {{"tabid", 3}});
    EXPECT_EQ(Ret("KeyConsumedByBrowser", {{"tabid", 3}, {"keyCode", 403}}), -1);
}

TEST_F(ApplicationManager, RefusesUnknownIdsInOneWayRequestsWithALogLineAndNoReply) {
    Send("DestroyApp", kStart);
    Send("ShowApp", kStart);
    Send("HideApp", kStart);
    Send("SetValue", With(kStart, {{"value", 1}, {"k", List(std::vector<int>{})}}));
    Send("SetBRAppToBI", {{"tabid", 3}});
    Send("SetBIAppToBR", {{"tabid", 3}});
    Send("NotifyDSMCCResponseToAPM", {{"url", "dvb://1.1.5.17/index.html"}, {"path", "/tmp/x"}});
    Send("SetDeviceResolution", {{"width", 0u}, {"heigth", 0u}});
    EXPECT_EQ(Current(), "none") << "the next reply is that of the next request";
    ExpectSaid("no application 11.1 is running", 4);
    ExpectSaid("there is no tab 3", 2);
    ExpectSaid("no application waits for \"dvb://1.1.5.17/index.html\"", 1);
    ExpectSaid("the width or height of the screen is 0", 1);
}

TEST_F(ApplicationManager, StartsWhatTheServiceAnnouncesAndEndsItWithTheService) {
    StartRed();
    EXPECT_EQ(Current(), "17.1");
    EXPECT_EQ(AppEntry("11.1"), "11.1 Start, broadcast-related, shown, keys 0x1f");
    EXPECT_EQ(AppEntry("11.2"), "") << "only present";
    Tell("zap 1");
    EXPECT_EQ(Current(), "none");
}

TEST_F(ApplicationManager, KeepsAnApplicationThatIsNotBoundToTheService) {
    TuneToTab(3, 1);
    EXPECT_EQ(AppEntry("12.1f5"), "12.1f5 Library, broadcast-independent, shown, keys 0x1f");
    Tell("zap 1");
    EXPECT_EQ(Current(), "18.501");
    Tell("zap 3");
    EXPECT_EQ(Tell("stop 12.1f5"), "ok Library") << "it was not started a second time";
    EXPECT_EQ(Current(), "none");
}

TEST_F(ApplicationManager, StartsNothingOnAServiceWithoutSignal) {
    Tell("zap 7");
    Tell("zap 2");
    EXPECT_EQ(NextCommand().find("http://dark.test/"), std::string::npos);
    EXPECT_EQ(Current(), "17.1");
}

TEST_F(ApplicationManager, GetOwnerAppReturnsTheCreatorOfAChildAndAnyOtherApplicationItself) {
    StartRed();
    EXPECT_EQ(Owner(1), "17.1");
    EXPECT_EQ(Owner(Create(kStart, "http://red.test/child", 1)["appid"]), "17.1");
    const Json::Value other = Create(kStart, "http://red.test/other", 0);
    EXPECT_EQ(Owner(other["appid"]), "17." + other["appid"].asString());
    EXPECT_EQ(Ret("GetOwnerApp", {{"appid", 77}}), -1);
}

TEST_F(ApplicationManager, GetCurrentAppReturnsTheTopmostShownApplication) {
    StartRed();
    const Json::Value other = Create(kStart, "http://red.test/other");
    const std::string second = "17." + other["appid"].asString();
    EXPECT_EQ(Current(), "17.1") << "the new one is not shown yet";
    Send("ShowApp", Id(other["appid"].asInt(), 17));
    EXPECT_EQ(Current(), second);
    Send("ShowApp", kStart);
    EXPECT_EQ(Current(), "17.1");
    Send("HideApp", kStart);
    EXPECT_EQ(Current(), second);
    Send("HideApp", Id(other["appid"].asInt(), 17));
    EXPECT_EQ(Current(), "17.1") << "the topmost one when none is shown";
    Send("DestroyApp", kStart);
    EXPECT_EQ(Current(), second);
}

TEST_F(ApplicationManager, GetChildAppsReturnsFieldsOf16Characters) {
    StartRed();
    Json::Value reply = Ask("GetChildApps", kStart);
    EXPECT_EQ(reply["ret"], 0);
    EXPECT_EQ(reply["appNum"], 0);
    EXPECT_EQ(reply["appidArray"], "");
    EXPECT_EQ(reply["orgidArray"], "");
    const int first = Create(kStart, "http://red.test/1", 1)["appid"].asInt();
    EXPECT_EQ(Create(kStart, "dvb://current.ait/11.2", 1)["appid"], 2);
    Create(kStart, "http://red.test/no-child", 0);
    reply = Ask("GetChildApps", kStart);
    EXPECT_EQ(reply["appNum"], 2);
    EXPECT_EQ(first, 32768);
    EXPECT_EQ(reply["appidArray"], "           32768               2");
    EXPECT_EQ(reply["orgidArray"], "              17              17");
}

TEST_F(ApplicationManager, CreateAppAssignsNewNumbersInTheCreatorsOrganisation) {
    StartRed();
    const Json::Value first = Create(kStart, "http://red.test/a");
    const Json::Value second = Create(kStart, "http://red.test/b", 0, 1);
    EXPECT_EQ(first["ret"], 0);
    EXPECT_EQ(first["orgid"], 17);
    EXPECT_EQ(second["orgid"], 17);
    EXPECT_NE(first["appid"], second["appid"]);
    EXPECT_EQ(AppEntry("11.8000"), "11.8000 http://red.test/a, broadcast-related, hidden, keys 0x1f");
    EXPECT_EQ(AppEntry("11.8001"), "11.8001 http://red.test/b, operator, hidden, keys 0x1f");
}

TEST_F(ApplicationManager, CreateAppWithoutACreatorCreatesABroadcastIndependentApplication) {
    const Json::Value reply = Create(Id(-1, -1), "http://portal.test/?autoshow=1");
    EXPECT_EQ(reply["ret"], 0);
    EXPECT_EQ(reply["orgid"], 0);
    EXPECT_EQ(AppEntry("0.8000"), "0.8000 http://portal.test/?autoshow=1, broadcast-independent, shown, keys 0x1f");
    EXPECT_EQ(NextCommand(),
              "CreateApp appMode=\"hbbtv\" auto_show=true boundaries=[] isBr=false "
              "url=\"http://portal.test/?autoshow=1\"");
}

TEST_F(ApplicationManager, CreateAppFindsAnnouncedApplicationsByTheirSignalledUrl) {
    StartRed();
    const Json::Value text = Create(kStart, "dvb://current.ait/11.2?autoshow=1");
    EXPECT_EQ(text["ret"], 0);
    EXPECT_EQ(text["appid"], 2);
    EXPECT_EQ(text["orgid"], 17);
    EXPECT_EQ(AppEntry("11.2"), "11.2 Text, broadcast-related, shown, keys 0x500 TELETEXT");
    EXPECT_EQ(NextCommand(), CreateCommand("http://red.test/text?a=b&autoshow=1"));
    Reply(R"({"ret": 0, "tabid": 4})");
    EXPECT_EQ(Create(kStart, "dvb://current.ait/11.2")["ret"], -1) << "it is already running";
}

TEST_F(ApplicationManager, CreateAppRefusesInvalidUrlsAndCreators) {
    StartRed();
    for (const char* url : {"", "page.html", "://x", "dvb://current.ait/", "dvb://current.ait/11",
                            "dvb://current.ait/x.y", "dvb://current.ait/12.1f5", "dvb://current.ait/1111111111.1"}) {
        EXPECT_EQ(Create(kStart, url)["ret"], -1) << url;
    }
    EXPECT_EQ(Create(kStart, "http://red.test/" + std::string(4096, 'x'))["ret"], -1);
    EXPECT_EQ(Create(Id(-1, -1), "http://x.test/", 1)["ret"], -1) << "a child of nobody";
    EXPECT_EQ(Create(Id(-1, 17), "http://x.test/")["ret"], -1);
    EXPECT_EQ(Create(kStart, "http://x.test/", 2)["ret"], -1);
    EXPECT_EQ(Create(kStart, "http://x.test/", 0, -1)["ret"], -1);
    EXPECT_EQ(Ret("CreateApp", kStart), -1);
}

TEST_F(ApplicationManager, CreateAppRefusesTheSixtyFifthApplication) {
    StartRed();
    for (int i = 0; i < 63; ++i) ASSERT_EQ(Create(kStart, "http://red.test/")["ret"], 0) << i;
    EXPECT_EQ(Create(kStart, "http://red.test/")["ret"], -1);
    ExpectSaid("too many applications are running", 1);
}

TEST_F(ApplicationManager, DestroyAppEndsTheChildrenToo) {
    StartRed();
    const int child = Create(kStart, "http://red.test/child", 1)["appid"].asInt();
    Create(Id(child, 17), "http://red.test/grandchild", 1);
    Send("DestroyApp", kStart);
    EXPECT_EQ(Current(), "none");
    EXPECT_EQ(Tell("apps"), "ok screen 1920x1080");
}

TEST_F(ApplicationManager, SetValueKeepsTheKeySetsThatTheRemoteControlHas) {
    StartRed();
    EXPECT_EQ(Get("GetValue", kStart), 0x1f);
    EXPECT_EQ(OtherKeys(), "0:");
    SetKeys(0x7ff, {459, 999, 416});
    EXPECT_EQ(Get("GetValue", kStart), 0x53f) << "no SCROLL, INFO and ALPHA";
    EXPECT_EQ(OtherKeys(), "2: 459 416");
    SetKeys(0x1, {459});
    EXPECT_EQ(Get("GetValue", kStart), 0x1);
    EXPECT_EQ(OtherKeys(), "0:") << "without OTHER there are no other keys";
}

TEST_F(ApplicationManager, SetValueReadsNumberedMembersOfThreeCharacters) {
    StartRed();
    Members members = With(kStart, {{"value", 0x400}, {"keynum", 111}});
    for (int i = 0; i < 100; ++i) members["k" + std::to_string(i)] = 1;
    members["k10"] = 459;
    members["k11"] = 416;
    SendRaw("SetValue", members);  // 100 to 109 are k10, 110 is k11
    EXPECT_EQ(OtherKeys(), "2: 459 416");
}

TEST_F(ApplicationManager, AnInvalidSetValueIsRefusedAndChangesNothing) {
    StartRed();
    for (const int count : {-1, 257, 2147483647}) SendRaw("SetValue", With(kStart, {{"value", 1}, {"keynum", count}}));
    SendRaw("SetValue", With(kStart, {{"value", 1}, {"keynum", 2}, {"k0", 459}}));
    SendRaw("SetValue", With(kStart, {{"value", 1}, {"keynum", 1}, {"k0", "459"}}));
    SendRaw("SetValue", With(kStart, {{"keynum", 0}}));
    EXPECT_EQ(Get("GetValue", kStart), 0x1f);
    ExpectSaid("SetValue refused", 6);
}

TEST_F(ApplicationManager, GivesTheKeysThatAnApplicationCanHaveAtMost) {
    StartRed();
    const Json::Value sets = Ask("GetMaxiMumValue", kStart);
    EXPECT_EQ(sets["ret"], 0);
    EXPECT_EQ(sets["maxvalue"], 0x53f);
    EXPECT_EQ(OtherKeys("GetMaxiMumOtherKeys"), "2: 416 459");
}

TEST_F(ApplicationManager, GivesIconAndLabelOfTheKeysOfTheRemoteControl) {
    StartRed();
    EXPECT_EQ(Get("GetKeyIcon", With(kStart, {{"code", 403}})), "file:///usr/share/tv/keys/RED.png");
    EXPECT_EQ(Get("GetKeyLabel", With(kStart, {{"code", 13}})), "OK");
    EXPECT_EQ(Ret("GetKeyIcon", With(kStart, {{"code", 1}})), -1);
    EXPECT_EQ(Ret("GetKeyLabel", With(kStart, {{"code", 1}})), -1);
    EXPECT_EQ(Ret("GetKeyLabel", kStart), -1);
}

TEST_F(ApplicationManager, SetDeviceResolutionIsKept) {
    Send("SetDeviceResolution", {{"width", 1280u}, {"heigth", 720u}});
    SendRaw("SetDeviceResolution", {{"width", 3840u}, {"height", 2160u}});
    EXPECT_EQ(Current(), "none");
    EXPECT_EQ(Tell("apps"), "ok screen 1280x720");
    ExpectSaid("SetDeviceResolution refused: member \"heigth\" is missing", 1);
}

TEST_F(ApplicationManager, TheTypeOfATabsApplicationDecidesWhetherItMayUseTheBroadcast) {
    StartRed();
    EXPECT_EQ(Get("GetAppType", {{"tabid", 3}}), 0);
    EXPECT_EQ(Get("GetVBResouceAllowed", {{"tabid", 3}}), 1);
    EXPECT_EQ(Tell("tuner taken"), "ok");
    EXPECT_EQ(Get("GetVBResouceAllowed", {{"tabid", 3}}), 0);
    EXPECT_EQ(Tell("tuner free"), "ok");
    Send("SetBRAppToBI", {{"tabid", 3}});
    EXPECT_EQ(Get("GetAppType", {{"tabid", 3}}), 1);
    EXPECT_EQ(Get("GetVBResouceAllowed", {{"tabid", 3}}), 0);
    EXPECT_EQ(NextCommand(), "SetAppConfig isBR=false tabid=3");
    Tell("zap 1");
    EXPECT_EQ(Current(), "17.1") << "it is not bound to the service any longer";
    Send("SetBIAppToBR", {{"tabid", 3}});
    EXPECT_EQ(Get("GetAppType", {{"tabid", 3}}), 0);
    EXPECT_EQ(Get("GetVBResouceAllowed", {{"tabid", 3}}), 1);
    EXPECT_EQ(NextCommand(), "SetAppConfig isBR=true tabid=3");
    EXPECT_EQ(NextCommand(), "SetDvbOrigin origin=\"dvb://1.1.1\" tabid=3");
    Tell("zap 2");
    EXPECT_EQ(NextCommand(), "DestroyApp tabid=3") << "it was bound to the other service";
}

TEST_F(ApplicationManager, AnOperatorApplicationHasATypeOfItsOwn) {
    EXPECT_EQ(Create(Id(-1, -1), "http://operator.test/", 0, 1)["ret"], 0);
    EXPECT_EQ(NextCommand(),
              "CreateApp appMode=\"opapp\" auto_show=false boundaries=[] isBr=false url=\"http://operator.test/\"");
    Reply(R"({"ret": 0, "tabid": 9})");
    FillTab(9);
    EXPECT_EQ(Get("GetAppType", {{"tabid", 9}}), 2);
    EXPECT_EQ(Get("GetVBResouceAllowed", {{"tabid", 9}}), 1);
}

TEST_F(ApplicationManager, KeyConsumedByBrowserFollowsTheKeySetsAndWhetherTheApplicationIsShown) {
    StartRed();
    const auto consumed = [&](int code) {
        return Get("KeyConsumedByBrowser", {{"tabid", 3}, {"keyCode", code}}).asInt();
    };
    EXPECT_EQ(consumed(403), 1);
    EXPECT_EQ(consumed(48), 0) << "digits were not asked for";
    EXPECT_EQ(consumed(12345), 0);
    SetKeys(0x500, {459});
    EXPECT_EQ(consumed(403), 0);
    EXPECT_EQ(consumed(48), 1);
    EXPECT_EQ(consumed(459), 1);
    EXPECT_EQ(consumed(416), 0);
    Send("HideApp", kStart);
    EXPECT_EQ(consumed(48), 0);
}

TEST_F(ApplicationManager, AnApplicationOfTheBroadcastIsLoadedWhenItsFileIsThere) {
    Tell("zap 5");
    EXPECT_TRUE(WaitFor([&] { return AppEntry("14.1").find("waits for its file") != std::string::npos; }));
    Send("NotifyDSMCCResponseToAPM", {{"url", "dvb://1.1.5.17/other.html"}, {"path", "/tmp/other"}});
    Send("NotifyDSMCCResponseToAPM", {{"url", "dvb://1.1.5.17/index.html"}, {"path", "/tmp/dsmcc/index.html"}});
    EXPECT_EQ(NextCommand(), CreateCommand("file:///tmp/dsmcc/index.html"));
    Reply(R"({"ret": 0, "tabid": 1})");
    FillTab(1);
    Send("NotifyDSMCCResponseToAPM", {{"url", "dvb://1.1.5.17/index.html"}, {"path", "/tmp/again"}});
    EXPECT_EQ(Current(), "20.1");
    ExpectSaid("no application waits for \"dvb://1.1.5.17/index.html\"", 1);  // it has its file
}

TEST_F(ApplicationManager, AFileThatComesBeforeTheParentalRatingIsNotWaitedForYet) {
    const Members file{{"url", "dvb://1.1.8.17/index.html"}, {"path", "/tmp/dsmcc/index.html"}};
    ZapToRated(8);
    Send("NotifyDSMCCResponseToAPM", file);
    ExpectSaid("no application waits for \"dvb://1.1.8.17/index.html\"", 1);
    ReplyToManagerEvent(R"({"parentalRating": 0, "ret": 0})");
    EXPECT_TRUE(WaitFor([&] { return AppEntry("17.1").find("waits for its file") != std::string::npos; }));
    Send("NotifyDSMCCResponseToAPM", file);
    EXPECT_EQ(NextCommand(), CreateCommand("file:///tmp/dsmcc/index.html"));
}

TEST_F(ApplicationManager, ReportsAnApplicationOnceItsPageIsLoaded) {
    StartRed();
    EXPECT_EQ(NextManagerEvent(), "set broadcast full screen bValue=0 isDestroy=0")
        << "the picture shares the screen now";
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Ret("mtm.OnTabLoadFinished", {{"tabid", 3}, {"url", "http://red.test/"}}), 0);
    EXPECT_EQ(NextManagerEvent(), "application loaded appid=1 orgid=17");
    Send("HideApp", kStart);
    EXPECT_EQ(NextManagerEvent(), "set broadcast full screen bValue=1 isDestroy=0");
    Send("ShowApp", kStart);
    EXPECT_EQ(NextManagerEvent(), "set broadcast full screen bValue=0 isDestroy=0");
    Send("DestroyApp", kStart);
    EXPECT_EQ(NextManagerEvent(), "set broadcast full screen bValue=1 isDestroy=1");
}

TEST_F(ApplicationManager, AsksTheParentalRatingForAnApplicationWithAMinimumAge) {
    ZapToRated(4);
    EXPECT_EQ(AppEntry("13.7"), "13.7 Night, broadcast-related, shown, keys 0x1f, waits for the parental rating");
    ReplyToManagerEvent(R"({"parentalRating": 0, "ret": 0})");
    EXPECT_EQ(NextCommand(), CreateCommand("http://late.test/"));
}

TEST_F(ApplicationManager, AsksTheParentalRatingOfTheCountryThatIsSet) {
    EXPECT_EQ(Tell("set country ITA"), "ok");
    ZapToRated(4, "ITA");
    ReplyToManagerEvent(R"({"parentalRating": 0, "ret": 0})");
}

class ParentalRating : public ApplicationManager, public testing::WithParamInterface<const char*> {};

TEST_P(ParentalRating, LetsTheApplicationFrom16YearsOnRun) {
    ZapToRated(4);
    ReplyToManagerEvent(GetParam());
    EXPECT_EQ(NextCommand().rfind("CreateApp ", 0), 0u);
    ExpectSaid("forbids it", 0);
}

// The rating descriptor's number is the age minus 3; 0 and numbers above 15 mean nothing.
INSTANTIATE_TEST_SUITE_P(Every, ParentalRating,
                         testing::Values(R"({"parentalRating": 13, "ret": 0})", R"({"parentalRating": 0, "ret": 0})",
                                         R"({"parentalRating": 16, "ret": 0})", R"({"parentalRating": -5, "ret": 0})",
                                         R"({"parentalRating": "12", "ret": 0})",
                                         R"({"parentalRating": 12, "ret": -1})", R"({"ret": -1})", "null", "[]",
                                         "nonsense"));

TEST_F(ApplicationManager, ARatingBelowItsMinimumAgeForbidsAnApplication) {
    ZapToRated(4);
    ReplyToManagerEvent(R"({"parentalRating": 12, "ret": 0})");
    EXPECT_TRUE(mSimulator->WaitForOutput("Night is for those from 16 on, and the rating 12 forbids it"));
    EXPECT_EQ(Current(), "none");
    Tell("zap 2");
    EXPECT_NE(NextCommand().find("http://red.test/"), std::string::npos) << "nothing came for the other one";
}

TEST_F(ApplicationManager, StartsAnApplicationWithAMinimumAgeIfTheRatingIsUnknown) {
    StopServingEvents("application_manager");
    Tell("zap 4");
    EXPECT_EQ(NextCommand(), CreateCommand("http://late.test/"));
}

TEST_F(ApplicationManager, AnApplicationThatEndedBeforeItsRatingCameStaysEnded) {
    ZapToRated(4);
    Tell("zap 2");
    ReplyToManagerEvent(R"({"parentalRating": 0, "ret": 0})");
    EXPECT_NE(NextCommand().find("http://red.test/"), std::string::npos);
    EXPECT_EQ(Current(), "17.1");
}

TEST_F(ApplicationManager, ObeysTheCommandsOfTheViewer) {
    StartRed();
    const std::map<std::string, std::string> answers{{"start 11.2", "ok Text"},
                                                     {"start 11.1", "error: the application 11.1 is already running"},
                                                     {"start 99.1", "error: the service announces no application 99.1"},
                                                     {"start", "error: usage: start ORGANISATION.APPLICATION"},
                                                     {"start 11", "error: usage: start ORGANISATION.APPLICATION"},
                                                     {"stop 99.1", "error: no application 99.1 is running"},
                                                     {"stop x.y", "error: usage: stop ORGANISATION.APPLICATION"},
                                                     {"apps now", "error: usage: apps"}};
    for (const auto& entry : answers) EXPECT_EQ(Tell(entry.first), entry.second);
    EXPECT_EQ(Tell("apps"),
              "ok screen 1920x1080; 11.1 Start, broadcast-related, shown, keys 0x1f; "
              "11.2 Text, broadcast-related, shown, keys 0x500 TELETEXT");
    EXPECT_EQ(Tell("stop 11.2"), "ok Text");
    EXPECT_EQ(Current(), "17.1");
}

TEST_F(ApplicationManager, EveryRequestWithoutItsMembersIsRefusedAndNoneEndsTheProcess) {
    StartRed();
    ExpectRequestsRefused(Without(OperationsOf("application_manager"), {"application_manager.GetCurrentApp"}));
    ExpectOtherCodesRefused("application_manager");
    for (const char* text : {"", "nonsense", "null", "[]", "{}"}) {
        EXPECT_EQ(AnswerTo("application_manager", text)["ret"], -1) << text;
    }
    for (const Json::Value& code : {Json::Value("201"), Json::Value(1e99)}) {
        EXPECT_EQ(AskCode("application_manager", code)["ret"], -1) << code.asString();
    }
    EXPECT_EQ(Ret("GetOwnerApp", {{"appid", "1"}}), -1);
    EXPECT_EQ(Ret("GetValue", {{"appid", Parsed("{}")}, {"orgid", Parsed("[]")}}), -1);
    EXPECT_EQ(Current(), "17.1");
}

class ApplicationManagerOverIp : public ApplicationManager {
  protected:
    void SetUp() override {
        WriteFile(mDirectory / "list.m3u", "#EXTM3U\n#EXTINF:-1,One\nhttp://tv.example/one\n");
        SimulatorFixture::Start({"--line-up", mDirectory / "list.m3u", "--ping-interval", "0ms"});
        ServeEvents("application_manager");
        ServeEvents("mtm");
    }
};

TEST_F(ApplicationManagerOverIp, TheOriginIsTheServicesUri) {
    EXPECT_EQ(Create(Id(-1, -1), "http://a.test/")["ret"], 0);
    AnswerCreateApp(1);
    FillTab(1);
    Send("SetBIAppToBR", {{"tabid", 1}});
    EXPECT_EQ(NextCommand(), "SetAppConfig isBR=true tabid=1");
    EXPECT_EQ(NextCommand(), "SetDvbOrigin origin=\"http://tv.example/one\" tabid=1");
}

}  // namespace
}  // namespace hbbtv::test
