// Takes out of records what belongs to one television or its viewer.
#pragma once

#include <map>
#include <string>

#include "traffic/record/recording.h"

namespace hbbtv::traffic {

// Replaces device ids, serial numbers and the queries of URLs by "redacted-1", ..., equal ones by equal ones. An id is
// also replaced within other strings of the records after the first one that has it as a member. Bytes that are not
// JSON are left out. Not thread-safe.
class Redaction {
  public:
    void Apply(Record& record);
    static void Apply(RecordingHead& head);

  private:
    void Apply(Message& message);
    void Apply(Json::Value& value, const std::string& key);
    std::string Replacement(const std::string& secret);
    std::string WithoutIds(std::string text) const;
    std::string WithoutQueries(const std::string& text);

    std::map<std::string, std::string> mReplacements;
    std::map<std::string, std::string> mIds;  // those of the replacements that are looked for within strings
};

}  // namespace hbbtv::traffic
