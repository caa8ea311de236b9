// The lines in which the library writes each message to the log, at the level debug.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

namespace hbbtv::traffic {

// The text of a JSON document, which may be cut, and the members of it that can be read.
struct LoggedDocument {
    std::string text;
    Json::Value members{Json::objectValue};
};

// A message, and its reply if the library has written both. What was cut is there as far as the log has it.
struct LoggedMessage {
    bool received = false;  // an event of the platform; else a request of the library
    LoggedDocument message;
    std::optional<LoggedDocument> reply;
    std::optional<int> key;   // of the socket, for events
    std::optional<int> port;  // for events
    bool whole = false;       // nothing is missing at the end
};

// Returns whether a text begins a message of the library, "[tolm](file:line) function: send msg:{".
bool BeginsMessage(const std::string& text);

// Returns whether a text can be a further line of one.
bool ContinuesMessage(const std::string& text);

// Reads a text for which BeginsMessage() holds, with the lines after it.
LoggedMessage ReadLoggedMessage(const std::string& text);

}  // namespace hbbtv::traffic
