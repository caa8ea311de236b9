// A program that ends before a test writes to it fails that test, and not the process that runs them all.

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
    ASSERT_EQ(0, child.WaitForExit());
    EXPECT_FALSE(child.Write("text"));
    EXPECT_FALSE(SigpipePending());
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(0, sigismember(&mask, SIGPIPE)) << "as it was before";
}

TEST(ChildProcess, ThatGoesDuringAWriteTakesNoMoreInput) {
    ChildProcess child({"head", "-c", "1"});
    EXPECT_FALSE(child.Write(std::string(1 << 20, 'x'))) << "more than a pipe holds";
    EXPECT_EQ(0, child.WaitForExit());
    EXPECT_EQ("x", child.Output());
}

TEST(ChildProcess, TakesMoreInputThanAPipeHolds) {
    ChildProcess child({"wc", "-c"});
    EXPECT_TRUE(child.Write(std::string(1 << 20, 'x')));
    child.CloseInput();
    EXPECT_EQ(0, child.WaitForExit());
    EXPECT_EQ("1048576\n", child.Output());
}

TEST(ChildProcess, LeavesASignalThatWasPendingBefore) {
    sigset_t sigpipe;
    sigset_t before;
    sigemptyset(&sigpipe);
    sigaddset(&sigpipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &sigpipe, &before);
    pthread_kill(pthread_self(), SIGPIPE);
    ChildProcess child({"true"});
    ASSERT_EQ(0, child.WaitForExit());
    EXPECT_FALSE(child.Write("text"));
    EXPECT_TRUE(SigpipePending());
    const timespec atOnce{};
    EXPECT_EQ(SIGPIPE, sigtimedwait(&sigpipe, nullptr, &atOnce));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

}  // namespace hbbtv::test
