#include "traffic/web/record_ring.h"

#include <algorithm>

#include "common/text/json.h"

namespace hbbtv::traffic {

void RecordRing::Add(const Record& record) {
    auto line = std::make_shared<const std::string>(WriteJson(ToJson(record)));
    const std::lock_guard<std::mutex> lock(mMutex);
    mBytes += line->size();
    mEntries.push_back({record.number, std::move(line)});
    while (mBytes > mMostBytes && mEntries.size() > 1) {
        mBytes -= mEntries.front().line->size();
        mDroppedUpTo = mEntries.front().number;
        mEntries.pop_front();
    }
}

RecordRing::Part RecordRing::After(uint64_t number, size_t bytes) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    Part part;
    if (number < mDroppedUpTo) part.missing = mDroppedUpTo - number;
    auto entry = std::upper_bound(mEntries.begin(), mEntries.end(), number,
                                  [](uint64_t wanted, const Entry& other) { return wanted < other.number; });
    size_t taken = 0;
    for (; entry != mEntries.end() && (taken == 0 || taken + entry->line->size() <= bytes); ++entry) {
        taken += entry->line->size();
        part.lines.emplace_back(entry->number, entry->line);
    }
    return part;
}

}  // namespace hbbtv::traffic
