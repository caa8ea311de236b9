#include "commands/exchange.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "cli/arguments.h"
#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "terminal/style.h"
#include "wire/connection.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

constexpr size_t kBytesPerLine = 16;

std::string HexDump(const std::string& bytes) {
    std::string text;
    for (size_t line = 0; line < bytes.size(); line += kBytesPerLine) {
        std::string hexadecimal;
        std::string characters;
        for (size_t i = line; i < std::min(bytes.size(), line + kBytesPerLine); ++i) {
            char byte[8];
            std::snprintf(byte, sizeof(byte), "%02x ", static_cast<unsigned char>(bytes[i]));
            hexadecimal += byte;
            characters += bytes[i] >= 0x20 && bytes[i] < 0x7f ? bytes[i] : '.';
        }
        hexadecimal.resize(kBytesPerLine * 3, ' ');
        char offset[32];
        std::snprintf(offset, sizeof(offset), "%06zx  ", line);
        text += offset + hexadecimal + " " + characters + "\n";
    }
    return text;
}

std::string Hexadecimal(const std::string& bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof(digits), "%02x", byte);
        text += digits;
    }
    return text;
}

struct Reply {
    Json::Value content;  // null if none was requested
    double milliseconds = 0;
};

void PrintForPrograms(const Message& message, const Reply& reply, const ExchangeOptions& options) {
    Json::Value document(Json::objectValue);
    document["sent"] = message.name;
    document["path"] = message.path;
    document["reply"] = reply.content;
    if (options.time) document["took_us"] = static_cast<Json::Int64>(reply.milliseconds * 1000);
    std::printf("%s\n", WriteJson(document).c_str());
}

void PrintForPeople(const Message& message, const Reply& reply, const ExchangeOptions& options) {
    if (!message.withReply) std::printf("sent; no reply expected\n");
    std::vector<std::vector<std::string>> rows;
    for (const std::string& name : reply.content.getMemberNames()) {
        const Json::Value& value = reply.content[name];
        rows.push_back({name, value.isString() ? Quoted(value.asString()) : WriteJson(value)});
    }
    char text[40];
    std::snprintf(text, sizeof(text), "%.3f ms", reply.milliseconds);
    if (options.time) rows.push_back({"time", text});
    std::printf("%s", Columns(rows, "").c_str());
}

// Returns an object with an integer "ret".
Json::Value ParseReply(const Message& message, const std::string& text) {
    const std::string start = "; it begins " + Quoted(text.substr(0, 200));
    Json::Value reply;
    try {
        reply = ParseJson(text);
    } catch (const BadJson& e) {
        throw Failure(kInvalidReply, message.path + ": the reply to " + message.name + " is " + e.what() + start);
    }
    if (reply.isNull()) {
        throw Failure(kUnavailable, message.path + ": " + message.name +
                                        " was not delivered: no client is registered, the context differs, or the "
                                        "family accepts it only without a reply (--one-way)");
    }
    if (!reply.isObject() || !reply["ret"].isInt()) {
        throw Failure(kInvalidReply, message.path + ": the reply to " + message.name +
                                         " is not an object with an integer \"ret\"" + start);
    }
    return reply;
}

}  // namespace

void AddExchangeOptions(CLI::App& command, ExchangeOptions& options) {
    AddTime(command, "--timeout", options.timeout, "Maximum time to wait for the reply");
    command.add_flag("--time", options.time, "Show how long it took");
    command.add_flag("--verbose", options.verbose, "Print the message to standard error");
    command.add_flag("--unchecked", options.unchecked,
                     "Send members that are missing, unknown or of another type than protocol/ defines");
    command.add_option("--raw", options.raw, "Send exactly these bytes: a string, @FILE or -")->type_name("BYTES");
}

void RefuseProblems(const std::string& name, const std::vector<std::string>& problems, const ExchangeOptions& options) {
    if (options.unchecked || problems.empty()) return;
    std::string text = name + ":";
    for (const std::string& problem : problems) text += (problems.size() == 1 ? " " : "\n  ") + problem;
    throw Failure(kUsage, text + (problems.size() == 1 ? " (" : "\n(") + "--unchecked sends it anyway)");
}

int Exchange(const Message& message, bool json, const ExchangeOptions& options) {
    const std::string text = WireText(message.content);
    if (options.verbose)
        std::fprintf(stderr, "to %s, port %d:\n%s", Printable(message.path).c_str(), message.port, text.c_str());
    WireConnection connection(message.path);
    Reply reply;
    const auto begin = std::chrono::steady_clock::now();
    connection.Send(Encode({message.withReply ? kRequest : kOneWay, message.port, text}), options.timeout.Value());
    if (message.withReply) {
        const Frame frame = connection.Receive(options.timeout.Value());
        if (frame.payload.empty()) {
            throw Failure(kInvalidReply, message.path + ": the reply to " + message.name +
                                             " is empty: the other side could not parse the message");
        }
        reply.content = ParseReply(message, frame.payload);
    }
    reply.milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    if (json) {
        PrintForPrograms(message, reply, options);
    } else {
        PrintForPeople(message, reply, options);
    }
    return reply.content.isNull() || reply.content["ret"].asInt() == 0 ? kDone : kStatusNotZero;
}

int ExchangeRaw(const std::string& path, bool json, const ExchangeOptions& options) {
    const std::string bytes = ReadWord(options.raw.value_or(""));
    WireConnection connection(path);
    connection.Send(bytes, options.timeout.Value());
    const std::string answer = connection.ReceiveAll(std::min(options.timeout.Value(), Milliseconds(1000)));
    if (!json) {
        std::printf("%s", answer.empty() ? "no reply\n" : HexDump(answer).c_str());
        return kDone;
    }
    Json::Value document(Json::objectValue);
    document["path"] = path;
    document["sent_bytes"] = static_cast<Json::UInt64>(bytes.size());
    document["received"] = Hexadecimal(answer);
    std::printf("%s\n", WriteJson(document).c_str());
    return kDone;
}

}  // namespace hbbtv::ctl
