// Shows the platform's messages to tools that listen without being the registered client. A tool that does not read
// loses messages, which are counted; no family ever waits for one.
#pragma once

#include <json/json.h>

#include <string>
#include <vector>

#include "ipc/src/tolm_family.h"

namespace tolm {

// Thread-safe.
class EventTaps {
  public:
    // The limit of tools at once, and of the text of a message that is shown.
    static constexpr size_t kMost = 8;
    static constexpr size_t kMostBytes = 64u << 10;

    // Shows the messages of these families from now on to the other end of a connected socket of packets
    // (SOCK_SEQPACKET), of which it keeps a copy until the other end is closed. Returns why not, or an empty string.
    //
    // Each packet is a JSON object on one line: first {"listening": true}; then for each message "family", "form"
    // ("one-way" or "request") and "message" (null if it is longer than kMostBytes, then "bytes" is its length); and
    // {"lost": COUNT} before the first one that there was room for again.
    static std::string Add(int fd, std::vector<const Family*> families);

    // Shows a message that a family has received. Costs nothing without a tool.
    static void Show(TolmIpcKeyId key, const char* form, const std::vector<unsigned char>& bytes,
                     const Json::Value& message);
};

}  // namespace tolm
