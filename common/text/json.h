// Strict reading of JSON, and writing on one line.
#pragma once

#include <json/value.h>

#include <stdexcept>
#include <string>

namespace hbbtv {

// A string that is not one JSON document: "not valid JSON: line 1, column 2: Missing '}'".
class BadJson : public std::runtime_error {
  public:
    BadJson(unsigned line, unsigned column, const std::string& reason);

    unsigned Line() const { return mLine; }
    unsigned Column() const { return mColumn; }
    const std::string& Reason() const { return mReason; }  // without the position and without a full stop

  private:
    unsigned mLine;
    unsigned mColumn;
    std::string mReason;
};

constexpr int kDeepestJson = 100;

// Parses one document, which need not be an object. Comments, trailing commas, duplicate keys, numbers such as +1 and
// 01, anything after the document, and nesting deeper than `deepest` levels (at most 1000) are errors. Throws BadJson.
Json::Value ParseJson(const std::string& text, int deepest = kDeepestJson);

// Returns the document on one line, in ASCII, or with all characters as they are.
std::string WriteJson(const Json::Value& value);
std::string WriteJsonAsUtf8(const Json::Value& value);

}  // namespace hbbtv
