// The application manager's events and queries to the library.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "family/family.h"
#include "television/applications/applications.h"

namespace hbbtv::sim {

class ApplicationEvents {
  public:
    explicit ApplicationEvents(EventSink& sink) : mSink(sink) {}

    void ApplicationLoaded(const ApplicationId& id);

    // Reports whether the picture has the whole screen, and whether because an application ended.
    void BroadcastFullScreen(bool full, bool destroyed);

    // The function gets the rating, or nothing if there is no reply.
    void AskParentalRating(const std::string& country, std::function<void(std::optional<int>)> onRating);

  private:
    EventSink& mSink;
};

}  // namespace hbbtv::sim
