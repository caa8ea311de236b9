#include "families/video_broadcast/stream_event_listeners.h"

#include <algorithm>

#include "core/error.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMostListeners = 256;

StreamEventScript ScriptOf(const Settings& settings) {
    if (!settings.streamEvents.empty()) return ReadStreamEventScript(settings.streamEvents);
    if (settings.streamEventInterval.count() == 0) return {};
    ScriptedStreamEvent counted;
    counted.time = settings.streamEventInterval;
    counted.repeats = true;
    return {counted};
}

}  // namespace

bool StreamEventListeners::Listener::operator==(const Listener& other) const {
    return objectUrl == other.objectUrl && dvbUrl == other.dvbUrl && eventName == other.eventName;
}

bool StreamEventListeners::Listener::Hears(const ScriptedStreamEvent& event) const {
    const bool object = event.url.empty() || event.url == objectUrl || event.url == dvbUrl;
    return object && (event.name.empty() || event.name == eventName);
}

StreamEventListeners::StreamEventListeners(EventLoop& loop, const Settings& settings,
                                           std::function<VideoBroadcastObject*()> viewed)
    : mCounted(settings.streamEvents.empty()), mViewed(std::move(viewed)) {
    for (ScriptedStreamEvent& event : ScriptOf(settings)) {
        mScript.push_back({std::move(event), std::make_unique<Timer>(loop)});
    }
}

void StreamEventListeners::Add(const std::string& objectUrl, const std::string& dvbUrl, const std::string& eventName) {
    const VideoBroadcastObject* object = mViewed();
    const bool tuned = object != nullptr && object->State() != PlayState::Unrealized;
    if (!tuned) throw Refused("no service is tuned");
    const Listener listener{objectUrl, dvbUrl, eventName};
    if (std::find(mListeners.begin(), mListeners.end(), listener) != mListeners.end()) return;
    if (mListeners.size() >= kMostListeners) throw Refused("too many stream-event listeners");
    mListeners.push_back(listener);
    if (mListeners.size() == 1) Begin();
}

void StreamEventListeners::Remove(const std::string& objectUrl, const std::string& dvbUrl,
                                  const std::string& eventName) {
    const auto found = std::find(mListeners.begin(), mListeners.end(), Listener{objectUrl, dvbUrl, eventName});
    if (found == mListeners.end()) throw Refused("there is no such stream-event listener");
    mListeners.erase(found);
    if (mListeners.empty()) End();
}

void StreamEventListeners::ServiceLeft(VideoBroadcastObject& object) {
    End();
    for (const Listener& listener : mListeners) SendError(object, listener);
    mListeners.clear();
}

void StreamEventListeners::Begin() {
    for (Waiting& waiting : mScript) Wait(waiting);
}

void StreamEventListeners::End() {
    for (Waiting& waiting : mScript) waiting.timer->Cancel();
}

void StreamEventListeners::Wait(Waiting& waiting) {
    waiting.timer->Start(waiting.event.time, [this, &waiting] { Fire(waiting); });
}

ScriptedStreamEvent StreamEventListeners::NextCounted() {
    ScriptedStreamEvent event;
    event.text = "stream event " + std::to_string(++mCount);
    event.data = Hexadecimal(event.text);
    return event;
}

void StreamEventListeners::SendError(VideoBroadcastObject& object, const Listener& listener) const {
    object.Events().StreamEvent(listener.objectUrl, listener.eventName, "", "", "error");
}

void StreamEventListeners::RemoveThatHear(const ScriptedStreamEvent& event) {
    const auto hears = [&](const Listener& listener) { return listener.Hears(event); };
    mListeners.erase(std::remove_if(mListeners.begin(), mListeners.end(), hears), mListeners.end());
    if (mListeners.empty()) End();
}

// Events are dropped while nothing is presented.
void StreamEventListeners::Fire(Waiting& waiting) {
    if (waiting.event.repeats) Wait(waiting);
    VideoBroadcastObject* object = mViewed();
    if (object == nullptr || object->State() != PlayState::Presenting) return;
    const ScriptedStreamEvent event = mCounted ? NextCounted() : waiting.event;
    for (const Listener& listener : mListeners) {
        if (!listener.Hears(event)) continue;
        if (event.error) {
            SendError(*object, listener);
        } else {
            object->Events().StreamEvent(listener.objectUrl, listener.eventName, event.data, event.text, "trigger");
        }
    }
    if (event.error) RemoveThatHear(event);
}

}  // namespace hbbtv::sim
