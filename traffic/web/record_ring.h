// The latest records as lines, for readers that come, go and come back.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// Thread-safe.
class RecordRing {
  public:
    static constexpr size_t kMostBytes = 128u << 20;

    explicit RecordRing(size_t mostBytes = kMostBytes) : mMostBytes(mostBytes) {}

    // Records have ascending numbers. The oldest ones are dropped if the lines are too long in all.
    void Add(const Record& record);

    struct Part {
        std::vector<std::pair<uint64_t, std::shared_ptr<const std::string>>> lines;  // with their numbers
        uint64_t missing = 0;  // records before them that are not kept
    };

    // Returns the records after this number, as many as fit into `bytes`, but at least one if there is one.
    Part After(uint64_t number, size_t bytes) const;

  private:
    struct Entry {
        uint64_t number;
        std::shared_ptr<const std::string> line;
    };

    const size_t mMostBytes;
    mutable std::mutex mMutex;  // guards the following
    std::deque<Entry> mEntries;
    size_t mBytes = 0;          // of the lines
    uint64_t mDroppedUpTo = 0;  // number of the last one that was dropped
};

}  // namespace hbbtv::traffic
