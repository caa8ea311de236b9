// The preferences over the wire: each operation, what is refused, the events for changes from both sides, and what
// survives a restart.
#include <filesystem>

#include "simulator_fixture.h"

namespace hbbtv::test {
namespace {

class Configuration : public SimulatorFixture {
  protected:
    Configuration() {
        mFamily = "configuration";
        mLineUp = R"({
            "networks": [{"id": "sat", "name": "Satellite", "delivery": "DVB_S", "nid": 1},
                         {"id": "north", "name": "North", "delivery": "DVB_T", "nid": 12289},
                         {"id": "south", "name": "South", "delivery": "DVB_T2", "nid": 12290}],
            "services": [
                {"name": "One", "network": "sat", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1,
                 "components": [{"type": "video", "tag": 1, "pid": 101, "encoding": "MPEG2_SD_25"}]},
                {"name": "Two", "network": "south", "onid": 2, "tsid": 1, "sid": 2, "type": "TV", "number": 2,
                 "components": [{"type": "video", "tag": 1, "pid": 201, "encoding": "AVC_HD_25"}]},
                {"name": "Three", "network": "north", "onid": 2, "tsid": 2, "sid": 3, "type": "TV", "number": 3,
                 "components": [{"type": "video", "tag": 1, "pid": 301, "encoding": "AVC_HD_25"}]},
                {"name": "Four", "network": "south", "onid": 2, "tsid": 1, "sid": 4, "type": "TV", "number": 4,
                 "components": [{"type": "video", "tag": 1, "pid": 401, "encoding": "AVC_HD_25"}]}]})";
    }

    void SetUp() override {
        StartRemembering();
        ServeEvents("configuration");
    }

    int SetAudio(const std::string& languages) {
        return Ret("SetPreferredAudioLanguage", {{"pref_audio_language", languages}});
    }
    std::string Audio() { return Handle("GetPreferredAudioLanguage"); }

    Json::Value Text(int number) { return Get("GetText", {{"key_type", number}}); }

    // Returns the number of network ids and the ids.
    std::string NetworkIds() {
        const Json::Value reply = Ask("GetDttNetworkIds");
        std::string ids = reply["num"].asString();
        for (int i = 0; i < reply["num"].asInt(); ++i) ids += " " + reply["k" + std::to_string(i)].asString();
        return ids;
    }

    std::string NextChange() { return NextEventOf("configuration").Text(); }
};

TEST_F(Configuration, ReturnsTheLanguagesCountryAndRegionThatWereSet) {
    EXPECT_EQ(SetAudio("fra,deu"), 0);
    ExpectTaken(R"({"SetPreferredSubtitleLanguage": "***,eng", "SetPreferredUILanguage": "ita", "SetCountryId": "FRA",
                    "SetRegionId": 60})");
    EXPECT_EQ(Audio(), "fra,deu");
    ExpectValues(R"({"GetPreferredSubtitleLanguage": "***,eng", "GetPreferredUILanguage": "ita",
                     "GetCountryId": "FRA", "GetRegionId": 60})");
}

TEST_F(Configuration, ReturnsTheRulesOfRecordingThatWereSet) {
    ExpectTaken(R"({"SetPvrPolicy": 2, "SetPvrSaveEpisodes": 10000, "SetPvrSaveDays": 3650, "SetPvrStartPadding": 120,
                    "SetPvrEndPadding": 86400, "SetPreferredTimeShiftMode": 3})");
    ExpectValues(R"({"GetPvrPolicy": 2, "GetPvrSaveEpisodes": 10000, "GetPvrSaveDays": 3650,
                     "GetPvrStartPadding": 120, "GetPvrEndPadding": 86400, "GetPreferredTimeShiftMode": 3})");
}

