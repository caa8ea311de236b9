// Converts JSON documents to and from the bytes of messages. Never throws, whatever the bytes are.
#pragma once

#include <json/json.h>

#include <cstddef>
#include <string>
#include <vector>

#include "ipc/src/tolm_json_limits.h"
#include "ipc/tolm_memory_claim.h"

namespace tolm {

// Comments are collected only from documents up to this size: for each comment after a value, jsoncpp scans all of
// those before it, which takes 10 s for a document of 200 KiB.
constexpr size_t kMaxShortJsonBytes = 16u << 10;

// Returns the document in styled form, byte for byte that of Json::Value::toStyledString().
std::vector<unsigned char> ToStyledBytes(const Json::Value& document);

// Parses bytes. Returns whether they are a JSON document within the limits of tolm_json_limits.h and, if it is long,
// whether there is enough memory for it and for what is read from it. `claim` must outlive the use of the document.
bool ParseJson(const std::vector<unsigned char>& bytes, Json::Value& document, MemoryClaim& claim);

// As above, with a claim that ends on return.
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
