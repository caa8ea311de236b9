#include "traffic/web/record_ring.h"

#include "common/text/json.h"

namespace hbbtv::traffic {

void RecordRing::Add(const Record& record) {
    auto line = std::make_shared<const std::string>(WriteJson(ToJson(record)));
    const std::lock_guard<std::mutex> lock(mMutex);
    mBytes += line->size();
    mLines.push_back(std::move(line));
    while (mBytes > mMostBytes && mLines.size() > 1) {
        mBytes -= mLines.front()->size();
        mLines.pop_front();
        ++mDropped;
    }
}

RecordRing::Part RecordRing::After(uint64_t position, size_t bytes) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    Part part;
    part.missing = position < mDropped ? mDropped - position : 0;
    // A position of another server is not one of this one.
    const uint64_t begin = position + part.missing > mDropped + mLines.size() ? mDropped : position + part.missing;
    size_t taken = 0;
    size_t next = static_cast<size_t>(begin - mDropped);
    for (; next < mLines.size() && (taken == 0 || taken + mLines[next]->size() <= bytes); ++next) {
        taken += mLines[next]->size();
        part.lines.push_back(mLines[next]);
    }
    part.position = mDropped + next;
    return part;
}

}  // namespace hbbtv::traffic
