#include "wire/protocol.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <mutex>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/json.h"
#include "wire/protocol_files.h"

namespace hbbtv {

namespace {

// Adds the member that all requests of the family share to each of them.
void ShareObject(Json::Value& protocol) {
    const Json::Value object = protocol["envelope"]["object"];
    if (object.isNull()) return;
    for (Json::Value& operation : protocol["operations"]) operation["request"].insert(0, object);
}

// Parses a file when its family is first used: most programs use few families, and parsing all takes milliseconds.
class Families {
  public:
    Families() : mParsed(std::make_unique<std::once_flag[]>(ProtocolFiles().size())) {
        for (const ProtocolFile& file : ProtocolFiles()) mFamilies.push_back({file.family, {}});
    }

    const WireFamily& Parsed(size_t index) {
        WireFamily& family = mFamilies[index];
        std::call_once(mParsed[index], [&] {
            family.protocol = ParseJson(ProtocolFiles()[index].json);
            ShareObject(family.protocol);
        });
        return family;
    }

    const std::vector<WireFamily>& AllParsed() {
        for (size_t i = 0; i < mFamilies.size(); ++i) Parsed(i);
        return mFamilies;
    }

  private:
    std::vector<WireFamily> mFamilies;
    const std::unique_ptr<std::once_flag[]> mParsed;
};

Families& TheFamilies() {
    static Families families;
    return families;
}

// Makes "PlayState", "playstate" and "play state" the same event.
std::string FoldedEvent(const std::string& name) {
    std::string folded;
    for (const char c : name) {
        if (std::isalnum(static_cast<unsigned char>(c)) || c == ':' || c == '-') {
            folded += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    return folded;
}

// Returns whether a message has all the members of a request, but for numbered ones.
bool HasMembers(const Json::Value& message, const Json::Value& request) {
    return std::all_of(request.begin(), request.end(), [&message](const Json::Value& member) {
        const std::string key = member["key"].asString();
        return key.find('%') != std::string::npos || message.isMember(key);
    });
}

}  // namespace

std::string FoldedName(const std::string& name) {
    std::string folded;
    for (const char c : name) {
        if (c != '_') folded += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return folded;
}

bool IsInterfaceOf(const std::string& interface, const std::string& family) {
    return FoldedName(interface) == FoldedName(family) || FoldedName(interface) == "i" + FoldedName(family);
}

const Json::Value* WireFamily::Operation(const std::string& operation) const {
    const std::string wanted = FoldedName(operation);
    for (const Json::Value& candidate : protocol["operations"]) {
        if (FoldedName(candidate["name"].asString()) == wanted) return &candidate;
    }
    return nullptr;
}

std::set<std::string> WireFamily::OperationNames() const {
    std::set<std::string> names;
    for (const Json::Value& operation : protocol["operations"]) names.insert(operation["name"].asString());
    return names;
}

const Json::Value* WireFamily::OperationOf(const std::string& method) const {
    for (const Json::Value& candidate : protocol["operations"]) {
        if (candidate["method"] == method) return &candidate;
    }
    return Operation(method);
}

const Json::Value* WireFamily::RequestOf(const Json::Value& message) const {
    if (!message.isObject()) return nullptr;
    const Json::Value& code = message[protocol["envelope"]["code"]["key"].asString()];
    const Json::Value* first = nullptr;
    for (const Json::Value& candidate : protocol["operations"]) {
        if (!candidate.isMember("code") || candidate["code"] != code) continue;
        if (HasMembers(message, candidate["request"])) return &candidate;
        if (first == nullptr) first = &candidate;
    }
    return first;
}

const Json::Value& WireFamily::FindEvent(const std::string& wanted) const {
    std::set<std::string> known;
    for (const Json::Value& event : protocol["events"]) {
        const std::string code = event["code"].asString();
        for (const std::string& candidate :
             {code, event["object"].asString() + ":" + code, event["name"].asString(), event["callback"].asString()}) {
            if (!candidate.empty() && FoldedEvent(candidate) == FoldedEvent(wanted)) return event;
        }
        known.insert(event["name"].asString());
    }
    throw Failure(kUsage, "family " + name + " has no event \"" + wanted + "\"" +
                              DidYouMean(wanted, known, kShortList) + " (see `hbbtvctl describe " + name + "`)");
}

const Json::Value* WireFamily::EventOf(const Json::Value& message) const {
    const Json::Value& envelope = protocol["event_envelope"];
    if (!message.isObject()) return nullptr;
    for (const Json::Value& event : protocol["events"]) {
        const Json::Value& type = envelope["type"];
        const Json::Value& wanted = type.isMember("value") ? type["value"] : event["object"];
        if (!type.isNull() && message[type["key"].asString()] != wanted) continue;
        if (message[envelope["code"]["key"].asString()] == event["code"]) return &event;
    }
    return nullptr;
}

const std::vector<WireFamily>& WireFamilies() {
    return TheFamilies().AllParsed();
}

const WireFamily& FindFamily(const std::string& wanted) {
    std::set<std::string> known;
    for (size_t i = 0; i < ProtocolFiles().size(); ++i) {
        const char* const family = ProtocolFiles()[i].family;
        if (IsInterfaceOf(wanted, family)) return TheFamilies().Parsed(i);
        known.insert(family);
    }
    throw Failure(
        kUsage, "unknown family \"" + wanted + "\"" + DidYouMean(wanted, known, kShortList) + " (see `hbbtvctl list`)");
}

}  // namespace hbbtv
