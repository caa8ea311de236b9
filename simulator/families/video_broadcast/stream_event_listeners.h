// Stream-event listeners of the applications. They belong to the service that is tuned: a change of channel removes
// them, with one error event each.
#pragma once

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "core/event_loop.h"
#include "families/video_broadcast/video_broadcast_object.h"

namespace hbbtv::sim {

class StreamEventListeners {
  public:
    // `viewed` gives the object in front of the viewer, null without one.
    StreamEventListeners(EventLoop& loop, std::chrono::milliseconds interval,
                         std::function<VideoBroadcastObject*()> viewed);

    // Throw Refused.
    void Add(const std::string& objectUrl, const std::string& dvbUrl, const std::string& eventName);
    void Remove(const std::string& objectUrl, const std::string& dvbUrl, const std::string& eventName);

    // The events of the errors go to the object that left its service.
    void ServiceLeft(VideoBroadcastObject& object);

  private:
    using Listener = std::tuple<std::string, std::string, std::string>;

    void Wait();
    void Fire();

    std::chrono::milliseconds mInterval;
    std::function<VideoBroadcastObject*()> mViewed;
    std::vector<Listener> mListeners;
    unsigned mCount = 0;
    Timer mTimer;
};

}  // namespace hbbtv::sim
