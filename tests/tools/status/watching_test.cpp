// Commands that register beside a client that is registered, and the level of the service's log.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <utility>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::Not;

class BesideAClient : public InFrontOfTheSystem {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(InFrontOfTheSystem::SetUp());
        mClient = std::make_unique<Listener>(std::vector<std::string>{"channel_config"});
        ASSERT_TRUE(mClient->Listens());
    }

    std::string WhoLosesItsEvents() const {
        return "IChannelConfig: process " + std::to_string(mClient->Pid()) + " is registered and loses its events";
    }

    void ExpectRefused(const FinishedRun& run) const {
        EXPECT_EQ(run.exit, 2) << run.Text();
        EXPECT_THAT(run.errors, HasSubstr(WhoLosesItsEvents() + "; use --take-over to replace it, or `hbbtvctl listen "
                                                                "--passive` to see its events without registering\n"));
        EXPECT_EQ(run.output, "");
        Emit();
        EXPECT_TRUE(mClient->WaitForEvents(1)) << "the client is still registered";
    }

    void ExpectReplaced(const std::string& output) const {
        EXPECT_THAT(output, HasSubstr(WhoLosesItsEvents() + " until it registers again\n"));
        EXPECT_EQ(mClient->Events().size(), 1u);
    }

    static void Emit() { EXPECT_EQ(Ctl({"emit", "channel_config", "changed", "reserved=A", "--one-way"}).exit, 0); }

    std::unique_ptr<Listener> mClient;
};

TEST_F(BesideAClient, ListenNeedsTakeOverAndSaysWhoLosesItsEvents) {
    ExpectRefused(Ctl({"listen", "channel_config", "--for", "1ms"}));
    Listener next({"channel_config", "--take-over"});
    ASSERT_TRUE(next.Listens());
    Emit();
    EXPECT_TRUE(next.WaitForEvents(1));
    ExpectReplaced(next.Output());
}

TEST_F(BesideAClient, CallNeedsTakeOverToRegister) {
    const std::vector<std::string> call{"call", "IChannelConfig.RegisterCallback", "@listen", "5", "--count", "1"};
    ExpectRefused(Ctl(call));
    std::vector<std::string> takeOver = call;
    takeOver.push_back("--take-over");
    CtlProcess next(takeOver);
    ASSERT_TRUE(next.WaitForOutput("status  0\n")) << next.Output();
    Emit();
    EXPECT_EQ(next.WaitForExit(), 0);
    ExpectReplaced(next.Output());
}

TEST_F(BesideAClient, CallAndPlayDoNotAskForWhatReplacesNobody) {
    Listener other({"configuration"});
    ASSERT_TRUE(other.Listens()) << other.Output();
    for (const char* method : {"IConfiguration.RegisterCallback", "IDsmcc.RegisterCallback"}) {
        EXPECT_EQ(Ctl({"call", method, "@listen", "--for", "1ms"}).errors, "") << method;
    }
    // Its own registration, too.
    WriteFile(mDirectory / "own.play", "IDsmcc.RegisterCallback(@listen)\nIDsmcc.RegisterCallback(@listen)\n");
    const FinishedRun play = Ctl({"play", mDirectory / "own.play"});
    EXPECT_EQ(play.exit, 0) << play.Text();
}

TEST_F(BesideAClient, PlayNeedsTakeOverToRegisterAndEndsItsObjectsOtherwise) {
    WriteFile(mDirectory / "a.play", R"(IVideoBroadcast.Create(7) -> 0, $vb
IChannelConfig.RegisterCallback(@listen, 5)
tell zap 2
finally
IVideoBroadcast.Destroy($vb)
print "destroyed"
)");
    FinishedRun refused = Ctl({"play", mDirectory / "a.play"});
    EXPECT_EQ(std::exchange(refused.output, ""), "destroyed\n");
    EXPECT_THAT(refused.errors, HasSubstr("a.play:2: IChannelConfig.RegisterCallback(@listen, 5)\n"));
    ExpectRefused(refused);
    const FinishedRun replaced = Ctl({"play", mDirectory / "a.play", "--take-over"});
    EXPECT_EQ(replaced.exit, 0) << replaced.Text();
    ExpectReplaced(replaced.errors);
}

TEST_F(BesideAClient, ListenIsFreeForAFamilyThatKeepsItsClients) {
    Listener first({"configuration"});
    ASSERT_TRUE(first.Listens());
    Listener second({"configuration"});
    EXPECT_TRUE(second.Listens()) << second.Output();
}

TEST_F(BesideAClient, ListenPassivelyShowsTheMessagesAndLeavesThemToTheClient) {
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

TEST_F(BesideAClient, ListenPassivelyShowsTheFamiliesAndEventsThatAreNamed) {
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

TEST_F(BesideAClient, ListenCannotBePassiveAndTakeOver) {
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
