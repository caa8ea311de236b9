// The death of a process and its effects on others.
#include <hidl/HidlPassthroughSupport.h>

#include "fixtures.h"

namespace hbbtv::test {

namespace {

using DeathNotices = WithService;
using PendingCalls = WithService;

// A workshop of this process, served by one thread, and its clients in other processes.
class DeathOfClients : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(mOwn->registerAsService("own"), ::android::OK); }

    const ScratchDirectory mScratch;
    const sp<Workshop> mOwn = new Workshop;
};

}  // namespace

TEST(DeathNoticesAtHome, AreAcceptedAndNeverDelivered) {
    const sp<Workshop> local = new Workshop;
    const sp<Recipient> recipient = new Recipient;
    EXPECT_TRUE(local->linkToDeath(recipient, 1).withDefault(false));
    EXPECT_TRUE(local->unlinkToDeath(recipient).withDefault(false));
    EXPECT_FALSE(local->linkToDeath(nullptr, 1).withDefault(true));
    const sp<IWorkbench> wrapped = ::android::hardware::details::wrapPassthrough<IWorkbench>(local);
    EXPECT_TRUE(wrapped->linkToDeath(recipient, 1).withDefault(false));
    EXPECT_FALSE(wrapped->unlinkToDeath(nullptr).withDefault(true));
    EXPECT_EQ(recipient->Notices(), 0u);
}

TEST_F(DeathNotices, ReachTheRecipientWhenTheServerIsKilled) {
    sp<IBase> promoted;
    const sp<Recipient> recipient = new Recipient([&](const wp<IBase>& who) { promoted = who.promote(); });
    EXPECT_TRUE(mService->linkToDeath(recipient, 0xfedcba9876543210).withDefault(false));
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 1; }));
    EXPECT_EQ(recipient->Cookies(), std::vector<uint64_t>{0xfedcba9876543210});
    EXPECT_EQ(promoted, mService);
    EXPECT_NE(recipient->Thread(), std::this_thread::get_id());
}

TEST_F(DeathNotices, AreDeliveredOncePerLink) {
    const sp<Recipient> recipient = new Recipient;
    const sp<IWorkshop> again = IWorkshop::getService();
    EXPECT_TRUE(mService->linkToDeath(recipient, 1).withDefault(false));
    EXPECT_TRUE(mService->linkToDeath(recipient, 2).withDefault(false));
    EXPECT_TRUE(again->linkToDeath(recipient, 3).withDefault(false));
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 3; }));
    std::vector<uint64_t> cookies = recipient->Cookies();
    std::sort(cookies.begin(), cookies.end());
    EXPECT_EQ(cookies, (std::vector<uint64_t>{1, 2, 3}));
}

TEST_F(DeathNotices, CanOnlyBeUnlinkedOnTheLinkedProxy) {
    const sp<Recipient> recipient = new Recipient;
    const sp<Recipient> witness = new Recipient;
    const sp<IWorkshop> again = IWorkshop::getService();
    EXPECT_TRUE(mService->linkToDeath(recipient, 1).withDefault(false));
    EXPECT_TRUE(mService->linkToDeath(witness, 2).withDefault(false));
    EXPECT_FALSE(again->unlinkToDeath(recipient).withDefault(true));
    EXPECT_TRUE(mService->unlinkToDeath(recipient).withDefault(false));
    EXPECT_FALSE(mService->unlinkToDeath(recipient).withDefault(true));
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return witness->Notices() == 1; }));
    EXPECT_EQ(recipient->Notices(), 0u);
}

TEST_F(DeathNotices, IgnoreANullRecipient) {
    const sp<Recipient> witness = new Recipient;
    EXPECT_TRUE(mService->linkToDeath(nullptr, 1).withDefault(false));
    EXPECT_TRUE(mService->linkToDeath(witness, 2).withDefault(false));
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return witness->Notices() == 1; }));
}

TEST_F(DeathNotices, DoNotKeepTheRecipient) {
    const sp<Recipient> witness = new Recipient;
    sp<Recipient> forgotten = new Recipient;
    const wp<Recipient> weak = forgotten;
    EXPECT_TRUE(mService->linkToDeath(forgotten, 1).withDefault(false));
    EXPECT_TRUE(mService->linkToDeath(witness, 2).withDefault(false));
    forgotten.clear();
    EXPECT_EQ(weak.promote(), nullptr);
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return witness->Notices() == 1; }));
}

TEST_F(DeathNotices, OfADroppedProxyAreNotDelivered) {
    const sp<Recipient> recipient = new Recipient;
    const sp<Recipient> witness = new Recipient;
    {
        const sp<IWorkshop> dropped = IWorkshop::getService();
        EXPECT_TRUE(dropped->linkToDeath(recipient, 1).withDefault(false));
    }
    EXPECT_TRUE(mService->linkToDeath(witness, 2).withDefault(false));
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return witness->Notices() == 1; }));
    EXPECT_EQ(recipient->Notices(), 0u);
}

TEST_F(DeathNotices, MayUnlinkDuringDelivery) {
    std::atomic<int> unlinked{-1};
    sp<Recipient> recipient;
    recipient = new Recipient([&](const wp<IBase>& who) {
        const sp<IBase> proxy = who.promote();
        unlinked = proxy == nullptr ? -2 : proxy->unlinkToDeath(recipient).withDefault(true);
    });
    EXPECT_TRUE(mService->linkToDeath(recipient, 1).withDefault(false));
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 1; }));
    EXPECT_EQ(unlinked, 0);
}

