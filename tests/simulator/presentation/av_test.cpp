// Components over their socket, and both directions of AV control.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

const char* const kSoundEntry = R"({"type": "audio", "tag": 7, "pid": 777, "encoding": "AC3", "language": "fra",
    "channels": 5, "audioDescription": true, "encrypted": true, "label": "Ton \u00e9"})";
const char* const kPictureEntry =
    R"({"type": "video", "tag": 6, "pid": 666, "encoding": "AVC_HD_25", "aspectRatio": 1.33})";
const char* const kSubtitleEntry = R"({"type": "subtitle", "tag": 8, "pid": 888, "encoding": "DVB-SUBT",
    "language": "deu", "hearingImpaired": true})";

class AvComponents : public VideoBroadcastFixture {
  protected:
    AvComponents() { mFamily = "av_component"; }

    void SetUp() override {
        mLineUp = std::string(R"({"networks": [{"id": "s", "name": "S", "delivery": "DVB_S", "nid": 1}],
            "services": [{"name": "One", "network": "s", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1,
            "components": [)") +
                  kPictureEntry + "," + kSoundEntry + "," + kSubtitleEntry + "]}]}";
        Start();
    }
};

TEST_F(AvComponents, ReturnWhatTheLineUpSaysAboutThem) {
    const std::string vb = Presenting(1);
    const std::string picture = Component(vb, kVideo, 0);
    const std::string sound = Component(vb, kAudio, 0);
    const std::string subtitle = Component(vb, kSubtitle, 0);
    ExpectValues(picture, R"({"GetComponentTag": 6, "GetPid": 666, "GetType": 0, "GetEncoding": "AVC_HD_25",
                              "GetEncrypted": false, "GetAspectRatio": 1.33, "GetLanguage": "", "GetLabel": "",
                              "GetAudioDescription": false, "GetAudioChannelNum": 0, "GetHearingImpaired": false})");
    ExpectValues(sound, R"({"GetComponentTag": 7, "GetPid": 777, "GetType": 1, "GetEncoding": "AC3",
                            "GetEncrypted": true, "GetAspectRatio": 0.0, "GetLanguage": "fra", "GetLabel": "Ton \u00e9",
                            "GetAudioDescription": true, "GetAudioChannelNum": 5, "GetHearingImpaired": false})");
    ExpectValues(subtitle, R"({"GetComponentTag": 8, "GetPid": 888, "GetType": 2, "GetEncoding": "DVB-SUBT",
                               "GetEncrypted": false, "GetAspectRatio": 0.0, "GetLanguage": "deu", "GetLabel": "",
                               "GetAudioDescription": false, "GetAudioChannelNum": 0, "GetHearingImpaired": true})");
}

TEST_F(AvComponents, CreatedByAClientReturnTheirDescription) {
    const std::string made = HandleOf(NewObject(), "video_broadcast.CreateAudioComponent",
                                      {{"componentTag", -1},
                                       {"language", "ita"},
                                       {"audioDescription", true},
                                       {"channels", 7},
                                       {"encoding", "HEAAC"}});
    ExpectValues(made, R"({"GetComponentTag": -1, "GetPid": 0, "GetType": 1, "GetEncoding": "HEAAC",
                           "GetLanguage": "ita", "GetAudioDescription": true, "GetAudioChannelNum": 7})");
}

TEST_F(AvComponents, OfAListAreTheSameHandlesAsTheSelectedOnes) {
    const std::string vb = Presenting(1);
    EXPECT_EQ(GetOf(vb, "video_broadcast.GetSpecificTypeCurrentActiveAVComponentByIndex", {{"index", 0u}}),
              Component(vb, kVideo, 0));
    const std::string subtitle = Component(vb, kSubtitle, 0);
    EXPECT_EQ(RetOf(vb, "video_broadcast.SelectComponent", {{"component", subtitle}}), 0);
    EXPECT_EQ(NextEvent(), "SelectedComponent 2");
    EXPECT_EQ(GetOf(vb, "video_broadcast.GetSpecificTypeCurrentActiveAVComponentByIndex", {{"index", 1u}}), subtitle)
        << "the picture, and no sound, as the only one is a description";
}

TEST_F(AvComponents, AreReleasedByEitherFormAndRefusedThen) {
    const std::string vb = Presenting(1);
    const std::string asked = Component(vb, kVideo, 0);
    const std::string sent = Component(vb, kAudio, 0);
    EXPECT_EQ(RetOf(asked, "Release"), 0);
    SendOf(sent, "Release");
    ExpectRefused(OperationsOf("av_component"), {asked, sent, vb, "0x1", ""});
    ExpectOtherCodesRefused("av_component", Component(vb, kVideo, 0));
    EXPECT_NE(Component(vb, kAudio, 0), sent);
    EXPECT_EQ(GetOf(Component(vb, kAudio, 0), "GetComponentTag"), 7);
}

class AvControl : public SimulatorFixture {
  protected:
    AvControl() { mFamily = "av_control"; }

    void SetUp() override {
        Start();
        ServeEvents("av_control");
    }

