// Applications across processes: the simulated platform gives a browser's process tabs, by way of the service, and the
// browser's process tells and asks the platform about them.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationManager.h>
#include <vantorel/hardware/hbbtv/1.0/IMtm.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;

// What it is told, in order: "CreateApp http://a/ shown br hbbtv http://b/".
class Browser : public IMtmCallback {
  public:
    explicit Browser(int32_t firstTab) : mNextTab(firstTab) {}

    std::vector<std::string> Told() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mTold;
    }

    bool WaitFor(const std::string& command) const {
        return test::WaitFor([&] {
            const std::vector<std::string> told = Told();
            return std::find(told.begin(), told.end(), command) != told.end();
        });
    }

    Return<int32_t> SetAppConfig(int32_t tabId, bool isBroadcastRelated) override {
        return Note("SetAppConfig " + std::to_string(tabId) + (isBroadcastRelated ? " br" : " bi"));
    }
    Return<int32_t> SetDvbOrigin(int32_t tabId, const hidl_string& origin) override {
        return Note("SetDvbOrigin " + std::to_string(tabId) + " " + std::string(origin));
    }
    Return<void> CreateApp(const hidl_string& url, bool autoShow, bool isBroadcastRelated, const hidl_string& appMode,
                           const hidl_vec<hidl_string>& boundaries, CreateApp_cb _hidl_cb) override {
        Note("CreateApp" + Page(url, autoShow, isBroadcastRelated, appMode, boundaries));
        _hidl_cb(0, mNextTab++);
        return {};
    }
    Return<int32_t> DestroyApp(int32_t tabId) override { return Note("DestroyApp " + std::to_string(tabId)); }
    Return<int32_t> DestroyAllApps() override { return Note("DestroyAllApps"); }
    Return<int32_t> ShowHideTab(int32_t tabId, bool show, bool isMulti) override {
        return Note("ShowHideTab " + std::to_string(tabId) + (show ? " show" : " hide") + (isMulti ? " multi" : ""));
    }
    Return<void> GetXmlFile(const hidl_string& url, const hidl_string& appId, GetXmlFile_cb _hidl_cb) override {
        Note("GetXmlFile " + std::string(url) + " " + std::string(appId));
        _hidl_cb(-1, "");
        return {};
    }
    Return<int32_t> LoadURLInTab(int32_t tabId, const hidl_string& url, bool autoShow, bool isBroadcastRelated,
                                 const hidl_string& appMode, const hidl_vec<hidl_string>& boundaries) override {
        return Note("LoadURLInTab " + std::to_string(tabId) +
                    Page(url, autoShow, isBroadcastRelated, appMode, boundaries));
    }
    Return<void> GetRenderProcessId(int32_t tabId, GetRenderProcessId_cb _hidl_cb) override {
        Note("GetRenderProcessId " + std::to_string(tabId));
        _hidl_cb(0, tabId + 1000);
        return {};
    }
    Return<int32_t> SendKey(int32_t key, int32_t keyType, int32_t keyEventId) override {
        return Note("SendKey " + std::to_string(key) + " " + std::to_string(keyType) + " " +
                    std::to_string(keyEventId));
    }
    Return<void> Ping(Ping_cb _hidl_cb) override {
        _hidl_cb(0, 42);
        return {};
    }

  private:
    static std::string Page(const std::string& url, bool autoShow, bool isBroadcastRelated, const std::string& appMode,
                            const hidl_vec<hidl_string>& boundaries) {
        std::string text =
            " " + url + (autoShow ? " shown" : " hidden") + (isBroadcastRelated ? " br " : " bi ") + appMode;
        for (const hidl_string& boundary : boundaries) text += " " + std::string(boundary);
        return text;
    }

    int32_t Note(const std::string& command) {
        std::lock_guard<std::mutex> lock(mMutex);
        mTold.push_back(command);
        return 0;
    }

    std::atomic<int32_t> mNextTab;
    mutable std::mutex mMutex;
    std::vector<std::string> mTold;  // guarded by mMutex
};

