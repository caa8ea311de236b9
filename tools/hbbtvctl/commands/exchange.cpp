// See exchange.h.
#include "commands/exchange.h"

#include <cstdio>

#include "arguments.h"
#include "failure.h"
#include "package/values.h"
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

void PrintReply(const Json::Value& reply, bool json) {
    if (json) {
        std::printf("%s\n", WriteJson(reply).c_str());
        return;
    }
    std::vector<std::vector<std::string>> rows;
    for (const std::string& name : reply.getMemberNames()) {
        const Json::Value& value = reply[name];
        rows.push_back({name, value.isString() ? Quoted(value.asString()) : WriteJson(value)});
    }
    std::printf("%s", Columns(rows, "").c_str());
}

Json::Value ParseReply(const std::string& path, const std::string& text) {
    try {
        const Json::Value reply = ParseJson(text);
        if (reply.isObject()) return reply;
        throw BadValue("it is no JSON object");
    } catch (const BadValue& e) {
        const std::string start = text.substr(0, 200);
        throw Failure(kNotUnderstood,
                      path + ": the reply is not understood: " + e.what() + "; it begins " + Quoted(start));
    }
}

int ExitCodeOf(const std::string& path, const Json::Value& reply) {
    if (!reply["ret"].isInt()) throw Failure(kNotUnderstood, path + ": the reply has no whole number under \"ret\"");
    return reply["ret"].asInt() == 0 ? kDone : kStatusNotZero;
}

}  // namespace

void AddExchangeOptions(CLI::App& command, ExchangeOptions& options) {
    AddTime(command, "--timeout", options.timeout, "Longest wait for the reply");
    command.add_flag("--time", options.time, "Tell how long it took");
    command.add_flag("--verbose", options.verbose, "Show the message that is sent");
    command.add_option("--raw", options.raw, "Send exactly these bytes: a text, @FILE or -")->type_name("BYTES");
}

int Exchange(const std::string& path, int port, const Json::Value& message, bool withReply, bool json,
             const ExchangeOptions& options) {
    const std::string text = WireText(message);
    if (options.verbose) std::fprintf(stderr, "to %s, port %d:\n%s", path.c_str(), port, text.c_str());
    WireConnection connection(path);
    const auto begin = std::chrono::steady_clock::now();
    connection.Send(sim::Encode({withReply ? sim::kRequest : sim::kOneWay, port, text}), options.timeout.Value());
    if (!withReply) {
        if (!json) std::printf("sent, no reply is expected\n");
        return kDone;
    }
    const sim::Frame frame = connection.Receive(options.timeout.Value());
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    if (frame.payload.empty()) throw Failure(kNotUnderstood, path + ": the reply is empty");
    const Json::Value reply = ParseReply(path, frame.payload);
    PrintReply(reply, json);
    if (options.time) std::fprintf(stderr, "%.3f ms\n", took.count());
    return ExitCodeOf(path, reply);
}

int ExchangeRaw(const std::string& path, const ExchangeOptions& options) {
    WireConnection connection(path);
    connection.Send(ReadWord(options.raw), options.timeout.Value());
    const std::string answer = connection.ReceiveAll(std::min(options.timeout.Value(), Milliseconds(1000)));
    std::printf("%s", HexDump(answer).c_str());
    return kDone;
}

}  // namespace hbbtv::ctl
