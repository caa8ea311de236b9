// hbbtvctl describe: documentation from the .hal files and protocol/.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Describe : public Alone {
  protected:
    static std::string Of(const std::string& name) {
        const FinishedRun run = Ctl({"describe", name});
        EXPECT_EQ(run.exit, 0) << run.Text();
        EXPECT_EQ(run.errors, "");
        return run.output;
    }
};

TEST_F(Describe, AMethodWithItsTypesItsDocumentationItsWireFormAndEnumerators) {
    const std::string text = Of("IVideoBroadcast.GetAVComponentNumByType");
    EXPECT_THAT(text,
                StartsWith("IVideoBroadcast.GetAVComponentNumByType(int64_t vb, TolmHbbtvAVComponentType type)\n"));
    EXPECT_THAT(text, HasSubstr("        -> (int32_t status, uint32_t num)\n"));
    EXPECT_THAT(text, HasSubstr("    Returns the number of the channel's components of a kind.\n"));
    EXPECT_THAT(text, HasSubstr("Wire request, type 3, method 39, to service_plugin_to_hbbtv_vb, port 7\n"));
    EXPECT_THAT(text, HasSubstr("    vb_handle (pointer)\n"));
    EXPECT_THAT(text, HasSubstr("    comType (int): 0 video, 1 audio, 2 subtitle (OIPF Release 2 Volume 5)\n"));
    EXPECT_THAT(text, HasSubstr("    ret (int): 0 for success\n    num (uint)\n"));
    EXPECT_THAT(text, HasSubstr("\nTolmHbbtvAVComponentType\n"));
    EXPECT_THAT(text, HasSubstr("    0  VIDEO\n    1  AUDIO\n    2  SUBTITLE\n"));
}

TEST_F(Describe, AMethodWhoseOperationHasAnotherName) {
    EXPECT_THAT(Of("IDsmcc.OnRequestFile"),
                HasSubstr("Wire one-way, type 20, method 0, to service_dsmcc_to_hbbtv, port 2\n"));
    EXPECT_THAT(Of("IApplicationManager.Show"),
                HasSubstr("Wire one-way, t 210, to service_plugin_to_hbbtv_apm, port 1\n"));
}

TEST_F(Describe, AnInterfaceAClientsInterfaceAStructAFamilyAndAnOperation) {
    EXPECT_THAT(Of("IChannel"), HasSubstr("  GetOnid(int64_t channel) -> (int32_t status, int32_t onid)\n"));
    EXPECT_THAT(Of("IVideoBroadcastCallback"),
                StartsWith("vantorel.hardware.hbbtv@1.0::IVideoBroadcastCallback, implemented by clients\n"));
    EXPECT_THAT(Of("TolmRect"), HasSubstr("    int32_t  x\n    int32_t  y\n    int32_t  width\n    int32_t  height\n"));
    const std::string family = Of("channel_config");
    EXPECT_THAT(
        family,
        HasSubstr("  requests  key 31, port 3, service_plugin_to_hbbtv_vb_chn_config, served by the platform\n"
                  "  events    key 53, port 3, service_hbbtv_to_plugin_vb_chn_config, served by the library\n"));
    EXPECT_THAT(
        family,
        HasSubstr("  2  GetCurrentChannel           request  Returns the channel that the television presents.\n"));
    EXPECT_THAT(family, HasSubstr("  0  changed  one-way  OnChannelConfigEvent  reserved\n"));
    EXPECT_THAT(Of("channel_config.CreateChannelList"),
                HasSubstr("    channel%d (pointer), %d from 0 to \"size\" - 1: a channel\n"));
}

TEST_F(Describe, TheSameAsJson) {
    const auto json = [](const std::string& name) { return Document(Ctl({"describe", name, "--json"})); };
    const Json::Value method = json("IDsmcc.OnRequestFile");
    EXPECT_EQ(method["interface"], "IDsmcc");
    EXPECT_EQ(method["method"]["name"], "OnRequestFile");
    EXPECT_EQ(method["wire"]["operation"]["form"], "one-way");
    EXPECT_EQ(method["wire"]["endpoint"]["socket"], "service_dsmcc_to_hbbtv");
    EXPECT_FALSE(json("IMtmCallback.CreateApp").isMember("wire")) << "a method of clients";
    EXPECT_EQ(json("channel.GetOnid")["operation"]["code"], 5);
    EXPECT_EQ(json("channel")["operations"][0]["name"], "Release");
    EXPECT_EQ(json("TolmRect")["fields"][3]["name"], "height");
    const Json::Value interface = json("IVideoBroadcastCallback");
    EXPECT_TRUE(interface["callback"].asBool());
    EXPECT_FALSE(interface["methods"].empty());
}

TEST_F(Describe, EverythingInLinesThatFitIntoATerminal) {
    std::vector<std::string> names = FamiliesOfProtocolFiles();
    const Json::Value list = Document(Ctl({"list", "--json"}));
    for (const Json::Value& interface : list["interfaces"]) names.push_back(interface["name"].asString());
    ASSERT_LT(10u, names.size());
    for (const std::string& name : names) {
        std::istringstream lines(Of(name));
        for (std::string line; std::getline(lines, line);) {
            // A long word is not broken.
            EXPECT_GE(130u, line.size()) << name << ": " << line;
        }
    }
}

TEST_F(Describe, ProseInLinesAsLongAsTheTerminals) {
    const std::string text = Of("IMtm");
    EXPECT_THAT(text, HasSubstr("    The notifications of the browser about its tabs, and the registration for the "
                                "platform's\n    commands.\n\n"))
        << "not broken where the .hal file breaks lines";
    const std::string command = "stty cols 50; " + std::string(HBBTVCTL_PROGRAM) + " describe IMtm";
    const FinishedRun narrow = RunToEnd({"script", "-qec", command, "/dev/null"}, std::nullopt, {"NO_COLOR=1"});
    EXPECT_THAT(narrow.output, HasSubstr("    The notifications of the browser about its\r\n    tabs, and the "
                                         "registration for the platform's\r\n    commands.\r\n"));
    std::istringstream lines(narrow.output);
    for (std::string line; std::getline(lines, line);) EXPECT_GE(51u, line.size()) << line;
    EXPECT_THAT(Of("IVideoBroadcast.SetChannel"),
                HasSubstr("\n    @param channel   the channel; 0 ends presentation\n"));
}

}  // namespace

}  // namespace hbbtv::test
