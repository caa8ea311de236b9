// The channel family: every operation against the line-up, what clients change, and the channels that they make.
#include "channels/channel_fixture.h"

namespace hbbtv::test {
namespace {

class Channels : public ChannelFixture {
  protected:
    Channels() { mFamily = "channel"; }
    void SetUp() override { Start(); }

    // Returns the handle of a channel that a client describes.
    std::string Create(int idType, int onid, int tsid, int sid, int sourceId, const std::string& ipBroadcastId) {
        return CreateChannel(NewObject(), idType, onid, tsid, sid, sourceId, ipBroadcastId);
    }
};

TEST_F(Channels, ReturnWhatTheLineUpSaysAndWhatFollowsFromIt) {
    ExpectValues(ChannelOf(1), R"({"GetChannelType": 0, "GetIdType": 11, "GetCcid": "ccid:1.1.1",
                                   "GetTunerID": "tuner:1", "GetOnid": 1, "GetNid": 133, "GetTsid": 1, "GetSid": 1,
                                   "GetSourceID": 0, "GetFreq": 11493750, "GetCni": 0, "GetName": "One",
                                   "GetMajorChannel": 1, "GetMinorChannel": 0, "GetDsd": "", "GetFavourite": true,
                                   "GetFavIDsNum": 1, "GetLocked": false, "GetManualBlock": false,
                                   "GetIpBroadcastID": "", "GetChannelMaxBitRate": 0, "GetChannelTTR": 0,
                                   "GetRecordable": true, "GetLongName": "Number One", "GetDescription": "The first.",
                                   "GetAuthorized": true, "GetGenreNum": 2, "GetHidden": false,
                                   "GetLogoURL": "http://logos/one.png", "GetTerminalChannel": 1})");
    ExpectValues(ChannelOf(7), R"({"GetChannelType": 1, "GetIdType": 10, "GetCcid": "ccid:2.1.7",
                                   "GetTunerID": "tuner:1", "GetOnid": 2, "GetNid": 200, "GetTsid": 1, "GetSid": 7,
                                   "GetSourceID": 0, "GetFreq": 0, "GetCni": 0, "GetName": "Wave",
                                   "GetMajorChannel": 7, "GetMinorChannel": 0, "GetDsd": "", "GetFavourite": false,
                                   "GetFavIDsNum": 0, "GetLocked": false, "GetManualBlock": false,
                                   "GetIpBroadcastID": "", "GetChannelMaxBitRate": 0, "GetChannelTTR": 0,
                                   "GetRecordable": true, "GetLongName": "Wave", "GetDescription": "",
                                   "GetAuthorized": true, "GetGenreNum": 0, "GetHidden": false, "GetLogoURL": "",
                                   "GetTerminalChannel": 7})");
}

TEST_F(Channels, ReturnHowTheyCanBeReceived) {
    EXPECT_EQ(GetOf(ChannelOf(6), "GetChannelType"), 2);
    EXPECT_EQ(GetOf(ChannelOf(6), "GetHidden"), true);
    EXPECT_EQ(GetOf(ChannelOf(5), "GetLocked"), true);
    EXPECT_EQ(GetOf(ChannelOf(5), "GetManualBlock"), true);
    EXPECT_EQ(GetOf(ChannelOf(5), "GetRecordable"), true) << "with its PIN";
    EXPECT_EQ(GetOf(ChannelOf(3), "GetAuthorized"), false);
    EXPECT_EQ(GetOf(ChannelOf(3), "GetRecordable"), false);
    EXPECT_EQ(GetOf(ChannelOf(4), "GetAuthorized"), true);
    EXPECT_EQ(GetOf(ChannelOf(4), "GetRecordable"), false);
}

TEST_F(Channels, ReturnTheirGenresByIndexAndRefuseOtherIndexes) {
    const std::string one = ChannelOf(1);
    EXPECT_EQ(GetOf(one, "GetGenreByIndex", {{"index", 0u}}), "News");
    EXPECT_EQ(GetOf(one, "GetGenreByIndex", {{"index", 1u}}), "Sport");
    EXPECT_EQ(RetOf(one, "GetGenreByIndex", {{"index", 2u}}), -1);
    EXPECT_EQ(RetOf(one, "GetGenreByIndex", {{"index", 4294967295u}}), -1);
}

