// hbbtvctl bench: concurrency, duration and rate, and the output.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::MatchesRegex;

class Bench : public InFrontOfTheSystem {};

TEST_F(Bench, PrintsPercentilesInTheirOrder) {
    const Json::Value document = Document(
        Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "1s", "--concurrency", "2", "--json"}));
    EXPECT_EQ(document["method"].asString(), "IChannelConfig.GetCurrentChannel");
    EXPECT_EQ(document["concurrency"].asInt(), 2);
    EXPECT_LE(1000, document["duration_ms"].asInt());
    EXPECT_LT(10, document["calls"].asInt());
    EXPECT_EQ(document["failed"].asInt(), 0);
    const Json::Value& latency = document["latency_ns"];
    EXPECT_LT(0, latency["p50"].asInt64());
    EXPECT_LE(latency["p50"].asInt64(), latency["p90"].asInt64());
    EXPECT_LE(latency["p90"].asInt64(), latency["p99"].asInt64());
    EXPECT_LE(latency["p99"].asInt64(), latency["p99.9"].asInt64());
    EXPECT_LE(latency["p99.9"].asInt64(), latency["max"].asInt64());
}

TEST_F(Bench, KeepsTheRate) {
    const Json::Value document =
        Document(Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "500ms", "--rate", "40", "--json"}));
    EXPECT_EQ(document["calls"].asInt(), 20) << "one every 25 ms, the first immediately";
}

TEST_F(Bench, EndsWithItsDurationBetweenTwoCalls) {
    const Json::Value document = Document(Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "100ms",
                                               "--rate", "0.001", "--concurrency", "2", "--json"}));
    EXPECT_EQ(document["calls"].asInt(), 1) << "the second would be due after a quarter of an hour";
    EXPECT_LE(100, document["duration_ms"].asInt());
}

TEST_F(Bench, MakesAtLeastOneCall) {
    for (const std::vector<std::string>& rate : {std::vector<std::string>{}, {"--rate", "1000"}}) {
        std::vector<std::string> words{"bench", "IChannelConfig.GetCurrentChannel", "--duration", "0", "--json"};
        words.insert(words.end(), rate.begin(), rate.end());
        EXPECT_EQ(Document(Ctl(words))["calls"].asInt(), 1);
    }
}

TEST_F(Bench, PrintsPercentilesAndCountsFailedCalls) {
    const FinishedRun run = Ctl({"bench", "IChannel.GetName", "channel=0", "--duration", "50ms"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.output,
                MatchesRegex("IChannel.GetName, concurrency 1, [0-9]+\\.[0-9] s: ([0-9]+) calls, [0-9]+ per "
                             "second, [1-9][0-9]* failed\n"
                             "  p50 +[0-9.]+ ms\n  p90 +[0-9.]+ ms\n  p99 +[0-9.]+ ms\n"
                             "  p99\\.9 +[0-9.]+ ms\n  max +[0-9.]+ ms\n"));
}

TEST_F(Bench, CallsFromAsManyThreadsAsRequested) {
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
    EXPECT_EQ(bench.WaitForExit(), 4) << bench.Output();
}

TEST_F(Bench, PrintsWhatItHasMeasuredWhenItIsInterrupted) {
    mPlatform->Kill();
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "handle": "0x1"})");
    CtlProcess bench({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "1000s", "--concurrency", "3"});
    ASSERT_TRUE(platform.WaitForFrames(10));
    bench.Signal(SIGINT);
    EXPECT_EQ(bench.WaitForExit(), 130) << bench.Output();
    EXPECT_THAT(bench.Output(), testing::HasSubstr("IChannelConfig.GetCurrentChannel, concurrency 3, "));
    EXPECT_THAT(bench.Output(), testing::HasSubstr("\n  max "));
}

TEST_F(Bench, DoesNotWaitForTheNextCallWhenItIsInterrupted) {
    mPlatform->Kill();
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "handle": "0x1"})");
    CtlProcess bench({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "2000s", "--rate", "0.001"});
    ASSERT_TRUE(platform.WaitForFrames(1));
    bench.Signal(SIGINT);
    EXPECT_EQ(bench.WaitForExit(), 130) << bench.Output();
}

TEST_F(Bench, ExitsWithSixWhenTheServiceEnds) {
    mPlatform->Kill();
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "handle": "0x1"})");
    CtlProcess bench({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "1000s"});
    ASSERT_TRUE(platform.WaitForFrames(10));
    mService->Kill();
    EXPECT_EQ(bench.WaitForExit(), 6) << bench.Output();
}

}  // namespace

}  // namespace hbbtv::test
