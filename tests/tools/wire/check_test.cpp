// hbbtvctl check: a platform that is right, and platforms that are wrong in each way.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"
#include "raw_listener.h"

namespace hbbtv::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::map<std::string, Json::Value> Operations(const FinishedRun& run) {
    std::map<std::string, Json::Value> operations;
    const std::vector<Json::Value> documents = Documents(run.output);
    if (documents.empty()) return operations;
    for (const Json::Value& entry : documents[0]["operations"]) {
        operations[entry["operation"].asString()] = entry;
    }
    return operations;
}

std::vector<std::string> FindingsOf(const Json::Value& entry) {
    std::vector<std::string> findings;
    for (const Json::Value& finding : entry["findings"]) findings.push_back(finding.asString());
    return findings;
}

class CheckOfTheSimulator : public Alone {
  protected:
    void SetUp() override {
        mPlatform = std::make_unique<SimulatedPlatform>();
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
    }

    std::unique_ptr<SimulatedPlatform> mPlatform;
};

TEST_F(CheckOfTheSimulator, FindsNothingAndChangesNothing) {
    const FinishedRun run = Ctl({"check", "platform", "--json"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    const auto operations = Operations(run);
    EXPECT_EQ(operations.size(), 299u);
    for (const auto& [name, entry] : operations) {
        EXPECT_THAT(FindingsOf(entry), ElementsAre()) << name;
        EXPECT_NE(entry["outcome"].asString(), "wrong") << name;
    }
    for (const char* asked :
         {"channel.GetName", "channel_list.Item", "favourite_list.GetName", "local_system.GetDeviceID",
          "channel_list.GetChannelByTriplet", "video_broadcast.GetPlayState"}) {
        EXPECT_EQ(operations.at(asked)["status"], 0) << asked << ": its arguments come from other answers";
    }
    EXPECT_EQ(operations.at("channel.SetName")["reason"].asString(), "it changes something (--allow-changes)");
    EXPECT_EQ(operations.at("channel.Release")["outcome"].asString(), "skipped");
    EXPECT_EQ(operations.at("programme.GetName")["reason"].asString(),
              "no answer contains a handle of the kind programme");
}

TEST_F(CheckOfTheSimulator, FindsNothingInOperationsThatChangeSomething) {
    const FinishedRun run = Ctl({"check", "platform", "--allow-changes", "--json"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    const auto operations = Operations(run);
    for (const auto& [name, entry] : operations) EXPECT_THAT(FindingsOf(entry), ElementsAre()) << name;
    for (const char* asked : {"channel.SetName", "channel.Release", "video_broadcast.Create",
                              "parental_control_manager.GetScheme", "search_manager.SearchResults_GetLength"}) {
        EXPECT_EQ(operations.at(asked)["status"], 0) << asked;
    }
    EXPECT_EQ(operations.at("dsmcc.RequestFile")["outcome"].asString(), "right") << "one-way";
}

class Check : public Alone {};

struct WrongReply {
    std::string reply;
    std::string finding;
};

const std::vector<WrongReply> kWrongReplies{
    {"", "the reply is empty: expected a JSON object"},
    {"null", "the reply is null: expected an object"},
    {"[1]", "the reply is [1]: expected an object"},
    {"nonsense", "the reply is not valid JSON: line 1, column 1: "},
    {R"({"handle": "0x1000"})", "member \"ret\" is missing: expected an integer"},
    {R"({"ret": "0", "handle": "0x1000"})", "member \"ret\" is \"0\": expected an integer"},
    {R"({"ret": 0})", "member \"handle\" is missing: expected a handle"},
    {R"({"ret": 0, "Handle": "0x1000"})",
     "member \"handle\" is missing: expected a handle, a string of 0x and at most "
     "8 hexadecimal digits, or \"\" for null, but there is \"Handle\""},
    {R"({"ret": 0, "handle": 4096})", "member \"handle\" is 4096: expected a handle"},
    {R"({"ret": 0, "handle": "0x123456789"})", "member \"handle\" is \"0x123456789\": expected a handle"},
    {R"({"ret": 0, "handle": "1000"})", "member \"handle\" is \"1000\": expected a handle"},
};

TEST_F(Check, NamesEachMemberThatIsWrong) {
    for (const WrongReply& wrong : kWrongReplies) {
        FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", wrong.reply);
        const FinishedRun run = Ctl({"check", "platform", "channel_config", "--json"});
        EXPECT_EQ(run.exit, 5) << wrong.reply << run.errors;
        const auto operations = Operations(run);
        EXPECT_EQ(operations.size(), 10u) << "only the given family";
        const std::vector<std::string> findings = FindingsOf(operations.at("channel_config.GetCurrentChannel"));
        EXPECT_THAT(findings, ElementsAre(testing::StartsWith(wrong.finding))) << wrong.reply;
    }
}

TEST_F(Check, ComparesNumbersListsAndColumns) {
    const auto findings = [](const std::string& socket, const std::string& operation, const std::string& reply) {
        FakePlatform platform(socket, reply);
        return FindingsOf(
            Operations(Ctl({"check", "platform", operation.substr(0, operation.find('.')), "--json"})).at(operation));
    };
    const std::string manager = "service_plugin_to_hbbtv_apm";
    EXPECT_THAT(
        findings(manager, "application_manager.GetOtherKeys", R"({"ret": 0, "num": 2, "k0": 1})"),
        ElementsAre("member \"k1\" is missing: expected an integer from -2147483648 to 2147483647, as \"num\" is 2"));
    EXPECT_THAT(findings(manager, "application_manager.GetOtherKeys", R"({"ret": 0, "num": 1, "k0": "a"})"),
                ElementsAre(HasSubstr("member \"k0\" is \"a\"")));
    EXPECT_THAT(findings(manager, "application_manager.GetOtherKeys", R"({"ret": 0, "num": 65537})"),
                testing::Contains("member \"num\" is 65537: expected at most 65536"));
    EXPECT_THAT(findings(manager, "application_manager.GetOtherKeys", R"({"ret": 0, "num": -1})"), ElementsAre());
    EXPECT_THAT(
        findings(manager, "application_manager.GetChildApps",
                 R"({"ret": 0, "appNum": 1, "appidArray": "1               ", "orgidArray": "2"})"),
        ElementsAre("member \"orgidArray\" is \"2\": expected 1 decimal numbers of 16 characters each, with spaces at "
                    "their ends"));
    const std::string set = "service_plugin_to_hbbtv_conf";
    EXPECT_THAT(findings(set, "configuration.GetRegionId", R"({"ret": 0, "reg_id": -1})"),
                ElementsAre("member \"reg_id\" is -1: expected an integer from 0 to 4294967295"));
    EXPECT_THAT(findings(set, "configuration.GetRatingAge", R"({"ret": 0, "age": 2147483648})"),
                ElementsAre(HasSubstr("member \"age\" is 2147483648")));
    EXPECT_THAT(findings(set, "configuration.GetSubtitleEnable", R"({"ret": 0, "enable": 1})"),
                ElementsAre("member \"enable\" is 1: expected true or false"));
    EXPECT_THAT(findings(set, "configuration.GetCountryId", R"({"ret": 0, "id": 1})"),
                ElementsAre("member \"id\" is 1: expected a string"));
}

TEST_F(Check, AcceptsAStatusWithoutMembersAndMembersThatTheLibraryIgnores) {
    FakePlatform system("service_plugin_to_hbbtv_local_system", R"({"ret": -1})");
    FakePlatform data("service_plugin_to_hbbtv_app_priv", R"({"ret": 0, "memSize": 1, "channel": "", "more": []})");
    const FinishedRun run = Ctl({"check", "platform", "local_system", "application_private_data"});
    EXPECT_EQ(run.output,
              "ok       application_private_data    2 asked, 0 wrong, 0 with a status other than 0, 0 not asked\n"
              "ok       local_system                9 asked, 0 wrong, 9 with a status other than 0, 0 not asked\n"
              "in all: 11 asked, 0 wrong, 9 with a status other than 0, 0 not asked\n");
    EXPECT_EQ(run.exit, 0);
}

TEST_F(Check, UsesTheHandlesOfEarlierAnswers) {
    FakePlatform config("service_plugin_to_hbbtv_vb_chn_config",
                        [](const Frame& request) -> std::optional<std::string> {
                            const bool list = request.payload.find("\"method\" : 3,") != std::string::npos;
                            return list ? R"({"ret": 0, "handle": "0x77"})" : R"({"ret": -1})";
                        });
    FakePlatform list("service_plugin_to_hbbtv_vb_chn_list", R"({"ret": 0, "len": 1, "channel": "0xabc"})");
    FakePlatform channel("service_plugin_to_hbbtv_vb_chn", R"({"ret": 0})");
    ASSERT_EQ(Ctl({"check", "platform", "channel"}).exit, 5);
    ASSERT_FALSE(list.Frames().empty());
    EXPECT_THAT(list.Frames()[0].payload, HasSubstr("\"cl_handle\" : \"0x77\""));
    ASSERT_FALSE(channel.Frames().empty());
    EXPECT_THAT(channel.Frames().back().payload, HasSubstr("\"c_handle\" : \"0xabc\""));
    for (const Frame& frame : channel.Frames()) {
        EXPECT_THAT(frame.payload, testing::Not(HasSubstr("\"method\" : 0,"))) << "Release";
        EXPECT_THAT(frame.payload, testing::Not(HasSubstr("\"method\" : 12,"))) << "SetName";
    }
}

TEST_F(Check, NamesOperationsThatAreNotAnsweredAndGivesUpAfterThree) {
    FakePlatform platform("service_plugin_to_hbbtv_local_system", [](const Frame&) { return std::nullopt; });
    const FinishedRun run = Ctl({"check", "platform", "local_system", "--timeout", "20ms", "--json"});
    EXPECT_EQ(run.exit, 4);
    const auto operations = Operations(run);
    for (const char* silent : {"local_system.GetDeviceID", "local_system.GetVendorName", "local_system.GetModelName"}) {
        EXPECT_THAT(FindingsOf(operations.at(silent)), ElementsAre(HasSubstr("no reply within 20 ms"))) << silent;
    }
    EXPECT_EQ(operations.at("local_system.GetFamilyName")["reason"].asString(), "the family does not reply");
    EXPECT_TRUE(platform.WaitForFrames(3));
    EXPECT_EQ(platform.Frames().size(), 3u);
    EXPECT_EQ(platform.Connections(), 3) << "a late reply is not taken for another";
}

TEST_F(Check, NamesAFamilyThatCannotBeReached) {
    const FinishedRun run = Ctl({"check", "platform", "capabilities"});
    EXPECT_EQ(run.exit, 3);
    EXPECT_EQ(run.output,
              "WRONG    capabilities                1 asked, 1 wrong, 0 with a status other than 0, 4 not asked\n"
              "           capabilities.GetXmlCapabilities: cannot connect to " +
                  mDirectory / "service_plugin_to_hbbtv_cap" +
                  ": no such socket; is the other side running with the same directory?\n"
                  "in all: 1 asked, 1 wrong, 0 with a status other than 0, 4 not asked\n");
}

// Answers the first request with these bytes, and then closes the connection.
FinishedRun CheckAgainst(const std::string& directory, const std::string& bytes) {
    RawListener listener(directory + "/service_plugin_to_hbbtv_local_system");
    CtlProcess ctl({"check", "platform", "local_system", "--timeout", "50ms", "--json"});
    {
        RawConnection connection = listener.Accept();
        connection.ReadFrame();
        connection.Write(bytes);
        if (!bytes.empty()) connection.ReadFrame();
    }
    const std::optional<int> exit = ctl.WaitForExit();
    return {exit, ctl.Output(), ""};
}

TEST_F(Check, ComparesTheHeader) {
    const auto first = [this](const std::string& bytes) {
        return FindingsOf(Operations(CheckAgainst(mDirectory.Path(), bytes)).at("local_system.GetDeviceID"));
    };
    const std::string reply = R"({"ret": 0, "deviceID": "a"})";
    const int port = 11;
    const std::string right = FrameBytes(kReply, port, reply);
    EXPECT_THAT(first(FrameBytes(kRequest, port, reply)), ElementsAre("the message has type 2: expected 3, a reply"));
    EXPECT_THAT(first(FrameBytes(kReply, 99, reply)),
                ElementsAre("the reply has port 99: expected " + std::to_string(port) + ", as the request"));
    EXPECT_THAT(first(right + FrameBytes(kReply, port, R"({"ret": 1})")),
                ElementsAre("another message follows the reply; it begins \"{\\\"ret\\\": 1}\""));
    EXPECT_THAT(first(std::string("\xff\xff\xff\x7f\3\0\0\0\0\0\0\0", 12)),
                ElementsAre(HasSubstr("the header of the reply announces 2147483647 bytes")));
    EXPECT_THAT(first(""), ElementsAre(HasSubstr("the other side closed the connection without a reply")));
}

TEST_F(Check, WritesAReportForTestTools) {
    FakePlatform platform("service_plugin_to_hbbtv_app_priv", R"({"ret": 0, "memSize": "<&", "channel": ""})");
    const std::string report = mDirectory / "report.xml";
    EXPECT_EQ(Ctl({"check", "platform", "application_private_data", "av_control", "--junit", report}).exit, 5);
    const std::string xml = ReadFile(report);
    EXPECT_THAT(xml,
                HasSubstr("<testsuite name=\"application_private_data\" tests=\"2\" failures=\"1\" skipped=\"0\" "));
    EXPECT_THAT(xml, HasSubstr("<testcase classname=\"application_private_data\" name=\"getFreeMem\" time=\"0."));
    EXPECT_THAT(
        xml, HasSubstr("<failure message=\"member &quot;memSize&quot; is &quot;&lt;&amp;&quot;: expected an integer "));
    EXPECT_THAT(xml, HasSubstr("<skipped message=\"it changes something (--allow-changes)\"/>"));
    EXPECT_THAT(xml, testing::EndsWith("</testsuites>\n"));
    const FinishedRun run = Ctl({"check", "platform", "av_control", "--junit", mDirectory / "none" + "/report.xml"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.errors, HasSubstr("report.xml: No such file or directory"));
}

}  // namespace

}  // namespace hbbtv::test
