// Sends a message to a socket of the wire and prints its reply.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

#include "cli/options.h"

namespace hbbtv::ctl {

struct ExchangeOptions {
    TimeOption timeout{"10s"};
    bool time = false;
    bool verbose = false;            // print the message, too
    bool unchecked = false;          // also if the message is not as protocol/ defines it
    std::optional<std::string> raw;  // exact bytes
};

void AddExchangeOptions(CLI::App& command, ExchangeOptions& options);

struct Message {
    std::string name;  // "channel.GetName", for messages
    std::string path;  // of the socket
    int port;
    Json::Value content;
    bool withReply;
};

// Sends the message. Returns the exit code for the reply's "ret", or kDone if no reply is expected.
int Exchange(const Message& message, bool json, const ExchangeOptions& options);

// Throws Failure(kUsage) with the problems of a message, unless options.unchecked is set.
void RefuseProblems(const std::string& name, const std::vector<std::string>& problems, const ExchangeOptions& options);

// Sends options.raw unchanged and prints what arrives, in hexadecimal.
int ExchangeRaw(const std::string& path, bool json, const ExchangeOptions& options);

}  // namespace hbbtv::ctl
