// What sets single operations of the configuration adaptor apart from the rows of its table.

#include <android/log.h>
#include <gtest/gtest.h>

#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"
#include "lenient_readings.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "wire/endpoint.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmConfigurationAdaptorIpc;
using Ids = std::vector<int>;

class ConfigurationRequests : public ::testing::Test {
  protected:
    ~ConfigurationRequests() override { Adaptor::DeleteInstance(); }

    // The network ids of a reply; -1 alone when it is a failure.
    Ids NetworkIdsOf(const std::string& reply) {
        mPlatform.SetReply(reply);
        Ids ids;
        const int status = Adaptor::GetInstance()->GetDttNetworkIds(ids);
        if (status == 0) return ids;
        EXPECT_EQ(status, -1);
        EXPECT_EQ(ids, Ids{});
        return {-1};
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

// A reply with this number, and the members "k0" to "k<members - 1>" with their own numbers.
std::string Numbered(const std::string& num, int members) {
    std::string reply = "{\"ret\": 0, \"num\": " + num;
    for (int i = 0; i < members; ++i) reply += ", \"k" + std::to_string(i) + "\": " + std::to_string(i);
    return reply + "}";
}

}  // namespace

TEST_F(ConfigurationRequests, NetworkIdsAreAsManyAsTheirNumberSays) {
    EXPECT_EQ(NetworkIdsOf(Numbered("0", 3)), Ids{});
    EXPECT_EQ(NetworkIdsOf(Numbered("1", 3)), Ids{0});
    EXPECT_EQ(NetworkIdsOf(Numbered("3", 3)), (Ids{0, 1, 2}));
    const Ids hundred = NetworkIdsOf(Numbered("100", 100));
    ASSERT_EQ(hundred.size(), 100u);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(hundred[i], i);
}

TEST_F(ConfigurationRequests, NetworkIdsAreNoneWhenTheirNumberIsNotAboveZero) {
    for (const char* num : {"-1", "-2147483648", "null", "2147483648", "1e300", "\"3\"", "[3]", "{\"a\": 3}", "0.5"}) {
        EXPECT_EQ(NetworkIdsOf(Numbered(num, 3)), Ids{}) << num;
    }
    EXPECT_EQ(NetworkIdsOf("{\"ret\": 0, \"k0\": 12289}"), Ids{});
}

TEST_F(ConfigurationRequests, MissingNetworkIdsAreZero) {
    EXPECT_EQ(NetworkIdsOf("{\"ret\": 0, \"num\": 3, \"k1\": 12289, \"k3\": 5}"), (Ids{0, 12289, 0}));
}

TEST_F(ConfigurationRequests, NetworkIdsAreReadLeniently) {
    for (const Reading& reading : ReadingsOf("int", nullptr)) {
        SCOPED_TRACE(reading.json);
        EXPECT_EQ(NetworkIdsOf(WithMember("{\"ret\": 0, \"num\": 1}", "k0", reading.json)),
                  Ids{std::stoi(reading.shown)});
    }
}

TEST_F(ConfigurationRequests, NetworkIdsFromNumber100OnHaveTheNamesOfEarlierOnes) {
    const Ids ids = NetworkIdsOf(Numbered("1011", 1011));
    ASSERT_EQ(ids.size(), 1011u);
    EXPECT_EQ(ids[99], 99);
    EXPECT_EQ(ids[100], 10);
    EXPECT_EQ(ids[109], 10);
    EXPECT_EQ(ids[110], 11);
    EXPECT_EQ(ids[999], 99);
    EXPECT_EQ(ids[1000], 10);
    EXPECT_EQ(ids[1010], 10);
}

TEST_F(ConfigurationRequests, NetworkIdsAreRefusedWhenThereAreTooManyToBeTrue) {
    EXPECT_EQ(NetworkIdsOf("{\"ret\": 0, \"num\": 65536, \"k0\": 5}").size(), 65536u);
    for (const char* num : {"65537", "1000000", "2147483647"}) EXPECT_EQ(NetworkIdsOf(Numbered(num, 3)), Ids{-1});
}

TEST_F(ConfigurationRequests, TheTimeShiftModeIsReadAsAnUnsignedNumber) {
    const std::pair<const char*, int> modes[] = {
        {"3", 3}, {"-1", 0}, {"2147483647", 2147483647}, {"2147483648", -2147483647 - 1}, {"4294967295", -1},
    };
    for (const auto& [json, expected] : modes) {
        mPlatform.SetReply(std::string("{\"ret\": 0, \"timeshift_mode\": ") + json + "}");
        int mode = 7;
        EXPECT_EQ(Adaptor::GetInstance()->GetPreferredTimeShiftMode(mode), 0);
        EXPECT_EQ(mode, expected) << json;
    }
}

TEST_F(ConfigurationRequests, FunctionsThatNoEventCallsAreKeptInSilence) {
    Adaptor::GetInstance()->SetDeviceResolutionCallback([](unsigned, unsigned) { ADD_FAILURE(); });
    Adaptor::GetInstance()->SetDNTValueCallback([](int) { ADD_FAILURE(); });
    std::vector<std::string> lines;
    for (const LogLine& line : mLog.Lines()) {
        if (line.tag != "[ipc_configure]") continue;
        EXPECT_EQ(line.priority, ANDROID_LOG_VERBOSE);
        lines.push_back(line.function + " " + line.message);
    }
    EXPECT_EQ(lines, (std::vector<std::string>{"SetDeviceResolutionCallback ENTER", "SetDeviceResolutionCallback LEAVE",
                                               "SetDNTValueCallback ENTER", "SetDNTValueCallback LEAVE"}));
    EXPECT_EQ(mPlatform.Connections(), 0);
    RawConnection events = RawConnection::To(mDirectory / EventsOf(UnderTest().Wire()).socket);
    for (const char* event : {R"({"event": 0, "w": 1, "h": 2})", R"({"event": 9, "do_not_track_policy": 1})"}) {
        ASSERT_TRUE(events.Write(FrameBytes(kOneWay, 12, event)));
    }
    ASSERT_TRUE(events.Write(FrameBytes(kRequest, 12, "{}")));
    ASSERT_TRUE(events.ReadFrame().has_value());
}

}  // namespace hbbtv::test
