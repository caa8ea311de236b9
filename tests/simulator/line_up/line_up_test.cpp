// Reading of line-ups: the default one, and a message with line and column for everything that can be wrong.
#include "television/line_up/line_up.h"

#include <gtest/gtest.h>

#include <map>

#include "core/error.h"
#include "line_up/line_up_reading.h"

namespace hbbtv::sim {
namespace {

const char* const kNetworks = R"("networks": [{"id": "sat", "name": "S", "delivery": "DVB_S", "nid": 1}])";
const char* const kPicture = R"({"type": "video", "tag": 1, "pid": 100, "encoding": "AVC_HD_25"})";

std::string Service(const std::string& more, const std::string& components = kPicture) {
    return R"({"name": "A", "network": "sat", "onid": 1, "tsid": 2, "sid": 3, "type": "TV", "number": 4, )" + more +
           R"("components": [)" + components + "]}";
}

std::string File(const std::string& services) {
    return std::string("{") + kNetworks + ", \"services\": [" + services + "]}";
}

std::string FileWith(const std::string& favouriteLists) {
    std::string text = File(Service(""));
    text.insert(text.size() - 1, ", \"favouriteLists\": [" + favouriteLists + "]");
    return text;
}

TEST(LineUpEncodings, AreTheMediaFormatsOfTheirType) {
    const std::map<std::string, std::vector<std::string>> encodings{
        {"video",
         {"AVC_HD_25", "AVC_HD_30", "AVC_SD_25", "AVC_SD_30", "AVC_SP_25", "AVC_SP_30", "AVC_3D_25", "AVC_3D_30",
          "MPEG2_SD_25", "MPEG2_SD_30", "MPEG2_HD_25", "MPEG2_HD_30", "HEVC_UHD_25"}},
        {"audio", {"HEAAC", "HEAAC2", "HEAAC_MPS", "MPEG1_L2", "AC3", "E-AC3", "DTS"}},
        {"subtitle", {"DVB-SUBT", "EBU-SUBT", "CEA-SUBT", "3GPP-TT"}}};
    for (const auto& [type, fitting] : encodings) {
        for (const auto& [other, all] : encodings) {
            for (const std::string& encoding : all) {
                const std::string language = type == "video" ? "" : R"("language": "deu", )";
                const std::string component = R"({"type": ")" + type + R"(", "tag": 1, "pid": 1, )" + language +
                                              R"("encoding": ")" + encoding + "\"}";
                EXPECT_EQ(RefusalOf(File(Service("", component))).empty(), type == other) << type << " " << encoding;
            }
        }
    }
}

TEST(DefaultLineUp, HoldsTheServicesThatItIsMadeOf) {
    const LineUp lineUp = DefaultLineUp();
    ASSERT_EQ(lineUp.services.size(), 39u);
    EXPECT_EQ(lineUp.First()->name, "Das Erste HD");
    const auto bbc = lineUp.Find(9018, 4176, 4165);
    ASSERT_NE(bbc, nullptr);
    EXPECT_EQ(bbc->name, "BBC One");
    EXPECT_FALSE(bbc->highDefinition);
    EXPECT_EQ(bbc->network->delivery, IdType::DvbT);
    for (const int sid : {3401, 3402, 3403}) {
        ASSERT_NE(lineUp.Find(318, 5200, sid), nullptr);
        EXPECT_EQ(lineUp.Find(318, 5200, sid)->access, Access::Scrambled);
        EXPECT_EQ(lineUp.Find(318, 5200, sid)->network->position, "13E");
    }
    EXPECT_FALSE(lineUp.Find(1, 1111, 7200)->received);
    EXPECT_EQ(lineUp.Find(1, 1011, 11191)->type, ChannelType::Radio);
    EXPECT_FALSE(lineUp.Find(1, 65283, 28186)->listed);
    EXPECT_EQ(lineUp.Find(1, 65283, 28180), nullptr);
    EXPECT_TRUE(lineUp.Find(8564, 1002, 2101)->hidden);
    EXPECT_EQ(lineUp.Find(1, 1010, 11160)->genres, std::vector<std::string>{"Children"});
    ASSERT_EQ(lineUp.favouriteLists.size(), 2u);
    EXPECT_EQ(lineUp.favouriteLists[0].name, "News");
    EXPECT_EQ(lineUp.favouriteLists[0].services[2]->name, "BBC News");
}

TEST(DefaultLineUp, GivesEveryServiceASoundAndEveryTelevisionServiceAPicture) {
    for (const auto& service : DefaultLineUp().services) {
        int pictures = 0;
        int sounds = 0;
        for (const auto& component : service->components) {
            pictures += component->type == ComponentType::Video;
            sounds += component->type == ComponentType::Audio;
        }
        EXPECT_EQ(pictures, service->type == ChannelType::Radio ? 0 : 1) << service->name;
        EXPECT_GE(sounds, 1) << service->name;
    }
}

TEST(LineUpFile, GivesWhatIsLeftOutItsUsualValue) {
    const LineUp lineUp = ParseLineUp(File(Service("")), "f");
    ASSERT_EQ(lineUp.services.size(), 1u);
    const auto& service = *lineUp.services[0];
    EXPECT_EQ(service.name, "A");
    EXPECT_EQ(service.number, 4);
    EXPECT_TRUE(service.listed);
    EXPECT_TRUE(service.received);
    EXPECT_EQ(service.access, Access::Free);
    EXPECT_FALSE(service.highDefinition);
    EXPECT_DOUBLE_EQ(service.components[0]->aspectRatio, 1.78);
    EXPECT_FALSE(service.components[0]->encrypted);
    EXPECT_EQ(service.longName, "");
    EXPECT_EQ(service.description, "");
    EXPECT_TRUE(service.genres.empty());
    EXPECT_EQ(service.logoUrl, "");
    EXPECT_FALSE(service.hidden);
    EXPECT_EQ(service.frequency, 0);
    EXPECT_EQ(service.programmeId, "");
    EXPECT_TRUE(lineUp.favouriteLists.empty());
}

TEST(LineUpFile, HoldsWhatChannelsReturnAboutAService) {
    const LineUp lineUp = ParseLineUp(
        File(Service(R"("longName": "The A", "description": "First", "genres": ["News", "Sport"], "hidden": true,
                        "logo": "http://a/a.png", "frequency": 11493750, "programmeId": "a.tv", )")),
        "f");
    const auto& service = *lineUp.services[0];
    EXPECT_EQ(service.longName, "The A");
    EXPECT_EQ(service.description, "First");
    EXPECT_EQ(service.genres, (std::vector<std::string>{"News", "Sport"}));
    EXPECT_TRUE(service.hidden);
    EXPECT_EQ(service.logoUrl, "http://a/a.png");
    EXPECT_EQ(service.frequency, 11493750);
    EXPECT_EQ(service.programmeId, "a.tv");
}

TEST(LineUpFile, BringsFavouriteListsAlong) {
    const LineUp lineUp = ParseLineUp(FileWith(R"({"id": "f", "name": "Mine", "services": [
        {"onid": 1, "tsid": 2, "sid": 3}]}, {"id": "g", "name": "None", "services": []})"),
                                      "f");
    ASSERT_EQ(lineUp.favouriteLists.size(), 2u);
    EXPECT_EQ(lineUp.favouriteLists[0].id, "f");
    EXPECT_EQ(lineUp.favouriteLists[0].name, "Mine");
    ASSERT_EQ(lineUp.favouriteLists[0].services.size(), 1u);
    EXPECT_EQ(lineUp.favouriteLists[0].services[0], lineUp.services[0]);
    EXPECT_TRUE(lineUp.favouriteLists[1].services.empty());
}

