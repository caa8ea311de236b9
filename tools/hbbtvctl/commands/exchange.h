// One message to a socket of the wire and, where there is one, its reply; shown to the user.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

#include "commands/options.h"

namespace hbbtv::ctl {

struct ExchangeOptions {
    TimeOption timeout{"10s"};
    bool time = false;
    bool verbose = false;            // show the message, too
    std::optional<std::string> raw;  // exact bytes
};

void AddExchangeOptions(CLI::App& command, ExchangeOptions& options);

struct Message {
    std::string name;  // "channel.GetName", for the user
    std::string path;  // of the socket
    int port;
    Json::Value content;
    bool withReply;
};

// Sends the message and gives the exit code: by the reply's "ret", or kDone when there is no reply to wait for.
int Exchange(const Message& message, bool json, const ExchangeOptions& options);

// Sends options.raw as it is and shows what comes back, in hexadecimal.
int ExchangeRaw(const std::string& path, bool json, const ExchangeOptions& options);

}  // namespace hbbtv::ctl
