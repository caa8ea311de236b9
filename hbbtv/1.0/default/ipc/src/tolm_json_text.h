// Converts JSON documents to and from the bytes of messages. Never throws, whatever the bytes are.
#pragma once

#include <json/json.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tolm {

// The limit of a document. The largest one of the platform, a stream event with 1 MiB in numbered members, has about
// 24 MiB.
constexpr size_t kMaxJsonBytes = 64u << 20;

// The limit of nesting: a value is within at most this many arrays and objects. jsoncpp throws on deeper documents.
constexpr int kMaxJsonDepth = 1000;

// Returns the document in styled form, byte for byte that of Json::Value::toStyledString().
std::vector<unsigned char> ToStyledBytes(const Json::Value& document);

// Parses bytes. Returns whether they are a JSON document within the limits above. Comments are collected.
bool ParseJson(const std::vector<unsigned char>& bytes, Json::Value& document);

// Return a member of an object. A member that is missing or cannot be converted (a string instead of a number, a number
// out of range) reads as 0, false or "". `object` may be any value.
int ReadInt(const Json::Value& object, const char* key);
unsigned ReadUInt(const Json::Value& object, const char* key);
Json::Int64 ReadInt64(const Json::Value& object, const char* key);
Json::UInt64 ReadUInt64(const Json::Value& object, const char* key);
bool ReadBool(const Json::Value& object, const char* key);
double ReadReal(const Json::Value& object, const char* key);
std::string ReadText(const Json::Value& object, const char* key);

// Returns the elements of an array as strings; none if the member is not an array.
std::vector<std::string> ReadTexts(const Json::Value& object, const char* key);

}  // namespace tolm
