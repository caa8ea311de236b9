// A script of stream events: which are sent, with which data, and when.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace hbbtv::sim {

struct ScriptedStreamEvent {
    std::chrono::milliseconds time{0};  // since the first listener
    bool repeats = false;               // repeated at this interval
    std::string url;                    // of the stream-event object; empty: of all
    std::string name;                   // empty: all names
    std::string data;                   // in hexadecimal, lower case
    std::string text;                   // the same as UTF-8
    bool error = false;                 // the event removes the listener
};

using StreamEventScript = std::vector<ScriptedStreamEvent>;

std::string Hexadecimal(const std::string& bytes);

// `name` is the file's name in messages. Throws Fatal.
StreamEventScript ParseStreamEventScript(const std::string& text, const std::string& name);

// Throws Fatal.
StreamEventScript ReadStreamEventScript(const std::string& path);

}  // namespace hbbtv::sim