// The events that the platform sends, in order: "event 1 app 2 org 17 context 5".
class Listener : public IAIPEventCallback {
  public:
    bool WaitFor(const std::string& event) const {
        return test::WaitFor([&] {
            std::lock_guard<std::mutex> lock(mMutex);
            return std::find(mEvents.begin(), mEvents.end(), event) != mEvents.end();
        });
    }

    Return<void> onApplicationEvent(TolmAIPEvent event, const TolmAIPEventInfo& info, int64_t context) override {
        return Note("event " + std::to_string(static_cast<int32_t>(event)) + " app " + std::to_string(info.appId) +
                    " org " + std::to_string(info.orgId) + " context " + std::to_string(context));
    }
    Return<void> onGetLocalParantalRating(const hidl_string& countryCode, int32_t rating) override {
        return Note("rating " + std::string(countryCode) + " " + std::to_string(rating));
    }

    // No message of the platform leads to these.
    Return<void> onApplicationTopMost(int32_t, int32_t, int64_t) override { return {}; }
    Return<void> onApplicationNoTopMost(int32_t, int32_t, int64_t) override { return {}; }
    Return<void> onApplicationDestroyRequest(int32_t, int32_t, int64_t) override { return {}; }
    Return<void> onKeyPress(int32_t, int32_t, int64_t) override { return {}; }
    Return<void> onKeyUp(int32_t, int32_t, int64_t) override { return {}; }
    Return<void> onKeyDown(int32_t, int32_t, int64_t) override { return {}; }
    Return<void> onIsParentalratingBlocked(int32_t, int32_t, bool) override { return {}; }
    Return<void> onRequestDsmccFile(const hidl_string&, int64_t) override { return {}; }
    Return<void> onReleaseDsmccFile(const hidl_string&, int64_t) override { return {}; }
    Return<void> onIsObjectSupported(const hidl_string&, bool) override { return {}; }
    Return<void> onGetConfiguration() override { return {}; }
    Return<void> onPlatformInitialize() override { return {}; }
    Return<void> onPlatformFinalize() override { return {}; }
    Return<void> onHandleBroadcastService(bool) override { return {}; }
    Return<void> onSetBroadcastFullScreen(bool) override { return {}; }
    Return<void> onOpappStateChange(int32_t, int32_t, const hidl_string&, const hidl_string&,
                                    const hidl_string&) override {
        return {};
    }
    Return<void> onOpappContextChange(int32_t, int32_t, const hidl_string&, const hidl_string&,
                                      const hidl_string&) override {
        return {};
    }
    Return<void> onOpappUpdate(int32_t, int32_t, const hidl_string&) override { return {}; }

  private:
    Return<void> Note(const std::string& event) {
        std::lock_guard<std::mutex> lock(mMutex);
        mEvents.push_back(event);
        return {};
    }

    mutable std::mutex mMutex;
    std::vector<std::string> mEvents;  // guarded by mMutex
};

constexpr int64_t kContext = 5;

