// hbbtvctl listen beside a client that is registered, and the level of the service's log.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::Not;

class ListenBesideAClient : public InFrontOfTheSystem {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(InFrontOfTheSystem::SetUp());
        mClient = std::make_unique<Listener>(std::vector<std::string>{"channel_config"});
        ASSERT_TRUE(mClient->Listens());
    }

    static void Emit() { EXPECT_EQ(Ctl({"emit", "channel_config", "changed", "reserved=A", "--one-way"}).exit, 0); }

    std::unique_ptr<Listener> mClient;
};

TEST_F(ListenBesideAClient, NeedsTakeOverAndSaysWhoLosesItsEvents) {
    const FinishedRun refused = Ctl({"listen", "channel_config", "--for", "1ms"});
    EXPECT_EQ(refused.exit, 2);
    const std::string who =
        "IChannelConfig: process " + std::to_string(mClient->Pid()) + " is registered and loses its events";
    EXPECT_THAT(refused.errors,
                HasSubstr(who + "; use --passive to listen without registering, or --take-over to replace it\n"));
    Emit();
    EXPECT_TRUE(mClient->WaitForEvents(1)) << "the client is still registered";

    Listener next({"channel_config", "--take-over"});
    ASSERT_TRUE(next.Listens());
    EXPECT_THAT(next.Output(), HasSubstr(who + " until it registers again\n"));
    Emit();
    EXPECT_TRUE(next.WaitForEvents(1));
    EXPECT_EQ(mClient->Events().size(), 1u);
}

TEST_F(ListenBesideAClient, IsFreeForAFamilyThatKeepsItsClients) {
    Listener first({"configuration"});
    ASSERT_TRUE(first.Listens());
    Listener second({"configuration"});
    EXPECT_TRUE(second.Listens()) << second.Output();
}

TEST_F(ListenBesideAClient, PassivelyShowsTheMessagesAndLeavesThemToTheClient) {
    Listener passive({"--passive"});
    ASSERT_TRUE(passive.Listens());
    Emit();
    EXPECT_TRUE(mClient->WaitForEvents(1));
    ASSERT_TRUE(passive.WaitForEvents(1)) << passive.Output();
    const Json::Value event = passive.Events()[0];
    EXPECT_EQ(event["family"].asString(), "channel_config");
    EXPECT_EQ(event["event"].asString(), "changed");
    EXPECT_EQ(event["callback"].asString(), "OnChannelConfigEvent");
    EXPECT_EQ(event["form"].asString(), "one-way");
    EXPECT_EQ(event["message"]["reserved"].asString(), "A");
    EXPECT_EQ(Document(Ctl({"status", "channel_config", "--json"}))["families"][0]["clients"].size(), 1u);
}

TEST_F(ListenBesideAClient, PassivelyShowsTheFamiliesAndEventsThatAreNamed) {
    Listener others({"--passive", "video_broadcast"});
    Listener named({"--passive", "channel_config", "--event", "changed", "--count", "1"});
    ASSERT_TRUE(others.Listens());
    ASSERT_TRUE(named.Listens());
    EXPECT_EQ(Ctl({"emit", "channel_config", "--raw", "x", "--timeout", "1ms"}).exit, 0);
    Emit();
    EXPECT_EQ(named.WaitForExit(), 0);
    EXPECT_EQ(named.Events().size(), 1u);
    EXPECT_TRUE(others.Events().empty());
    const FinishedRun text = Ctl({"listen", "--passive", "--for", "1ms"});
    EXPECT_EQ(text.exit, 0) << text.Text();
}

TEST_F(ListenBesideAClient, CannotBePassiveAndTakeOver) {
    EXPECT_EQ(Ctl({"listen", "--passive", "--take-over"}).exit, 2);
    EXPECT_THAT(Ctl({"listen"}).errors, HasSubstr("FAMILY is required"));
}

class ListenToSomeEvents : public InFrontOfTheSystem {};

TEST_F(ListenToSomeEvents, ShowsAndCountsOnlyThese) {
    const std::string vb = NewVideoBroadcast();
    Listener listener({"video_broadcast", "--with", "vb=" + vb, "--event", "onPlayPositionChanged", "--count", "1"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    EXPECT_EQ(Ctl({"emit", "video_broadcast", "onPlaySpeedChanged", "speed=2", "--one-way"}).exit, 0);
    EXPECT_EQ(Ctl({"emit", "video_broadcast", "onPlayPositionChanged", "position=7", "--one-way"}).exit, 0);
    EXPECT_EQ(listener.WaitForExit(), 0);
    ASSERT_EQ(listener.Events().size(), 1u);
    EXPECT_EQ(listener.Events()[0]["method"].asString(), "onPlayPositionChanged");
    const FinishedRun unknown = Ctl({"listen", "video_broadcast", "--event", "onPlayPositionChange"});
    EXPECT_EQ(unknown.exit, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("did you mean \"onPlayPositionChanged\"?"));
}

class LogOfTheService : public InFrontOfTheSystem {};

// Each line has a time with milliseconds.
TEST_F(LogOfTheService, HasTheMessagesOfBothDirectionsOnceItsLevelIsDebug) {
    const std::string request = "send msg:{";
    ASSERT_EQ(Ctl({"call", "IChannelConfig.GetCurrentChannel"}).exit, 0);
    EXPECT_THAT(mService->Output(), Not(HasSubstr(request)));
    const FinishedRun debug = Ctl({"log", "debug"});
    EXPECT_EQ(debug.exit, 0) << debug.Text();
    EXPECT_EQ(debug.output, "log level: debug\n");
    ASSERT_EQ(Ctl({"call", "IChannelConfig.GetCurrentChannel"}).exit, 0);
    ASSERT_EQ(Ctl({"emit", "channel_config", "changed", "reserved=A", "--one-way"}).exit, 0);
    EXPECT_TRUE(mService->WaitForOutput("recv msg:{"));
    const std::string output = mService->Output();
    EXPECT_TRUE(std::regex_search(
        output,
        std::regex(
            "\\[ipc_base\\] D [0-9]{2}-[0-9]{2} [0-9:]{8}\\.[0-9]{3} +[0-9]+ +[0-9]+ \\[tolm\\]\\([a-z_.]+:[0-9]+\\) "
            "SendIpc: send msg:\\{\n")))
        << output;
    EXPECT_THAT(output, HasSubstr("\t\"method\" : 2,\n"));
    EXPECT_THAT(output, HasSubstr(" , out_msg:{\n"));
    EXPECT_EQ(Ctl({"log", "default"}).output, "log level: default\n");
    const size_t before = mService->Output().size();
    ASSERT_EQ(Ctl({"call", "IChannelConfig.GetCurrentChannel"}).exit, 0);
    EXPECT_EQ(mService->Output().find(request, before), std::string::npos);
}

TEST_F(LogOfTheService, HasKnownLevels) {
    const FinishedRun unknown = Ctl({"log", "debugs"});
    EXPECT_EQ(unknown.exit, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("unknown level \"debugs\"; did you mean \"debug\"?"));
}

}  // namespace

}  // namespace hbbtv::test
