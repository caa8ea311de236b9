// What the television can do, as the document that browsers ask for (OIPF DAE volume 5, HbbTV), and what its decoders
// are still free for.
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

    // By the numbers of docs/simulator.md: whether the profile has the base or the fragment.
    bool Has(int number) const;

  private:
    std::string Extensions() const;

    const Tv& mTv;
    std::vector<std::string> mFragments;  // the base comes first
    std::vector<std::string> mBroadcasts;
};

// How many videos more can be decoded while what is on is presented.
unsigned ExtraVideoDecodes(const Tv& tv, bool highDefinition);

}  // namespace hbbtv::sim