TEST_F(Configuration, ReturnsWhatTheViewerHasSet) {
    for (const char* command :
         {"set subtitles on", "set audio-description on", "set hearing-impaired on", "set rating-age 12",
          "set do-not-track 1", "set product Big Screen 55", "set device-id-time 1700000000"}) {
        EXPECT_EQ(Tell(command), "ok") << command;
    }
    ExpectValues(R"({"GetSubtitleEnable": true, "GetAudioDescriptionEnable": true, "GetAudioHearingImpaired": true,
                     "GetRatingAge": 12, "GetDNTPolicy": 1})");
    const Json::Value content = Ask("GetDeviceIdContent");
    EXPECT_EQ(content["product"], "Big Screen 55");
    EXPECT_EQ(content["request_time"], "1700000000");
    EXPECT_EQ(Tell("set subtitles off"), "ok");
    EXPECT_EQ(Get("GetSubtitleEnable"), false);
}

TEST_F(Configuration, ReturnsNoDeviceIdWhenItIsOff) {
    EXPECT_EQ(Get("GetDeviceIdEnable"), true);
    EXPECT_EQ(Tell("set device-id off"), "ok");
    EXPECT_EQ(Get("GetDeviceIdEnable"), false);
    const Json::Value content = Ask("GetDeviceIdContent");
    EXPECT_EQ(content["ret"], 0);
    for (const char* member : {"serial", "product", "request_time"}) {
        EXPECT_TRUE(content.isMember(member)) << member;
        EXPECT_EQ(content[member], "") << member;
    }
}

TEST_F(Configuration, ReturnsTheSerialNumberOfTheTelevision) {
    const Json::Value drawn = Ask("GetDeviceIdContent")["serial"];
    EXPECT_EQ(drawn.asString().size(), 10u);
    EXPECT_EQ(Get("local_system.GetSerialNumber"), drawn);
    EXPECT_EQ(Tell("set serial 4711-A").substr(0, 6), "error:");
    EXPECT_EQ(Ask("GetDeviceIdContent")["serial"], drawn);
    Restart();
    EXPECT_EQ(Ask("GetDeviceIdContent")["serial"], drawn);
}

TEST_F(Configuration, HasTheNetworkIdsOfTheTerrestrialNetworksUntilOthersAreSet) {
    EXPECT_EQ(NetworkIds(), "2 12290 12289") << "in the order of the services, each once, no satellite";
    EXPECT_EQ(Tell("set network-ids 0,8468,65535"), "ok");
    EXPECT_EQ(NetworkIds(), "3 0 8468 65535");
    std::string hundred = "7";
    for (int i = 1; i < 100; ++i) hundred += ",7";
    EXPECT_EQ(Tell("set network-ids " + hundred), "ok");
    EXPECT_EQ(Ask("GetDttNetworkIds")["k99"], 7);
    EXPECT_EQ(Tell("set network-ids " + hundred + ",7").substr(0, 6), "error:");
    EXPECT_EQ(Tell("set network-ids none"), "ok");
    EXPECT_EQ(NetworkIds(), "0");
}

TEST_F(Configuration, HasThreeStringsOfWhichSetTextSetsTheFirst) {
    EXPECT_EQ(Ret("SetText", {{"info", "Kein Titel"}}), 0);
    EXPECT_EQ(Text(0), "Kein Titel");
    EXPECT_EQ(Tell("set no-synopsis Keine Beschreibung"), "ok");
    EXPECT_EQ(Tell("set manual-recording Aufnahme"), "ok");
    EXPECT_EQ(Text(1), "Keine Beschreibung");
    EXPECT_EQ(Text(2), "Aufnahme");
    for (const int key : {-1, 3, 2147483647}) EXPECT_EQ(Ret("GetText", {{"key_type", key}}), -1) << key;
    EXPECT_EQ(Ret("SetText"), -1) << "neither asked nor set";
    EXPECT_EQ(Ret("SetText", {{"info", std::string(1025, 'x')}}), -1);
    EXPECT_EQ(Text(0), "Kein Titel");
}