TEST_F(Channels, ReturnTheirFavouriteListsAsTheseChange) {
    const std::string two = ChannelOf(2);
    EXPECT_EQ(GetOf(two, "GetFavIDsNum"), 2);
    EXPECT_EQ(GetOf(two, "GetFavIDsNameByIndex", {{"index", 0u}}), "fav:a");
    EXPECT_EQ(GetOf(two, "GetFavIDsNameByIndex", {{"index", 1u}}), "fav:b");
    EXPECT_EQ(RetOf(two, "GetFavIDsNameByIndex", {{"index", 2u}}), -1);
    const std::string wave = ChannelOf(7);
    const std::string tea = FavouriteListOf("fav:b");
    EXPECT_EQ(RetOf(tea, "favourite_list.InsertBefore", {{"index", 0}, {"ccid", "ccid:2.1.7"}}), 0);
    EXPECT_EQ(GetOf(wave, "GetFavourite"), true);
    EXPECT_EQ(GetOf(wave, "GetFavIDsNum"), 1);
    EXPECT_EQ(GetOf(wave, "GetFavIDsNameByIndex", {{"index", 0u}}), "fav:b");
    EXPECT_EQ(RetOf(tea, "favourite_list.Remove", {{"index", 0}}), 0);
    EXPECT_EQ(GetOf(wave, "GetFavourite"), false);
    EXPECT_EQ(GetOf(wave, "GetFavIDsNum"), 0);
}

TEST_F(Channels, KeepWhatClientsSetAndEveryHandleSeesIt) {
    const std::string one = ChannelOf(1);
    ExpectTaken(one, R"({"SetName": "Uno", "SetLongName": "Numero Uno", "SetDescription": "", "SetHidden": true,
                         "SetLogoURL": "http://uno"})");
    EXPECT_EQ(RetOf(one, "Release"), 0);
    const std::string again = ChannelOf(1);
    EXPECT_NE(again, one);
    EXPECT_EQ(NameOf(again), "Uno");
    ExpectValues(again, R"({"GetLongName": "Numero Uno", "GetDescription": "", "GetHidden": true,
                            "GetLogoURL": "http://uno"})");
    EXPECT_EQ(GetOf(again, "GetLogo", {{"width", 64}, {"height", 48}}), "http://uno");
    Restart();
    EXPECT_EQ(NameOf(ChannelOf(1)), "One") << "as long as the simulator runs";
}

TEST_F(Channels, WithoutALongNameReturnTheirCurrentName) {
    const std::string two = ChannelOf(2);
    EXPECT_EQ(GetOf(two, "GetLongName"), "Two");
    EXPECT_EQ(RetOf(two, "SetName", {{"name", "Due"}}), 0);
    EXPECT_EQ(GetOf(two, "GetLongName"), "Due");
    EXPECT_EQ(RetOf(two, "SetLongName", {{"longname", ""}}), 0);
    EXPECT_EQ(GetOf(two, "GetLongName"), "");
}

TEST_F(Channels, StoreStringsOf64KibibytesWithAnyCharacterUnchanged) {
    std::string text;
    while (text.size() < 65536) text += std::string("\"\\/\b\f\n\r\t\x01\x1f\x7f\0 K\xc3\xb6ln \xf0\x9f\x93\xba", 23);
    const std::string two = ChannelOf(2);
    EXPECT_EQ(RetOf(two, "SetName", {{"name", text}}), 0);
    EXPECT_EQ(NameOf(two), text);
    EXPECT_EQ(RetOf(two, "SetName", {{"name", std::string(262145, 'x')}}), -1) << "more than 256 KiB";
    EXPECT_EQ(NameOf(two), text);
    EXPECT_EQ(Tell("zap 2").substr(0, 6), "ok \"\\/") << "one line";
}

TEST_F(Channels, HaveAsManyGenresAsSetAndNoMore) {
    const std::string two = ChannelOf(2);
    EXPECT_EQ(RetOf(two, "SetGenreByIndex", {{"index", 0u}, {"genre", "Film"}}), -1) << "there is none yet";
    EXPECT_EQ(RetOf(two, "SetGenreNum", {{"num", 2u}}), 0);
    EXPECT_EQ(GetOf(two, "GetGenreNum"), 2);
    EXPECT_EQ(RetOf(two, "SetGenreByIndex", {{"index", 1u}, {"genre", "Film"}}), 0);
    EXPECT_EQ(GetOf(two, "GetGenreByIndex", {{"index", 0u}}), "");
    EXPECT_EQ(GetOf(two, "GetGenreByIndex", {{"index", 1u}}), "Film");
    EXPECT_EQ(RetOf(two, "SetGenreByIndex", {{"index", 2u}, {"genre", "Series"}}), -1);
    EXPECT_EQ(RetOf(two, "SetGenreNum", {{"num", 257u}}), -1);
    EXPECT_EQ(RetOf(two, "SetGenreNum", {{"num", 4294967295u}}), -1);
    EXPECT_EQ(GetOf(two, "GetGenreNum"), 2);
    EXPECT_EQ(RetOf(two, "SetGenreNum", {{"num", 1u}}), 0);
    EXPECT_EQ(RetOf(two, "GetGenreByIndex", {{"index", 1u}}), -1);
}

