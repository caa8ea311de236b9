#include "traffic/view/names.h"

#include "traffic/view/members.h"

namespace hbbtv::traffic {

namespace {

// Returns the handle of the object that a request is about: the first one of its members in protocol/ that has a kind.
std::optional<uint64_t> ObjectOf(const Json::Value& entry, const Json::Value& payload) {
    for (const Json::Value& member : entry["request"]) {
        if (member.isMember("handle")) return HandleIn(payload[member["key"].asString()]);
    }
    return std::nullopt;
}

// Returns the name in a payload if the operation reads or sets the name of its object.
std::optional<std::string> NameIn(const std::string& operation, const Json::Value& payload) {
    const bool ofName = operation.size() > 4 && operation.compare(operation.size() - 4, 4, "Name") == 0;
    if (!ofName) return std::nullopt;
    for (const char* key : {"name", "out_name", "in_name"}) {
        if (payload[key].isString()) return payload[key].asString();
    }
    return std::nullopt;
}

}  // namespace

Names::Object& Names::Remembered(uint64_t handle) {
    const auto found = mObjects.find(handle);
    if (found != mObjects.end()) return found->second;
    // What was released is still in the order, so this may remove nothing; but the order is as short as the map's
    // limit.
    if (mOrder.size() >= kMost) {
        mObjects.erase(mOrder.front());
        mOrder.pop_front();
    }
    mOrder.push_back(handle);
    return mObjects[handle];
}

void Names::LearnHandles(const Json::Value& members, const Json::Value& payload) {
    for (const Json::Value& member : members) {
        if (!member.isMember("handle")) continue;
        const std::string key = member["key"].asString();
        for (const std::string& actual : payload.getMemberNames()) {
            const std::optional<uint64_t> handle = IsKey(actual, key) ? HandleIn(payload[actual]) : std::nullopt;
            if (!handle) continue;
            Object& object = Remembered(*handle);
            if (object.kind != member["handle"].asString()) object = {member["handle"].asString(), ""};
        }
    }
}

void Names::Learn(const Record& record) {
    if (record.kind != Record::Kind::Exchange || record.event || record.status != 0) return;
    const Json::Value* const entry = ProtocolEntry(record);
    if (entry == nullptr || !record.message.json.isObject()) return;
    const Json::Value& request = record.message.json;
    const std::optional<uint64_t> object = ObjectOf(*entry, request);
    if ((*entry)["effect"] == "release") {
        if (object) mObjects.erase(*object);
        return;
    }
    LearnHandles((*entry)["request"], request);
    if (!record.reply || !record.reply->json.isObject()) return;
    LearnHandles((*entry)["reply"], record.reply->json);
    if (!object) return;
    std::optional<std::string> name = NameIn(record.operation, record.reply->json);
    if (!name) name = NameIn(record.operation, request);
    if (name) Remembered(*object).name = *name;
}

std::string Names::Of(uint64_t handle) const {
    const auto found = mObjects.find(handle);
    return found == mObjects.end() ? "" : found->second.name;
}

std::string Names::KindOf(uint64_t handle) const {
    const auto found = mObjects.find(handle);
    return found == mObjects.end() ? "" : found->second.kind;
}

}  // namespace hbbtv::traffic
