// What a platform replies reaches a client's process through the service as it is: statuses, strings, bytes, lists,
// and numbers of every size.

#include <gtest/gtest.h>

#include <map>

#include "common/text/json.h"
#include "finished_run.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

struct Answer {
    const char* socket;
    const char* reply;
    std::vector<std::string> call;
    const char* results;  // null: the request is one-way
};

const Answer kAnswers[] = {
    {"vb_chn",
     R"({"ret": 0, "name": "K\u00f6ln \"1\""})",
     {"IChannel.GetName", "1"},
     R"({"name": "K\u00f6ln \"1\"", "status": 0})"},
    {"vb_chn_list",
     R"({"ret": 0, "channel": "0xf0000001"})",
     {"IChannelList.GetChannelByTriplet", "1", "2", "3", "4", "5"},
     R"({"channel": 4026531841, "status": 0})"},
    {"vb_chn_config",
     R"({"ret": 0, "list": "0xf0000002"})",
     {"IChannelConfig.CreateChannelList", "1,2"},
     R"({"list": 4026531842, "status": 0})"},
    {"vb_fav_list",
     R"({"ret": 0, "favId": "fav:1"})",
     {"IFavouriteList.GetFavID", "1"},
     R"({"favId": "fav:1", "status": 0})"},
    {"vb_fav_list_collect",
     R"({"ret": 0, "len": 3})",
     {"IFavouriteListCollection.GetLength", "1"},
     R"({"length": 3, "status": 0})"},
    {"apm",
     R"({"ret": 0, "num": 2, "k0": 415, "k1": 19})",
     {"IApplicationManager.GetOtherKeys", "1", "2"},
     R"({"keys": [415, 19], "status": 0})"},
    {"apm",
     R"({"ret": 0, "appNum": 1, "appidArray": "501", "orgidArray": "19"})",
     {"IApplicationManager.GetChildApps", "1", "2"},
     R"({"appIds": [501], "orgIds": [19], "status": 0})"},
    {"apm", "", {"IApplicationManager.SetValue", "1", "2", "3", "415,19"}, nullptr},
    {"mtm", R"({"ret": 6})", {"IMtm.OnTabLoadFailed", "1", "u", "404", "not there"}, R"({"status": 6})"},
    {"program",
     R"({"ret": 0, "out_name": "K\u00f6ln"})",
     {"IProgramme.GetName", "1"},
     R"({"name": "K\u00f6ln", "status": 0})"},
    {"program",
     R"({"ret": 0, "length": 4, "k0": 77, "k1": 0, "k2": 195, "k3": 191})",
     {"IProgramme.GetSIDescriptorByIndex", "1", "0"},
     R"({"descriptor": "M\u0000\u00c3\u00bf", "status": 0})"},
    {"program", "", {"IProgramme.Release", "1"}, nullptr},
    {"av_com",
     R"({"ret": 0, "aspect_ratio": 1.78})",
     {"IAVComponent.GetAspectRatio", "1"},
     R"({"aspectRatio": 1.78, "status": 0})"},
    {"av_com", R"({"ret": 0, "type": 2})", {"IAVComponent.GetType", "1"}, R"({"status": 0, "type": "SUBTITLE"})"},
    {"conf",
     R"({"ret": 0, "num": 2, "k0": 12289, "k1": -1})",
     {"IConfiguration.GetDttNetworkIds"},
     R"({"networkIds": [12289, -1], "status": 0})"},
    {"conf",
     R"({"ret": 0, "serial": "K\u00f6ln", "product": "tv", "request_time": ""})",
     {"IConfiguration.GetDeviceIdContent"},
     R"({"product": "tv", "requestTime": "", "serial": "K\u00f6ln", "status": 0})"},
    {"cap",
     R"({"ret": 0, "terminalCap": "+DVB_S"})",
     {"ICapabilities.GetTerminalCapability"},
     R"({"cap": "+DVB_S", "status": 0})"},
    {"local_system",
     R"({"ret": 0, "vendorName": "K\u00f6ln"})",
     {"ILocalSystem.GetVendorName"},
     R"({"status": 0, "vendorName": "K\u00f6ln"})"},
    {"app_priv",
     R"({"ret": 0, "channel": "0xf0000001"})",
     {"IApplicationPrivatedata.GetCurrentChannel"},
     R"({"channel": 4026531841, "status": 0})"},
    {"pcm",
     R"({"ret": 0, "parentRating": 12, "countryCode": "DEU"})",
     {"IParentalControlManager.GetLocalParentalRating"},
     R"({"countryCode": "DEU", "rating": 12, "status": 0})"},
};

}  // namespace

TEST(Answers, CrossProcessesUnchanged) {
    const ScratchDirectory directory;
    std::map<std::string, FakePlatform> platforms;
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr) << service.Output();
    for (const Answer& answer : kAnswers) {
        SCOPED_TRACE(answer.call[0]);
        const std::string name = answer.socket;
        const std::string socket = name == "mtm" ? "service_mtm_to_hbbtv" : "service_plugin_to_hbbtv_" + name;
        FakePlatform& platform = platforms.try_emplace(name, socket, "").first->second;
        platform.SetReply(answer.reply);
        platform.ForgetFrames();
        std::vector<std::string> command{HBBTVCTL_PROGRAM, "call", "--json"};
        command.insert(command.end(), answer.call.begin(), answer.call.end());
        const FinishedRun run = RunToEnd(command);
        ASSERT_TRUE(platform.WaitForFrames(1)) << run.Text();
        EXPECT_EQ(platform.Frames()[0].type, answer.results != nullptr ? kRequest : kOneWay);
        const char* const results = answer.results != nullptr ? answer.results : R"({"status": 0})";
        EXPECT_EQ(WriteJson(ParseJson(run.output)["results"]), WriteJson(ParseJson(results)));
    }
}

}  // namespace hbbtv::test
