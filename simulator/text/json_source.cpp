#include "text/json_source.h"

#include <json/reader.h>

#include <cstdio>
#include <exception>
#include <memory>

#include "common/nearest_name.h"
#include "core/error.h"
#include "core/time_text.h"
#include "text/lines.h"

namespace hbbtv::sim {

namespace {

constexpr int kDeepestNesting = 32;

}  // namespace

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

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

// The JSON reader's own report: "* Line 3, Column 5\n  Missing ...\nSee Line ...". Its first error is the one to fix.
void JsonSource::RefuseSyntax(const std::string& errors) const {
    unsigned line = 1;
    unsigned column = 1;
    std::sscanf(errors.c_str(), "* Line %u, Column %u", &line, &column);
    const size_t begin = errors.find_first_not_of(" \n", errors.find('\n'));
    std::string reason = begin == std::string::npos ? "" : errors.substr(begin, errors.find('\n', begin) - begin);
    while (!reason.empty() && reason.back() == '.') reason.pop_back();
    throw Fatal(kFileRefused,
                mName + ":" + std::to_string(line) + ":" + std::to_string(column) + ": not JSON: " + reason);
}

Json::Value JsonSource::Parse() const {
    if (mText.find_first_not_of(" \t\r\n") == std::string::npos) RefuseAt(0, "the file is empty");
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    builder["allowComments"] = false;
    builder["allowTrailingCommas"] = false;
    builder["failIfExtra"] = true;
    builder["rejectDupKeys"] = true;
    builder["stackLimit"] = kDeepestNesting;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    bool good = false;
    try {
        good = reader->parse(mText.data(), mText.data() + mText.size(), &root, &errors);
    } catch (const std::exception&) {
        RefuseAt(0, "the file nests deeper than " + std::to_string(kDeepestNesting) + " levels");
    }
    if (!good) RefuseSyntax(errors);
    return root;
}

JsonObject::JsonObject(const JsonSource& source, const Json::Value& value, std::string what,
                       const std::set<std::string>& known)
    : mSource(source), mValue(value), mWhat(std::move(what)) {
    if (!value.isObject()) source.Refuse(value, "a " + mWhat + " is written as an object, in { }");
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
    if (!member.isString()) Refuse(name, "is not a text");
    if (member.asString().empty()) Refuse(name, "is empty");
    return member.asString();
}

int JsonObject::Int(const char* name, int least, int most) const {
    const Json::Value& member = Member(name);
    const std::string range = std::to_string(least) + " to " + std::to_string(most);
    if (!member.isInt()) Refuse(name, "is not a whole number from " + range);
    if (member.asInt() < least || member.asInt() > most) {
        Refuse(name, "is " + std::to_string(member.asInt()) + ", it has to be from " + range);
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
    const auto time = ReadTime(text);
    if (!time) Refuse(name, "is " + Quoted(text) + ", which is no time: write 300ms or 2s, at most a day");
    return *time;
}

int JsonObject::OneOf(const char* name, const JsonNames& names) const {
    const std::string text = Text(name);
    const auto found = names.find(text);
    if (found != names.end()) return found->second;
    std::set<std::string> known;
    for (const auto& entry : names) known.insert(entry.first);
    Refuse(name, "is " + Quoted(text) + ", which is not known" + DidYouMean(text, known));
}

const Json::Value& JsonObject::List(const char* name) const {
    const Json::Value& member = Member(name);
    if (!member.isArray()) Refuse(name, "is written as a list, in [ ]");
    return member;
}

void JsonObject::Only(bool allowed, const char* name, const std::string& whose) const {
    if (!allowed && Has(name)) Refuse(name, "belongs to " + whose + " only");
}

void JsonObject::Refuse(const char* name, const std::string& reason) const {
    mSource.Refuse(mValue[name], "the member " + Quoted(name) + " of the " + mWhat + " " + reason);
}

}  // namespace hbbtv::sim
