// The stream events that a service sends, as a file tells them: which, with what in them, and when.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace hbbtv::sim {

struct ScriptedStreamEvent {
    std::chrono::milliseconds time{0};  // from the first listener on
    bool repeats = false;               // again after the same time, and again
    std::string url;                    // of the stream-event object; empty: of all that are listened to
    std::string name;                   // empty: all names
    std::string data;                   // in hexadecimal, small letters
    std::string text;                   // the same as UTF-8
    bool error = false;                 // the event ends the listener
};

using StreamEventScript = std::vector<ScriptedStreamEvent>;

std::string Hexadecimal(const std::string& bytes);

// `name` stands for the text in messages. Throws Fatal.
StreamEventScript ParseStreamEventScript(const std::string& text, const std::string& name);

// Throws Fatal.
StreamEventScript ReadStreamEventScript(const std::string& path);

}  // namespace hbbtv::sim
