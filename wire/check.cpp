#include "wire/check.h"

#include <algorithm>
#include <optional>
#include <set>

#include "common/nearest_name.h"
#include "common/text/json.h"
#include "wire/message.h"

namespace hbbtv {

namespace {

// No document has more values, so a count beyond this is wrong in any case.
constexpr int64_t kMostMembers = 100000;
constexpr size_t kLongestShown = 60;

bool IsWhole(const Json::Value& value) {
    return value.type() == Json::intValue || value.type() == Json::uintValue;
}

// Returns the value of a count, or nothing if it is wrong, which is a finding of its own.
std::optional<int64_t> Count(const Json::Value& value) {
    if (!IsWhole(value) || !value.isInt64()) return std::nullopt;
    return value.asInt64();
}

bool IsHandle(const Json::Value& value) {
    if (!value.isString()) return false;
    const std::string text = value.asString();
    if (text.empty()) return true;
    return text.size() > 2 && text.size() <= 10 && text.compare(0, 2, "0x") == 0 &&
           text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos;
}

bool Is(const std::string& type, const Json::Value& value) {
    if (type == "int") return IsWhole(value) && value.isInt();
    if (type == "uint") return IsWhole(value) && value.isUInt();
    if (type == "int64") return IsWhole(value) && value.isInt64();
    if (type == "uint64") return IsWhole(value) && value.isUInt64();
    if (type == "bool") return value.isBool();
    if (type == "double") return value.isNumeric();
    if (type == "string") return value.isString();
    if (type == "pointer") return IsHandle(value);
    return value.isArray();
}

std::string InWords(const std::string& type) {
    if (type == "int") return "an integer from -2147483648 to 2147483647";
    if (type == "uint") return "an integer from 0 to 4294967295";
    if (type == "int64") return "an integer of 64 bits";
    if (type == "uint64") return "an integer of 64 bits that is not negative";
    if (type == "bool") return "true or false";
    if (type == "double") return "a number";
    if (type == "string") return "a string";
    if (type == "pointer") return "a handle, a string of 0x and at most 8 hexadecimal digits, or \"\" for null";
    return "an array";
}

std::string Shown(const Json::Value& value) {
    const std::string text = WriteJson(value);
    return text.size() <= kLongestShown ? text : text.substr(0, kLongestShown) + "...";
}

// Compares one object with its members.
class Checker {
  public:
    Checker(const Json::Value& message, std::string where, std::vector<std::string>& problems)
        : mMessage(message), mWhere(std::move(where)), mProblems(problems) {}

    void Members(const Json::Value& members) {
        for (const Json::Value& member : members) Member(member);
    }

    void Constant(const std::string& key, const Json::Value& expected) {
        mKnown.insert(key);
        if (!mMessage.isMember(key)) {
            Add(key, "is missing: expected " + WriteJson(expected));
        } else if (mMessage[key] != expected) {
            Add(key, "is " + Shown(mMessage[key]) + ": expected " + WriteJson(expected));
        }
    }

    void NoOthers() {
        for (const std::string& key : mMessage.getMemberNames()) {
            if (mKnown.count(key) == 0) Add(key, "is unknown" + DidYouMean(key, mKnown, kShortList));
        }
    }

  private:
    void Add(const std::string& key, const std::string& what) {
        mProblems.push_back("member \"" + mWhere + key + "\" " + what);
    }

    // Returns whether the member is there and of this type.
    bool Has(const std::string& key, const std::string& type) {
        mKnown.insert(key);
        if (!mMessage.isMember(key)) {
            Add(key, "is missing: expected " + InWords(type) + InOtherCase(key));
            return false;
        }
        if (Is(type, mMessage[key])) return true;
        Add(key, "is " + Shown(mMessage[key]) + ": expected " + InWords(type));
        return false;
    }

    std::string InOtherCase(const std::string& key) const {
        for (const std::string& other : mMessage.getMemberNames()) {
            if (other != key && FoldedName(other) == FoldedName(key)) return ", but there is \"" + other + "\"";
        }
        return "";
    }

    void Member(const Json::Value& member) {
        const std::string key = member["key"].asString();
        const std::string type = member["type"].asString();
        mKnown.insert(key);
        if (member.isMember("when") && mMessage[member["when"].asString()] != true) {
            if (mMessage.isMember(key)) {
                Add(key, "is present: expected only if \"" + member["when"].asString() + "\" is true");
            }
            return;
        }
        if (member["optional"].asBool() && !mMessage.isMember(key)) return;
        if (member.isMember("repeat")) return Numbered(member, type);
        if (!Has(key, type)) return;
        if (member.isMember("max") && mMessage[key].asLargestInt() > member["max"].asLargestInt()) {
            Add(key, "is " + Shown(mMessage[key]) + ": expected at most " + member["max"].asString());
        }
        if (member.isMember("fields")) return Fields(key, member["fields"]);
        if (type == "array") Elements(member);
    }

