// The call and the event with which a soak run uses each family. A number goes with each of them, and comes back or
// arrives at the other side.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

#include "board.h"

namespace hbbtv::soak {

struct CallRow {
    const char* family;
    const char* method;     // "IChannel.GetOnid"
    const char* arguments;  // JSON; a $ is replaced by the caller's number
    const char* key;        // of the number in the request; "": the platform has a number of its own, which increases
    const char* reply;      // JSON; a $ is replaced by the number, # by its hexadecimal digits
    int result;             // index of the result that has the number
};

extern const CallRow kCalls[kFamilies];
constexpr int kOneWayFamily = 3;  // index of the one that has no requests with a reply

struct EventRow {
    const char* family;
    const char* registration;  // the method
    const char* arguments;
    const char* callback;  // the client's method
    bool request;          // whether the platform waits for the reply, which has the number
    const char* payload;   // a $ is replaced by the number, an @ by the number as one character
    uint32_t modulus;      // the number arrives modulo this; 0: as it is
    uint32_t (*read)(const Json::Value& arguments);
};

extern const EventRow kEvents[kEventFamilies];

// Returns the text with each `mark` replaced.
std::string Replace(const std::string& text, char mark, const std::string& replacement);

// Returns the client that is registered for the events.
constexpr int ReceiverOf(int event) {
    return event % kClients;
}

}  // namespace hbbtv::soak
