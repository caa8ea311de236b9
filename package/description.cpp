#include "package/description.h"

#include <cctype>
#include <set>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/json.h"

namespace hbbtv {

const Method* Interface::Find(const std::string& method) const {
    const std::string wanted = FoldedName(method);
    for (const Method& candidate : methods) {
        if (FoldedName(candidate.name) == wanted) return &candidate;
    }
    return nullptr;
}

const Package& Package::Get() {
    static const Package package(Description());
    return package;
}

const Json::Value& Package::Description() {
    static const Json::Value description = ParseJson(kDescription);
    return description;
}

Package::Package(const Json::Value& description) : name(description["package"].asString()) {
    const auto parametersOf = [this](const Json::Value& list) {
        std::vector<Parameter> parameters;
        for (const Json::Value& entry : list) {
            const auto type = entry["bytes"].asBool() ? MakeBytes() : MakeType(entry["type"].asString(), types);
            parameters.push_back({entry["name"].asString(), type});
        }
        return parameters;
    };
    // In the order of the .hal file, where the types of its fields precede a struct.
    for (const Json::Value& entry : description["types"]) {
        auto type = std::make_shared<Type>();
        type->name = entry["name"].asString();
        type->doc = entry["doc"].asString();
        type->kind = entry["kind"] == "enum" ? Type::Kind::Enum : Type::Kind::Struct;
        if (type->kind == Type::Kind::Enum) MakeInteger(*type, entry["of"].asString());
        for (const Json::Value& e : entry["enumerators"]) {
            type->enumerators.push_back({e["name"].asString(), e["value"].asInt64(), e["doc"].asString()});
        }
        type->fields = parametersOf(entry["fields"]);
        types.push_back(type);
    }
    for (const Json::Value& entry : description["interfaces"]) {
        Interface interface;
        interface.name = entry["name"].asString();
        interface.doc = entry["doc"].asString();
        interface.callback = entry["callback"].asBool();
        for (const Json::Value& method : entry["methods"]) {
            interface.methods.push_back({method["name"].asString(), method["doc"].asString(),
                                         parametersOf(method["arguments"]), parametersOf(method["results"])});
        }
        interfaces.push_back(std::move(interface));
    }
}

const Interface& Package::FindInterface(const std::string& wanted) const {
    std::set<std::string> known;
    for (const Interface& interface : interfaces) {
        if (IsInterfaceOf(interface.name, wanted) || interface.name == wanted) return interface;
        known.insert(interface.name);
    }
    throw Failure(kUsage, "unknown interface \"" + wanted + "\"" + DidYouMean(wanted, known, kShortList) +
                              " (see `hbbtvctl list`)");
}

Package::QualifiedMethod Package::FindMethod(const std::string& wanted) const {
    const size_t dot = wanted.find('.');
    if (dot == std::string::npos) {
        throw Failure(kUsage,
                      "\"" + wanted + "\" is not a method: write INTERFACE.METHOD, for example IChannel.GetOnid");
    }
    const Interface& interface = FindInterface(wanted.substr(0, dot));
    const std::string methodName = wanted.substr(dot + 1);
    if (const Method* method = interface.Find(methodName)) return {&interface, method};
    std::set<std::string> known;
    for (const Method& method : interface.methods) known.insert(method.name);
    throw Failure(kUsage, interface.name + " has no method \"" + methodName + "\"" +
                              DidYouMean(methodName, known, kShortList) + " (see `hbbtvctl describe " + interface.name +
                              "`)");
}

const WireFamily* Package::FamilyOf(const Interface& interface) const {
    for (const WireFamily& family : WireFamilies()) {
        if (IsInterfaceOf(interface.name, family.name)) return &family;
    }
    return nullptr;
}

const Interface* Package::InterfaceOf(const WireFamily& family) const {
    for (const Interface& interface : interfaces) {
        if (IsInterfaceOf(interface.name, family.name)) return &interface;
    }
    return nullptr;
}

}  // namespace hbbtv
