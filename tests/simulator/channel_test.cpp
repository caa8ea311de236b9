// The channel family: every operation against the line-up, what clients change, and the channels that they make.
#include "channel_platform.h"

namespace hbbtv::test {
namespace {

class Channels : public ChannelPlatform {
  protected:
    void SetUp() override { Begin(); }

    Json::Value Of(int sid, int method, const char* member) { return OfHandle(ChannelOf(sid), method, member); }

    Json::Value OfHandle(const std::string& channel, int method, const char* member, Members members = {}) {
        members["c_handle"] = channel;
        const Json::Value reply = AskAt(kToChannel, method, members);
        EXPECT_EQ(reply["ret"], 0) << "method " << method;
        return reply[member];
    }

    int Set(const std::string& channel, int method, Members members) {
        members["c_handle"] = channel;
        return RetAt(kToChannel, method, members);
    }

    // As the video/broadcast family makes them.
    std::string Make(int idType, int onid, int tsid, int sid, int sourceId, const std::string& ipBroadcastId) {
        const std::string vb = NewObject();
        return AskOf(vb, kCreateChannel2,
                     {{"idType", idType},
                      {"onid", onid},
                      {"tsid", tsid},
                      {"sid", sid},
                      {"sourceId", sourceId},
                      {"ipBroadcastId", ipBroadcastId}})["channel"]
            .asString();
    }
};

struct Fact {
    int method;
    const char* member;
    Json::Value one;   // what One answers
    Json::Value wave;  // what Wave answers
};

TEST_F(Channels, TellWhatTheLineUpSaysAndWhatFollowsFromIt) {
    const std::vector<Fact> facts{{1, "channelType", 0, 1},
                                  {2, "idType", 11, 10},
                                  {3, "ccid", "ccid:1.1.1", "ccid:2.1.7"},
                                  {4, "tunerId", "tuner:1", "tuner:1"},
                                  {5, "onid", 1, 2},
                                  {6, "nid", 133, 200},
                                  {7, "tsid", 1, 1},
                                  {8, "sid", 1, 7},
                                  {9, "sourceId", 0, 0},
                                  {10, "freq", 11493750, 0},
                                  {11, "cni", 0, 0},
                                  {13, "name", "One", "Wave"},
                                  {14, "majorChannel", 1, 7},
                                  {15, "minorChannel", 0, 0},
                                  {16, "dsd", "", ""},
                                  {17, "favourite", true, false},
                                  {18, "num", 1, 0},
                                  {20, "locked", false, false},
                                  {21, "manualBlock", false, false},
                                  {22, "ipBroadcastId", "", ""},
                                  {23, "maxBitrate", 0, 0},
                                  {24, "ttr", 0, 0},
                                  {25, "recordable", true, true},
                                  {27, "longname", "Number One", "Wave"},
                                  {29, "description", "The first.", ""},
                                  {30, "authorized", true, true},
                                  {33, "num", 2, 0},
                                  {36, "hidden", false, false},
                                  {38, "url", "http://logos/one.png", ""},
                                  {41, "terminalChannel", 1, 7}};
    const std::string one = ChannelOf(1);
    const std::string wave = ChannelOf(7);
    for (const Fact& fact : facts) {
        EXPECT_EQ(OfHandle(one, fact.method, fact.member), fact.one) << fact.method;
        EXPECT_EQ(OfHandle(wave, fact.method, fact.member), fact.wave) << fact.method;
    }
}

TEST_F(Channels, TellHowTheyCanBeReceived) {
    EXPECT_EQ(Of(6, 1, "channelType"), 2);
    EXPECT_EQ(Of(6, 36, "hidden"), true);
    EXPECT_EQ(Of(5, 20, "locked"), true);
    EXPECT_EQ(Of(5, 21, "manualBlock"), true);
    EXPECT_EQ(Of(5, 25, "recordable"), true) << "with its PIN";
    EXPECT_EQ(Of(3, 30, "authorized"), false);
    EXPECT_EQ(Of(3, 25, "recordable"), false);
    EXPECT_EQ(Of(4, 30, "authorized"), true);
    EXPECT_EQ(Of(4, 25, "recordable"), false);
}

TEST_F(Channels, TellTheirGenresByIndexAndRefuseOthers) {
    const std::string one = ChannelOf(1);
    EXPECT_EQ(OfHandle(one, 34, "genre", {{"index", 0u}}), "News");
    EXPECT_EQ(OfHandle(one, 34, "genre", {{"index", 1u}}), "Sport");
    EXPECT_EQ(Set(one, 34, {{"index", 2u}}), -1);
    EXPECT_EQ(Set(one, 34, {{"index", 4294967295u}}), -1);
}

TEST_F(Channels, TellInWhichFavouriteListsTheyAreAsTheseChange) {
    const std::string two = ChannelOf(2);
    EXPECT_EQ(OfHandle(two, 18, "num"), 2);
    EXPECT_EQ(OfHandle(two, 19, "name", {{"index", 0u}}), "fav:a");
    EXPECT_EQ(OfHandle(two, 19, "name", {{"index", 1u}}), "fav:b");
    EXPECT_EQ(Set(two, 19, {{"index", 2u}}), -1);
    const std::string wave = ChannelOf(7);
    const std::string tea = FavouriteListOf("fav:b");
    EXPECT_EQ(RetAt(kToFavouriteList, 9, {{"fl_handle", tea}, {"index", 0}, {"ccid", "ccid:2.1.7"}}), 0);
    EXPECT_EQ(OfHandle(wave, 17, "favourite"), true);
    EXPECT_EQ(OfHandle(wave, 18, "num"), 1);
    EXPECT_EQ(OfHandle(wave, 19, "name", {{"index", 0u}}), "fav:b");
    EXPECT_EQ(RetAt(kToFavouriteList, 10, {{"fl_handle", tea}, {"index", 0}}), 0);
    EXPECT_EQ(OfHandle(wave, 17, "favourite"), false);
    EXPECT_EQ(OfHandle(wave, 18, "num"), 0);
}

TEST_F(Channels, KeepWhatClientsSetAndEveryHandleSeesIt) {
    const std::string one = ChannelOf(1);
    EXPECT_EQ(Set(one, 12, {{"name", "Uno"}}), 0);
    EXPECT_EQ(Set(one, 26, {{"longname", "Numero Uno"}}), 0);
    EXPECT_EQ(Set(one, 28, {{"description", ""}}), 0);
    EXPECT_EQ(Set(one, 35, {{"hidden", true}}), 0);
    EXPECT_EQ(Set(one, 37, {{"url", "http://uno"}}), 0);
    EXPECT_EQ(RetAt(kToChannel, 0, {{"c_handle", one}}), 0);
    const std::string again = ChannelOf(1);
    EXPECT_NE(again, one);
    EXPECT_EQ(NameOf(again), "Uno");
    EXPECT_EQ(OfHandle(again, 27, "longname"), "Numero Uno");
    EXPECT_EQ(OfHandle(again, 29, "description"), "");
    EXPECT_EQ(OfHandle(again, 36, "hidden"), true);
    EXPECT_EQ(OfHandle(again, 38, "url"), "http://uno");
    EXPECT_EQ(OfHandle(again, 40, "logo", {{"width", 64}, {"height", 48}}), "http://uno");
    EXPECT_EQ(Stop(), 0);
    Begin();
    EXPECT_EQ(NameOf(ChannelOf(1)), "One") << "as long as the simulator runs";
}

TEST_F(Channels, WithoutALongNameGiveTheirNameAlsoWhenItChanges) {
    const std::string two = ChannelOf(2);
    EXPECT_EQ(OfHandle(two, 27, "longname"), "Two");
    EXPECT_EQ(Set(two, 12, {{"name", "Due"}}), 0);
    EXPECT_EQ(OfHandle(two, 27, "longname"), "Due");
    EXPECT_EQ(Set(two, 26, {{"longname", ""}}), 0);
    EXPECT_EQ(OfHandle(two, 27, "longname"), "");
}

TEST_F(Channels, TakeTextsOf64KibibytesWithAnyCharacterAndGiveThemBackUnchanged) {
    std::string text;
    while (text.size() < 65536) text += std::string("\"\\/\b\f\n\r\t\x01\x1f\x7f\0 K\xc3\xb6ln \xf0\x9f\x93\xba", 23);
    const std::string two = ChannelOf(2);
    EXPECT_EQ(Set(two, 12, {{"name", text}}), 0);
    EXPECT_EQ(NameOf(two), text);
    EXPECT_EQ(Set(two, 12, {{"name", std::string(262145, 'x')}}), -1) << "more than 256 KiB";
    EXPECT_EQ(NameOf(two), text);
    EXPECT_EQ(Tell("zap 2").substr(0, 6), "ok \"\\/") << "one line";
}

TEST_F(Channels, TakeAsManyGenresAsSetAndNoMore) {
    const std::string two = ChannelOf(2);
    EXPECT_EQ(Set(two, 32, {{"index", 0u}, {"genre", "Film"}}), -1) << "there is none yet";
    EXPECT_EQ(Set(two, 31, {{"num", 2u}}), 0);
    EXPECT_EQ(OfHandle(two, 33, "num"), 2);
    EXPECT_EQ(Set(two, 32, {{"index", 1u}, {"genre", "Film"}}), 0);
    EXPECT_EQ(OfHandle(two, 34, "genre", {{"index", 0u}}), "");
    EXPECT_EQ(OfHandle(two, 34, "genre", {{"index", 1u}}), "Film");
    EXPECT_EQ(Set(two, 32, {{"index", 2u}, {"genre", "Series"}}), -1);
    EXPECT_EQ(Set(two, 31, {{"num", 257u}}), -1);
    EXPECT_EQ(Set(two, 31, {{"num", 4294967295u}}), -1);
    EXPECT_EQ(OfHandle(two, 33, "num"), 2);
    EXPECT_EQ(Set(two, 31, {{"num", 1u}}), 0);
    EXPECT_EQ(Set(two, 34, {{"index", 1u}}), -1);
}

TEST_F(Channels, TellTheirFieldsByName) {
    const std::string one = ChannelOf(1);
    const std::map<std::string, std::string> fields{{"definition", "HD"},
                                                    {"network", "Satellite"},
                                                    {"position", "19.2E"},
                                                    {"programmeId", "one.tv"},
                                                    {"provider", "ARD"}};
    for (const auto& field : fields) {
        EXPECT_EQ(OfHandle(one, 39, "field", {{"fieldId", field.first}}), field.second);
    }
    EXPECT_EQ(Set(one, 39, {{"fieldId", "providor"}}), -1);
    EXPECT_TRUE(mSimulator->WaitForOutput("did you mean \"provider\"?"));
    EXPECT_EQ(Set(one, 39, {{"fieldId", std::string(1000000, 'x')}}), -1);
}

TEST_F(Channels, GiveTheirLogoInAnySizeThatIsOne) {
    const std::string one = ChannelOf(1);
    EXPECT_EQ(OfHandle(one, 40, "logo", {{"width", 0}, {"height", 0}}), "http://logos/one.png");
    EXPECT_EQ(Set(one, 40, {{"width", -1}, {"height", 48}}), -1);
}

TEST_F(Channels, AreTheSameHoweverTheyAreAskedFor) {
    const std::string fromList = ChannelOf(2);
    EXPECT_EQ(Make(11, 1, 1, 2, 0, ""), fromList);
    EXPECT_EQ(HandleAt(kToFavouriteList, 5, "channel", {{"fl_handle", FavouriteListOf("fav:a")}, {"index", 0}}),
              fromList);
    EXPECT_EQ(Tell("zap 2"), "ok Two");
    EXPECT_EQ(HandleAt(kToChannelConfig, 2, "handle"), fromList);
}

TEST_F(Channels, MadeByAClientOfNumbersThatNameNothingTellTheseNumbers) {
    const std::string made = Make(11, 5, 6, 7, 8, "");
    const std::vector<std::pair<std::pair<int, const char*>, Json::Value>> facts{{{1, "channelType"}, 2},
                                                                                 {{2, "idType"}, 11},
                                                                                 {{3, "ccid"}, "ccid:made-1"},
                                                                                 {{4, "tunerId"}, ""},
                                                                                 {{5, "onid"}, 5},
                                                                                 {{6, "nid"}, 0},
                                                                                 {{7, "tsid"}, 6},
                                                                                 {{8, "sid"}, 7},
                                                                                 {{9, "sourceId"}, 8},
                                                                                 {{10, "freq"}, 0},
                                                                                 {{13, "name"}, ""},
                                                                                 {{14, "majorChannel"}, 0},
                                                                                 {{17, "favourite"}, false},
                                                                                 {{20, "locked"}, false},
                                                                                 {{21, "manualBlock"}, false},
                                                                                 {{22, "ipBroadcastId"}, ""},
                                                                                 {{25, "recordable"}, false},
                                                                                 {{27, "longname"}, ""},
                                                                                 {{30, "authorized"}, false},
                                                                                 {{33, "num"}, 0},
                                                                                 {{36, "hidden"}, false},
                                                                                 {{41, "terminalChannel"}, 0},
                                                                                 {{16, "dsd"}, ""}};
    for (const auto& fact : facts) {
        EXPECT_EQ(OfHandle(made, fact.first.first, fact.first.second), fact.second) << fact.first.first;
    }
    EXPECT_EQ(OfHandle(made, 39, "field", {{"fieldId", "provider"}}), "");
    EXPECT_EQ(Set(made, 12, {{"name", "Mine"}}), 0);
    EXPECT_EQ(NameOf(made), "Mine");
    const std::string other = Make(41, 0, 0, 0, 0, "rtp://239.1.1.1:5000");
    EXPECT_EQ(OfHandle(other, 22, "ipBroadcastId"), "rtp://239.1.1.1:5000");
    EXPECT_EQ(OfHandle(other, 3, "ccid"), "ccid:made-2");
}

TEST_F(Channels, AreRefusedByWrongHandlesInEveryOperation) {
    const std::string released = ChannelOf(1);
    EXPECT_EQ(RetAt(kToChannel, 0, {{"c_handle", released}}), 0);
    const std::string list = GetChannelList();
    const Members members{{"name", "x"},    {"longname", "x"}, {"description", "x"}, {"num", 0u},
                          {"index", 0u},    {"genre", "x"},    {"hidden", true},     {"url", "x"},
                          {"fieldId", "x"}, {"width", 1},      {"height", 1}};
    for (int method = 0; method <= 41; ++method) {
        for (const std::string& handle : {released, list, std::string("0x1"), std::string()}) {
            EXPECT_EQ(Set(handle, method, members), -1) << method << " " << handle;
        }
    }
    EXPECT_EQ(RetAt(kToChannel, 42, members), -1) << "there is no such operation";
    EXPECT_EQ(NameOf(ChannelOf(1)), "One");
}

TEST_F(Channels, RefuseSettersWithoutTheirMembersOrWithOthersOfTheWrongType) {
    const std::string one = ChannelOf(1);
    for (const int method : {12, 19, 26, 28, 31, 32, 34, 35, 37, 39, 40}) EXPECT_EQ(Set(one, method, {}), -1) << method;
    EXPECT_EQ(Set(one, 12, {{"name", 5}}), -1);
    EXPECT_EQ(Set(one, 35, {{"hidden", 1}}), -1);
    EXPECT_EQ(Set(one, 31, {{"num", -1}}), -1);
    EXPECT_EQ(NameOf(one), "One");
}

}  // namespace
}  // namespace hbbtv::test
