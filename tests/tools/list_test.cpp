// hbbtvctl list: the interfaces, and the state of every socket of both sides.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include "ctl.h"

namespace hbbtv::test {

namespace {

struct Row {
    const char* family;
    const char* servedBy;
    int key;
    int port;
    const char* socket;
};

constexpr Row kRows[] = {
    {"application_manager", "platform", 13, 1, "service_plugin_to_hbbtv_apm"},
    {"application_private_data", "platform", 14, 17, "service_plugin_to_hbbtv_app_priv"},
    {"av_component", "platform", 15, 14, "service_plugin_to_hbbtv_av_com"},
    {"av_control", "platform", 16, 19, "service_plugin_to_hbbtv_av_ctrl"},
    {"capabilities", "platform", 17, 10, "service_plugin_to_hbbtv_cap"},
    {"configuration", "platform", 19, 12, "service_plugin_to_hbbtv_conf"},
    {"local_system", "platform", 20, 11, "service_plugin_to_hbbtv_local_system"},
    {"parental_control_manager", "platform", 24, 16, "service_plugin_to_hbbtv_pcm"},
    {"programme", "platform", 25, 13, "service_plugin_to_hbbtv_program"},
    {"search_manager", "platform", 27, 8, "service_plugin_to_hbbtv_sm"},
    {"video_broadcast", "platform", 28, 7, "service_plugin_to_hbbtv_vb"},
    {"channel", "platform", 30, 2, "service_plugin_to_hbbtv_vb_chn"},
    {"channel_config", "platform", 31, 3, "service_plugin_to_hbbtv_vb_chn_config"},
    {"channel_list", "platform", 32, 4, "service_plugin_to_hbbtv_vb_chn_list"},
    {"favourite_list", "platform", 33, 5, "service_plugin_to_hbbtv_vb_fav_list"},
    {"favourite_list_collection", "platform", 34, 6, "service_plugin_to_hbbtv_vb_fav_list_collect"},
    {"dsmcc", "platform", 57, 2, "service_dsmcc_to_hbbtv"},
    {"mtm", "platform", 59, 1, "service_mtm_to_hbbtv"},
    {"application_manager", "library", 35, 1, "service_hbbtv_to_plugin_apm"},
    {"av_control", "library", 38, 19, "service_hbbtv_to_plugin_av_ctrl"},
    {"configuration", "library", 41, 12, "service_hbbtv_to_plugin_conf"},
    {"search_manager", "library", 49, 8, "service_hbbtv_to_plugin_sm"},
    {"video_broadcast", "library", 50, 7, "service_hbbtv_to_plugin_vb"},
    {"channel_config", "library", 53, 3, "service_hbbtv_to_plugin_vb_chn_config"},
    {"dsmcc", "library", 58, 2, "service_hbbtv_to_dsmcc"},
    {"mtm", "library", 60, 1, "service_hbbtv_to_mtm"},
};

class List : public Alone {
  protected:
    Json::Value Endpoint(const std::string& socket) const {
        const Json::Value document = Document(Ctl({"list", "--json"}));
        for (const Json::Value& endpoint : document["endpoints"]) {
            if (endpoint["path"] == mDirectory / socket) return endpoint;
        }
        return {};
    }
};

TEST_F(List, ShowsTheEndpointsOfBothSidesInTheOrderOfTheirKeys) {
    const Json::Value document = Document(Ctl({"list", "--json"}));
    EXPECT_EQ(document["package"].asString(), "vantorel.hardware.hbbtv@1.0");
    EXPECT_EQ(document["directory"].asString(), mDirectory.Path());
    Json::ArrayIndex next = 0;
    for (const Row& row : kRows) {
        const Json::Value& endpoint = document["endpoints"][next++];
        EXPECT_EQ(endpoint["family"].asString(), row.family);
        EXPECT_EQ(endpoint["served_by"].asString(), row.servedBy) << row.socket;
        EXPECT_EQ(endpoint["key"].asInt(), row.key) << row.socket;
        EXPECT_EQ(endpoint["port"].asInt(), row.port) << row.socket;
        EXPECT_EQ(endpoint["path"].asString(), mDirectory / row.socket);
        EXPECT_EQ(endpoint["state"].asString(), "missing") << row.socket;
        EXPECT_EQ(endpoint["process"].asString(), "") << row.socket;
    }
    EXPECT_EQ(document["endpoints"].size(), next);
    ASSERT_EQ(document["interfaces"].size(), 18u);
    for (const Json::Value& interface : document["interfaces"]) EXPECT_FALSE(interface["registered"].asBool());
}

TEST_F(List, ShowsTheStateOfASocketFile) {
    const std::string name = "service_plugin_to_hbbtv_vb";
    EXPECT_EQ(Endpoint(name)["state"].asString(), "missing");
    WriteFile(mDirectory / name, "");
    EXPECT_EQ(Endpoint(name)["state"].asString(), "no socket");
    std::remove((mDirectory / name).c_str());
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready());
    EXPECT_EQ(Endpoint(name)["state"].asString(), "serving");
    EXPECT_EQ(Endpoint(name)["process"].asString(), "hbbtv-sim (" + std::to_string(platform.Pid()) + ")");
    platform.Kill();
    EXPECT_EQ(Endpoint(name)["state"].asString(), "stale");
    EXPECT_EQ(Endpoint(name)["process"].asString(), "");
}

TEST_F(List, ShowsWhatAPlatformThatHangsServesWithoutWaitingForIt) {
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready());
    platform.Signal(SIGSTOP);
    EXPECT_EQ(Endpoint("service_plugin_to_hbbtv_vb")["state"].asString(), "serving");
}

TEST_F(List, IsColouredAtATerminalUnlessNoColorIsSet) {
    const std::vector<std::string> atTerminal{"script", "-qec", std::string(HBBTVCTL_PROGRAM) + " list", "/dev/null"};
    EXPECT_NE(RunToEnd(atTerminal).output.find("\033[1mInterfaces of"), std::string::npos);
    const FinishedRun plain = RunToEnd(atTerminal, std::nullopt, {"NO_COLOR=1"});
    EXPECT_NE(plain.output.find("Interfaces of"), std::string::npos) << plain.Text();
    EXPECT_EQ(plain.output.find('\033'), std::string::npos) << plain.Text();
}

class ListOfTheSystem : public InFrontOfTheSystem {};

TEST_F(ListOfTheSystem, NamesTheProcessesForPeople) {
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens());
    const FinishedRun run = Ctl({"list"});
    EXPECT_EQ(run.exit, 0);
    EXPECT_EQ(run.errors, "");
    const std::string& text = run.output;
    EXPECT_NE(text.find("Interfaces of vantorel.hardware.hbbtv@1.0\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  IVideoBroadcast           registered\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("not registered"), std::string::npos) << text;
    const std::string platform = "serving  hbbtv-sim (" + std::to_string(mPlatform->Pid()) + ")\n";
    EXPECT_NE(text.find("service_plugin_to_hbbtv_vb_chn               " + platform), std::string::npos) << text;
    const std::string service =
        "serving  vantorel.hardware.hbbtv@1.0-service (" + std::to_string(mService->Pid()) + ")\n";
    EXPECT_NE(text.find("service_hbbtv_to_plugin_vb_chn_config  " + service), std::string::npos) << text;
    EXPECT_EQ(text.find('\033'), std::string::npos) << "no colors without a terminal";
}

}  // namespace

}  // namespace hbbtv::test
