// What the application manager tells and asks the library.
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

    // Whether the picture has the whole screen, and whether that is because an application ended.
    void BroadcastFullScreen(bool full, bool destroyed);

    // The function gets the rating; nothing when nobody answers it.
    void AskParentalRating(const std::string& country, std::function<void(std::optional<int>)> onRating);

  private:
    EventSink& mSink;
};

}  // namespace hbbtv::sim
