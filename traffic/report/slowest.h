// The exchanges that took longest.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "traffic/record/record.h"
#include "traffic/view/names.h"

namespace hbbtv::traffic {

class Slowest {
  public:
    static constexpr size_t kMost = 20;

    explicit Slowest(const std::string& zone) : mZone(zone) {}

    void Add(const Record& record, const Names& names);

    // Returns the lines of the exchanges without a reply (at most kMost, and how many more there are), then those of
    // the slowest ones, slowest first.
    std::vector<std::string> Lines() const;

  private:
    const std::string mZone;
    std::vector<std::string> mOpen;
    uint64_t mMoreOpen = 0;
    std::multimap<uint64_t, std::string> mSlowest;  // by duration
};

}  // namespace hbbtv::traffic
