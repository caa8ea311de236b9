// Strict reading of JSON files written by people: every error has a line, a column and a reason, and an unknown name
// has a "did you mean".
#pragma once

#include <json/value.h>

#include <chrono>
#include <map>
#include <set>
#include <string>

namespace hbbtv::sim {

// The words allowed for a member, with their values.
using JsonNames = std::map<std::string, int>;

// Contents and name of the file. An invalid file is refused with Fatal. The string must outlive the object.
class JsonSource {
  public:
    JsonSource(const std::string& text, std::string name) : mText(text), mName(std::move(name)) {}

    Json::Value Parse() const;

    [[noreturn]] void Refuse(const Json::Value& where, const std::string& reason) const;

  private:
    [[noreturn]] void RefuseAt(size_t offset, const std::string& reason) const;

    const std::string& mText;
    std::string mName;
};

// One JSON object of the file with its allowed members. Messages call it by its name ("service").
class JsonObject {
  public:
    JsonObject(const JsonSource& source, const Json::Value& value, std::string what,
               const std::set<std::string>& known);

    bool Has(const char* name) const { return mValue.isMember(name); }
    const Json::Value& Member(const char* name) const;

    std::string Text(const char* name) const;
    std::string Text(const char* name, const char* otherwise) const { return Has(name) ? Text(name) : otherwise; }
    int Int(const char* name, int least, int most) const;
    bool Bool(const char* name, bool otherwise) const;
    double Real(const char* name, double otherwise, double least, double most) const;
    std::chrono::milliseconds Time(const char* name) const;  // "300ms", "2s"
    int OneOf(const char* name, const JsonNames& names) const;

    int OneOf(const char* name, const JsonNames& names, int otherwise) const {
        return Has(name) ? OneOf(name, names) : otherwise;
    }

    const Json::Value& List(const char* name) const;

    void Only(bool allowed, const char* name, const std::string& whose) const;

    [[noreturn]] void Refuse(const char* name, const std::string& reason) const;
    [[noreturn]] void Refuse(const std::string& reason) const { mSource.Refuse(mValue, reason); }

  private:
    const JsonSource& mSource;
    const Json::Value& mValue;
    std::string mWhat;
};

}  // namespace hbbtv::sim