TEST(LineUpFile, IsRefusedWithLineAndColumn) {
    const std::string text =
        std::string("{") + kNetworks + ",\n\"services\": [\n  " + Service("\n   \"nmae\": 1,") + "]}";
    try {
        ParseLineUp(text, "lineup.json");
        FAIL();
    } catch (const Fatal& e) {
        EXPECT_STREQ(e.what(), "lineup.json:4:12: a service has no member \"nmae\"; did you mean \"name\"?");
    }
}

std::string With(const std::string& from, const std::string& to) {
    std::string text = File(Service(""));
    const size_t at = text.find(from);
    return at == std::string::npos ? "the test is wrong" : text.replace(at, from.size(), to);
}

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

// Returns a line-up with a second service.
std::string WithB(const std::string& sid, const std::string& members) {
    return File(Service("") + R"(, {"name": "B", "network": "sat", "onid": 1, "tsid": 2, "type": "TV", "sid": )" + sid +
                ", " + members + R"(, "components": [)" + kPicture + "]}");
}

TEST(LineUpFile, IsRefusedIfItIsNotALineUp) {
    const std::map<std::string, std::string> refused{
        {" \n", "the file is empty"},
        {"{\"networks\": [}", "not valid JSON: Syntax error: value, object or array expected"},
        {File(Service("")) + "{}", "not valid JSON: Extra non-whitespace after JSON value"},
        {"[]", "a line-up is not an object"},
        {"{\"networks\": " + std::string(5000, '['), "not valid JSON: it nests deeper than 32 levels"},
        {"{\"services\": []}", "the line-up lacks the member \"networks\""},
        {std::string("{") + kNetworks + "}", "the line-up lacks the member \"services\""},
        {std::string("{") + kNetworks + ", \"services\": {}}", "the member \"services\" of the line-up is not a list"},
        {File(""), "the member \"services\" of the line-up has no service that is in the channel list"},
        {File("3"), "a service is not an object"},
        {File(Service("\"number\": 5, ")), "not valid JSON: Duplicate key: 'number'"},
        {With("{\"networks\"", "{\"favouriteLists\": {}, \"networks\""),
         "the member \"favouriteLists\" of the line-up is not a list"}};
    for (const auto& [text, sentence] : refused) EXPECT_EQ(RefusalOf(text), sentence) << text;
}

