#include "traffic/compare/handles.h"

#include "common/text/pointer_text.h"

namespace hbbtv::traffic {

std::optional<uint32_t> Handles::Live(const std::string& kind, uint32_t recorded) const {
    const auto found = mLive.find({kind, recorded});
    if (found == mLive.end()) return std::nullopt;
    return found->second;
}

std::set<uint32_t> Handles::Recorded(const std::string& kind, uint32_t live) const {
    const auto found = mRecorded.find({kind, live});
    return found == mRecorded.end() ? std::set<uint32_t>() : found->second;
}

bool Handles::Same(const std::string& kind, uint32_t recorded, uint32_t live) const {
    const auto known = mRecorded.find({kind, live});
    if (known != mRecorded.end()) return known->second.count(recorded) != 0;
    return mLive.count({kind, recorded}) == 0;
}

bool Handles::Fit(const std::string& kind, uint32_t recorded, uint32_t live) const {
    const auto known = mRecorded.find({kind, live});
    if (known == mRecorded.end() || known->second.count(recorded) != 0) return true;
    return mLive.count({kind, recorded}) == 0;
}

void Handles::Bind(const std::string& kind, uint32_t recorded, uint32_t live) {
    mLive[{kind, recorded}] = live;
    mRecorded[{kind, live}].insert(recorded);
}

void Handles::Learn(const MessageFacts& facts, const Json::Value& recorded, const Json::Value& live) {
    if (!live.isObject()) return;
    ForEachHandle(facts, recorded, [&](const std::string& key, const std::string& kind, uint32_t handle) {
        const std::optional<uint32_t> other = ReadHandle(live[key]);
        if (other && *other != 0) Bind(kind, handle, *other);
    });
}

void Handles::Forget(const MessageFacts& facts, const Json::Value& recorded) {
    ForEachHandle(facts, recorded, [this](const std::string&, const std::string& kind, uint32_t handle) {
        const auto found = mLive.find({kind, handle});
        if (found == mLive.end()) return;
        mRecorded.erase({kind, found->second});
        mLive.erase(found);
    });
}

Json::Value Handles::Translated(const MessageFacts& facts, const Json::Value& recorded) const {
    Json::Value message = recorded;
    ForEachHandle(facts, recorded, [&](const std::string& key, const std::string& kind, uint32_t handle) {
        if (const std::optional<uint32_t> live = Live(kind, handle)) message[key] = PointerText(*live);
    });
    return message;
}

}  // namespace hbbtv::traffic