    static Json::Value Item(int type, const std::string& encoding, const std::string& language, int tag, bool active) {
        Json::Value item;
        item["actived"] = active;
        item["comp_type"] = type;
        item["encoding"] = encoding;
        item["language"] = language;
        item["audio_channelNum"] = 2u;
        item["impaired"] = false;
        item["desc"] = false;
        item["compTag"] = tag;
        return item;
    }

    static Members Update(int type, const std::vector<Json::Value>& items, int current) {
        return {{"component_type", type},
                {"component_count", static_cast<unsigned>(items.size())},
                {"current_component_index", current},
                {"components", items.empty() ? Json::Value() : List(items)}};
    }
};

TEST_F(AvControl, StoresWhatTheBrowserReportsForEachTypeInEitherForm) {
    EXPECT_EQ(Tell("components"), "error: the browser has not reported any components");
    EXPECT_EQ(Ret("ComponentUpdate", Update(1, {Item(1, "HEAAC", "deu", 3, true), Item(1, "AC3", "fra", 4, false)}, 0)),
              0);
    EXPECT_EQ(Tell("components"),
              "ok audio 0: tag 3 HEAAC deu 2 channels active current; audio 1: tag 4 AC3 fra 2 channels");
    Json::Value subtitle = Item(2, "DVB-SUBT", "deu", 9, false);
    subtitle["impaired"] = true;
    Send("ComponentUpdate", Update(2, {subtitle}, -1));
    Json::Value description = Item(1, "AC3", "fra", 4, false);
    description["desc"] = true;
    EXPECT_EQ(Ret("ComponentUpdate", Update(1, {description}, 0)), 0);
    EXPECT_EQ(Tell("components"),
              "ok audio 0: tag 4 AC3 fra 2 channels audio description current; "
              "subtitle 0: tag 9 DVB-SUBT deu hearing impaired");
    EXPECT_EQ(Ret("ComponentUpdate", Update(1, {}, 0)), 0);
    EXPECT_EQ(Tell("components"), "ok audio: none; subtitle 0: tag 9 DVB-SUBT deu hearing impaired");
}

TEST_F(AvControl, AsksTheBrowserForTheComponentThatTheViewerSelects) {
    EXPECT_EQ(Tell("select audio 0"), "error: the browser has not reported any audio components");
    EXPECT_EQ(Ret("ComponentUpdate", Update(1, {Item(1, "HEAAC", "deu", 3, true), Item(1, "AC3", "fra", 4, false)}, 0)),
              0);
    EXPECT_EQ(Tell("select audio 1"), "ok tag 4 AC3 fra 2 channels");
    EXPECT_EQ(NextEventOf("av_control").Text(), "select component_index=1 component_type=1");
    EXPECT_EQ(Tell("components"),
              "ok audio 0: tag 3 HEAAC deu 2 channels active current; audio 1: tag 4 AC3 fra 2 channels")
        << "until the browser has done it";
    EXPECT_EQ(Tell("select audio 2"), "error: index 2 of 2");
    EXPECT_EQ(Tell("select video 0"), "error: the browser has not reported any video components");
    for (const char* wrong : {"select", "select audio", "select audio x", "select teletext 0", "select audio 1 1"}) {
        EXPECT_EQ(Tell(wrong), "error: usage: select video|audio|subtitle INDEX") << wrong;
    }
    EXPECT_EQ(Tell("components all"), "error: usage: components");
}

TEST_F(AvControl, RefusesUpdatesThatContradictThemselvesAndKeepsTheLastGoodOne) {
    const Json::Value good = Item(1, "HEAAC", "deu", 3, true);
    EXPECT_EQ(Ret("ComponentUpdate", Update(1, {good}, 0)), 0);
    std::vector<Members> wrong{Update(3, {}, 0), Update(-1, {}, 0), Update(1, {good}, 1), {}};
    for (const char* member : {"component_type", "component_count", "current_component_index", "components"}) {
        wrong.push_back(Update(1, {good}, 0));
        wrong.back().erase(member);
        wrong.push_back(Update(1, {good}, 0));
        wrong.back()[member] = "x";
    }
    for (const std::string& member : good.getMemberNames()) {
        Json::Value item = good;
        item.removeMember(member);
        wrong.push_back(Update(1, {item}, 0));
        item[member] = Json::Value(Json::arrayValue);
        wrong.push_back(Update(1, {item}, 0));
    }
    wrong.push_back(Update(1, {Item(3, "", "", 0, false)}, 0));
    wrong.push_back(Update(1, {Json::Value(5)}, 0));
    wrong.push_back(Update(1, {good}, 0));
    wrong.back()["component_count"] = 2u;
    wrong.push_back(Update(1, std::vector<Json::Value>(1001, good), 0));
    for (size_t i = 0; i < wrong.size(); ++i) EXPECT_EQ(Ret("ComponentUpdate", wrong[i]), -1) << i;
    ExpectOtherCodesRefused("av_control", "", Update(1, {good}, 0));
    EXPECT_EQ(Tell("components"), "ok audio 0: tag 3 HEAAC deu 2 channels active current");
}

}  // namespace
}  // namespace hbbtv::test