class Applications : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(mPlatform.Ready()) << mPlatform.Output();
        mMtm = Find<IMtm>();
        mManager = Find<IApplicationManager>();
        mVideo = FindVideoBroadcast();
        ASSERT_NE(nullptr, mMtm);
        ASSERT_NE(nullptr, mManager);
        ASSERT_NE(nullptr, mVideo);
        ASSERT_TRUE(mVideo->Create(1, [&](int32_t, int64_t vb) { mVb = vb; }).isOk());
    }

    void BeTheBrowser() { ASSERT_TRUE(mMtm->RegisterCallback(mBrowser).isOk()); }

    void Listen(TolmAIPEvent event) { EXPECT_EQ(0, Status(mManager->RegisterCallback(event, mListener, kContext))); }

    // To a service of 19.2 degrees east.
    void Tune(int32_t tsid, int32_t sid) {
        int64_t channel = 0;
        ASSERT_TRUE(
            mVideo->CreateChannel_2(mVb, 11, 1, tsid, sid, 0, "", [&](int32_t, int64_t made) { channel = made; })
                .isOk());
        ASSERT_EQ(0, Status(mVideo->SetChannel(mVb, channel, false, "")));
    }

    void TuneToZdf() { Tune(1011, 11110); }
    void TuneToSwr() { Tune(1019, 10303); }  // announces no application

    static int32_t Status(const Return<int32_t>& status) {
        return status.isOk() ? static_cast<int32_t>(status) : -1000;
    }

    static std::string Tell(const std::string& line) {
        ChildProcess program({HBBTV_SIM_PROGRAM, "--tell", line});
        EXPECT_TRUE(program.WaitForExit().has_value());
        return program.Output();
    }

    std::string Current() {
        std::string text;
        const auto done = mManager->GetCurrentApp([&](int32_t status, int32_t app, int32_t org) {
            text = std::to_string(status) + " " + std::to_string(app) + " " + std::to_string(org);
        });
        EXPECT_TRUE(done.isOk());
        return text;
    }

    ScratchDirectory mDirectory;
    SimulatedPlatform mPlatform;
    ServiceProcess mService;
    sp<IMtm> mMtm;
    sp<IApplicationManager> mManager;
    sp<IVideoBroadcast> mVideo;
    sp<Browser> mBrowser = new Browser(7);
    sp<Listener> mListener = new Listener;
    int64_t mVb = 0;
};

TEST_F(Applications, ATabComesIsLoadedGetsAKeyAndGoesWithItsService) {
    BeTheBrowser();
    Listen(TolmAIPEvent::APPLICATION_EVENT_1);
    TuneToZdf();
    ASSERT_TRUE(mBrowser->WaitFor("GetRenderProcessId 7"));
    EXPECT_EQ((std::vector<std::string>{
                  "CreateApp http://zdf.example/hbbtv/index.html shown br hbbtv http://zdf.example/",
                  "SetAppConfig 7 br", "SetDvbOrigin 7 dvb://1.3f3.2b66",
                  "LoadURLInTab 7 http://zdf.example/hbbtv/index.html shown br hbbtv http://zdf.example/",
                  "ShowHideTab 7 show", "GetRenderProcessId 7"}),
              mBrowser->Told());

    EXPECT_EQ(0, Status(mMtm->OnTabCreated(7)));
    EXPECT_EQ(0, Status(mMtm->OnTabShow(7)));
    EXPECT_EQ(0, Status(mMtm->OnTabTitleChanged(7, "Start")));
    EXPECT_EQ(0, Status(mMtm->OnTabURLChanged(7, "http://zdf.example/hbbtv/index.html#1")));
    EXPECT_EQ(0, Status(mMtm->OnTabLoadFinished(7, "http://zdf.example/hbbtv/index.html")));
    EXPECT_EQ(-1, Status(mMtm->OnTabShow(8))) << "there is no such tab";
    EXPECT_TRUE(mListener->WaitFor("event 1 app 1 org 17 context 5"));
    EXPECT_EQ("0 1 17", Current());
    EXPECT_NE(std::string::npos, Tell("tabs").find("tab 7: ZDF Start (11.1), loaded, shown, title \"Start\""));

    EXPECT_EQ("ok ZDF Start\n", Tell("key RED"));
    EXPECT_TRUE(mBrowser->WaitFor("SendKey 403 0 1"));

    TuneToSwr();
    EXPECT_TRUE(mBrowser->WaitFor("DestroyApp 7"));
    EXPECT_EQ(0, Status(mMtm->OnTabDestroyed(7)));
    EXPECT_EQ("-1 -1 -1", Current());
    const std::string tabs = Tell("tabs");
    EXPECT_TRUE(tabs == "ok browser there, status 0, memory 0\n" || tabs == "ok browser there, status 42, memory 0\n")
        << "the status is 42 once a ping was answered: " << tabs;
}

