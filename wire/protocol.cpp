#include "wire/protocol.h"

#include <cctype>
#include <sstream>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/json.h"

namespace hbbtv {

namespace {

// Adds the member that all requests of the family share to each of them.
void ShareObject(Json::Value& protocol) {
    const Json::Value object = protocol["envelope"]["object"];
    if (object.isNull()) return;
    for (Json::Value& operation : protocol["operations"]) operation["request"].insert(0, object);
}

std::vector<WireFamily> ReadFamilies() {
    std::vector<WireFamily> families;
    std::istringstream lines(kProtocol);
    for (std::string line; std::getline(lines, line);) {
        Json::Value protocol = ParseJson(line);
        ShareObject(protocol);
        families.push_back({protocol["family"].asString(), protocol});
    }
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

const std::vector<WireFamily>& WireFamilies() {
    static const std::vector<WireFamily> families = ReadFamilies();
    return families;
}

const WireFamily& FindFamily(const std::string& wanted) {
    std::set<std::string> known;
    for (const WireFamily& family : WireFamilies()) {
        if (IsInterfaceOf(wanted, family.name)) return family;
        known.insert(family.name);
    }
    throw Failure(
        kUsage, "unknown family \"" + wanted + "\"" + DidYouMean(wanted, known, kShortList) + " (see `hbbtvctl list`)");
}

}  // namespace hbbtv
