// A video/broadcast client's callback that keeps what it is told, one line per call, and what is linked to its death.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcastCallback.h>

#include <mutex>
#include <sstream>
#include <string>
#include <vector>

namespace hbbtv::test {

class RecordingCallback : public vantorel::hardware::hbbtv::V1_0::IVideoBroadcastCallback {
  public:
    template <typename T>
    using Return = ::android::hardware::Return<T>;
    using Text = ::android::hardware::hidl_string;
    using Recipient = ::android::hardware::hidl_death_recipient;

    std::vector<std::string> Calls() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCalls;
    }

    // Recipients that are linked now.
    std::vector<android::sp<Recipient>> Linked() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mLinked;
    }

    // Tells the linked recipients that this client's process has ended.
    void Die() {
        for (const android::sp<Recipient>& recipient : Linked()) {
            recipient->serviceDied(0, android::wp<android::hidl::base::V1_0::IBase>(this));
        }
    }

    Return<bool> linkToDeath(const android::sp<Recipient>& recipient, uint64_t cookie) override {
        std::lock_guard<std::mutex> lock(mMutex);
        mLinked.push_back(recipient);
        mCookie = cookie;
        return true;
    }

    Return<bool> unlinkToDeath(const android::sp<Recipient>& recipient) override {
        std::lock_guard<std::mutex> lock(mMutex);
        for (auto linked = mLinked.begin(); linked != mLinked.end(); ++linked) {
            if (*linked != recipient) continue;
            mLinked.erase(linked);
            return true;
        }
        return false;
    }

    uint64_t Cookie() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCookie;
    }

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

  private:
    // "name value value ..."; numbers in decimal, texts as they are.
    template <typename... Values>
    Return<void> Note(const char* name, const Values&... values) {
        std::ostringstream line;
        line << name;
        ((line << ' ' << values), ...);
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.push_back(line.str());
        return ::android::hardware::Void();
    }

    mutable std::mutex mMutex;
    std::vector<std::string> mCalls;              // guarded by mMutex
    std::vector<android::sp<Recipient>> mLinked;  // guarded by mMutex
    uint64_t mCookie = ~uint64_t{0};              // guarded by mMutex
};

}  // namespace hbbtv::test
