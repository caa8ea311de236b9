// Registering and finding services, casting, and the files on disk.
#include <android/log.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fixtures.h"
#include "log_capture.h"

namespace hbbtv::test {

namespace {

namespace fs = std::filesystem;

using Casting = WithService;

class Services : public ::testing::Test {
  protected:
    fs::path Directory() const { return mScratch / "hidl"; }
    std::string SocketOf(const std::string& instance) const {
        return fs::read_symlink(Directory() / ("vantorel.test@1.0::IWorkshop," + instance)).string();
    }
    std::vector<std::string> Entries() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(Directory())) names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    const ScratchDirectory mScratch;
};

}  // namespace

TEST_F(Services, OfTheSameProcessAreTheObjectItself) {
    const sp<Workshop> own = new Workshop;
    ASSERT_EQ(own->registerAsService("own"), ::android::OK);
    const sp<IWorkshop> found = IWorkshop::getService("own");
    EXPECT_EQ(found.get(), own.get());
    EXPECT_FALSE(found->isRemote());
}

TEST_F(Services, AreFoundUnderEveryInterfaceOfTheirChain) {
    Peer peer({"serve", "default"});
    const sp<IWorkshop> workshop = IWorkshop::tryGetService();
    const sp<IWorkbench> workbench = IWorkbench::tryGetService();
    ASSERT_NE(workshop, nullptr);
    ASSERT_NE(workbench, nullptr);
    EXPECT_TRUE(workshop->isRemote());
    EXPECT_TRUE(interfacesEqual(workshop, workbench));
    EXPECT_EQ(workbench->tools().withDefault(0), 7u);
    EXPECT_EQ(workbench->pid().withDefault(0), peer.Pid());
}

TEST_F(Services, ThatAreNotRegisteredAreNullForTryGetService) {
    EXPECT_EQ(IWorkshop::tryGetService(), nullptr);
    EXPECT_FALSE(fs::exists(Directory()));
    Peer peer({"serve", "default"});
    EXPECT_EQ(IWorkshop::tryGetService("another"), nullptr);
    EXPECT_EQ(::vantorel::test::V1_0::IListener::tryGetService(), nullptr);
}

TEST_F(Services, ThatAreNotRegisteredAreAwaitedByGetService) {
    std::atomic<bool> waiting{true};
    Caller caller([&] {
        const sp<IWorkshop> service = IWorkshop::getService("late");
        waiting = false;
        EXPECT_EQ(Echo(service, "text"), "text");
    });
    EXPECT_TRUE(waiting);
    Peer peer({"serve", "late"});
    caller.Join();
}

TEST_F(Services, OfAKilledProcessAreNotFound) {
    Peer peer({"serve", "default"});
    ASSERT_NE(IWorkshop::tryGetService(), nullptr);
    peer.Kill();
    EXPECT_TRUE(WaitFor([] { return IWorkshop::tryGetService() == nullptr; }));
    // The link still exists, but points to nothing.
    EXPECT_TRUE(fs::is_symlink(Directory() / "vantorel.test@1.0::IWorkshop,default"));
    Peer next({"serve", "default"});
    EXPECT_EQ(IWorkshop::getService()->pid().withDefault(0), next.Pid());
}

TEST_F(Services, MayHaveAnyName) {
    const std::string name = "odd/../name % with\nmore";
    Peer peer({"serve", name});
    const sp<IWorkshop> service = IWorkshop::tryGetService(name);
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(Echo(service, "text"), "text");
}

TEST_F(Services, ThatAreNullOrHaveATooLongNameAreNotRegistered) {
    EXPECT_EQ(::android::hardware::details::registerAsServiceInternal(nullptr, "default"), ::android::UNEXPECTED_NULL);
    const sp<Workshop> own = new Workshop;
    EXPECT_EQ(own->registerAsService(std::string(300, 'x')), ::android::UNKNOWN_ERROR);
}

TEST_F(Services, AreLoggedOnOneLineWithoutControlCharactersWhateverTheirName) {
    const Peer peer({"serve", "default", "2"});
    const sp<IWorkshop> remote = IWorkshop::getService();
    const LogCapture log;
    EXPECT_NE(remote->registerAsService("\x1b[2J\nfake\x7f\xc2\x9b"), ::android::OK);
    const std::string line = "cannot register \\x1b[2J\\nfake\\x7f\\xc2\\x9b: it is an object of another process";
    EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, "hidl_host", line), 1) << log.Text();
}

TEST_F(Services, RegisteredAgainAreReplaced) {
    sp<Workshop> first = new Workshop;
    ASSERT_EQ(first->registerAsService("own"), ::android::OK);
    const sp<Workshop> second = new Workshop;
    ASSERT_EQ(second->registerAsService("own"), ::android::OK);
    EXPECT_EQ(IWorkshop::getService("own").get(), second.get());
    // Nothing keeps the first one.
    const wp<Workshop> weak = first;
    first.clear();
    EXPECT_TRUE(WaitFor([&] { return weak.promote() == nullptr; }));
}

TEST_F(Services, RegisteredAgainByAnotherProcessAreReplaced) {
    Peer first({"serve", "default"});
    const sp<IWorkshop> early = IWorkshop::getService();
    Peer second({"serve", "default"});
    EXPECT_EQ(IWorkshop::getService()->pid().withDefault(0), second.Pid());
    EXPECT_EQ(early->pid().withDefault(0), first.Pid());
}

