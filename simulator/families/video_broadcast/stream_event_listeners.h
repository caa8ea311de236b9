// Stream-event listeners of the applications, and the events for them: from the script or, without one, at an interval
// for all of them. Listeners belong to the tuned service: a channel change removes them, with one error event each.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/event_loop.h"
#include "families/video_broadcast/stream_event_script.h"
#include "families/video_broadcast/video_broadcast_object.h"

namespace hbbtv::sim {

class StreamEventListeners {
  public:
    // `viewed` returns the object that the viewer sees, or null. Throws Fatal for an invalid script.
    StreamEventListeners(EventLoop& loop, const Settings& settings, std::function<VideoBroadcastObject*()> viewed);

    // Throw Refused.
    void Add(const std::string& objectUrl, const std::string& dvbUrl, const std::string& eventName);
    void Remove(const std::string& objectUrl, const std::string& dvbUrl, const std::string& eventName);

    // The error events are sent to the object that left its service.
    void ServiceLeft(VideoBroadcastObject& object);

  private:
    struct Listener {
        std::string objectUrl;
        std::string dvbUrl;
        std::string eventName;

        bool operator==(const Listener& other) const;
        bool Hears(const ScriptedStreamEvent& event) const;
    };

    // An event of the script and its timer.
    struct Waiting {
        ScriptedStreamEvent event;
        std::unique_ptr<Timer> timer;
    };

    void Begin();
    void End();
    void Wait(Waiting& waiting);
    void Fire(Waiting& waiting);
    ScriptedStreamEvent NextCounted();
    void RemoveThatHear(const ScriptedStreamEvent& event);
    void SendError(VideoBroadcastObject& object, const Listener& listener) const;

    const bool mCounted;  // without a script, the event is numbered
    std::function<VideoBroadcastObject*()> mViewed;
    std::vector<Listener> mListeners;
    std::vector<Waiting> mScript;
    unsigned mCount = 0;
};

}  // namespace hbbtv::sim