TEST_F(Channels, ReturnTheirFieldsByName) {
    const std::string one = ChannelOf(1);
    const std::map<std::string, std::string> fields{{"definition", "HD"},
                                                    {"network", "Satellite"},
                                                    {"position", "19.2E"},
                                                    {"programmeId", "one.tv"},
                                                    {"provider", "ARD"}};
    for (const auto& field : fields) {
        EXPECT_EQ(GetOf(one, "GetField", {{"fieldId", field.first}}), field.second);
    }
    EXPECT_EQ(RetOf(one, "GetField", {{"fieldId", "providor"}}), -1);
    EXPECT_TRUE(mSimulator->WaitForOutput("did you mean \"provider\"?"));
    EXPECT_EQ(RetOf(one, "GetField", {{"fieldId", std::string(1000000, 'x')}}), -1);
}

TEST_F(Channels, ReturnTheirLogoInAnyValidSize) {
    const std::string one = ChannelOf(1);
    EXPECT_EQ(GetOf(one, "GetLogo", {{"width", 0}, {"height", 0}}), "http://logos/one.png");
    EXPECT_EQ(RetOf(one, "GetLogo", {{"width", -1}, {"height", 48}}), -1);
}

TEST_F(Channels, AreTheSameHoweverTheyAreAskedFor) {
    const std::string fromList = ChannelOf(2);
    EXPECT_EQ(Create(11, 1, 1, 2, 0, ""), fromList);
    EXPECT_EQ(HandleOf(FavouriteListOf("fav:a"), "favourite_list.Item", {{"index", 0}}), fromList);
    EXPECT_EQ(Tell("zap 2"), "ok Two");
    EXPECT_EQ(Handle("channel_config.GetCurrentChannel"), fromList);
}

TEST_F(Channels, CreatedByAClientWithUnknownNumbersReturnTheseNumbers) {
    const std::string made = Create(11, 5, 6, 7, 8, "");
    ExpectValues(made, R"({"GetChannelType": 2, "GetIdType": 11, "GetCcid": "ccid:made-1", "GetTunerID": "",
                           "GetOnid": 5, "GetNid": 0, "GetTsid": 6, "GetSid": 7, "GetSourceID": 8, "GetFreq": 0,
                           "GetName": "", "GetMajorChannel": 0, "GetFavourite": false, "GetLocked": false,
                           "GetManualBlock": false, "GetIpBroadcastID": "", "GetRecordable": false, "GetLongName": "",
                           "GetAuthorized": false, "GetGenreNum": 0, "GetHidden": false, "GetTerminalChannel": 0,
                           "GetDsd": ""})");
    EXPECT_EQ(GetOf(made, "GetField", {{"fieldId", "provider"}}), "");
    EXPECT_EQ(RetOf(made, "SetName", {{"name", "Mine"}}), 0);
    EXPECT_EQ(NameOf(made), "Mine");
    const std::string other = Create(41, 0, 0, 0, 0, "rtp://239.1.1.1:5000");
    EXPECT_EQ(GetOf(other, "GetIpBroadcastID"), "rtp://239.1.1.1:5000");
    EXPECT_EQ(GetOf(other, "GetCcid"), "ccid:made-2");
}

TEST_F(Channels, AreRefusedByWrongHandlesInEveryOperation) {
    const std::string released = ChannelOf(1);
    EXPECT_EQ(RetOf(released, "Release"), 0);
    const std::string list = GetChannelList();
    const Members members{{"name", "x"},    {"longname", "x"}, {"description", "x"}, {"num", 0u},
                          {"index", 0u},    {"genre", "x"},    {"hidden", true},     {"url", "x"},
                          {"fieldId", "x"}, {"width", 1},      {"height", 1}};
    ExpectRefused(OperationsOf("channel"), {released, list, "0x1", ""}, members);
    ExpectOtherCodesRefused("channel", ChannelOf(1), members);
    EXPECT_EQ(NameOf(ChannelOf(1)), "One");
}

TEST_F(Channels, RefuseSettersWithoutTheirMembersOrWithOthersOfTheWrongType) {
    const std::string one = ChannelOf(1);
    ExpectRefused({"SetName", "GetFavIDsNameByIndex", "SetLongName", "SetDescription", "SetGenreNum", "SetGenreByIndex",
                   "GetGenreByIndex", "SetHidden", "SetLogoURL", "GetField", "GetLogo"},
                  {one});
    EXPECT_EQ(RetOf(one, "SetName", {{"name", 5}}), -1);
    EXPECT_EQ(RetOf(one, "SetHidden", {{"hidden", 1}}), -1);
    EXPECT_EQ(RetOf(one, "SetGenreNum", {{"num", -1}}), -1);
    EXPECT_EQ(NameOf(one), "One");
}

}  // namespace
}  // namespace hbbtv::test
