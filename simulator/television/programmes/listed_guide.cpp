#include "television/programmes/listed_guide.h"

#include <algorithm>

namespace hbbtv::sim {

void ListedGuide::Add(const Service& service, ProgrammeList programmes) {
    if (programmes.empty()) return;
    const TimeRange added{programmes.front()->onAir.from, programmes.back()->onAir.to};
    mKnown = mSize == 0 ? added : TimeRange{std::min(mKnown.from, added.from), std::max(mKnown.to, added.to)};
    mSize += programmes.size();
    mProgrammes[&service] = std::move(programmes);
}

void ListedGuide::Walk(const std::shared_ptr<const Service>& service, TimeRange range, const Visitor& visit) {
    const auto found = mProgrammes.find(service.get());
    if (found == mProgrammes.end()) return;
    const ProgrammeList& programmes = found->second;
    auto programme = std::partition_point(programmes.begin(), programmes.end(),
                                          [&](const auto& earlier) { return earlier->onAir.to <= range.from; });
    for (; programme != programmes.end() && (*programme)->onAir.Meets(range); ++programme) {
        if (!visit(*programme)) return;
    }
}

}  // namespace hbbtv::sim
