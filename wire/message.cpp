#include "wire/message.h"

#include <set>

#include "common/text/json.h"
#include "common/text/pointer_text.h"

namespace hbbtv {

namespace {

// Returns "channel" for "channel%d".
std::string ArgumentName(const Json::Value& member) {
    const std::string key = member["key"].asString();
    return member.isMember("repeat") ? key.substr(0, key.find("%d")) : key;
}

std::set<std::string> Counts(const Json::Value& members) {
    std::set<std::string> counts;
    for (const Json::Value& member : members) {
        if (member.isMember("repeat")) counts.insert(member["repeat"].asString());
        if (member.isMember("fields")) counts.insert(member["fields"]["repeat"].asString());
    }
    return counts;
}

// Returns the name of the same type in .hal files. Users write handles as integers; on the wire they are strings.
std::string HalName(const std::string& wireType) {
    if (wireType == "int") return "int32_t";
    if (wireType == "uint") return "uint32_t";
    if (wireType == "int64") return "int64_t";
    if (wireType == "uint64" || wireType == "pointer") return "uint64_t";
    return wireType;
}

std::shared_ptr<const Type> TypeOf(const Json::Value& member) {
    const std::string wireType = member["type"].asString();
    if (member.isMember("fields")) return MakeType("vec<" + HalName(member["fields"]["type"].asString()) + ">");
    if (member.isMember("repeat")) return MakeType("vec<" + HalName(wireType) + ">");
    if (wireType == "array" && member["items"].isString()) {
        return MakeType("vec<" + HalName(member["items"].asString()) + ">");
    }
    if (wireType != "array") return MakeType(HalName(wireType));
    auto record = std::make_shared<Type>();
    record->name = member["key"].asString() + " element";
    record->kind = Type::Kind::Struct;
    record->fields = WireArguments(member["items"]);
    auto list = std::make_shared<Type>();
    list->name = "vec<" + record->name + ">";
    list->kind = Type::Kind::Vector;
    list->element = record;
    return list;
}

Json::Value OnTheWire(const Json::Value& member, const std::string& type, const Json::Value& value) {
    if (type == "pointer" && value.isUInt64()) return PointerText(value.asUInt64());
    if (type != "array" || !member["items"].isArray() || !value.isArray()) return value;
    Json::Value list(Json::arrayValue);
    for (const Json::Value& element : value) {
        Json::Value record(Json::objectValue);
        if (element.isObject()) AddMembers(member["items"], element, record);
        list.append(element.isObject() ? record : element);
    }
    return list;
}

std::string Columns(const Json::Value& fields, const Json::Value& values) {
    std::string text;
    for (const Json::Value& value : values) {
        std::string column = value.isConvertibleTo(Json::stringValue) ? value.asString() : WriteJson(value);
        column.resize(std::max(column.size(), size_t{fields["width"].asUInt()}), ' ');
        text += column;
    }
    return text;
}

void AddMember(const Json::Value& member, const Json::Value& value, Json::Value& message) {
    const std::string key = member["key"].asString();
    const std::string type = member["type"].asString();
    const bool several = member.isMember("fields") || member.isMember("repeat");
    if (several && !value.isArray()) {
        message[ArgumentName(member)] = value;
    } else if (member.isMember("fields")) {
        message[key] = Columns(member["fields"], value);
        message[member["fields"]["repeat"].asString()] = value.size();
    } else if (member.isMember("repeat")) {
        for (Json::ArrayIndex i = 0; i < value.size(); ++i) {
            message[NumberedKey(member, i)] = OnTheWire(member, type, value[i]);
        }
        message[member["repeat"].asString()] = value.size();
    } else {
        message[key] = OnTheWire(member, type, value);
    }
}

}  // namespace

std::string NumberedKey(const Json::Value& member, Json::ArrayIndex number) {
    const std::string numbered = ArgumentName(member) + std::to_string(number);
    return member.isMember("key_length") ? numbered.substr(0, member["key_length"].asUInt()) : numbered;
}

std::vector<Parameter> WireArguments(const Json::Value& members) {
    const std::set<std::string> counts = Counts(members);
    std::vector<Parameter> arguments;
    for (const Json::Value& member : members) {
        if (counts.count(member["key"].asString()) != 0) continue;
        arguments.push_back({ArgumentName(member), TypeOf(member)});
    }
    return arguments;
}

void AddMembers(const Json::Value& members, const Json::Value& values, Json::Value& message) {
    std::set<std::string> lists;
    for (const Json::Value& member : members) {
        const std::string name = ArgumentName(member);
        if (!member.isMember("repeat") && !member.isMember("fields")) continue;
        lists.insert(name);
        if (values.isMember(name)) AddMember(member, values[name], message);
    }
    // After the lists: a count that is given replaces that of its list.
    std::set<std::string> names = lists;
    for (const Json::Value& member : members) {
        const std::string name = ArgumentName(member);
        if (names.insert(name).second && values.isMember(name)) AddMember(member, values[name], message);
    }
    for (const std::string& other : values.getMemberNames()) {
        if (names.count(other) == 0) message[other] = values[other];
    }
}

Json::Value MakeRequest(const WireFamily& family, const Json::Value& operation, const Json::Value& values) {
    const Json::Value& envelope = family.protocol["envelope"];
    Json::Value message(Json::objectValue);
    if (envelope.isMember("type")) message[envelope["type"]["key"].asString()] = envelope["type"]["value"];
    message[envelope["code"]["key"].asString()] = operation["code"];
    AddMembers(operation["request"], values, message);
    return message;
}

Json::Value EventMembers(const WireFamily& family, const Json::Value& event) {
    const Json::Value& envelope = family.protocol["event_envelope"];
    Json::Value members = event["members"];
    for (const std::string& name : envelope.getMemberNames()) {
        if (name != "type" && name != "code") members.append(envelope[name]);
    }
    return members;
}

Json::Value MakeEvent(const WireFamily& family, const Json::Value& event, const Json::Value& values) {
    const Json::Value& envelope = family.protocol["event_envelope"];
    Json::Value message(Json::objectValue);
    if (envelope.isMember("type")) {
        const Json::Value& type = envelope["type"];
        message[type["key"].asString()] = type.isMember("value") ? type["value"] : event["object"];
    }
    message[envelope["code"]["key"].asString()] = event["code"];
    AddMembers(EventMembers(family, event), values, message);
    return message;
}

std::string WireText(const Json::Value& message) {
    return message.toStyledString();
}

}  // namespace hbbtv
