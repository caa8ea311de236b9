// A video/broadcast client's callback that keeps what it is told.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcastCallback.h>

#include <string>

#include "recording_client.h"

namespace hbbtv::test {

class RecordingVideoBroadcastCallback
    : public RecordingClient<vantorel::hardware::hbbtv::V1_0::IVideoBroadcastCallback> {
  public:
    Return<void> onVideoBroadcastEvent(int32_t event) override { return Note("onVideoBroadcastEvent", event); }

    Return<void> onChannelChangeError(int64_t channel, int32_t errorState) override {
        return Note("onChannelChangeError", channel, errorState);
    }

    Return<void> onPlayStateChange(int32_t state, int32_t error) override {
        return Note("onPlayStateChange", state, error);
    }

    Return<void> onChannelChangeSucceeded(int64_t channel, int64_t viewerChannel, int32_t quiet) override {
        return Note("onChannelChangeSucceeded", channel, viewerChannel, quiet);
    }

    Return<void> onFullScreenChange(int32_t fullScreen) override { return Note("onFullScreenChange", fullScreen); }

    Return<void> onParentalRatingBlocked(const Text& contentId, int64_t ratings, const Text& drmSystemId,
                                         bool blocked) override {
        return Note("onParentalRatingBlocked", std::string(contentId), ratings, std::string(drmSystemId), blocked);
    }

    Return<void> onParentalRating(const Text& contentId, int64_t ratings, const Text& drmSystemId) override {
        return Note("onParentalRating", std::string(contentId), ratings, std::string(drmSystemId));
    }

    Return<void> onPlaySpeedChanged(double speed) override { return Note("onPlaySpeedChanged", speed); }

    Return<void> onPlayPositionChanged(int32_t position) override { return Note("onPlayPositionChanged", position); }

    Return<void> onRecordingEvent(int32_t state, int32_t error, const Text& recordingId) override {
        return Note("onRecordingEvent", state, error, std::string(recordingId));
    }

    Return<void> onDrmRightsError(int32_t error, const Text& contentId, const Text& drmSystemId,
                                  const Text& rightsIssuerUrl) override {
        return Note("onDrmRightsError", error, std::string(contentId), std::string(drmSystemId),
                    std::string(rightsIssuerUrl));
    }

    Return<void> onComponentType11(int32_t componentType) override { return Note("onComponentType11", componentType); }

    Return<void> onComponentType15(int32_t componentType) override { return Note("onComponentType15", componentType); }

    Return<void> onStreamEvent(const Text& url, const Text& eventName, const Text& data,
                               const ::android::hardware::hidl_vec<uint8_t>& text, const Text& status) override {
        return Note("onStreamEvent", std::string(url), std::string(eventName), std::string(data),
                    std::string(text.begin(), text.end()), std::string(status));
    }
};

}  // namespace hbbtv::test