    // Members with numbered keys. Those that are missing at the end are one finding.
    void Numbered(const Json::Value& member, const std::string& type) {
        const std::string counter = member["repeat"].asString();
        const std::optional<int64_t> count = Count(mMessage[counter]);
        mKnown.insert(counter);
        for (int64_t i = 0; i < std::min(count.value_or(0), kMostMembers); ++i) {
            const std::string key = NumberedKey(member, static_cast<Json::ArrayIndex>(i));
            if (mKnown.count(key) != 0) continue;
            if (!mMessage.isMember(key)) {
                return Add(key, "is missing: expected " + InWords(type) + ", as \"" + counter + "\" is " +
                                    std::to_string(*count));
            }
            Has(key, type);
        }
    }

    void Fields(const std::string& key, const Json::Value& fields) {
        const std::optional<int64_t> count = Count(mMessage[fields["repeat"].asString()]);
        if (!count) return;
        const size_t width = fields["width"].asUInt();
        const std::string text = mMessage[key].asString();
        bool right =
            text.size() % width == 0 && static_cast<int64_t>(text.size() / width) == std::max<int64_t>(*count, 0);
        for (size_t at = 0; right && at < text.size(); at += width) {
            const std::string column = text.substr(at, width);
            const size_t digits = column.find_first_not_of("0123456789", column[0] == '-' ? 1 : 0);
            right = column.find_first_not_of("-0123456789 ") == std::string::npos && digits != 0 && column[0] != ' ' &&
                    (digits == std::string::npos || column.find_first_not_of(' ', digits) == std::string::npos);
        }
        if (right) return;
        Add(key, "is " + Shown(mMessage[key]) + ": expected " + std::to_string(*count) + " decimal numbers of " +
                     std::to_string(width) + " characters each, with spaces at their ends");
    }

    void Elements(const Json::Value& member) {
        const std::string key = member["key"].asString();
        const Json::Value& elements = mMessage[key];
        const std::string counter = member["size"].asString();
        const std::optional<int64_t> count = Count(mMessage[counter]);
        if (count && *count != elements.size()) {
            Add(key, "has " + std::to_string(elements.size()) + " elements: expected " + std::to_string(*count) +
                         ", the value of \"" + counter + "\"");
        }
        for (Json::ArrayIndex i = 0; i < elements.size(); ++i) {
            const std::string place = key + "[" + std::to_string(i) + "]";
            const std::string type = member["items"].isString() ? member["items"].asString() : "";
            if (!type.empty() && !Is(type, elements[i])) {
                Add(place, "is " + Shown(elements[i]) + ": expected " + InWords(type));
            } else if (type.empty() && !elements[i].isObject()) {
                Add(place, "is " + Shown(elements[i]) + ": expected an object");
            } else if (type.empty()) {
                Checker(elements[i], mWhere + place + ".", mProblems).Members(member["items"]);
            }
        }
    }

    const Json::Value& mMessage;
    const std::string mWhere;
    std::vector<std::string>& mProblems;
    std::set<std::string> mKnown;
};

}  // namespace

std::vector<std::string> CheckRequest(const WireFamily& family, const Json::Value& operation,
                                      const Json::Value& message) {
    std::vector<std::string> problems;
    if (!message.isObject()) return {"the request is " + Shown(message) + ": expected an object"};
    const Json::Value& envelope = family.protocol["envelope"];
    Checker checker(message, "", problems);
    if (envelope.isMember("type")) {
        checker.Constant(envelope["type"]["key"].asString(), envelope["type"]["value"]);
    }
    checker.Constant(envelope["code"]["key"].asString(), operation["code"]);
    checker.Members(operation["request"]);
    checker.NoOthers();
    return problems;
}

std::vector<std::string> CheckEvent(const WireFamily& family, const Json::Value& event, const Json::Value& message) {
    std::vector<std::string> problems;
    if (!message.isObject()) return {"the event is " + Shown(message) + ": expected an object"};
    const Json::Value& envelope = family.protocol["event_envelope"];
    const Json::Value& type = envelope["type"];
    Checker checker(message, "", problems);
    if (!type.isNull()) {
        checker.Constant(type["key"].asString(), type.isMember("value") ? type["value"] : event["object"]);
    }
    checker.Constant(envelope["code"]["key"].asString(), event["code"]);
    checker.Members(EventMembers(family, event));
    checker.NoOthers();
    return problems;
}

std::vector<std::string> CheckReply(const Json::Value& operation, const Json::Value& message) {
    std::vector<std::string> problems;
    if (!message.isObject()) return {"the reply is " + Shown(message) + ": expected an object"};
    Json::Value status;
    status["key"] = "ret";
    status["type"] = "int";
    Json::Value members(Json::arrayValue);
    members.append(status);
    Checker checker(message, "", problems);
    checker.Members(members);
    if (problems.empty() && message["ret"] == 0) checker.Members(operation["reply"]);
    return problems;
}

}  // namespace hbbtv
