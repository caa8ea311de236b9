// The methods of the package that plays have called, and the events of the wire that they have seen.
#pragma once

#include <set>
#include <string>

#include "package/description.h"

namespace hbbtv::ctl {

class Coverage {
  public:
    void Called(const Package::QualifiedMethod& method);

    // An event that was written to the library, or that a line of the play names.
    void Saw(const WireFamily& family, const Json::Value& event);

    // Prints how many there were, and each that was not; for programs as one JSON document.
    void Print(bool json) const;

  private:
    std::set<std::string> mMethods;
    std::set<std::string> mEvents;
};

}  // namespace hbbtv::ctl
