// The television's capabilities as the document that browsers request (OIPF DAE volume 5, HbbTV), and its free
// decoders.
#pragma once

#include <string>
#include <vector>

#include "television/tv.h"

namespace hbbtv::sim {

class Capabilities {
  public:
    explicit Capabilities(const Tv& tv);

    // The base profile and its fragments: "OITF_HD_UIPROF+META_SI+...".
    std::string Profile() const;

    std::string Xml() const;

    // Returns whether the profile has the base or fragment of this number, see docs/simulator.md.
    bool Has(int number) const;

  private:
    std::string Extensions() const;

    const Tv& mTv;
    std::vector<std::string> mFragments;  // the base comes first
    std::vector<std::string> mBroadcasts;
};

// Returns how many more videos can be decoded while the current service is presented.
unsigned ExtraVideoDecodes(const Tv& tv, bool highDefinition);

}  // namespace hbbtv::sim
