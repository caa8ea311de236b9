// A browser's callback object for the tab manager that keeps its calls, and answers, fails, keeps silent or hangs as
// the test says.
#pragma once

#include <IMtmCallbackListener.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "recording_client.h"

namespace hbbtv::test {

// Gives tab -11, render process -12, browser status -13 and a file.
class Browser : public Recorder {
  public:
    std::atomic<int> status{0};
    std::atomic<bool> silent{false};  // methods with results call no result callback
    std::atomic<bool> dead{false};    // the process has just died: the transport fails

    // Calls that come from now on do not return before Release().
    void Hang() { SetHanging(true); }
    void Release() { SetHanging(false); }

    // Called before a call returns.
    void SetBeforeReturning(std::function<void()> function) { mBeforeReturning = std::move(function); }

    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override {
        Note(CallLine(interface, method, arguments));
        {
            std::unique_lock<std::mutex> lock(mHangMutex);
            mReleased.wait(lock, [this] { return !mHanging; });
        }
        if (mBeforeReturning) mBeforeReturning();
        if (dead) return Died();
        const std::string name = method;
        Json::Value results(Json::arrayValue);
        results.append(status.load());
        if (name == "CreateApp") results.append(-11);
        if (name == "GetRenderProcessId") results.append(-12);
        if (name == "Ping") results.append(-13);
        if (name == "GetXmlFile") results.append("<a/>");
        return silent && results.size() > 1 ? NoAnswer() : results;
    }

  private:
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

using RecordingBrowser = RecordingClient<vantorel::hardware::hbbtv::V1_0::IMtmCallback, Browser>;

}  // namespace hbbtv::test
