#include "traffic/walk.h"

#include <algorithm>
#include <optional>

#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/printable.h"
#include "traffic/view/line.h"
#include "traffic/view/members.h"
#include "traffic/view/names.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

using traffic::Record;

// A member of a message that is an argument: counts follow from lists.
struct Argument {
    const Json::Value* member;
    std::shared_ptr<const Type> type;  // on the wire
};

std::string KeyOf(const Json::Value& member) {
    const std::string key = member["key"].asString();
    return key.substr(0, key.find("%d"));
}

std::vector<Argument> ArgumentsOf(const Json::Value& members) {
    std::vector<Argument> arguments;
    for (const Parameter& parameter : WireArguments(members)) {
        const auto found = std::find_if(members.begin(), members.end(), [&parameter](const Json::Value& member) {
            return KeyOf(member) == parameter.name;
        });
        arguments.push_back({&*found, parameter.type});
    }
    return arguments;
}

// Returns the value of an argument: that of a list from its numbered members. Null if it is missing.
Json::Value ValueIn(const Json::Value& message, const Json::Value& member) {
    if (!member.isMember("repeat")) return message[member["key"].asString()];
    Json::Value list(Json::arrayValue);
    const Json::Value& count = message[member["repeat"].asString()];
    for (Json::ArrayIndex i = 0; count.isUInt() && i < count.asUInt(); ++i) {
        const std::string key = NumberedKey(member, i);
        if (!message.isMember(key)) return {};
        list.append(message[key]);
    }
    return list;
}

// Structs are their fields, one after the other, as on the wire. Callbacks are left out.
std::vector<const Type*> Flat(const std::vector<Parameter>& parameters) {
    std::vector<const Type*> types;
    for (const Parameter& parameter : parameters) {
        if (parameter.type->kind == Type::Kind::Callback) continue;
        if (parameter.type->kind != Type::Kind::Struct) {
            types.push_back(parameter.type.get());
            continue;
        }
        const std::vector<const Type*> fields = Flat(parameter.type->fields);
        types.insert(types.end(), fields.begin(), fields.end());
    }
    return types;
}

// Returns the values as the parameters take them, in the brackets of structs.
std::string Nested(const std::vector<Parameter>& parameters, const std::vector<std::string>& values, size_t& next) {
    std::string text;
    for (const Parameter& parameter : parameters) {
        text += text.empty() ? "" : ", ";
        if (parameter.type->kind == Type::Kind::Callback) {
            text += "@listen";
        } else if (parameter.type->kind == Type::Kind::Struct) {
            text += "{";
            for (size_t i = 0; i < parameter.type->fields.size(); ++i) {
                const Parameter& field = parameter.type->fields[i];
                text += (i == 0 ? "" : ", ") + field.name + ": " + Nested({field}, values, next);
            }
            text += "}";
        } else {
            text += values[next++];
        }
    }
    return text;
}

// A string of the language replaces names in braces.
bool HasNames(const std::string& text) {
    return text.find("{$") != std::string::npos;
}

const Interface* CallbackOf(const Interface& interface) {
    const Package& package = Package::Get();
    for (const Method& method : interface.methods) {
        for (const Parameter& argument : method.arguments) {
            if (argument.type->kind == Type::Kind::Callback) return &package.FindInterface(argument.type->name);
        }
    }
    return nullptr;
}

// Returns the client's method that an event reaches, or null.
const Method* MethodOf(const Record& event, const Interface*& callback) {
    const Json::Value* entry = ProtocolEntry(event);
    const Interface* interface = entry == nullptr ? nullptr : Package::Get().InterfaceOf(FindFamily(event.family));
    callback = interface == nullptr ? nullptr : CallbackOf(*interface);
    return callback == nullptr ? nullptr : callback->Find((*entry)["callback"].asString());
}

bool WasReceived(const Record& event) {
    return !event.WantsReply() || (event.reply && event.reply->json.isObject());
}

