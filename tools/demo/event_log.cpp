#include "event_log.h"

#include <vantorel/hardware/hbbtv/1.0/types.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace hbbtv::demo {

namespace {

using vantorel::hardware::hbbtv::V1_0::TolmVBErrorState;
using vantorel::hardware::hbbtv::V1_0::TolmVBPlayState;

// The enumerator's name in plain words; a number without a name stays a number.
template <typename Enumeration>
std::string Words(int32_t value) {
    for (const Enumeration known : ::android::hardware::hidl_enum_range<Enumeration>()) {
        if (static_cast<int32_t>(known) != value) continue;
        std::string words = toString(known);
        for (char& c : words) c = c == '_' ? ' ' : static_cast<char>(std::tolower(c));
        return words;
    }
    return std::to_string(value);
}

std::string Quoted(const ::android::hardware::hidl_string& text) {
    return "\"" + std::string(text) + "\"";
}

}  // namespace

std::string PlayStateName(int32_t state) {
    return Words<TolmVBPlayState>(state);
}

std::string ErrorName(int32_t error) {
    return Words<TolmVBErrorState>(error);
}

void EventLog::Name(int64_t channel, const std::string& name) {
    std::lock_guard<std::mutex> lock(mMutex);
    mNames[channel] = name;
}

std::string EventLog::NameOf(int64_t channel) const {
    char handle[32];
    std::snprintf(handle, sizeof(handle), "0x%llx", static_cast<unsigned long long>(channel));
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mNames.find(channel);
    return found == mNames.end() ? std::string("channel ") + handle : found->second + " (" + handle + ")";
}

void EventLog::Forget() {
    std::lock_guard<std::mutex> lock(mMutex);
    mSeen.clear();
}

bool EventLog::WaitFor(const std::string& event, int64_t value, std::chrono::milliseconds patience) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mCame.wait_for(lock, patience, [&] {
        return std::any_of(mSeen.begin(), mSeen.end(),
                           [&](const Seen& seen) { return seen.event == event && seen.value == value; });
    });
}

EventLog::Return<void> EventLog::Note(const std::string& event, int64_t value, const std::string& values) {
    mTranscript.Event(event, values);
    std::lock_guard<std::mutex> lock(mMutex);
    mSeen.push_back({event, value});
    mCame.notify_all();
    return {};
}

EventLog::Return<void> EventLog::onVideoBroadcastEvent(int32_t event) {
    return Note("onVideoBroadcastEvent", event, "event " + std::to_string(event));
}

EventLog::Return<void> EventLog::onChannelChangeError(int64_t channel, int32_t errorState) {
    return Note("onChannelChangeError", errorState, NameOf(channel) + ": " + ErrorName(errorState));
}

EventLog::Return<void> EventLog::onPlayStateChange(int32_t state, int32_t error) {
    const bool unrealized = state == static_cast<int32_t>(TolmVBPlayState::UNREALIZED);
    return Note("onPlayStateChange", state,
                PlayStateName(state) + (unrealized && error != 0 ? " (" + ErrorName(error) + ")" : ""));
}

EventLog::Return<void> EventLog::onChannelChangeSucceeded(int64_t channel, int64_t, int32_t quiet) {
    return Note("onChannelChangeSucceeded", channel, NameOf(channel) + (quiet != 0 ? ", quiet" : ""));
}

EventLog::Return<void> EventLog::onFullScreenChange(int32_t fullScreen) {
    return Note("onFullScreenChange", fullScreen, fullScreen != 0 ? "entered" : "left");
}

EventLog::Return<void> EventLog::onParentalRatingBlocked(const Text& contentId, int64_t, const Text&, bool blocked) {
    return Note("onParentalRatingBlocked", blocked, Quoted(contentId) + (blocked ? " blocked" : " not blocked"));
}

EventLog::Return<void> EventLog::onParentalRating(const Text& contentId, int64_t, const Text&) {
    return Note("onParentalRating", 0, Quoted(contentId));
}

EventLog::Return<void> EventLog::onPlaySpeedChanged(double speed) {
    return Note("onPlaySpeedChanged", static_cast<int64_t>(speed), std::to_string(speed));
}

EventLog::Return<void> EventLog::onPlayPositionChanged(int32_t position) {
    return Note("onPlayPositionChanged", position, std::to_string(position) + " ms");
}

EventLog::Return<void> EventLog::onRecordingEvent(int32_t state, int32_t error, const Text& recordingId) {
    return Note("onRecordingEvent", state,
                "state " + std::to_string(state) + ", error " + std::to_string(error) + ", " + Quoted(recordingId));
}

EventLog::Return<void> EventLog::onDrmRightsError(int32_t error, const Text& contentId, const Text&, const Text&) {
    return Note("onDrmRightsError", error, "error " + std::to_string(error) + ", " + Quoted(contentId));
}

EventLog::Return<void> EventLog::onComponentType11(int32_t componentType) {
    return Note("onComponentType11", componentType, "type " + std::to_string(componentType));
}

EventLog::Return<void> EventLog::onComponentType15(int32_t componentType) {
    return Note("onComponentType15", componentType, "type " + std::to_string(componentType));
}

EventLog::Return<void> EventLog::onStreamEvent(const Text&, const Text& eventName, const Text& data,
                                               const ::android::hardware::hidl_vec<uint8_t>&, const Text& status) {
    return Note("onStreamEvent", 0, Quoted(eventName) + " " + Quoted(data) + " " + std::string(status));
}

}  // namespace hbbtv::demo
