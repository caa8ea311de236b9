#include "traffic/report/slowest.h"

#include "traffic/view/line.h"

namespace hbbtv::traffic {

void Slowest::Add(const Record& record, const Names& names) {
    if (record.kind != Record::Kind::Exchange || !record.WantsReply()) return;
    if (!record.reply) {
        if (mOpen.size() < kMost) {
            mOpen.push_back(Line(record, names, mZone));
        } else {
            ++mMoreOpen;
        }
        return;
    }
    if (!record.duration) return;
    if (mSlowest.size() == kMost && *record.duration <= mSlowest.begin()->first) return;
    mSlowest.emplace(*record.duration, Line(record, names, mZone));
    if (mSlowest.size() > kMost) mSlowest.erase(mSlowest.begin());
}

std::vector<std::string> Slowest::Lines() const {
    std::vector<std::string> lines = mOpen;
    if (mMoreOpen > 0) lines.push_back("and " + std::to_string(mMoreOpen) + " more without a reply");
    for (auto it = mSlowest.rbegin(); it != mSlowest.rend(); ++it) lines.push_back(it->second);
    return lines;
}

}  // namespace hbbtv::traffic
