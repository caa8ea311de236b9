// The programmes of all services, wherever they come from: a file, or made up. The guide owns them; whoever holds one
// for longer (a handle, a result) shares it, and asking again gives the same object with what clients have set.
#pragma once

#include <functional>

#include "television/programmes/programme.h"

namespace hbbtv::sim {

class Guide {
  public:
    // Gets a programme; false ends the walk.
    using Visitor = std::function<bool(const std::shared_ptr<Programme>&)>;

    Guide() = default;
    virtual ~Guide() = default;
    Guide(const Guide&) = delete;
    Guide& operator=(const Guide&) = delete;

    // Through the programmes of a service that are on air at any time within the range, in order of time. They do not
    // overlap. Nothing is copied.
    virtual void Walk(const std::shared_ptr<const Service>& service, TimeRange range, const Visitor& visit) = 0;

    // The time of which programmes are known, for whoever wants all there are.
    virtual TimeRange Known(std::time_t now) const = 0;

    // The programme that runs at that time and the one behind it. Less when there is less.
    ProgrammeList NowAndNext(const std::shared_ptr<const Service>& service, std::time_t time);
};

}  // namespace hbbtv::sim
