#include "play/coverage.h"

#include <cstdio>

#include "common/text/json.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

std::string NameOf(const WireFamily& family, const Json::Value& event) {
    const std::string object = event["object"].asString();
    const std::string code = event["code"].asString();
    return family.name + " " + (object == "mediasync" ? object + ":" : "") + code;
}

std::set<std::string> AllMethods() {
    std::set<std::string> names;
    for (const Interface& interface : Package::Get().interfaces) {
        if (interface.callback) continue;
        for (const Method& method : interface.methods) names.insert(interface.name + "." + method.name);
    }
    return names;
}

std::set<std::string> AllEvents() {
    std::set<std::string> names;
    for (const WireFamily& family : WireFamilies()) {
        for (const Json::Value& event : family.protocol["events"]) names.insert(NameOf(family, event));
    }
    return names;
}

Json::Value Covered(const std::set<std::string>& all, const std::set<std::string>& seen) {
    Json::Value covered(Json::objectValue);
    covered["all"] = static_cast<Json::UInt64>(all.size());
    covered["missing"] = Json::Value(Json::arrayValue);
    for (const std::string& name : all) {
        if (seen.count(name) == 0) covered["missing"].append(name);
    }
    return covered;
}

void PrintLines(const char* what, const Json::Value& covered) {
    const auto all = covered["all"].asUInt();
    std::printf("%s: %u of %u\n", what, all - covered["missing"].size(), all);
    for (const Json::Value& name : covered["missing"]) std::printf("  not %s\n", name.asCString());
}

}  // namespace

void Coverage::Called(const Package::QualifiedMethod& method) {
    mMethods.insert(method.Name());
}

void Coverage::Saw(const WireFamily& family, const Json::Value& event) {
    mEvents.insert(NameOf(family, event));
}

void Coverage::Print(bool json) const {
    Json::Value document(Json::objectValue);
    document["methods"] = Covered(AllMethods(), mMethods);
    document["events"] = Covered(AllEvents(), mEvents);
    if (json) {
        std::printf("%s\n", WriteJson(document).c_str());
    } else {
        PrintLines("methods called", document["methods"]);
        PrintLines("events seen", document["events"]);
    }
}

}  // namespace hbbtv::ctl
