// The applications of a line-up: what their members mean, and a message for everything that can be wrong with them.
#include <gtest/gtest.h>

#include "line_up/line_up_reading.h"
#include "television/line_up/line_up.h"

namespace hbbtv::sim {
namespace {

const char* const kGood = R"("name": "A", "organisation": 17, "application": 501, "url": "http://a.test/",)"
                          R"( "control": "autostart")";

std::string File(const std::string& applications) {
    return R"({"networks": [{"id": "sat", "name": "S", "delivery": "DVB_S", "nid": 1}], "services": [
        {"name": "One", "network": "sat", "onid": 1, "tsid": 2, "sid": 3, "type": "TV", "number": 4,
         "components": [{"type": "video", "tag": 1, "pid": 100, "encoding": "AVC_HD_25"}],
         "applications": )" +
           applications + "}]}";
}

SignalledApplication Read(const std::string& members) {
    const LineUp lineUp = ParseLineUp(File("[{" + members + "}]"), "f");
    return *lineUp.services.at(0)->applications.at(0);
}

std::string Refusal(const std::string& applications) {
    return RefusalOf(File(applications));
}

TEST(ApplicationsOfALineUp, GiveWhatIsLeftOutItsUsualValue) {
    const SignalledApplication application = Read(kGood);
    EXPECT_EQ(application.name, "A");
    EXPECT_EQ(application.organisation, 17);
    EXPECT_EQ(application.application, 501);
    EXPECT_EQ(application.url, "http://a.test/");
    EXPECT_TRUE(application.autostart);
    EXPECT_TRUE(application.boundToService);
    EXPECT_EQ(application.keySets, 0x1f);
    EXPECT_TRUE(application.otherKeys.empty());
    EXPECT_TRUE(application.boundaries.empty());
    EXPECT_EQ(application.minimumAge, 0);
}

TEST(ApplicationsOfALineUp, GiveEveryMemberThatIsThere) {
    const SignalledApplication application = Read(
        R"("name": "A", "organisation": 2147483647, "application": 0, "url": "dvb://1.2.3.17/a", "control": "present",
           "boundToService": false, "keySets": ["RED", "VCR", "NUMERIC"], "otherKeys": ["TELETEXT", "RECORD"],
           "boundaries": ["http://a.test/", "https://b.test/"], "minimumAge": 18)");
    EXPECT_EQ(application.organisation, 2147483647);
    EXPECT_EQ(application.application, 0);
    EXPECT_FALSE(application.autostart);
    EXPECT_FALSE(application.boundToService);
    EXPECT_EQ(application.keySets, 0x1 | 0x20 | 0x100 | 0x400);
    EXPECT_EQ(application.otherKeys, (std::vector<int>{459, 416}));
    EXPECT_EQ(application.boundaries, (std::vector<std::string>{"http://a.test/", "https://b.test/"}));
    EXPECT_EQ(application.minimumAge, 18);
}

TEST(ApplicationsOfALineUp, AServiceMayHaveNone) {
    EXPECT_EQ(Refusal("[]"), "");
}

TEST(ApplicationsOfALineUp, AreRefusedWithASentenceWhenSomethingIsWrong) {
    const std::string good = std::string("{") + kGood;
    const std::map<std::string, std::string> wrong{
        {"3", "the member \"applications\" of the service is not a list"},
        {"[3]", "a signalled application is not an object"},
        {"[{}]", "the signalled application lacks the member \"name\""},
        {"[" + good + R"(, "keyset": 3}])",
         "a signalled application has no member \"keyset\"; did you mean \"keySets\"?"},
        {R"([{"name": "A", "organisation": 0, "application": 1, "url": "http://a", "control": "present"}])",
         "the member \"organisation\" of the signalled application is 0 but must be from 1 to 2147483647"},
        {R"([{"name": "A", "organisation": 1, "application": 65536, "url": "http://a", "control": "present"}])",
         "the member \"application\" of the signalled application is 65536 but must be from 0 to 65535"},
        {R"([{"name": "A", "organisation": 1, "application": 1, "url": "a.html", "control": "present"}])",
         "\"a.html\" is not a URL"},
        {R"([{"name": "A", "organisation": 1, "application": 1, "url": "http://a", "control": "prefetch"}])",
         "the member \"control\" of the signalled application is \"prefetch\", which is unknown; did you mean "
         "\"present\"?"},
        {"[" + good + R"(, "boundToService": 1}])",
         "the member \"boundToService\" of the signalled application is neither true nor false"},
        {"[" + good + R"(, "keySets": ["REED"]}])", "\"REED\" is not the name of a key set; did you mean \"RED\"?"},
        {"[" + good + R"(, "keySets": [1]}])",
         "\"\" is not the name of a key set; known are \"ALPHA\", \"BLUE\", \"GREEN\", \"INFO\", \"NAVIGATION\", "
         "\"NUMERIC\", \"OTHER\", \"RED\", \"SCROLL\", \"VCR\", \"YELLOW\""},
        {"[" + good + R"(, "otherKeys": ["TELETEX"]}])",
         "\"TELETEX\" is not the name of one of the other keys; did you mean \"TELETEXT\"?"},
        {"[" + good + R"(, "boundaries": ["a"]}])", "\"a\" is not a URL"},
        {"[" + good + R"(, "minimumAge": 3}])",
         "the member \"minimumAge\" of the signalled application is 3 but must be from 4 to 18"},
        {"[" + good + "}, " + good + "}]", "\"One\" has another application with the ids of \"A\""}};
    for (const auto& entry : wrong) EXPECT_EQ(Refusal(entry.first), entry.second) << entry.first;
}

TEST(ApplicationsOfALineUp, AreAnnouncedBySomeServicesOfTheDefaultOne) {
    const LineUp lineUp = DefaultLineUp();
    const auto& zdf = *lineUp.Find(1, 1011, 11110);
    ASSERT_EQ(zdf.applications.size(), 2u);
    EXPECT_TRUE(zdf.applications[0]->autostart);
    EXPECT_EQ(zdf.applications[0]->url, "http://zdf.example/hbbtv/index.html");
    EXPECT_FALSE(zdf.applications[1]->autostart);
    ASSERT_EQ(lineUp.First()->applications.size(), 1u);
    EXPECT_FALSE(lineUp.First()->applications[0]->autostart) << "the start is quiet without a browser";
    EXPECT_FALSE(lineUp.Find(1, 1010, 11150)->applications.at(0)->boundToService);
    EXPECT_EQ(lineUp.Find(1, 1089, 12003)->applications.at(0)->minimumAge, 16);
}

}  // namespace
}  // namespace hbbtv::sim