TEST(LineUpFile, IsRefusedIfAMemberHasAnInvalidValue) {
    struct Row {
        const char *owner, *member, *good, *bad, *complaint;
    };
    const Row rows[] = {
        {"network", "delivery", "\"DVB_S\"", "\"DVB_X\"", "is \"DVB_X\", which is unknown; did you mean \"DVB_C\"?"},
        {"service", "name", "\"A\"", "7", "is not a string"},
        {"service", "name", "\"A\"", "\"\"", "is empty"},
        {"service", "network", "\"sat\"", "\"set\"", "is \"set\", and there is no such network; did you mean \"sat\"?"},
        {"service", "onid", "1", "\"1\"", "is not a whole number from 0 to 65535"},
        {"service", "onid", "1", "65536", "is 65536 but must be from 0 to 65535"},
        {"service", "sid", "3", "1e300", "is not a whole number from 0 to 65535"},
        {"service", "type", "\"TV\"", "\"tv\"", "is \"tv\", which is unknown; did you mean \"TV\"?"},
        {"service", "type", "\"TV\"", "\"Television\"",
         "is \"Television\", which is unknown; known are \"OTHER\", \"RADIO\", \"TV\""},
        {"service", "number", "4", "0", "is 0 but must be from 1 to 9999"},
        {"component", "pid", "100", "8191", "is 8191 but must be from 0 to 8190"},
        {"component", "encoding", "\"AVC_HD_25\"", "\"AVC_HD25\"",
         "is \"AVC_HD25\", which is unknown; did you mean \"AVC_HD_25\"?"}};
    for (const Row& row : rows) {
        const std::string member = std::string("\"") + row.member + "\"";
        EXPECT_EQ(RefusalOf(With(member + ": " + row.good, member + ": " + row.bad)),
                  "the member " + member + " of the " + row.owner + " " + row.complaint);
    }
}

TEST(LineUpFile, IsRefusedIfAnOptionalMemberOfAServiceHasAnInvalidValue) {
    struct Row {
        const char* member;
        std::string value;
        const char* complaint;
    };
    const Row rows[] = {
        {"listed", "1", "is neither true nor false"},
        {"access", "\"scrambbled\"", "is \"scrambbled\", which is unknown; did you mean \"scrambled\"?"},
        {"reception", "\"bad\"", "is \"bad\", which is unknown; known are \"good\", \"none\""},
        {"genres", "\"News\"", "is not a list"},
        {"genres", "[\"a\"" + Repeated(", \"a\"", 256) + "]", "has more than 256 genres"},
        {"longName", "\"\"", "is empty"},
        {"description", "[]", "is not a string"},
        {"logo", "1", "is not a string"},
        {"programmeId", "1", "is not a string"},
        {"hidden", "\"yes\"", "is neither true nor false"},
        {"frequency", "0", "is 0 but must be from 1 to 100000000"},
        {"frequency", "11.5", "is not a whole number from 1 to 100000000"}};
    for (const Row& row : rows) {
        const std::string member = std::string("\"") + row.member + "\"";
        EXPECT_EQ(RefusalOf(File(Service(member + ": " + row.value + ", "))),
                  "the member " + member + " of the service " + row.complaint);
    }
}

