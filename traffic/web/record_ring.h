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

    // The oldest ones are dropped if the lines are too long in all.
    void Add(const Record& record);

    struct Part {
        std::vector<std::shared_ptr<const std::string>> lines;
        uint64_t position = 0;  // of the last one: 1 for the first record that was added
        uint64_t missing = 0;   // records before them that are not kept
    };

    // Returns the records after this position, as many as fit into `bytes`, but at least one if there is one.
    Part After(uint64_t position, size_t bytes) const;

  private:
    const size_t mMostBytes;
    mutable std::mutex mMutex;  // guards the following
    std::deque<std::shared_ptr<const std::string>> mLines;
    size_t mBytes = 0;      // of the lines
    uint64_t mDropped = 0;  // lines
};

}  // namespace hbbtv::traffic
