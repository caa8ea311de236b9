// A browser's callback for the tab manager that keeps what it is told, and answers, fails, keeps silent or hangs as the
// test says.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtmCallback.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "recording_client.h"

namespace hbbtv::test {

// Gives tab -11, render process -12, browser status -13 and a file.
class RecordingMtmCallback : public RecordingClient<vantorel::hardware::hbbtv::V1_0::IMtmCallback> {
  public:
    template <typename T>
    using Vector = ::android::hardware::hidl_vec<T>;

    std::atomic<int> status{0};
    std::atomic<bool> silent{false};  // methods with results call no result callback
    std::atomic<bool> dead{false};    // the process has just died: the transport fails

    // Calls that come from now on do not return before Release().
    void Hang() { SetHanging(true); }
    void Release() { SetHanging(false); }

    // Called before a call returns.
    void SetBeforeReturning(std::function<void()> function) { mBeforeReturning = std::move(function); }

    Return<int32_t> SetAppConfig(int32_t tabId, bool isBroadcastRelated) override {
        return Told("SetAppConfig", tabId, isBroadcastRelated);
    }

    Return<int32_t> SetDvbOrigin(int32_t tabId, const Text& origin) override {
        return Told("SetDvbOrigin", tabId, std::string(origin));
    }

    Return<void> CreateApp(const Text& url, bool autoShow, bool isBroadcastRelated, const Text& appMode,
                           const Vector<Text>& boundaries, CreateApp_cb _hidl_cb) override {
        (void)Told("CreateApp", std::string(url), autoShow, isBroadcastRelated, std::string(appMode),
                   Listed(boundaries))
            .isOk();
        if (!silent) _hidl_cb(status, -11);
        return Returned();
    }

    Return<int32_t> DestroyApp(int32_t tabId) override { return Told("DestroyApp", tabId); }

    Return<int32_t> DestroyAllApps() override { return Told("DestroyAllApps"); }

    Return<int32_t> ShowHideTab(int32_t tabId, bool show, bool isMulti) override {
        return Told("ShowHideTab", tabId, show, isMulti);
    }

    Return<void> GetXmlFile(const Text& url, const Text& appId, GetXmlFile_cb _hidl_cb) override {
        (void)Told("GetXmlFile", std::string(url), std::string(appId)).isOk();
        if (!silent) _hidl_cb(status, "<a/>");
        return Returned();
    }

    Return<int32_t> LoadURLInTab(int32_t tabId, const Text& url, bool autoShow, bool isBroadcastRelated,
                                 const Text& appMode, const Vector<Text>& boundaries) override {
        return Told("LoadURLInTab", tabId, std::string(url), autoShow, isBroadcastRelated, std::string(appMode),
                    Listed(boundaries));
    }

    Return<void> GetRenderProcessId(int32_t tabId, GetRenderProcessId_cb _hidl_cb) override {
        (void)Told("GetRenderProcessId", tabId).isOk();
        if (!silent) _hidl_cb(status, -12);
        return Returned();
    }

    Return<int32_t> SendKey(int32_t key, int32_t keyType, int32_t keyEventId) override {
        return Told("SendKey", key, keyType, keyEventId);
    }

    Return<void> Ping(Ping_cb _hidl_cb) override {
        (void)Told("Ping").isOk();
        if (!silent) _hidl_cb(status, -13);
        return Returned();
    }

  private:
    static ::android::hardware::Status Gone() { return ::android::hardware::Status::fromStatusT(android::DEAD_OBJECT); }

    static std::string Listed(const Vector<Text>& texts) {
        std::string all = "[";
        for (const Text& text : texts) all += std::string(all.size() > 1 ? " " : "") + text.c_str();
        return all + "]";
    }

    template <typename... Values>
    Return<int32_t> Told(const char* name, const Values&... values) {
        (void)Note(name, values...).isOk();
        {
            std::unique_lock<std::mutex> lock(mHangMutex);
            mReleased.wait(lock, [this] { return !mHanging; });
        }
        if (mBeforeReturning) mBeforeReturning();
        return dead ? Return<int32_t>(Gone()) : Return<int32_t>(status);
    }

    Return<void> Returned() { return dead ? Return<void>(Gone()) : ::android::hardware::Void(); }

    void SetHanging(bool hanging) {
        std::lock_guard<std::mutex> lock(mHangMutex);
        mHanging = hanging;
        mReleased.notify_all();
    }

    std::function<void()> mBeforeReturning;
    std::mutex mHangMutex;
    std::condition_variable mReleased;
    bool mHanging = false;  // guarded by mHangMutex
};

}  // namespace hbbtv::test
