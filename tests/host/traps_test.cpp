// Errors that end the process: an unchecked failure, a method that does not answer exactly once, and wrong use of the
// thread pool. These tests start a new process, so no session is shared with a child.
#include <hidl/LegacySupport.h>

#include "fixtures.h"

namespace hbbtv::test {

namespace {

class Traps : public ::testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

using TrapsDeathTest = Traps;

Return<void> Failed() {
    return Status::fromStatusT(::android::DEAD_OBJECT);
}
Return<int32_t> FailedNumber() {
    return Status::fromExceptionCode(Status::EX_ILLEGAL_ARGUMENT, "text");
}

}  // namespace

TEST_F(TrapsDeathTest, AnUncheckedFailedReturnEndsTheProcess) {
    EXPECT_DEATH(Failed(), "not checked");
    EXPECT_DEATH(
        {
            Return<void> kept = Failed();
            kept = Void();
        },
        "not checked");
    EXPECT_DEATH(FailedNumber().isDeadObject(), "not checked");
    EXPECT_DEATH(Failed().assertOk(), "DEAD_OBJECT");
}

TEST_F(TrapsDeathTest, TheValueOfAFailedReturnEndsTheProcess) {
    EXPECT_DEATH([[maybe_unused]] const int32_t number = FailedNumber(), "EX_ILLEGAL_ARGUMENT");
}

TEST_F(TrapsDeathTest, ACheckedFailedReturnIsHarmless) {
    EXPECT_FALSE(Failed().isOk());
    EXPECT_TRUE(Failed().isDeadObject());
    EXPECT_EQ(FailedNumber().withDefault(5), 5);
    Return<void> moved = Failed();
    Return<void> target = std::move(moved);
    EXPECT_FALSE(target.isOk());
    target = Void();
}

TEST_F(TrapsDeathTest, ASuccessfulReturnNeedNoCheckUnlessTheProcessRequiresIt) {
    Void();
    ::android::hardware::setProcessHidlReturnRestriction(::android::hardware::HidlReturnRestriction::NONE);
    Void();
    EXPECT_DEATH(
        {
            setProcessHidlReturnRestriction(::android::hardware::HidlReturnRestriction::FATAL_IF_UNCHECKED);
            Void();
        },
        "not checked");
}

TEST_F(TrapsDeathTest, AServiceThatDoesNotAnswerIsEnded) {
    const ScratchDirectory scratch;
    Peer peer({"serve", "default"});
    const sp<IWorkshop> service = IWorkshop::getService();
    EXPECT_TRUE(service->misbehave(Misdeed::NO_ANSWER, [](const auto&) {}).isDeadObject());
    EXPECT_EQ(peer.WaitForExit(), -SIGABRT);
    EXPECT_NE(peer.Output().find("_hidl_cb not called"), std::string::npos) << peer.Output();
}

TEST_F(TrapsDeathTest, AServiceThatAnswersTwiceIsEnded) {
    const ScratchDirectory scratch;
    Peer peer({"serve", "default"});
    const sp<IWorkshop> service = IWorkshop::getService();
    std::string answer;
    const Return<void> called = service->misbehave(Misdeed::TWO_ANSWERS, [&](const auto& reply) { answer = reply; });
    // The first answer was sent immediately.
    EXPECT_TRUE(called.isOk());
    EXPECT_EQ(answer, "one");
    EXPECT_EQ(peer.WaitForExit(), -SIGABRT);
    EXPECT_NE(peer.Output().find("called a second time"), std::string::npos) << peer.Output();
}

TEST_F(TrapsDeathTest, JoiningAPoolThatWasNotConfiguredEndsTheProcess) {
    EXPECT_DEATH(::android::hardware::joinRpcThreadpool(), "configureRpcThreadpool");
}

TEST_F(TrapsDeathTest, APoolWithoutThreadsThatTheCallerJoinsEndsTheProcess) {
    EXPECT_DEATH(::android::hardware::configureRpcThreadpool(0, true), "at least one thread");
}

}  // namespace hbbtv::test
