// Implementations from libraries, and the wrapper of local objects.
#include <hidl/HidlPassthroughSupport.h>

#include "detour.h"
#include "fixtures.h"

namespace hbbtv::test {

namespace {

using ::android::hardware::details::wrapPassthrough;

class Passthrough : public ::testing::Test {
  protected:
    void SetUp() override { setenv("HIDL_HOST_PASSTHROUGH_PATH", "/nowhere:" HOST_TEST_IMPL_DIR, 1); }

    const ScratchDirectory mScratch;
};

}  // namespace

TEST_F(Passthrough, ImplementationsAreLoadedFromTheirLibrary) {
    const sp<IWorkshop> service = IWorkshop::getService("passthrough", true);
    ASSERT_NE(service, nullptr);
    EXPECT_FALSE(service->isRemote());
    EXPECT_EQ(Echo(service, "text"), "text");
    EXPECT_EQ(service->pid().withDefault(0), getpid());
}

TEST_F(Passthrough, LibrariesAreCalledByTheTypeOfTheirFunction) {
    const sp<IDetour> detour =
        ::android::hardware::details::getServiceInternal<BpDetour>("passthrough", true, true /* getStub */);
    ASSERT_NE(detour, nullptr);
    EXPECT_EQ(detour->weight, UINT64_MAX);
    EXPECT_TRUE(detour->ping().isOk());
}

TEST_F(Passthrough, MissingImplementationsAreNull) {
    EXPECT_EQ(IWorkshop::getService("another", true), nullptr);
    EXPECT_EQ(IListener::tryGetService("passthrough", true), nullptr);
    unsetenv("HIDL_HOST_PASSTHROUGH_PATH");
    EXPECT_EQ(IWorkshop::getService("passthrough", true), nullptr);
}

TEST_F(Passthrough, ImplementationsAreServedByAnOrdinaryMainProgram) {
    ChildProcess peer({HOST_TEST_PEER, "serve-passthrough", "passthrough"});
    const sp<IWorkshop> service = IWorkshop::getService("passthrough");
    EXPECT_EQ(service->pid().withDefault(0), peer.Pid());
    peer.Kill();
    ChildProcess failing({HOST_TEST_PEER, "serve-passthrough", "another"});
    EXPECT_NE(failing.WaitForExit().value_or(0), 0);
    EXPECT_NE(failing.Output().find("no passthrough implementation"), std::string::npos) << failing.Output();
}

TEST_F(Passthrough, WrappersForwardAndOnewayCallsReturnImmediately) {
    const sp<Workshop> workshop = new Workshop;
    const sp<IWorkbench> wrapped = wrapPassthrough<IWorkbench>(workshop);
    ASSERT_NE(wrapped, nullptr);
    EXPECT_NE(wrapped.get(), workshop.get());
    EXPECT_EQ(Echo(wrapped, "text"), "text");
    EXPECT_FALSE(wrapped->echo("text", nullptr).isOk());
    // Would never return if it ran on this thread.
    EXPECT_TRUE(wrapped->postSlowly(0).isOk());
    EXPECT_TRUE(wrapped->post(1).isOk());
    EXPECT_TRUE(WaitFor([&] { return Holding(workshop) == 1; }));
    EXPECT_EQ(Posted(workshop), CountUp(0));
    EXPECT_TRUE(workshop->letGo().isOk());
    EXPECT_TRUE(WaitFor([&] { return Posted(workshop).size() == 2; }));
    EXPECT_EQ(Posted(workshop), CountUp(2));
}

TEST_F(Passthrough, WrappersRefuseOnewayCallsAboveTheirLimit) {
    const sp<Workshop> workshop = new Workshop;
    const sp<IWorkbench> wrapped = wrapPassthrough<IWorkbench>(workshop);
    EXPECT_TRUE(wrapped->postSlowly(0).isOk());
    EXPECT_TRUE(WaitFor([&] { return Holding(workshop) == 1; }));
    for (uint32_t i = 1; i <= 3000; ++i) ASSERT_TRUE(wrapped->post(i).isOk());
    EXPECT_FALSE(wrapped->post(3001).isOk());
    EXPECT_TRUE(workshop->letGo().isOk());
    EXPECT_TRUE(WaitFor([&] { return Posted(workshop).size() == 3001; }));
}

TEST_F(Passthrough, WrappersOfCallbacksReachTheObject) {
    const sp<Workshop> workshop = new Workshop;
    const sp<IWorkbench> wrapped = wrapPassthrough<IWorkbench>(workshop);
    const sp<Listener> listener = new Listener;
    EXPECT_TRUE(wrapped->setListener(listener).withDefault(false));
    EXPECT_EQ(Ask(wrapped, "why"), "answer to why");
    EXPECT_EQ(workshop->emit(10).withDefault(0), 10u);
    EXPECT_TRUE(WaitFor([&] { return listener->Events().size() == 10; }));
    EXPECT_EQ(listener->Events(), CountUp(10));
}

}  // namespace hbbtv::test