bool Registers(const Record& request) {
    return request.operation.find("RegisterCallback") != std::string::npos &&
           request.operation.find("Unregister") == std::string::npos;
}

std::string Comment(const Record& record) {
    return "# " + FullName(record) + " " + Printable(MembersText(record, record.message, traffic::Names())) + "\n";
}

}  // namespace

WalkWriter::WalkWriter(const traffic::RecordingHead& head, std::function<void(const std::string& text)> write)
    : mWrite(std::move(write)) {
    const std::string origin = head.directory.empty() ? "" : " in " + Printable(head.directory);
    mWrite("# What was recorded" + origin + ". Run it with hbbtvctl play.\n\n");
}

void WalkWriter::Add(const Record& record) {
    if (record.kind != Record::Kind::Exchange) return;
    mOrder.push_back({record.time.Wall(), mRecords.size()});
    Record kept = record;
    kept.library = kept.platform = {};  // not in the play
    mRecords.Add(kept);
    if (record.event) mHasEvents.insert(record.family);
}

void WalkWriter::Finish() {
    std::sort(mOrder.begin(), mOrder.end());
    std::optional<size_t> request;
    std::set<std::string> families;
    for (size_t i = 0; i < mOrder.size(); ++i) {
        const Record record = Recorded(i);
        if (!record.event) request = i;
        if (Registers(record)) families.insert(record.family);
        if (!record.event || !WasReceived(record) || ProtocolEntry(record) == nullptr) continue;
        // Some families register for events without a request.
        if (families.insert(record.family).second) mRegisterBefore[request.value_or(i)].push_back(record.family);
    }
    uint64_t before = mOrder.empty() ? 0 : mOrder[0].first;
    for (size_t i = 0; i < mOrder.size(); ++i) {
        const Record record = Recorded(i);
        RegisterBefore(i);
        const uint64_t time = record.time.Wall();
        if (record.event) {
            WriteEvent(record, time > before ? time - before : 0);
        } else {
            WriteRequest(record);
        }
        before = time + record.duration.value_or(0);
    }
}

void WalkWriter::RegisterBefore(size_t request) {
    const auto families = mRegisterBefore.find(request);
    if (families == mRegisterBefore.end()) return;
    for (const std::string& family : families->second) Register(family);
}

void WalkWriter::Register(const std::string& family) {
    const Interface* interface = Package::Get().InterfaceOf(FindFamily(family));
    const Method* method = interface == nullptr ? nullptr : interface->Find("RegisterCallback");
    if (method == nullptr) return;
    std::vector<std::string> kinds{"1"};
    for (const Parameter& argument : method->arguments) {
        if (argument.type->kind != Type::Kind::Enum) continue;
        kinds.clear();
        for (const Enumerator& kind : argument.type->enumerators) kinds.push_back(kind.name);
    }
    for (const std::string& kind : kinds) {
        std::string arguments;
        for (const Parameter& argument : method->arguments) {
            const Type::Kind type = argument.type->kind;
            arguments += arguments.empty() ? "" : ", ";
            arguments += type == Type::Kind::Callback ? "@listen" : type == Type::Kind::Enum ? kind : "1";
        }
        mWrite(interface->name + ".RegisterCallback(" + arguments + ")\n");
    }
    // What the recorded client replied.
    std::set<std::string> answered;
    for (size_t i = 0; i < mOrder.size() && mHasEvents.count(family) != 0; ++i) {
        const Record event = Recorded(i);
        const Interface* callback = nullptr;
        if (!event.event || event.family != family || !event.reply || !event.reply->json.isObject()) continue;
        const Method* received = MethodOf(event, callback);
        if (received == nullptr || received->results.empty() || !answered.insert(received->name).second) continue;
        const std::vector<Argument> members = ArgumentsOf((*ProtocolEntry(event))["reply"]);
        if (members.size() + 1 != received->results.size()) continue;
        std::string values = event.reply->json["ret"].asString();
        for (size_t member = 0; member < members.size(); ++member) {
            const Type& type = *received->results[member + 1].type;
            const Json::Value& facts = *members[member].member;
            const std::string value = Value(type, facts, ValueIn(event.reply->json, facts), false);
            values += value.empty() ? "" : ", " + value;
        }
        mWrite("answer " + callback->name + "." + received->name + " -> " + values + "\n");
    }
}

