// The members of payloads, without what identifies the operation: for lines, names and filters.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// Returns the entry of the record's operation or event in protocol/, or null.
const Json::Value* ProtocolEntry(const Record& record);

// Returns the keys that identify the operation, such as "type" and "method"; none if it is unknown.
const std::vector<std::string>& EnvelopeKeys(const Record& record);

// Returns the handle that a string is: 0x and at most 16 hexadecimal digits, nothing else, and not null.
std::optional<uint64_t> HandleIn(const Json::Value& value);

// Returns whether a payload, or a value within it, is this handle. Handles have 32 bits on the wire.
bool HasHandle(const Json::Value& value, uint32_t handle);

// Returns whether a member of a payload has the key that protocol/ gives it: "channel3" is "channel%d".
bool IsKey(const std::string& key, const std::string& ofProtocol);

// Returns whether something went wrong: a status other than 0, a reply that is missing or not an object, or damaged
// bytes. An open exchange is not an error yet; null is the reply to an event that no client received, and an error.
bool IsError(const Record& record);

// Returns the bytes of the record's messages: headers and payloads.
uint64_t BytesOf(const Record& record);

// Returns "channel.GetName", or with "code 77", and the socket, as far as these are unknown.
std::string FullName(const Record& record);

}  // namespace hbbtv::traffic