TEST_F(Configuration, ReplacesElementsOfTheUserInterfaceWhenAllOfThemHaveCome) {
    const auto replace = [this](unsigned size, unsigned index, int ui) {
        return Ret("ReplaceUIElement", {{"size", size}, {"index", index}, {"ui", ui}});
    };
    EXPECT_EQ(Tell("get ui-elements"), "ok none");
    EXPECT_EQ(replace(2, 1, 64), 0);
    EXPECT_EQ(Tell("get ui-elements"), "ok none");
    EXPECT_EQ(replace(2, 0, 1), 0);
    EXPECT_EQ(Tell("get ui-elements"), "ok 1,64");
    EXPECT_EQ(replace(3, 2, 68), 0);
    EXPECT_EQ(replace(2, 0, 2), 0) << "another number of them starts again";
    EXPECT_EQ(Tell("get ui-elements"), "ok 1,64");
    EXPECT_EQ(replace(2, 1, 65), 0);
    EXPECT_EQ(Tell("get ui-elements"), "ok 2,65");
    EXPECT_EQ(replace(1, 0, 127), 0);
    EXPECT_EQ(Tell("get ui-elements"), "ok 127");
    EXPECT_EQ(replace(1, 0, 5), -1) << "no such element";
    EXPECT_EQ(replace(1, 1, 0), -1);
    EXPECT_EQ(replace(0, 0, 0), -1);
    EXPECT_EQ(replace(4294967295u, 4294967294u, 0), -1);
    EXPECT_EQ(Tell("get ui-elements"), "ok 127");
}

TEST_F(Configuration, RefusesInvalidValuesAndKeepsTheOldOnes) {
    EXPECT_EQ(SetAudio("fra"), 0);
    for (const char* bad : {"", "de", "deut", "DEU", "deu,", ",deu", "deu, eng", "d1u", "***"}) {
        EXPECT_EQ(SetAudio(bad), -1) << bad;
        EXPECT_EQ(Ret("SetPreferredUILanguage", {{"pref_ui_language", bad}}), -1) << bad;
    }
    EXPECT_EQ(SetAudio(std::string(300000, 'x')), -1);
    EXPECT_EQ(Ret("SetPreferredSubtitleLanguage", {{"pref_sub_language", "****"}}), -1);
    for (const char* bad : {"", "DE", "deu", "DEUT", "D1U"}) EXPECT_EQ(Ret("SetCountryId", {{"id", bad}}), -1) << bad;
    EXPECT_EQ(Ret("SetRegionId", {{"reg_id", 61u}}), -1);
    EXPECT_EQ(Ret("SetRegionId", {{"reg_id", 4294967295u}}), -1);
    for (const int bad : {-1, 3}) EXPECT_EQ(Ret("SetPvrPolicy", {{"pvr_policy", bad}}), -1) << bad;
    EXPECT_EQ(Ret("SetPvrSaveEpisodes", {{"epis", 10001u}}), -1);
    EXPECT_EQ(Ret("SetPvrSaveDays", {{"days", 3651u}}), -1);
    EXPECT_EQ(Ret("SetPvrStartPadding", {{"start_pad", 86401u}}), -1);
    EXPECT_EQ(Ret("SetPvrEndPadding", {{"end_pad", 86401u}}), -1);
    for (const int bad : {-1, 4}) EXPECT_EQ(Ret("SetPreferredTimeShiftMode", {{"timeshift_mode", bad}}), -1) << bad;
    EXPECT_EQ(Audio(), "fra");
    EXPECT_EQ(Get("GetRegionId").asUInt(), 0u);
    EXPECT_EQ(Get("GetPvrPolicy").asInt(), 0);
}

TEST_F(Configuration, RefusesMembersThatAreMissingOrOfAnotherType) {
    EXPECT_EQ(Ret("SetPreferredAudioLanguage"), -1);
    EXPECT_EQ(Ret("SetPreferredAudioLanguage", {{"pref_audio_language", 7}}), -1);
    EXPECT_EQ(Ret("SetRegionId", {{"reg_id", -1}}), -1);
    EXPECT_EQ(Ret("SetRegionId", {{"reg_id", "1"}}), -1);
    EXPECT_EQ(Ret("SetPvrPolicy", {{"pvr_policy", 1.5}}), -1);
    EXPECT_EQ(Ret("ReplaceUIElement", {{"size", 1u}, {"index", 0u}}), -1);
    ExpectOtherCodesRefused("configuration");
}

