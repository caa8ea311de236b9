// Takes out of records what belongs to one television or its viewer.
#pragma once

#include <map>
#include <string>

#include "traffic/record/recording.h"
#include "traffic/select/private_members.h"

namespace hbbtv::traffic {

// Replaces private members, strings in members that protocol/ does not define, and the users, queries and fragments of
// URLs: strings by "redacted-1", ..., numbers by 1, ..., equal ones by equal ones. What identifies the television is
// also replaced within other strings of the records after the first one that has it as a member. Bytes that are not
// JSON are left out. Not thread-safe.
class Redaction {
  public:
    void Apply(Record& record);
    static void Apply(RecordingHead& head);

  private:
    void Apply(const Record& record, Message& message, bool isReply);
    void Apply(Json::Value& value, Privacy privacy, bool isUrl);
    size_t NumberOf(const std::string& secret);
    std::string Replacement(const std::string& secret);
    std::string WithoutIds(std::string text) const;
    std::string WithoutQuery(const std::string& url);
    std::string WithoutQueries(const std::string& text);

    std::map<std::string, size_t> mNumbers;   // of replacements
    std::map<std::string, std::string> mIds;  // those of the replacements that are looked for within strings
};

}  // namespace hbbtv::traffic
