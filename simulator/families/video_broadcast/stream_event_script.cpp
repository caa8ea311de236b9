#include "families/video_broadcast/stream_event_script.h"

#include <cctype>
#include <cstdio>

#include "common/text/utf8.h"
#include "text/json_source.h"
#include "text/lines.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMostEvents = 1000;
constexpr size_t kMostBytes = 4096;  // more than fits into the section of a stream descriptor
constexpr std::chrono::milliseconds kShortestInterval{10};

const JsonNames kStatuses{{"trigger", 0}, {"error", 1}};

// Returns the bytes of hexadecimal digits in lower case.
std::string BytesOf(const std::string& digits) {
    std::string bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

std::string Digits(const JsonObject& object) {
    std::string digits = object.Text("data");
    for (char& c : digits) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const bool good = digits.size() % 2 == 0 && digits.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (!good) object.Refuse("data", "is not a string of hexadecimal bytes, two digits each");
    return digits;
}

std::string Utf8(const JsonObject& object, const char* name) {
    const std::string text = object.Text(name, "");
    if (ValidUtf8(text) != text) object.Refuse(name, "is not UTF-8");
    return text;
}

void ReadTime(const JsonObject& object, ScriptedStreamEvent& event) {
    event.repeats = object.Has("every");
    if (event.repeats == object.Has("at")) object.Refuse("a stream event has either \"at\" or \"every\"");
    event.time = object.Time(event.repeats ? "every" : "at");
    if (event.repeats && event.time < kShortestInterval) object.Refuse("every", "is shorter than 10ms");
}

// Data and text are the same bytes in two forms; each is derived from the other.
void ReadContent(const JsonObject& object, ScriptedStreamEvent& event) {
    event.text = Utf8(object, "text");
    event.data = object.Has("data") ? Digits(object) : Hexadecimal(event.text);
    if (!object.Has("text")) event.text = ValidUtf8(BytesOf(event.data));
    if (event.text.size() > kMostBytes) object.Refuse("text", "is longer than 4096 bytes");
    if (event.data.size() > 2 * kMostBytes) object.Refuse("data", "is longer than 4096 bytes");
}

ScriptedStreamEvent ReadEvent(const JsonSource& source, const Json::Value& value) {
    const JsonObject object(source, value, "stream event", {"at", "every", "url", "name", "data", "text", "status"});
    ScriptedStreamEvent event;
    ReadTime(object, event);
    event.url = Utf8(object, "url");
    event.name = Utf8(object, "name");
    event.error = object.OneOf("status", kStatuses, 0) != 0;
    object.Only(!event.error, "data", "stream events with the status trigger");
    object.Only(!event.error, "text", "stream events with the status trigger");
    ReadContent(object, event);
    return event;
}

}  // namespace

std::string Hexadecimal(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        char two[3];
        std::snprintf(two, sizeof(two), "%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        text += two;
    }
    return text;
}

StreamEventScript ParseStreamEventScript(const std::string& text, const std::string& name) {
    const JsonSource source(text, name);
    const Json::Value root = source.Parse();
    if (!root.isArray()) source.Refuse(root, "the stream events are not a list");
    if (root.size() > kMostEvents) source.Refuse(root, "there are more than 1000 stream events");
    StreamEventScript script;
    for (const Json::Value& value : root) script.push_back(ReadEvent(source, value));
    return script;
}

StreamEventScript ReadStreamEventScript(const std::string& path) {
    return ParseStreamEventScript(ReadWhole(path), path);
}

}  // namespace hbbtv::sim