TEST_F(Services, OfTwoProcessesMayCallEachOther) {
    const sp<Workshop> own = new Workshop;
    ASSERT_EQ(own->registerAsService("own"), ::android::OK);
    Peer peer({"serve", "theirs", "2"});
    const sp<IWorkshop> theirs = IWorkshop::getService("theirs");
    // The nested call goes over the peer's own session to the pool of this process.
    std::string answer;
    EXPECT_TRUE(theirs->echoThrough("own", "there and back", [&](const auto& text) { answer = text; }).isOk());
    EXPECT_EQ(answer, "there and back");
    peer.Kill();
    EXPECT_EQ(IWorkshop::getService("own").get(), own.get());
}

TEST_F(Services, AreInADirectoryThatOnlyTheirUserCanEnter) {
    Peer peer({"serve", "default"});
    struct stat status = {};
    ASSERT_EQ(stat(Directory().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    const std::vector<std::string> expected = {SocketOf("default"), "vantorel.test@1.0::IWorkbench,default",
                                               "vantorel.test@1.0::IWorkshop,default"};
    EXPECT_EQ(Entries(), expected);
}

TEST_F(Services, MayHaveADirectoryWithALongPath) {
    const std::string path = mScratch / std::string(180, 'd');
    setenv("HIDL_HOST_DIR", path.c_str(), 1);
    Peer peer({"serve", "default"});
    EXPECT_EQ(Echo(IWorkshop::getService(), "text"), "text");
}

TEST_F(Services, AreBelowTmpdirByDefault) {
    unsetenv("HIDL_HOST_DIR");
    Peer peer({"serve", "default"});
    EXPECT_EQ(Echo(IWorkshop::getService(), "text"), "text");
    EXPECT_TRUE(fs::exists(mScratch / "hidl-host"));
}

TEST_F(Services, LeaveNoFilesWhenTheirProcessEnds) {
    Peer peer({"serve", "default"});
    EXPECT_EQ(Entries().size(), 3u);
    peer.CloseInput();
    EXPECT_EQ(peer.WaitForExit(), 0);
    EXPECT_EQ(Entries().size(), 0u);
}

TEST_F(Services, KeepTheLinkOfTheirSuccessorWhenTheirProcessEnds) {
    Peer first({"serve", "default"});
    Peer second({"serve", "default"});
    first.CloseInput();
    EXPECT_EQ(first.WaitForExit(), 0);
    EXPECT_EQ(Entries().size(), 3u);
    EXPECT_EQ(IWorkshop::getService()->pid().withDefault(0), second.Pid());
}

TEST_F(Services, RemoveTheFilesOfKilledProcesses) {
    Peer killed({"serve", "left"});
    killed.Kill();
    EXPECT_EQ(Entries().size(), 3u);
    std::ofstream(Directory() / "somebody's file") << "kept";
    Peer peer({"serve", "default"});
    const std::vector<std::string> expected = {SocketOf("default"), "somebody's file",
                                               "vantorel.test@1.0::IWorkbench,default",
                                               "vantorel.test@1.0::IWorkshop,default"};
    EXPECT_EQ(Entries(), expected);
}

TEST_F(Services, IgnoreLinksToOtherPlaces) {
    Peer peer({"serve", "default"});
    fs::create_symlink("/etc/passwd", Directory() / "vantorel.test@1.0::IWorkshop,odd");
    fs::create_symlink("s1.1/../" + SocketOf("default"), Directory() / "vantorel.test@1.0::IWorkshop,odder");
    EXPECT_EQ(IWorkshop::tryGetService("odd"), nullptr);
    EXPECT_EQ(IWorkshop::tryGetService("odder"), nullptr);
}

TEST_F(Services, DoNotNotifyOfRegistrations) {
    EXPECT_EQ(::android::hardware::defaultServiceManager(), nullptr);
    EXPECT_FALSE(IWorkshop::registerForNotifications("default", nullptr));
}

TEST_F(Casting, ReturnsAProxyOfTheSameObject) {
    const Return<sp<IWorkbench>> cast = IWorkbench::castFrom(mService);
    ASSERT_TRUE(cast.isOk());
    const sp<IWorkbench> workbench = cast;
    ASSERT_NE(workbench, nullptr);
    EXPECT_TRUE(interfacesEqual(workbench, mService));
    EXPECT_EQ(workbench->tools().withDefault(0), 7u);
}

TEST_F(Casting, OfALocalObjectReturnsTheObject) {
    const sp<IBase> local = new Workshop;
    const sp<IWorkbench> cast = IWorkbench::castFrom(local);
    EXPECT_EQ(cast.get(), local.get());
}

TEST_F(Casting, ToAnInterfaceThatIsNotImplementedReturnsNull) {
    const sp<IListener> cast = IListener::castFrom(sp<IBase>(mService));
    EXPECT_EQ(cast, nullptr);
    const sp<IWorkbench> ofNull = IWorkbench::castFrom(sp<IBase>());
    EXPECT_EQ(ofNull, nullptr);
}

TEST_F(Casting, OfADeadObjectReturnsNullOrTheError) {
    mPeer.Kill();
    EXPECT_TRUE(WaitFor([&] { return mService->ping().isDeadObject(); }));
    const Return<sp<IWorkbench>> silent = IWorkbench::castFrom(mService);
    ASSERT_TRUE(silent.isOk());
    EXPECT_EQ(static_cast<sp<IWorkbench>>(silent), nullptr);
    EXPECT_TRUE(IWorkbench::castFrom(mService, true).isDeadObject());
}

}  // namespace hbbtv::test
