// The methods that plays have called, and the wire events that they have seen.
#pragma once

#include <set>
#include <string>

#include "package/description.h"

namespace hbbtv::ctl {

class Coverage {
  public:
    void Called(const Package::QualifiedMethod& method);

    // Records an event that was written to the library, or is named by a line of the play.
    void Saw(const WireFamily& family, const Json::Value& event);

    // Prints the numbers, and lists what is missing; for programs as one JSON document.
    void Print(bool json) const;

  private:
    std::set<std::string> mMethods;
    std::set<std::string> mEvents;
};

}  // namespace hbbtv::ctl