void WalkWriter::WriteRequest(const Record& record) {
    std::string line = CallOf(record);
    if (line.empty()) line = SendOf(record);
    mWrite(line.empty() || HasNames(line) ? Comment(record) : line + "\n");
    const Json::Value* entry = ProtocolEntry(record);
    if (entry == nullptr || (*entry)["effect"] != "release") return;
    for (const Json::Value& member : (*entry)["request"]) {
        if (!member.isMember("handle")) continue;
        const std::optional<uint64_t> handle = traffic::HandleIn(record.message.json[member["key"].asString()]);
        if (handle) mReleased.insert({member["handle"].asString(), *handle});
    }
}

std::string WalkWriter::CallOf(const Record& record) {
    const Json::Value* entry = ProtocolEntry(record);
    if (entry == nullptr || !record.message.json.isObject()) return "";
    const Interface* interface = Package::Get().InterfaceOf(FindFamily(record.family));
    const std::string name = entry->get("method", (*entry)["name"]).asString();
    const Method* method = interface == nullptr ? nullptr : interface->Find(name);
    if (method == nullptr) return "";
    const std::vector<const Type*> types = Flat(method->arguments);
    const std::vector<Argument> members = ArgumentsOf((*entry)["request"]);
    if (types.size() != members.size()) return "";
    std::vector<std::string> values;
    for (size_t i = 0; i < members.size(); ++i) {
        values.push_back(Value(*types[i], *members[i].member, ValueIn(record.message.json, *members[i].member), false));
        if (values.back().empty()) return "";
    }
    size_t next = 0;
    const std::string call = interface->name + "." + method->name + "(" + Nested(method->arguments, values, next) + ")";
    if (method->results.empty() || !record.WantsReply()) return call;
    return call + " -> " + ResultsOf(record, *method, (*entry)["reply"]);
}

std::string WalkWriter::ResultsOf(const Record& record, const Method& method, const Json::Value& members) {
    const Json::Value reply = record.reply ? record.reply->json : Json::Value();
    const bool status = reply.isObject() && reply["ret"].isInt();
    // The library returns -1 for a reply that it cannot use. One that did not come can be anything.
    std::string text = status ? reply["ret"].asString() : record.reply ? "-1" : "_";
    const std::vector<Argument> replied = ArgumentsOf(members);
    const bool known = status && reply["ret"].asInt() == 0 && replied.size() + 1 == method.results.size();
    for (size_t i = 1; i < method.results.size(); ++i) {
        std::string value;
        if (known && !(*replied[i - 1].member)["clock"].asBool()) {
            const Json::Value& member = *replied[i - 1].member;
            value = Value(*method.results[i].type, member, ValueIn(reply, member), true);
        }
        text += ", " + (value.empty() || HasNames(value) ? "_" : value);
    }
    return text;
}

std::string WalkWriter::SendOf(const Record& record) {
    const Json::Value* entry = ProtocolEntry(record);
    if (entry == nullptr || !record.message.json.isObject()) return "";
    std::string members;
    for (const Argument& argument : ArgumentsOf((*entry)["request"])) {
        const Json::Value value = ValueIn(record.message.json, *argument.member);
        const std::string text = Value(*argument.type, *argument.member, value, false);
        if (text.empty()) return "";
        members += (members.empty() ? "" : ", ") + KeyOf(*argument.member) + ": " + text;
    }
    const std::string line = "send " + record.family + "." + (*entry)["name"].asString() + " {" + members + "}";
    if (!record.WantsReply()) return line;
    if (!record.reply) return line + " -> _";
    return line + " -> " + ReplyOf(*record.reply, (*entry)["reply"]);
}

