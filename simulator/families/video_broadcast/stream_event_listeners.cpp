// Stream events: see stream_event_listeners.h.
#include "families/video_broadcast/stream_event_listeners.h"

#include <algorithm>
#include <cstdio>

#include "core/arguments.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMostListeners = 256;

std::string Hexadecimal(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        char two[3];
        std::snprintf(two, sizeof(two), "%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        text += two;
    }
    return text;
}

}  // namespace

StreamEventListeners::StreamEventListeners(EventLoop& loop, std::chrono::milliseconds interval,
                                           std::function<VideoBroadcastObject*()> viewed)
    : mInterval(interval), mViewed(std::move(viewed)), mTimer(loop) {}

void StreamEventListeners::Add(const std::string& objectUrl, const std::string& dvbUrl, const std::string& eventName) {
    const VideoBroadcastObject* object = mViewed();
    const bool tuned = object != nullptr && object->State() != PlayState::Unrealized;
    if (!tuned) throw Refused("no service is tuned");
    const Listener listener(objectUrl, dvbUrl, eventName);
    if (std::find(mListeners.begin(), mListeners.end(), listener) != mListeners.end()) return;
    if (mListeners.size() >= kMostListeners) throw Refused("too many stream-event listeners");
    mListeners.push_back(listener);
    if (!mTimer.Running()) Wait();
}

void StreamEventListeners::Remove(const std::string& objectUrl, const std::string& dvbUrl,
                                  const std::string& eventName) {
    const auto found = std::find(mListeners.begin(), mListeners.end(), Listener(objectUrl, dvbUrl, eventName));
    if (found == mListeners.end()) throw Refused("there is no such stream-event listener");
    mListeners.erase(found);
    if (mListeners.empty()) mTimer.Cancel();
}

void StreamEventListeners::ServiceLeft(VideoBroadcastObject& object) {
    mTimer.Cancel();
    for (const Listener& listener : mListeners) {
        object.Events().StreamEvent(std::get<0>(listener), std::get<2>(listener), "", "", "error");
    }
    mListeners.clear();
}

void StreamEventListeners::Wait() {
    if (mInterval.count() > 0) mTimer.Start(mInterval, [this] { Fire(); });
}

void StreamEventListeners::Fire() {
    Wait();
    VideoBroadcastObject* object = mViewed();
    if (object == nullptr || object->State() != PlayState::Presenting) return;
    const std::string text = "stream event " + std::to_string(++mCount);
    for (const Listener& listener : mListeners) {
        object->Events().StreamEvent(std::get<0>(listener), std::get<2>(listener), Hexadecimal(text), text, "trigger");
    }
}

}  // namespace hbbtv::sim
