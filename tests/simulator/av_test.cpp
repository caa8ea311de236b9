// Components over their socket, and both directions of AV control.
#include "av_platform.h"

namespace hbbtv::test {
namespace {

const char* const kSound = R"({"type": "audio", "tag": 7, "pid": 777, "encoding": "AC3", "language": "fra",
    "channels": 5, "audioDescription": true, "encrypted": true, "label": "Ton \u00e9"})";
const char* const kPicture = R"({"type": "video", "tag": 6, "pid": 666, "encoding": "AVC_HD_25", "aspectRatio": 1.33})";
const char* const kSubtitle = R"({"type": "subtitle", "tag": 8, "pid": 888, "encoding": "DVB-SUBT",
    "language": "deu", "hearingImpaired": true})";

class AvComponents : public AvPlatform {
  protected:
    void SetUp() override {
        mLineUp = std::string(R"({"networks": [{"id": "s", "name": "S", "delivery": "DVB_S", "nid": 1}],
            "services": [{"name": "One", "network": "s", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1,
            "components": [)") +
                  kPicture + "," + kSound + "," + kSubtitle + "]}]}";
        Begin("");
    }

    Json::Value Get(const std::string& component, int method, const char* member) {
        const Json::Value reply = AskAt(kToComponent, method, {{"handle", component}});
        EXPECT_EQ(reply["ret"], 0) << method;
        return reply[member];
    }
};

struct ComponentFact {
    int method;
    const char* member;
    Json::Value picture, sound, subtitle;
};

TEST_F(AvComponents, TellWhatTheLineUpSaysOfThem) {
    const std::string vb = Presenting(1);
    const std::string picture = ComponentOf(vb, 0, 0);
    const std::string sound = ComponentOf(vb, 1, 0);
    const std::string subtitle = ComponentOf(vb, 2, 0);
    const std::vector<ComponentFact> facts{{1, "tag", 6, 7, 8},
                                           {2, "pid", 666, 777, 888},
                                           {3, "type", 0, 1, 2},
                                           {4, "encoding", "AVC_HD_25", "AC3", "DVB-SUBT"},
                                           {5, "encrypted", false, true, false},
                                           {6, "aspect_ratio", 1.33, 0.0, 0.0},
                                           {7, "language", "", "fra", "deu"},
                                           {8, "desc", false, true, false},
                                           {9, "num", 0, 5, 0},
                                           {10, "impaired", false, false, true},
                                           {11, "label", "", "Ton \xc3\xa9", ""}};
    for (const ComponentFact& fact : facts) {
        EXPECT_EQ(Get(picture, fact.method, fact.member), fact.picture) << fact.method;
        EXPECT_EQ(Get(sound, fact.method, fact.member), fact.sound) << fact.method;
        EXPECT_EQ(Get(subtitle, fact.method, fact.member), fact.subtitle) << fact.method;
    }
}

TEST_F(AvComponents, MadeByAClientTellTheirDescription) {
    const std::string made = AskOf(NewObject(), kCreateAudioComponent,
                                   {{"componentTag", -1},
                                    {"language", "ita"},
                                    {"audioDescription", true},
                                    {"channels", 7},
                                    {"encoding", "HEAAC"}})["component"]
                                 .asString();
    EXPECT_EQ(Get(made, 1, "tag"), -1);
    EXPECT_EQ(Get(made, 2, "pid"), 0);
    EXPECT_EQ(Get(made, 3, "type"), 1);
    EXPECT_EQ(Get(made, 4, "encoding"), "HEAAC");
    EXPECT_EQ(Get(made, 7, "language"), "ita");
    EXPECT_EQ(Get(made, 8, "desc"), true);
    EXPECT_EQ(Get(made, 9, "num"), 7);
}

TEST_F(AvComponents, OfAListAreTheSameHandlesAsTheSelectedOnes) {
    const std::string vb = Presenting(1);
    EXPECT_EQ(AskOf(vb, kGetActiveComponent, {{"index", 0u}})["component"], ComponentOf(vb, 0, 0));
    const std::string subtitle = ComponentOf(vb, 2, 0);
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", subtitle}}), 0);
    EXPECT_EQ(NextEvent(), "SelectedComponent 2");
    EXPECT_EQ(AskOf(vb, kGetActiveComponent, {{"index", 1u}})["component"], subtitle)
        << "the picture, and no sound, as the only one is a description";
}

TEST_F(AvComponents, AreReleasedByEitherFormAndRefusedThen) {
    const std::string vb = Presenting(1);
    const std::string asked = ComponentOf(vb, 0, 0);
    const std::string sent = ComponentOf(vb, 1, 0);
    EXPECT_EQ(RetAt(kToComponent, 0, {{"handle", asked}}), 0);
    SendAt(kToComponent, 0, {{"handle", sent}});
    for (const std::string& handle : {asked, sent, vb, std::string("0x1"), std::string()}) {
        for (int method = 0; method <= 11; ++method) {
            EXPECT_EQ(RetAt(kToComponent, method, {{"handle", handle}}), -1) << method << " " << handle;
        }
    }
    EXPECT_EQ(RetAt(kToComponent, 12, {{"handle", ComponentOf(vb, 0, 0)}}), -1) << "there is no such operation";
    EXPECT_NE(ComponentOf(vb, 1, 0), sent);
    EXPECT_EQ(Get(ComponentOf(vb, 1, 0), 1, "tag"), 7);
}

class AvControl : public AvPlatform {
  protected:
    void SetUp() override {
        Begin("");
        mEvents = std::make_unique<LibraryStandIn>(mDirectory / "service_hbbtv_to_plugin_av_ctrl");
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
        Json::Value list(Json::nullValue);
        for (const Json::Value& item : items) list.append(item);
        return {{"component_type", type},
                {"component_count", static_cast<unsigned>(items.size())},
                {"current_component_index", current},
                {"components", list}};
    }

    std::unique_ptr<LibraryStandIn> mEvents;
};

TEST_F(AvControl, KeepsWhatTheBrowserTellsOfEachTypeInEitherForm) {
    EXPECT_EQ(Tell("components"), "error: the browser has not told of any");
    EXPECT_EQ(RetAt(kToAvControl, 0, Update(1, {Item(1, "HEAAC", "deu", 3, true), Item(1, "AC3", "fra", 4, false)}, 0)),
              0);
    EXPECT_EQ(Tell("components"),
              "ok audio 0: tag 3 HEAAC deu 2 channels active current; audio 1: tag 4 AC3 fra 2 channels");
    Json::Value subtitle = Item(2, "DVB-SUBT", "deu", 9, false);
    subtitle["impaired"] = true;
    SendAt(kToAvControl, 0, Update(2, {subtitle}, -1));
    Json::Value description = Item(1, "AC3", "fra", 4, false);
    description["desc"] = true;
    EXPECT_EQ(RetAt(kToAvControl, 0, Update(1, {description}, 0)), 0);
    EXPECT_EQ(Tell("components"),
              "ok audio 0: tag 4 AC3 fra 2 channels audio description current; "
              "subtitle 0: tag 9 DVB-SUBT deu hearing impaired");
    EXPECT_EQ(RetAt(kToAvControl, 0, Update(1, {}, 0)), 0);
    EXPECT_EQ(Tell("components"), "ok audio: none; subtitle 0: tag 9 DVB-SUBT deu hearing impaired");
}

TEST_F(AvControl, AsksTheBrowserForTheComponentThatTheViewerSelects) {
    EXPECT_EQ(Tell("select audio 0"), "error: the browser has told of no audio components");
    EXPECT_EQ(RetAt(kToAvControl, 0, Update(1, {Item(1, "HEAAC", "deu", 3, true), Item(1, "AC3", "fra", 4, false)}, 0)),
              0);
    EXPECT_EQ(Tell("select audio 1"), "ok tag 4 AC3 fra 2 channels");
    EXPECT_EQ(NextEventOf(*mEvents, 19), Parsed(R"({"method": 1, "component_type": 1, "component_index": 1})"));
    EXPECT_EQ(Tell("components"),
              "ok audio 0: tag 3 HEAAC deu 2 channels active current; audio 1: tag 4 AC3 fra 2 channels")
        << "until the browser has done it";
    EXPECT_EQ(Tell("select audio 2"), "error: index 2 of 2");
    EXPECT_EQ(Tell("select video 0"), "error: the browser has told of no video components");
    for (const char* wrong : {"select", "select audio", "select audio x", "select teletext 0", "select audio 1 1"}) {
        EXPECT_EQ(Tell(wrong), "error: usage: select video|audio|subtitle INDEX") << wrong;
    }
    EXPECT_EQ(Tell("components all"), "error: usage: components");
}

TEST_F(AvControl, RefusesUpdatesThatContradictThemselvesAndKeepsTheLastGoodOne) {
    const Json::Value good = Item(1, "HEAAC", "deu", 3, true);
    EXPECT_EQ(RetAt(kToAvControl, 0, Update(1, {good}, 0)), 0);
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
    for (size_t i = 0; i < wrong.size(); ++i) EXPECT_EQ(RetAt(kToAvControl, 0, wrong[i]), -1) << i;
    EXPECT_EQ(RetAt(kToAvControl, 1, Update(1, {good}, 0)), -1) << "there is no such operation";
    EXPECT_EQ(Tell("components"), "ok audio 0: tag 3 HEAAC deu 2 channels active current");
}

}  // namespace
}  // namespace hbbtv::test
