// From the built-in text to the package: see description.h.
#include <json/reader.h>

#include <cctype>
#include <set>

#include "common/nearest_name.h"
#include "failure.h"
#include "package/description.h"

namespace hbbtv::ctl {

namespace {

// "IChannelConfig", "channel_config" and "ChannelConfig" are the same name.
std::string Folded(const std::string& name) {
    std::string folded;
    for (const char c : name) {
        if (c != '_') folded += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return folded;
}

bool SameInterface(const std::string& interface, const std::string& name) {
    return Folded(interface) == Folded(name) || Folded(interface.substr(1)) == Folded(name);
}

Json::Value Parse(const char* text) {
    Json::CharReaderBuilder builder;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    const std::string bytes(text);
    if (!reader->parse(bytes.data(), bytes.data() + bytes.size(), &root, &errors)) throw std::logic_error(errors);
    return root;
}

constexpr size_t kMostNames = 20;

struct IntegerType {
    const char* name;
    int bits;
    bool isSigned;
};
constexpr IntegerType kIntegers[] = {{"int8_t", 8, true},     {"int16_t", 16, true},  {"int32_t", 32, true},
                                     {"int64_t", 64, true},   {"uint8_t", 8, false},  {"uint16_t", 16, false},
                                     {"uint32_t", 32, false}, {"uint64_t", 64, false}};

void MakeInteger(Type& type, const std::string& name) {
    for (const IntegerType& integer : kIntegers) {
        if (name != integer.name) continue;
        type.bits = integer.bits;
        type.isSigned = integer.isSigned;
        return;
    }
    throw std::logic_error("no type " + name);
}

}  // namespace

std::string DidYouMean(const std::string& name, const std::vector<std::string>& known) {
    const std::string text = hbbtv::DidYouMean(name, std::set<std::string>(known.begin(), known.end()));
    // All that there are, when none is near; too many are no help.
    const bool all = text.rfind("; known are", 0) == 0;
    return all && known.size() > kMostNames ? "" : text;
}

const Method* Interface::Find(const std::string& method) const {
    const std::string wanted = Folded(method);
    for (const Method& candidate : methods) {
        if (Folded(candidate.name) == wanted) return &candidate;
    }
    return nullptr;
}

const Json::Value* WireFamily::Operation(const std::string& operation) const {
    const std::string wanted = Folded(operation);
    for (const Json::Value& candidate : protocol["operations"]) {
        if (Folded(candidate["name"].asString()) == wanted) return &candidate;
    }
    return nullptr;
}

std::vector<std::string> WireFamily::OperationNames() const {
    std::vector<std::string> names;
    for (const Json::Value& operation : protocol["operations"]) names.push_back(operation["name"].asString());
    return names;
}

const Json::Value* WireFamily::OperationOf(const Method& method) const {
    for (const Json::Value& candidate : protocol["operations"]) {
        if (candidate["method"] == method.name) return &candidate;
    }
    return Operation(method.name);
}

const Package& Package::Get() {
    static const Package package(Parse(kDescription));
    return package;
}

std::shared_ptr<const Type> Package::MakeType(const std::string& typeName) const {
    for (const auto& known : types) {
        if (known->name == typeName) return known;
    }
    auto type = std::make_shared<Type>();
    type->name = typeName;
    if (typeName == "bool") {
        type->kind = Type::Kind::Bool;
    } else if (typeName == "string") {
        type->kind = Type::Kind::Text;
    } else if (typeName == "float" || typeName == "double") {
        type->kind = Type::Kind::Real;
    } else if (typeName.rfind("vec<", 0) == 0) {
        type->kind = Type::Kind::Vector;
        type->element = MakeType(typeName.substr(4, typeName.size() - 5));
    } else if (typeName.size() > 1 && typeName[0] == 'I' && std::isupper(static_cast<unsigned char>(typeName[1]))) {
        type->kind = Type::Kind::Callback;
    } else {
        type->kind = Type::Kind::Integer;
        MakeInteger(*type, typeName);
    }
    return type;
}

Package::Package(const Json::Value& description) : name(description["package"].asString()) {
    const auto parametersOf = [this](const Json::Value& list) {
        std::vector<Parameter> parameters;
        for (const Json::Value& entry : list) {
            parameters.push_back({entry["name"].asString(), MakeType(entry["type"].asString())});
        }
        return parameters;
    };
    // In the order of the .hal file, where a struct stands behind the types that it holds.
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
    for (const Json::Value& protocol : description["families"]) {
        WireFamily family{protocol["family"].asString(), "", protocol};
        for (const Interface& interface : interfaces) {
            if (SameInterface(interface.name, family.name)) family.interface = interface.name;
        }
        families.push_back(std::move(family));
    }
}

const Interface& Package::FindInterface(const std::string& wanted) const {
    std::vector<std::string> known;
    for (const Interface& interface : interfaces) {
        if (SameInterface(interface.name, wanted)) return interface;
        known.push_back(interface.name);
    }
    throw Failure(kUsage, "there is no interface \"" + wanted + "\"" + DidYouMean(wanted, known) +
                              " (`hbbtvctl list` shows all)");
}

const WireFamily& Package::FindFamily(const std::string& wanted) const {
    std::vector<std::string> known;
    for (const WireFamily& family : families) {
        if (Folded(family.name) == Folded(wanted) ||
            (!family.interface.empty() && SameInterface(family.interface, wanted))) {
            return family;
        }
        known.push_back(family.name);
    }
    throw Failure(kUsage,
                  "there is no family \"" + wanted + "\"" + DidYouMean(wanted, known) + " (`hbbtvctl list` shows all)");
}

Package::QualifiedMethod Package::FindMethod(const std::string& wanted) const {
    const size_t dot = wanted.find('.');
    if (dot == std::string::npos) {
        throw Failure(kUsage, "\"" + wanted + "\" is no method: write INTERFACE.METHOD, as in IChannel.GetOnid");
    }
    const Interface& interface = FindInterface(wanted.substr(0, dot));
    const std::string methodName = wanted.substr(dot + 1);
    if (const Method* method = interface.Find(methodName)) return {&interface, method};
    std::vector<std::string> known;
    for (const Method& method : interface.methods) known.push_back(method.name);
    throw Failure(kUsage, interface.name + " has no method \"" + methodName + "\"" + DidYouMean(methodName, known) +
                              " (`hbbtvctl describe " + interface.name + "` shows all)");
}

const WireFamily* Package::FamilyOf(const Interface& interface) const {
    for (const WireFamily& family : families) {
        if (family.interface == interface.name) return &family;
    }
    return nullptr;
}

const Interface* Package::InterfaceOf(const WireFamily& family) const {
    for (const Interface& interface : interfaces) {
        if (interface.name == family.interface) return &interface;
    }
    return nullptr;
}

}  // namespace hbbtv::ctl
