// The events of one video/broadcast object. They carry the context that was registered for the object; an object
// without a registration does not send events.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/handles.h"
#include "family/family.h"

namespace hbbtv::sim {

class ObjectEvents {
  public:
    explicit ObjectEvents(EventSink& sink) : mSink(sink) {}

    void Register(uint64_t context) { mContext = context; }
    void Unregister() { mContext.reset(); }

    void ChannelError(Handle channel, int error);
    void PlayState(int state, int error);
    void ChannelChanged(Handle channel, Handle viewerChannel, int quiet);
    void FullScreen(bool full);
    void PlaySpeed(double speed);
    void PlayPosition(int milliseconds);
    void Recording(int state, int error, const std::string& id);
    void SelectedComponent(int componentType);
    void ParentalRatingChange(Handle ratings, bool blocked);
    void StreamEvent(const std::string& url, const std::string& name, const std::string& data, const std::string& text,
                     const std::string& status);

  private:
    void Send(const char* event, Json::Value members);

    EventSink& mSink;
    std::optional<uint64_t> mContext;
};

}  // namespace hbbtv::sim