std::string WalkWriter::ReplyOf(const traffic::Message& reply, const Json::Value& members) {
    if (!reply.json.isObject()) return "_";
    std::map<std::string, std::string> values;
    for (const std::string& key : reply.json.getMemberNames())
        values[key] = key == "ret" ? reply.json[key].asString() : "_";
    for (const Argument& argument : ArgumentsOf(members)) {
        const std::string key = (*argument.member)["key"].asString();
        if (values.count(key) == 0 || (*argument.member)["clock"].asBool()) continue;
        const std::string value = Value(*argument.type, *argument.member, reply.json[key], true);
        if (!value.empty() && !HasNames(value)) values[key] = value;
    }
    std::string text;
    for (const auto& [key, value] : values) text += (text.empty() ? "" : ", ") + key + ": " + value;
    return "{" + text + "}";
}

void WalkWriter::WriteEvent(const Record& record, uint64_t waited) {
    const Interface* callback = nullptr;
    const Method* method = MethodOf(record, callback);
    if (method == nullptr || !WasReceived(record)) return mWrite(Comment(record));
    const std::vector<Argument> members = ArgumentsOf((*ProtocolEntry(record))["members"]);
    std::string patterns;
    for (size_t i = 0; i < method->arguments.size(); ++i) {
        std::string value;
        if (members.size() == method->arguments.size() && !(*members[i].member)["clock"].asBool()) {
            const Json::Value& member = *members[i].member;
            value = Value(*method->arguments[i].type, member, ValueIn(record.message.json, member), true);
        }
        patterns += (i == 0 ? "" : ", ") + (value.empty() || HasNames(value) ? "_" : value);
    }
    constexpr uint64_t kLongWait = 5000000;  // half of the limit that a line has anyway
    const std::string limit = waited > kLongWait ? " within " + std::to_string(waited / 500000) + "s" : "";
    mWrite("await " + callback->name + "." + method->name + "(" + patterns + ")" + limit + "\n");
}

std::string WalkWriter::Value(const Type& type, const Json::Value& member, const Json::Value& value, bool names) {
    const bool pointer = member["type"] == "pointer";
    switch (type.kind) {
        case Type::Kind::Integer:
        case Type::Kind::Enum:
            if (pointer && value.isString()) {
                const std::optional<uint64_t> handle = ParsePointer(value.asString());
                return handle ? HandleText(member.get("handle", "").asString(), *handle & UINT32_MAX, names) : "";
            }
            return value.isIntegral() ? value.asString() : value.isBool() ? (value.asBool() ? "1" : "0") : "";
        case Type::Kind::Bool:
            if (value.isIntegral()) return value.asInt64() != 0 ? "true" : "false";
            return value.isBool() ? (value.asBool() ? "true" : "false") : "";
        case Type::Kind::Real:
            return value.isNumeric() ? WriteJson(value) : "";
        case Type::Kind::Text:
            return value.isString() ? WriteJson(value) : "";
        case Type::Kind::Vector: {
            if (!value.isArray()) return "";
            std::string list;
            for (const Json::Value& element : value) {
                const std::string text = Value(*type.element, member, element, names);
                if (text.empty()) return "";
                list += (list.empty() ? "" : ", ") + text;
            }
            return "[" + list + "]";
        }
        default:
            return "";
    }
}

std::string WalkWriter::HandleText(const std::string& kind, uint64_t handle, bool names) {
    if (handle == 0 || kind.empty()) return HexText(handle);
    std::string& name = mNames[{kind, handle}];
    // After its release, a number in a reply is that of another object.
    const bool again = names && mReleased.erase({kind, handle}) != 0;
    if ((name.empty() || again) && names) name = "$" + kind + std::to_string(++mCounts[kind]);
    return name.empty() ? HexText(handle) : name;
}

}  // namespace hbbtv::ctl
