// The way of one handle through the traffic: where it came from, who used it, where it was released.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// Takes all records in their order. Not thread-safe.
class Follow {
  public:
    explicit Follow(uint64_t handle) : mHandle(static_cast<uint32_t>(handle)) {}

    // Returns whether the record is about the handle: one of its members is the handle, or it is an event for the
    // context with which a request about the handle has registered.
    bool Concerns(const Record& record);

    // Returns a line for each fact: what created the handle, how often it was used, what released it, uses after that.
    std::vector<std::string> Facts() const;

  private:
    void Count(const Record& record);

    const uint32_t mHandle;
    std::set<std::string> mContexts;
    std::string mCreated;
    std::string mReleased;
    bool mIsReleased = false;
    uint64_t mUses = 0;
    uint64_t mFailures = 0;
    uint64_t mEvents = 0;
    uint64_t mLateUses = 0;
    std::string mFirstLate;
};

}  // namespace hbbtv::traffic