TEST_F(DeathNotices, OfAnUnwatchedDeathGoToTheFirstLinkedRecipient) {
    const sp<Recipient> recipient = new Recipient;
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return mService->ping().isDeadObject(); }));
    EXPECT_TRUE(mService->linkToDeath(recipient, 1).withDefault(false));
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 1; }));
    // From now on, the object is known to be dead.
    EXPECT_FALSE(mService->linkToDeath(recipient, 2).withDefault(true));
    EXPECT_FALSE(mService->unlinkToDeath(recipient).withDefault(true));
    EXPECT_EQ(recipient->Notices(), 1u);
}

TEST_F(DeathNotices, AreAlsoDeliveredWhenTheServerExits) {
    const sp<Recipient> recipient = new Recipient;
    EXPECT_TRUE(mService->linkToDeath(recipient, 1).withDefault(false));
    mPeer.CloseInput();
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 1; }));
    EXPECT_EQ(mPeer.WaitForExit(), 0);
}

TEST_F(PendingCalls, FailImmediatelyWhenTheServerIsKilled) {
    const sp<Recipient> recipient = new Recipient;
    EXPECT_TRUE(mService->linkToDeath(recipient, 1).withDefault(false));
    Caller held([&] { EXPECT_TRUE(mService->hold().isDeadObject()); });
    EXPECT_TRUE(WaitFor([&] { return Holding(mService) == 1; }));
    mPeer.Kill();
    held.Join();
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 1; }));
    EXPECT_TRUE(mService->ping().isDeadObject());
    // A new process with the same name does not revive the proxy.
    Peer next({"serve", "default"});
    EXPECT_TRUE(mService->ping().isDeadObject());
    EXPECT_EQ(Echo(IWorkshop::getService(), "next"), "next");
}

TEST_F(PendingCalls, FailWhenTheServerDiesInTheMiddle) {
    bool called = false;
    const Return<void> died = mService->misbehave(Misdeed::DIE, [&](const auto&) { called = true; });
    EXPECT_TRUE(died.isDeadObject());
    EXPECT_FALSE(called);
}

TEST_F(PendingCalls, OfTheServiceFailWhenTheClientIsKilledByItsCallback) {
    Peer client({"listen", "default", "dies"});
    EXPECT_EQ(Ask(mService, "die").substr(0, 1), "?");
    EXPECT_NE(Ask(mService, "again").find("DEAD_OBJECT"), std::string::npos);
    EXPECT_EQ(client.WaitForExit(), -SIGKILL);
    EXPECT_EQ(Echo(mService, "alive"), "alive");
}

TEST_F(DeathOfClients, IsReportedToTheService) {
    Peer client({"listen", "own"});
    const sp<IListener> listener = mOwn->listener();
    ASSERT_TRUE(listener->isRemote());
    EXPECT_EQ(Ask(mOwn, "who"), "peer's answer to who");
    const sp<Recipient> recipient = new Recipient;
    EXPECT_TRUE(listener->linkToDeath(recipient, 7).withDefault(false));
    client.Kill();
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 1; }));
    EXPECT_NE(Ask(mOwn, "who").find("DEAD_OBJECT"), std::string::npos);
    EXPECT_EQ(mOwn->emit(3).withDefault(3), 0u);
}

TEST_F(DeathOfClients, DoesNotCancelCallsThatHaveArrived) {
    Peer client({"hold", "own"});
    EXPECT_TRUE(WaitFor([&] { return Holding(mOwn) == 1; }));
    client.Kill();
    EXPECT_EQ(Holding(mOwn), 1u);
    EXPECT_TRUE(mOwn->letGo().isOk());
    EXPECT_TRUE(WaitFor([&] { return Holding(mOwn) == 0; }));
    Peer next({"listen", "own"});
}

TEST_F(DeathOfClients, DuringOnewayTrafficIsHarmless) {
    Peer client({"flood", "own"});
    EXPECT_TRUE(WaitFor([&] { return Posted(mOwn).size() > 1000; }));
    client.Kill();
    Peer next({"listen", "own"});
    const std::vector<uint32_t> posted = Posted(mOwn);
    EXPECT_EQ(posted, CountUp(static_cast<uint32_t>(posted.size())));
}

TEST_F(DeathOfClients, IsReportedOnceAThreadIsFree) {
    Peer service({"serve", "other"});
    const sp<IWorkshop> other = IWorkshop::getService("other");
    std::atomic<uint32_t> heldAtNotice{99};
    const sp<Recipient> recipient = new Recipient([&](const wp<IBase>&) { heldAtNotice = Holding(mOwn); });
    EXPECT_TRUE(other->linkToDeath(recipient, 1).withDefault(false));
    Peer client({"hold", "own"});
    EXPECT_TRUE(WaitFor([&] { return Holding(mOwn) == 1; }));
    service.Kill();
    EXPECT_TRUE(WaitFor([&] { return other->ping().isDeadObject(); }));
    EXPECT_EQ(recipient->Notices(), 0u);
    EXPECT_TRUE(mOwn->letGo().isOk());
    EXPECT_TRUE(WaitFor([&] { return recipient->Notices() == 1; }));
    EXPECT_EQ(heldAtNotice, 0u);
}

TEST_F(DeathOfClients, ReleasesWhatTheyHeld) {
    Peer client({"listen", "own"});
    const int before = mOwn->getStrongCount();
    client.Kill();
    // Only the stub that the client had received is released with its session.
    EXPECT_TRUE(WaitFor([&] { return mOwn->getStrongCount() <= before; }));
    Peer next({"listen", "own"});
    EXPECT_EQ(Ask(mOwn, "who"), "peer's answer to who");
}

}  // namespace hbbtv::test
