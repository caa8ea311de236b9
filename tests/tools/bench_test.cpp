// hbbtvctl bench: as many calls at once, as long and as often as was asked for, and what is told of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::MatchesRegex;

class Bench : public InFrontOfTheSystem {};

TEST_F(Bench, GivesPercentilesInTheirOrder) {
    const Json::Value document = Document(
        Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "1s", "--concurrency", "2", "--json"}));
    EXPECT_EQ("IChannelConfig.GetCurrentChannel", document["method"].asString());
    EXPECT_EQ(2, document["concurrency"].asInt());
    EXPECT_LE(1000, document["duration_ms"].asInt());
    EXPECT_LT(10, document["calls"].asInt());
    EXPECT_EQ(0, document["failed"].asInt());
    const Json::Value& latency = document["latency_ns"];
    EXPECT_LT(0, latency["p50"].asInt64());
    EXPECT_LE(latency["p50"].asInt64(), latency["p90"].asInt64());
    EXPECT_LE(latency["p90"].asInt64(), latency["p99"].asInt64());
    EXPECT_LE(latency["p99"].asInt64(), latency["p99.9"].asInt64());
    EXPECT_LE(latency["p99.9"].asInt64(), latency["max"].asInt64());
}

TEST_F(Bench, KeepsToItsRate) {
    const Json::Value document =
        Document(Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "500ms", "--rate", "40", "--json"}));
    EXPECT_EQ(20, document["calls"].asInt()) << "one each 25 ms, the first at once";
}

TEST_F(Bench, EndsWithItsDurationBetweenTwoCalls) {
    const Json::Value document = Document(Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "100ms",
                                               "--rate", "0.001", "--concurrency", "2", "--json"}));
    EXPECT_EQ(1, document["calls"].asInt()) << "the second would be due after a quarter of an hour";
    EXPECT_LE(100, document["duration_ms"].asInt());
}

TEST_F(Bench, MakesOneCallInAnyCase) {
    for (const std::vector<std::string>& rate : {std::vector<std::string>{}, {"--rate", "1000"}}) {
        std::vector<std::string> words{"bench", "IChannelConfig.GetCurrentChannel", "--duration", "0", "--json"};
        words.insert(words.end(), rate.begin(), rate.end());
        EXPECT_EQ(1, Document(Ctl(words))["calls"].asInt());
    }
}

TEST_F(Bench, TellsPeopleAndCountsWhatFailed) {
    const FinishedRun run = Ctl({"bench", "IChannel.GetName", "channel=0", "--duration", "50ms"});
    EXPECT_EQ(1, run.exit);
    EXPECT_THAT(run.output, MatchesRegex("IChannel.GetName, 1 at once, [0-9]+\\.[0-9] s: ([0-9]+) calls, [0-9]+ per "
                                         "second, [1-9][0-9]* with a status other than 0\n"
                                         "  p50 +[0-9.]+ ms\n  p90 +[0-9.]+ ms\n  p99 +[0-9.]+ ms\n"
                                         "  p99\\.9 +[0-9.]+ ms\n  max +[0-9.]+ ms\n"));
}

TEST_F(Bench, CallsFromSoManyThreads) {
    mPlatform->Signal(SIGSTOP);
    CtlProcess bench(
        {"bench", "IChannelConfig.GetCurrentChannel", "--concurrency", "12", "--duration", "1s", "--timeout", "4s"});
    EXPECT_TRUE(WaitFor([&] {
        std::ifstream status("/proc/" + std::to_string(bench.Pid()) + "/status");
        int threads = 0;
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("Threads:", 0) == 0) threads = std::stoi(line.substr(8));
        }
        return threads > 12;
    }));
    EXPECT_EQ(4, bench.WaitForExit()) << bench.Output();
}

TEST_F(Bench, EndsWithSixWhenTheServiceGoes) {
    mPlatform->Kill();
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "handle": "0x1"})");
    CtlProcess bench({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "1000s"});
    ASSERT_TRUE(platform.WaitForFrames(10));
    mService->Kill();
    EXPECT_EQ(6, bench.WaitForExit()) << bench.Output();
}

}  // namespace

}  // namespace hbbtv::test