TEST_F(Configuration, SendsOneEventForEachRequestedChange) {
    EXPECT_EQ(SetAudio("fra"), 0);
    EXPECT_EQ(Ret("RegisterCallback"), 0);
    EXPECT_EQ(SetAudio("fra"), 0) << "no change, no event";
    EXPECT_EQ(SetAudio("ita"), 0);
    EXPECT_EQ(NextChange(), "audio language audLang=\"ita\"") << "what changed before the registration is not reported";
    EXPECT_EQ(Ret("SetPreferredSubtitleLanguage", {{"pref_sub_language", "fra"}}), 0);
    EXPECT_EQ(NextChange(), "subtitle language prefSubLang=\"fra\"");
    EXPECT_EQ(Ret("SetPreferredUILanguage", {{"pref_ui_language", "deu"}}), 0);
    EXPECT_EQ(NextChange(), "UI language uiLang=\"deu\"");
    EXPECT_EQ(Ret("SetCountryId", {{"id", "ITA"}}), 0) << "a change of the country has no event";
    EXPECT_EQ(Ret("SetRegionId", {{"reg_id", 7u}}), 0);
    EXPECT_EQ(NextChange(), "region region=\"7\"");
}

TEST_F(Configuration, SendsAnEventForEveryChangeByTheViewer) {
    EXPECT_EQ(Ret("RegisterCallback"), 0);
    const std::vector<std::pair<std::string, std::string>> changes{
        {"resolution 3840x2160", "resolution h=2160 w=3840"},
        {"ui-language fra", "UI language uiLang=\"fra\""},
        {"audio-language deu", "audio language audLang=\"deu\""},
        {"subtitle-language ***", "subtitle language prefSubLang=\"***\""},
        {"subtitles on", "subtitles isSubEnabled=true"},
        {"audio-description on", "audio description isADEnabled=true"},
        {"hearing-impaired on", "hearing impaired aud_hearing_imp=true"},
        {"region 3", "region region=\"3\""},
        {"rating-age 16", "rating age age=16"},
        {"do-not-track 1", "do-not-track policy do_not_track_policy=1"},
        {"cookie-policy 2", "cookie policy cookie_policy=2"},
        {"persistent-storage 0", "persistent storage persistent_storage=0"},
        {"block-tracking-sites 1", "blocked sites block_track_sites=1"},
        {"device-id off", "device id device_id=0"},
        {"device-id-time 5000000000", "device id time stamp device_id_ts=5000000000"}};
    for (const auto& change : changes) {
        EXPECT_EQ(Tell("set " + change.first), "ok") << change.first;
        EXPECT_EQ(NextChange(), change.second) << change.first;
    }
}

TEST_F(Configuration, SendsNoEventsBeforeARegistrationOrAfterItsEnd) {
    EXPECT_EQ(Tell("set rating-age 6"), "ok");
    EXPECT_EQ(Ret("RegisterCallback"), 0);
    EXPECT_EQ(Ret("RegisterCallback"), 0) << "registering twice is registering once";
    EXPECT_EQ(Tell("set rating-age 7"), "ok");
    EXPECT_EQ(NextChange(), "rating age age=7");
    EXPECT_EQ(Ret("UnregisterCallback"), 0);
    EXPECT_EQ(Tell("set rating-age 8"), "ok");
    EXPECT_EQ(Ret("RegisterCallback"), 0);
    EXPECT_EQ(Tell("set rating-age 9"), "ok");
    EXPECT_EQ(NextChange(), "rating age age=9");
}

