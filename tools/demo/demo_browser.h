// The demo's browser: has no pages, but gives the platform the tabs that it asks for, writes what it is told into the
// transcript, and lets the demo wait for it.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtmCallback.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "transcript.h"

namespace hbbtv::demo {

// Both numbers of the only tab, so that whoever looks at the platform finds them.
constexpr int32_t kTab = 1;
constexpr int32_t kRenderProcess = 4711;

class DemoBrowser : public vantorel::hardware::hbbtv::V1_0::IMtmCallback {
  public:
    explicit DemoBrowser(Transcript& transcript) : mTranscript(transcript) {}

    // Whether it has been told this.
    bool WaitFor(const std::string& command, std::chrono::milliseconds patience);

    template <typename T>
    using Return = ::android::hardware::Return<T>;
    using Text = ::android::hardware::hidl_string;
    using Texts = ::android::hardware::hidl_vec<Text>;

    Return<int32_t> SetAppConfig(int32_t tabId, bool isBroadcastRelated) override;
    Return<int32_t> SetDvbOrigin(int32_t tabId, const Text& origin) override;
    Return<void> CreateApp(const Text& url, bool autoShow, bool isBroadcastRelated, const Text& appMode,
                           const Texts& boundaries, CreateApp_cb _hidl_cb) override;
    Return<int32_t> DestroyApp(int32_t tabId) override;
    Return<int32_t> DestroyAllApps() override;
    Return<int32_t> ShowHideTab(int32_t tabId, bool show, bool isMulti) override;
    Return<void> GetXmlFile(const Text& url, const Text& appId, GetXmlFile_cb _hidl_cb) override;
    Return<int32_t> LoadURLInTab(int32_t tabId, const Text& url, bool autoShow, bool isBroadcastRelated,
                                 const Text& appMode, const Texts& boundaries) override;
    Return<void> GetRenderProcessId(int32_t tabId, GetRenderProcessId_cb _hidl_cb) override;
    Return<int32_t> SendKey(int32_t key, int32_t keyType, int32_t keyEventId) override;
    Return<void> Ping(Ping_cb _hidl_cb) override;

  private:
    int32_t Note(const std::string& command, const std::string& values);

    Transcript& mTranscript;
    std::mutex mMutex;
    std::condition_variable mCame;
    std::vector<std::string> mSeen;  // guarded by mMutex
};

}  // namespace hbbtv::demo
