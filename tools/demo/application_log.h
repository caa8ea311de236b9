// The demo's listener for applications: writes the one event that it registers for into the transcript, and lets the
// demo wait for it.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IAIPEventCallback.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

#include "transcript.h"

namespace hbbtv::demo {

class ApplicationLog : public vantorel::hardware::hbbtv::V1_0::IAIPEventCallback {
  public:
    explicit ApplicationLog(Transcript& transcript) : mTranscript(transcript) {}

    // Whether an event came.
    bool WaitForEvent(std::chrono::milliseconds patience);

    using None = ::android::hardware::Return<void>;
    using Text = ::android::hardware::hidl_string;
    using Event = vantorel::hardware::hbbtv::V1_0::TolmAIPEvent;
    using Info = vantorel::hardware::hbbtv::V1_0::TolmAIPEventInfo;

    None onApplicationEvent(Event event, const Info& info, int64_t context) override;

    // The demo does not register for these.
    None onApplicationTopMost(int32_t, int32_t, int64_t) override { return {}; }
    None onApplicationNoTopMost(int32_t, int32_t, int64_t) override { return {}; }
    None onApplicationDestroyRequest(int32_t, int32_t, int64_t) override { return {}; }
    None onKeyPress(int32_t, int32_t, int64_t) override { return {}; }
    None onKeyUp(int32_t, int32_t, int64_t) override { return {}; }
    None onKeyDown(int32_t, int32_t, int64_t) override { return {}; }
    None onIsParentalratingBlocked(int32_t, int32_t, bool) override { return {}; }
    None onRequestDsmccFile(const Text&, int64_t) override { return {}; }
    None onReleaseDsmccFile(const Text&, int64_t) override { return {}; }
    None onIsObjectSupported(const Text&, bool) override { return {}; }
    None onGetConfiguration() override { return {}; }
    None onPlatformInitialize() override { return {}; }
    None onPlatformFinalize() override { return {}; }
    None onHandleBroadcastService(bool) override { return {}; }
    None onSetBroadcastFullScreen(bool) override { return {}; }
    None onOpappStateChange(int32_t, int32_t, const Text&, const Text&, const Text&) override { return {}; }
    None onOpappContextChange(int32_t, int32_t, const Text&, const Text&, const Text&) override { return {}; }
    None onOpappUpdate(int32_t, int32_t, const Text&) override { return {}; }
    None onGetLocalParantalRating(const Text&, int32_t) override { return {}; }

  private:
    Transcript& mTranscript;
    std::mutex mMutex;
    std::condition_variable mCame;
    bool mSeen = false;  // guarded by mMutex
};

}  // namespace hbbtv::demo
