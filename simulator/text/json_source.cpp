#include "text/json_source.h"

#include "common/duration.h"
#include "common/nearest_name.h"
#include "common/text/json.h"
#include "common/text/quote.h"
#include "core/error.h"
#include "text/lines.h"

namespace hbbtv::sim {

namespace {

constexpr int kDeepestNesting = 32;

}  // namespace

void JsonSource::Refuse(const Json::Value& where, const std::string& reason) const {
    RefuseAt(static_cast<size_t>(where.getOffsetStart()), reason);
}

void JsonSource::RefuseAt(size_t offset, const std::string& reason) const {
    size_t line = 1;
    size_t column = 1;
    for (size_t i = 0; i < offset && i < mText.size(); ++i) {
        column = mText[i] == '\n' ? 1 : column + 1;
        if (mText[i] == '\n') ++line;
    }
    throw Fatal(kFileRefused, mName + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + reason);
}

Json::Value JsonSource::Parse() const {
    if (mText.find_first_not_of(" \t\r\n") == std::string::npos) RefuseAt(0, "the file is empty");
    try {
        return ParseJson(mText, kDeepestNesting);
    } catch (const BadJson& e) {
        throw Fatal(kFileRefused, mName + ":" + std::to_string(e.Line()) + ":" + std::to_string(e.Column()) +
                                      ": not valid JSON: " + e.Reason());
    }
}

JsonObject::JsonObject(const JsonSource& source, const Json::Value& value, std::string what,
                       const std::set<std::string>& known)
    : mSource(source), mValue(value), mWhat(std::move(what)) {
    if (!value.isObject()) source.Refuse(value, "a " + mWhat + " is not an object");
    for (const std::string& name : value.getMemberNames()) {
        if (known.count(name) == 0) {
            source.Refuse(value[name], "a " + mWhat + " has no member " + Quoted(name) + DidYouMean(name, known));
        }
    }
}

const Json::Value& JsonObject::Member(const char* name) const {
    if (!Has(name)) mSource.Refuse(mValue, "the " + mWhat + " lacks the member " + Quoted(name));
    return mValue[name];
}

std::string JsonObject::Text(const char* name) const {
    const Json::Value& member = Member(name);
    if (!member.isString()) Refuse(name, "is not a string");
    if (member.asString().empty()) Refuse(name, "is empty");
    return member.asString();
}

int JsonObject::Int(const char* name, int least, int most) const {
    const Json::Value& member = Member(name);
    const std::string range = std::to_string(least) + " to " + std::to_string(most);
    if (!member.isInt()) Refuse(name, "is not a whole number from " + range);
    if (member.asInt() < least || member.asInt() > most) {
        Refuse(name, "is " + std::to_string(member.asInt()) + " but must be from " + range);
    }
    return member.asInt();
}

bool JsonObject::Bool(const char* name, bool otherwise) const {
    if (!Has(name)) return otherwise;
    if (!mValue[name].isBool()) Refuse(name, "is neither true nor false");
    return mValue[name].asBool();
}

double JsonObject::Real(const char* name, double otherwise, double least, double most) const {
    if (!Has(name)) return otherwise;
    const Json::Value& member = mValue[name];
    if (!member.isNumeric() || member.asDouble() < least || member.asDouble() > most) {
        Refuse(name, "is not a number from " + std::to_string(least).substr(0, 3) + " to " +
                         std::to_string(most).substr(0, 3));
    }
    return member.asDouble();
}

std::chrono::milliseconds JsonObject::Time(const char* name) const {
    const std::string text = Text(name);
    const auto time = ParseDuration(text);
    if (!time) Refuse(name, "is " + Quoted(text) + ", which is not a duration: write 300ms or 2s, at most one day");
    return *time;
}

int JsonObject::OneOf(const char* name, const JsonNames& names) const {
    const std::string text = Text(name);
    const auto found = names.find(text);
    if (found != names.end()) return found->second;
    std::set<std::string> known;
    for (const auto& entry : names) known.insert(entry.first);
    Refuse(name, "is " + Quoted(text) + ", which is unknown" + DidYouMean(text, known));
}

const Json::Value& JsonObject::List(const char* name) const {
    const Json::Value& member = Member(name);
    if (!member.isArray()) Refuse(name, "is not a list");
    return member;
}

void JsonObject::Only(bool allowed, const char* name, const std::string& whose) const {
    if (!allowed && Has(name)) Refuse(name, "is allowed only in " + whose + "");
}

void JsonObject::Refuse(const char* name, const std::string& reason) const {
    mSource.Refuse(mValue[name], "the member " + Quoted(name) + " of the " + mWhat + " " + reason);
}

}  // namespace hbbtv::sim
