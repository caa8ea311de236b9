// The demo's callback: writes every event into the transcript and lets the demo wait for one.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcastCallback.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "transcript.h"

namespace hbbtv::demo {

// The name of a play state or error state, with its number when it has none.
std::string PlayStateName(int32_t state);
std::string ErrorName(int32_t error);

class EventLog : public vantorel::hardware::hbbtv::V1_0::IVideoBroadcastCallback {
  public:
    explicit EventLog(Transcript& transcript) : mTranscript(transcript) {}

    // Gives a channel's handle a name for the transcript.
    void Name(int64_t channel, const std::string& name);
    std::string NameOf(int64_t channel) const;

    // Forgets the events so far: WaitFor() looks at later ones.
    void Forget();

    // Whether an event of this name has come with this first value.
    bool WaitFor(const std::string& event, int64_t value, std::chrono::milliseconds patience);

    template <typename T>
    using Return = ::android::hardware::Return<T>;
    using Text = ::android::hardware::hidl_string;

    Return<void> onVideoBroadcastEvent(int32_t event) override;
    Return<void> onChannelChangeError(int64_t channel, int32_t errorState) override;
    Return<void> onPlayStateChange(int32_t state, int32_t error) override;
    Return<void> onChannelChangeSucceeded(int64_t channel, int64_t viewerChannel, int32_t quiet) override;
    Return<void> onFullScreenChange(int32_t fullScreen) override;
    Return<void> onParentalRatingBlocked(const Text& contentId, int64_t ratings, const Text& drmSystemId,
                                         bool blocked) override;
    Return<void> onParentalRating(const Text& contentId, int64_t ratings, const Text& drmSystemId) override;
    Return<void> onPlaySpeedChanged(double speed) override;
    Return<void> onPlayPositionChanged(int32_t position) override;
    Return<void> onRecordingEvent(int32_t state, int32_t error, const Text& recordingId) override;
    Return<void> onDrmRightsError(int32_t error, const Text& contentId, const Text& drmSystemId,
                                  const Text& rightsIssuerUrl) override;
    Return<void> onComponentType11(int32_t componentType) override;
    Return<void> onComponentType15(int32_t componentType) override;
    Return<void> onStreamEvent(const Text& url, const Text& eventName, const Text& data,
                               const ::android::hardware::hidl_vec<uint8_t>& text, const Text& status) override;

  private:
    struct Seen {
        std::string event;
        int64_t value;
    };

    Return<void> Note(const std::string& event, int64_t value, const std::string& values);

    Transcript& mTranscript;
    mutable std::mutex mMutex;
    std::condition_variable mCame;
    std::map<int64_t, std::string> mNames;  // guarded by mMutex
    std::vector<Seen> mSeen;                // guarded by mMutex
};

}  // namespace hbbtv::demo
