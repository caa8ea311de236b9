// Writing to a program that has ended fails the test; it does not end the process of the tests.

#include "child_process.h"

#include <gtest/gtest.h>
#include <signal.h>

namespace hbbtv::test {

namespace {

bool SigpipePending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

TEST(ChildProcess, ThatHasGoneTakesNoInput) {
    ChildProcess child({"true"});
    ASSERT_EQ(child.WaitForExit(), 0);
    EXPECT_FALSE(child.Write("text"));
    EXPECT_FALSE(SigpipePending());
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0) << "as it was before";
}

TEST(ChildProcess, ThatGoesDuringAWriteTakesNoMoreInput) {
    ChildProcess child({"head", "-c", "1"});
    EXPECT_FALSE(child.Write(std::string(1 << 20, 'x'))) << "more than a pipe holds";
    EXPECT_EQ(child.WaitForExit(), 0);
    EXPECT_EQ(child.Output(), "x");
}

TEST(ChildProcess, TakesMoreInputThanAPipeHolds) {
    ChildProcess child({"wc", "-c"});
    EXPECT_TRUE(child.Write(std::string(1 << 20, 'x')));
    child.CloseInput();
    EXPECT_EQ(child.WaitForExit(), 0);
    EXPECT_EQ(child.Output(), "1048576\n");
}

TEST(ChildProcess, LeavesASignalThatWasPendingBefore) {
    sigset_t sigpipe;
    sigset_t before;
    sigemptyset(&sigpipe);
    sigaddset(&sigpipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &sigpipe, &before);
    pthread_kill(pthread_self(), SIGPIPE);
    ChildProcess child({"true"});
    ASSERT_EQ(child.WaitForExit(), 0);
    EXPECT_FALSE(child.Write("text"));
    EXPECT_TRUE(SigpipePending());
    const timespec atOnce{};
    EXPECT_EQ(sigtimedwait(&sigpipe, nullptr, &atOnce), SIGPIPE);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

}  // namespace hbbtv::test
