// Numbers of the traffic: calls, errors, bytes and times per operation, the slowest exchanges, what is open.
#pragma once

#include <json/value.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// Times in microseconds. Takes the same memory for any number of them: percentiles are exact to 1/32 of their value.
class Durations {
  public:
    void Add(uint64_t microseconds);

    uint64_t Count() const { return mCount; }
    uint64_t Longest() const { return mLongest; }

    // Returns the time that this part of them, 0 to 1, does not exceed; 0 if there are none.
    uint64_t Percentile(double part) const;

  private:
    static constexpr size_t kSteps = 32;  // of a power of two
    static constexpr size_t kPowers = 36;

    static size_t SlotOf(uint64_t microseconds);

    std::vector<uint32_t> mSlots;  // as many as are needed so far
    uint64_t mCount = 0;
    uint64_t mLongest = 0;
};

// Not thread-safe. The memory depends on the number of operations, not on that of records.
class Statistics {
  public:
    struct Operation {
        std::string family;
        std::string name;  // of the operation or the event
        bool event = false;
        uint64_t calls = 0;
        uint64_t errors = 0;
        uint64_t bytes = 0;
        Durations durations;
    };

    void Add(const Record& record);

    // Returns the operations by name, a summary line before them and the slowest and open exchanges after them. `zone`
    // is that of the recording.
    std::string Text(const std::string& zone = "") const;

    // Returns "records", "operations", "slowest" and "open", as record.schema.json defines them.
    Json::Value Json() const;

    // Returns the numbers of an operation: "calls", "errors", "bytes"; if there were replies, "p50_us", "p99_us",
    // "max_us".
    static Json::Value Json(const Operation& operation);

    // By full name: "channel.GetName".
    const std::map<std::string, Operation>& Operations() const { return mOperations; }

  private:
    void AddSlow(const Record& record);

    std::map<std::string, Operation> mOperations;
    std::array<uint64_t, 5> mKinds{};  // records of each kind
    uint64_t mErrors = 0;
    uint64_t mBytes = 0;
    uint64_t mOpenCount = 0;
    uint64_t mFirst = 0;  // wall clock
    uint64_t mLast = 0;
    std::vector<Record> mSlowest;  // without payloads, the slowest one first
    std::vector<Record> mOpen;     // the same; the first ones
};

}  // namespace hbbtv::traffic
