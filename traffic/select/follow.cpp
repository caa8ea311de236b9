#include "traffic/select/follow.h"

#include "traffic/view/members.h"

namespace hbbtv::traffic {

namespace {

constexpr size_t kMostContexts = 100;

std::string ContextOf(const Record& record) {
    if (!record.message.json.isObject()) return "";
    const Json::Value& context = record.message.json["context"];
    return HandleIn(context) ? context.asString() : "";
}

std::string Place(const Record& record) {
    return FullName(record) + " (record " + std::to_string(record.number) + ")";
}

std::string Times(uint64_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

bool Follow::Concerns(const Record& record) {
    if (record.kind != Record::Kind::Exchange) return false;
    const bool inRequest = HasHandle(record.message.json, mHandle);
    const bool inReply = record.reply && HasHandle(record.reply->json, mHandle);
    const std::string context = ContextOf(record);
    if (!inRequest && !inReply) {
        if (!record.event || context.empty() || mContexts.count(context) == 0) return false;
        ++mEvents;
        return true;
    }
    if (record.event) {
        ++mEvents;
    } else {
        if (!context.empty() && mContexts.size() < kMostContexts) mContexts.insert(context);
        if (inReply && (mCreated.empty() || mIsReleased)) {
            mCreated = Place(record);
            mIsReleased = false;
        }
        if (inRequest) Count(record);
    }
    return true;
}

void Follow::Count(const Record& record) {
    const Json::Value* const entry = ProtocolEntry(record);
    ++mUses;
    if (IsError(record)) ++mFailures;
    if (mIsReleased) {
        if (mLateUses++ == 0) mFirstLate = Place(record);
    } else if (entry != nullptr && (*entry)["effect"] == "release" && record.status == 0) {
        mIsReleased = true;
        mReleased = Place(record);
    }
}

std::vector<std::string> Follow::Facts() const {
    std::vector<std::string> facts;
    facts.push_back(mCreated.empty() ? "created before the recording" : "from the reply of " + mCreated);
    facts.push_back(Times(mUses, "request") + ", " + std::to_string(mFailures) + " failed; " + Times(mEvents, "event"));
    facts.push_back(mReleased.empty() ? "not released" : "released by " + mReleased);
    if (mLateUses > 0)
        facts.push_back("used after its release " + Times(mLateUses, "time") + ", first by " + mFirstLate);
    return facts;
}

}  // namespace hbbtv::traffic
