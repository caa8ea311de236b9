#include "values.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>
#include <stdexcept>

#include "wire/message.h"

namespace hbbtv::test {

namespace {

bool IsBool(const Json::Value& member) {
    return member["type"] == "bool" || member["max"] == 1;
}

Json::Value Scalar(const std::string& type, const std::string& name, int seed) {
    if (type == "int") return -seed;
    if (type == "uint") return 4000000000u + static_cast<unsigned>(seed);
    if (type == "int64") return Json::Value::Int64{-4000000000000000} - seed;
    if (type == "uint64") return Json::Value::UInt64{10000000000000000000u} + static_cast<unsigned>(seed);
    if (type == "double") return -seed - 0.375;
    if (type == "pointer") return 0xc0000000u + static_cast<unsigned>(seed);
    if (type == "string") return name + " of " + std::to_string(seed);
    throw std::logic_error("a member of type " + type);
}

// Numbers of a list that may stand for bytes: beyond a byte, with one whose low byte is zero.
Json::Value List(const std::string& type, const std::string& name, int seed) {
    Json::Value list(Json::arrayValue);
    for (const int low : {0x41, 0, 0x62}) {
        list.append(type == "int" ? Json::Value(-256 * seed + low) : Scalar(type, name, 16 * seed + low));
    }
    return list;
}

Json::Value Records(const Json::Value& members, int seed) {
    Json::Value records(Json::arrayValue);
    for (const int record : {0, 1, 2}) records.append(ValuesFor(members, seed + 10 * (record + 1), record));
    return records;
}

uint64_t Bits(const Json::Value& pointer) {
    return std::strtoull(pointer.asCString(), nullptr, 16);
}

Json::Value ValueIn(const Json::Value& document, const Json::Value& member, const std::string& name) {
    const std::string key = member["key"].asString();
    Json::Value list(Json::arrayValue);
    if (member.isMember("fields")) {
        std::istringstream columns(document[key].asString());
        for (int number; columns >> number;) list.append(number);
    } else if (member.isMember("repeat")) {
        for (int i = 0; document.isMember(name + std::to_string(i)); ++i) {
            const Json::Value& value = document[name + std::to_string(i)];
            list.append(member["type"] == "pointer" ? Json::Value(Json::UInt64{Bits(value)}) : value);
        }
    } else if (member["type"] == "pointer") {
        return Json::UInt64{Bits(document[key])};
    } else {
        return document[key];
    }
    return list;
}

}  // namespace

const Json::Value& MemberOf(const Json::Value& members, const std::string& argument) {
    const auto member = std::find_if(members.begin(), members.end(), [&](const Json::Value& candidate) {
        return candidate["key"] == (candidate.isMember("repeat") ? argument + "%d" : argument);
    });
    if (member == members.end()) throw std::logic_error("no member " + argument);
    return *member;
}

int CountBools(const Json::Value& members) {
    return static_cast<int>(std::count_if(members.begin(), members.end(), IsBool));
}

std::vector<std::string> ArgumentNames(const Json::Value& members) {
    std::set<std::string> sizes;
    for (const Json::Value& member : members) sizes.insert(member["size"].asString());
    std::vector<std::string> names;
    for (const Parameter& argument : WireArguments(members)) {
        if (sizes.count(argument.name) == 0) names.push_back(argument.name);
    }
    return names;
}

Json::Value ValuesFor(const Json::Value& members, int seed, int trueBool) {
    Json::Value values(Json::objectValue);
    int bools = 0;
    for (const std::string& name : ArgumentNames(members)) {
        const Json::Value& member = MemberOf(members, name);
        const std::string type = member["type"].asString();
        const int own = seed + static_cast<int>(values.size()) + 1;
        if (IsBool(member)) {
            const bool value = trueBool == kAllBools || trueBool == bools++;
            values[name] = type == "bool" ? Json::Value(value) : Json::Value(value ? 1 : 0);
        } else if (member.isMember("fields")) {
            values[name] = List(member["fields"]["type"].asString(), name, own);
        } else if (member.isMember("repeat")) {
            values[name] = List(type, name, own);
        } else if (type == "array" && member["items"].isArray()) {
            values[name] = Records(member["items"], seed);
            values[member["size"].asString()] = values[name].size();
        } else if (type == "array") {
            values[name] = List(member["items"].asString(), name, own);
        } else if (member.isMember("max")) {
            values[name] = own % member["max"].asInt();
        } else {
            values[name] = Scalar(type, name, own);
        }
    }
    return values;
}

Json::Value ValuesOf(const Json::Value& members, const Json::Value& document) {
    Json::Value values(Json::objectValue);
    for (const std::string& name : ArgumentNames(members)) {
        values[name] = ValueIn(document, MemberOf(members, name), name);
    }
    return values;
}

std::vector<Result> ResultsOf(const Json::Value& reply) {
    std::vector<Result> results;
    std::string out;
    for (const std::string& name : ArgumentNames(reply)) {
        const Json::Value& member = MemberOf(reply, name);
        const bool list = member.isMember("repeat") || member.isMember("fields");
        if (member["out"] != out || results.empty()) results.push_back({member["type"].asString(), {}, list});
        results.back().arguments.push_back(name);
        out = member["out"].asString();
    }
    return results;
}

}  // namespace hbbtv::test