TEST(LineUpFile, IsRefusedIfServicesContradictThemselvesOrEachOther) {
    const std::string listed = "is allowed only in services that are in the channel list";
    const std::map<std::string, std::string> refused{
        {With("\"name\": \"A\", ", ""), "the service lacks the member \"name\""},
        {With("\"TV\", ", "\"RADIO\", \"definition\": \"HD\", "),
         "the member \"definition\" of the service is allowed only in services with a picture"},
        {File(Service("\"listed\": false, ")), "the member \"number\" of the service " + listed},
        {WithB("9", R"("listed": false, "hidden": true)"), "the member \"hidden\" of the service " + listed},
        {WithB("3", R"("number": 5)"), "there is another service with the onid, tsid and sid of \"B\""},
        {WithB("9", R"("number": 4)"),
         "the member \"number\" of the service is 4 and follows 4: services stand in the order of their numbers"},
        {File(Service("\"genres\": [\"News\", 3], ")), "a genre is not a string, or is empty"},
        {File(Service("\"genres\": [\"\"], ")), "a genre is not a string, or is empty"}};
    for (const auto& [text, sentence] : refused) EXPECT_EQ(RefusalOf(text), sentence) << text;
}

TEST(LineUpFile, IsRefusedIfAFavouriteListIsInvalid) {
    const std::map<std::string, std::string> refused{
        {R"({"id": "f", "services": []})", "the favourite list lacks the member \"name\""},
        {R"({"id": "f", "name": "F", "service": []})",
         "a favourite list has no member \"service\"; did you mean \"services\"?"},
        {R"({"id": "f", "name": "F", "services": []}, {"id": "f", "name": "G", "services": []})",
         "the member \"id\" of the favourite list is \"f\", as that of another favourite list"},
        {R"({"id": "f", "name": "F", "services": [{"onid": 1, "tsid": 2}]})", "the favourite lacks the member \"sid\""},
        {R"({"id": "f", "name": "F", "services": [{"onid": 1, "tsid": 2, "sid": 4}]})",
         "there is no service with the onid, tsid and sid of this favourite"}};
    for (const auto& [lists, sentence] : refused) EXPECT_EQ(RefusalOf(FileWith(lists)), sentence) << lists;
}

TEST(LineUpFile, IsRefusedIfAComponentIsInvalid) {
    const std::string picture = kPicture;
    const std::string sound = picture + R"(, {"type": "audio", "tag": 2, "pid": 101, )";
    const std::string german = sound + R"("encoding": "AC3", "language": "deu", )";
    const std::map<std::string, std::string> refused{
        {"", "the member \"components\" of the service is empty"},
        {picture + ", " + picture, "\"A\" has another component with the tag 1"},
        {sound + R"("encoding": "AVC_HD_25", "language": "deu"})",
         "the member \"encoding\" of the component is \"AVC_HD_25\", which is unknown; known are \"AC3\", "
         "\"DTS\", \"E-AC3\", \"HEAAC\", \"HEAAC2\", \"HEAAC_MPS\", \"MPEG1_L2\""},
        {sound + R"("encoding": "AC3"})", "the component lacks the member \"language\""},
        {sound + R"("encoding": "AC3", "language": "de"})",
         "the member \"language\" of the component is not an ISO 639-2 code of three lower-case letters"},
        {german + R"("channels": 99})", "the member \"channels\" of the component is 99 but must be from 1 to 24"},
        {german + R"("aspectRatio": 1.78})",
         "the member \"aspectRatio\" of the component is allowed only in video components"},
        {R"({"type": "video", "tag": 1, "pid": 100, "encoding": "AVC_HD_25", "aspectRatio": 178})",
         "the member \"aspectRatio\" of the component is not a number from 1.0 to 3.0"}};
    for (const auto& [components, sentence] : refused) {
        EXPECT_EQ(RefusalOf(File(Service("", components))), sentence) << components;
    }
}

TEST(LineUpFile, CutOffAnywhereIsRefusedAndNeverRead) {
    const std::string text = File(Service(""));
    for (size_t length = 0; length < text.size(); ++length) {
        EXPECT_NE(RefusalOf(text.substr(0, length)), "") << length;
    }
}

TEST(LineUpFile, WithAnyByteReplacedIsReadOrRefusedButNothingElse) {
    const std::string text = File(Service(""));
    for (size_t at = 0; at < text.size(); ++at) {
        for (const char byte : {'\0', '"', '{', ']', '9', '\xff'}) {
            std::string damaged = text;
            damaged[at] = byte;
            EXPECT_NO_THROW(RefusalOf(damaged)) << at;
        }
    }
}

TEST(LineUpFile, IsRefusedWithTheReasonIfItIsMissing) {
    try {
        ReadLineUp("/nowhere/lineup.json", [](const std::string& warning) { ADD_FAILURE() << warning; });
        FAIL();
    } catch (const Fatal& e) {
        EXPECT_STREQ(e.what(), "/nowhere/lineup.json: cannot be opened: No such file or directory");
    }
}

}  // namespace
}  // namespace hbbtv::sim
