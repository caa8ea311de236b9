// hbbtvctl status: what the service answers, and errors.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::Not;

class StatusCommand : public InFrontOfTheSystem {};

TEST_F(StatusCommand, ShowsAllFamiliesOrThoseThatAreNamed) {
    const FinishedRun all = Ctl({"status"});
    EXPECT_EQ(all.exit, 0) << all.Text();
    EXPECT_THAT(all.output, HasSubstr("\nIMtm\n"));
    EXPECT_EQ(Document(Ctl({"status", "--json"}))["families"].size(), FamiliesOfProtocolFiles().size());
    const FinishedRun two = Ctl({"status", "mtm", "IChannel"});
    EXPECT_THAT(two.output, HasSubstr("\nIMtm\n"));
    EXPECT_THAT(two.output, HasSubstr("\nIChannel\n"));
    EXPECT_THAT(two.output, Not(HasSubstr("IVideoBroadcast")));
}

TEST_F(StatusCommand, ShowsThePlatformAndTheListener) {
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens());
    const Json::Value family = Document(Ctl({"status", "channel_config", "--json"}))["families"][0];
    EXPECT_EQ(family["requests"]["connected_to"].asInt(), mPlatform->Pid());
    ASSERT_EQ(family["clients"].size(), 1u);
    EXPECT_EQ(family["clients"][0].asInt(), listener.Pid());
}

TEST_F(StatusCommand, GivesUpAServiceThatHangs) {
    mService->Signal(SIGSTOP);
    const FinishedRun run = Ctl({"status", "--timeout", "200ms"});
    EXPECT_EQ(run.exit, 4) << run.Text();
    mService->Signal(SIGCONT);
}

TEST(StatusCommandAlone, NeedsAServiceAndAKnownFamily) {
    const ScratchDirectory directory;
    const FinishedRun none = Ctl({"status"});
    EXPECT_EQ(none.exit, 3);
    EXPECT_THAT(none.errors, HasSubstr("no process has registered vantorel.hardware.hbbtv@1.0::"));
    const FinishedRun unknown = Ctl({"status", "chanel"});
    EXPECT_EQ(unknown.exit, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("did you mean \"channel\"?"));
}

}  // namespace

}  // namespace hbbtv::test
