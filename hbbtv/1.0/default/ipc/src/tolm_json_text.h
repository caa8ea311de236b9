// JSON documents to and from the bytes of a message. Nothing here throws, whatever the bytes are.
#pragma once

#include <json/json.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tolm {

// No document of the platform comes near to this: the largest, a stream event with 1 MiB of text in numbered members,
// has about 24 MiB.
constexpr size_t kMaxJsonBytes = 64u << 20;

// How deep a document may be: no value lies within more than this many arrays and objects. jsoncpp gives up on deeper
// ones by throwing.
constexpr int kMaxJsonDepth = 1000;

// The document's styled text, byte for byte that of Json::Value::toStyledString().
std::vector<unsigned char> ToStyledBytes(const Json::Value& document);

// Whether the bytes are a JSON document within the limits above. Comments are collected.
bool ParseJson(const std::vector<unsigned char>& bytes, Json::Value& document);

// The members of an object as the wire is read: leniently. One that is missing, or cannot be converted (a text for a
// number, a number out of range), reads as 0, false or "". Any value may be passed as the object.
int ReadInt(const Json::Value& object, const char* key);
unsigned ReadUInt(const Json::Value& object, const char* key);
Json::Int64 ReadInt64(const Json::Value& object, const char* key);
Json::UInt64 ReadUInt64(const Json::Value& object, const char* key);
bool ReadBool(const Json::Value& object, const char* key);
double ReadReal(const Json::Value& object, const char* key);
std::string ReadText(const Json::Value& object, const char* key);

// The elements of an array, each read like a text; none when the member is no array.
std::vector<std::string> ReadTexts(const Json::Value& object, const char* key);

}  // namespace tolm
