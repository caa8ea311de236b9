// The programmes of all services, from a file or generated. The guide owns them; handles and results share ownership.
// Later calls return the same object, with the values that clients have set.
#pragma once

#include <functional>

#include "television/programmes/programme.h"

namespace hbbtv::sim {

class Guide {
  public:
    // Called with a programme; returning false ends the iteration.
    using Visitor = std::function<bool(const std::shared_ptr<Programme>&)>;

    Guide() = default;
    virtual ~Guide() = default;
    Guide(const Guide&) = delete;
    Guide& operator=(const Guide&) = delete;

    // Visits the programmes of a service that are on air at any time within the range, sorted by time. They do not
    // overlap and are not copied.
    virtual void Walk(const std::shared_ptr<const Service>& service, TimeRange range, const Visitor& visit) = 0;

    // Returns the range of time with known programmes.
    virtual TimeRange Known(std::time_t now) const = 0;

    // Returns the programme on air at that time and the next one, as far as they exist.
    ProgrammeList NowAndNext(const std::shared_ptr<const Service>& service, std::time_t time);
};

}  // namespace hbbtv::sim