TEST_F(Applications, AnApplicationMakesAChildAndAsksForKeys) {
    BeTheBrowser();
    TuneToZdf();
    ASSERT_TRUE(mBrowser->WaitFor("GetRenderProcessId 7"));
    int32_t child = 0;
    ASSERT_TRUE(mManager
                    ->CreateApplication(1, 17, "dvb://current.ait/11.2?autoshow=1", true, false,
                                        [&](int32_t status, int32_t app, int32_t org) {
                                            EXPECT_EQ(0, status);
                                            EXPECT_EQ(17, org);
                                            child = app;
                                        })
                    .isOk());
    EXPECT_EQ(2, child);
    ASSERT_TRUE(mBrowser->WaitFor("GetRenderProcessId 8"));
    ASSERT_TRUE(mManager
                    ->GetChildApps(1, 17,
                                   [&](int32_t status, const hidl_vec<int32_t>& apps, const hidl_vec<int32_t>& orgs) {
                                       EXPECT_EQ(0, status);
                                       EXPECT_EQ((hidl_vec<int32_t>{2}), apps);
                                       EXPECT_EQ((hidl_vec<int32_t>{17}), orgs);
                                   })
                    .isOk());
    EXPECT_EQ(0, Status(mManager->SetValue(2, 17, 0x401, {459, 416})));
    ASSERT_TRUE(mManager
                    ->GetOtherKeys(2, 17,
                                   [&](int32_t status, const hidl_vec<int32_t>& keys) {
                                       EXPECT_EQ(0, status);
                                       EXPECT_EQ((hidl_vec<int32_t>{459, 416}), keys);
                                   })
                    .isOk());
    ASSERT_TRUE(mManager
                    ->KeyConsumedByBrowser(8, 403,
                                           [&](int32_t status, bool consumed) {
                                               EXPECT_EQ(0, status);
                                               EXPECT_TRUE(consumed);
                                           })
                    .isOk());
    EXPECT_EQ(0, Status(mManager->Hide(2, 17)));
    EXPECT_TRUE(mBrowser->WaitFor("ShowHideTab 8 hide"));
    EXPECT_EQ(0, Status(mManager->DestroyApplication(1, 17)));
    EXPECT_TRUE(mBrowser->WaitFor("DestroyApp 8")) << "the child ends with it";
    EXPECT_TRUE(mBrowser->WaitFor("DestroyApp 7"));
}

TEST_F(Applications, TheParentalRatingIsAskedAndNothingSaysNoSoTheApplicationRuns) {
    BeTheBrowser();
    Listen(TolmAIPEvent::GET_LOCAL_PARENTAL_RATING);
    Tune(1089, 12003);
    EXPECT_TRUE(mListener->WaitFor("rating DEU 0"));
    EXPECT_TRUE(mBrowser->WaitFor("CreateApp http://rtl.example/hbbtv/late.html shown br hbbtv"));
}

TEST_F(Applications, ABrowserThatComesLateGetsItsTabByAPing) {
    TuneToZdf();
    ASSERT_TRUE(mPlatform.WaitForOutput("no tab for ZDF Start: no browser answers"));
    BeTheBrowser();
    EXPECT_TRUE(mBrowser->WaitFor("GetRenderProcessId 7"));
    EXPECT_NE(std::string::npos, Tell("tabs").find("browser there, status 42"));
}

TEST_F(Applications, ABrowserThatIsGoneCostsItsTabsAndTheNextOneGetsThem) {
    BeTheBrowser();
    TuneToZdf();
    ASSERT_TRUE(mBrowser->WaitFor("GetRenderProcessId 7"));
    ASSERT_TRUE(mMtm->UnregisterCallback().isOk());
    ASSERT_TRUE(mPlatform.WaitForOutput("the browser does not answer, its tabs are gone"));
    EXPECT_EQ("0 1 17", Current()) << "the application runs on";
    mBrowser = new Browser(20);
    BeTheBrowser();
    ASSERT_TRUE(mBrowser->WaitFor("GetRenderProcessId 20"));
    EXPECT_EQ("DestroyAllApps", mBrowser->Told()[0]);
}

}  // namespace

}  // namespace hbbtv::test