TEST_F(Configuration, IsWhatItWasAfterARestart) {
    EXPECT_EQ(SetAudio("fra,ita"), 0);
    EXPECT_EQ(Ret("SetRegionId", {{"reg_id", 12u}}), 0);
    EXPECT_EQ(Ret("SetText", {{"info", "Sans titre \"é\""}}), 0);
    EXPECT_EQ(Ret("ReplaceUIElement", {{"size", 1u}, {"index", 0u}, {"ui", 66}}), 0);
    EXPECT_EQ(Tell("set subtitles on"), "ok");
    EXPECT_EQ(Tell("set network-ids 5,6"), "ok");
    EXPECT_EQ(Tell("set device-id-time 1700000001"), "ok");
    Restart();
    EXPECT_EQ(Audio(), "fra,ita");
    EXPECT_EQ(Get("GetRegionId").asUInt(), 12u);
    EXPECT_EQ(Text(0), "Sans titre \"é\"");
    EXPECT_EQ(Tell("get ui-elements"), "ok 66");
    EXPECT_EQ(Get("GetSubtitleEnable"), true);
    EXPECT_EQ(NetworkIds(), "2 5 6");
    EXPECT_EQ(Ask("GetDeviceIdContent")["request_time"], "1700000001");
    EXPECT_EQ(Get("GetPreferredUILanguage"), "eng") << "what was never set is as at first";
    EXPECT_EQ(Tell("set rating-age 9"), "ok");
    EXPECT_EQ(Ret("RegisterCallback"), 0) << "a registration does not outlast the television";
    EXPECT_EQ(SetAudio("fra,ita"), 0) << "the same value is not a change";
    EXPECT_EQ(Tell("set rating-age 10"), "ok");
    EXPECT_EQ(NextChange(), "rating age age=10");
}

TEST_F(Configuration, IsSetAsideIfItIsDamaged) {
    const std::string file = mDirectory / "state/preferences.json";
    int damaged = 0;
    for (const char* text :
         {"[]", "{\"audio-language\": 7}", "{\"region\": 61}", "{\"region\": \"6\"}", "{\"volume\": 3}",
          "{\"network-ids\": [1, \"2\"]}", "{\"subtitles\": 1}", "{\"device-id-time\": 1e300}", "nonsense"}) {
        EXPECT_EQ(SetAudio("fra"), 0);
        EXPECT_EQ(Stop(), 0);
        WriteFile(file, text);
        StartRemembering();
        EXPECT_EQ(Audio(), "deu,eng") << text;
        EXPECT_EQ(NetworkIds(), "2 12290 12289") << text;
        EXPECT_TRUE(std::filesystem::exists(file + ".damaged-" + std::to_string(++damaged))) << text;
    }
}

TEST_F(Configuration, IsNotChangedIfItCannotBeStored) {
    EXPECT_EQ(SetAudio("fra"), 0);
    EXPECT_EQ(Ret("RegisterCallback"), 0);
    std::filesystem::create_directory(mDirectory / "state/preferences.json.new");
    EXPECT_EQ(SetAudio("ita"), -1);
    EXPECT_EQ(Tell("set audio-language ita").substr(0, 6), "error:");
    EXPECT_EQ(Audio(), "fra");
    std::filesystem::remove(mDirectory / "state/preferences.json.new");
    EXPECT_EQ(SetAudio("eng"), 0);
    EXPECT_EQ(NextChange(), "audio language audLang=\"eng\"");
}

TEST_F(Configuration, PrintsItsValuesAndWhatTheyCannotBe) {
    EXPECT_EQ(Tell("get country"), "ok DEU");
    EXPECT_EQ(Tell("get subtitles"), "ok off");
    EXPECT_EQ(Tell("get network-ids"), "ok 12290,12289");
    EXPECT_NE(Tell("get").find("country DEU; region 0; subtitles off"), std::string::npos);
    EXPECT_EQ(Tell("get contry"), "error: there is no preference \"contry\"; did you mean \"country\"?");
    EXPECT_EQ(Tell("set rating-age 19"), "error: rating-age is 4 to 18, or 0");
    EXPECT_EQ(Tell("set rating-age 3"), "error: rating-age is 4 to 18, or 0");
    EXPECT_EQ(Tell("set subtitles yes"), "error: subtitles is on or off");
    EXPECT_EQ(Tell("set network-ids 1,,2"), "error: network-ids is at most 100 numbers from 0 to 65535, or none");
    EXPECT_EQ(Tell("set country"), "error: usage: set PREFERENCE VALUE");
    EXPECT_EQ(Tell("get country region"), "error: usage: get [PREFERENCE]");
    for (const char* bad : {"rating-age -1", "rating-age 1e1", "rating-age 99999999999999999999", "resolution 0x0",
                            "resolution x", "ui-elements 5", "network-ids 65536", "device-id-time 253402300800"}) {
        EXPECT_EQ(Tell(std::string("set ") + bad).substr(0, 6), "error:") << bad;
    }
}

}  // namespace
}  // namespace hbbtv::test
