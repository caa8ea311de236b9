#include "core/journal.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/printable.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLongestExcerpt = 60;
constexpr size_t kLongestValue = 200;

// Returns the local time with milliseconds, as the logs of the service have it.
std::string TimeOfDay() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    localtime_r(&now.tv_sec, &parts);
    char time[16];
    std::strftime(time, sizeof(time), "%H:%M:%S", &parts);
    char text[24];
    std::snprintf(text, sizeof(text), "%s.%03d", time, static_cast<int>(now.tv_nsec / 1000000));
    return text;
}

std::string ReadableValue(const Json::Value& value) {
    if (value.isString()) {
        const std::string text = value.asString();
        const bool handle = text.size() > 2 && text.size() < 19 && text.rfind("0x", 0) == 0 &&
                            text.find_first_not_of("0123456789abcdef", 2) == std::string::npos;
        if (handle) return HandleText(ParsePointer(text).value_or(0));
    }
    std::string text = WriteJson(value);
    if (text.size() > kLongestValue) text = text.substr(0, kLongestValue) + "...";
    return text;
}

}  // namespace

void Journal::Log(const std::string& line) {
    std::fprintf(stderr, "hbbtv-sim: %s\n", OneLine(line).c_str());
}

void Journal::Request(const std::string& operation, const std::string& arguments, const std::string& outcome,
                      std::chrono::duration<double, std::milli> time) const {
    if (!mTrace) return;
    const char* blank = arguments.empty() ? "" : " ";
    std::printf("%s > %s%s%s | %s (%.1f ms)\n", TimeOfDay().c_str(), operation.c_str(), blank,
                OneLine(arguments).c_str(), OneLine(outcome).c_str(), time.count());
}

void Journal::Event(const std::string& name, const std::string& members, const std::string& outcome) const {
    if (!mTrace) return;
    std::printf("%s * %s%s%s%s%s\n", TimeOfDay().c_str(), name.c_str(), members.empty() ? "" : " ",
                OneLine(members).c_str(), outcome.empty() ? "" : " | ", OneLine(outcome).c_str());
}

std::string Readable(const Json::Value& object, const std::string& codeMember) {
    if (!object.isObject()) return ReadableValue(object);
    std::string line;
    for (auto member = object.begin(); member != object.end(); ++member) {
        const std::string name = member.name();
        if (!codeMember.empty() && (name == "type" || name == codeMember)) continue;
        if (!line.empty()) line += ' ';
        line += name + '=' + ReadableValue(*member);
    }
    return line;
}

std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
    return Printable(text);
}

std::string Excerpt(const std::string& text) {
    std::string line;
    for (const char c : text.substr(0, kLongestExcerpt)) {
        line += c >= 0x20 && c < 0x7f ? c : '.';
    }
    return text.size() > kLongestExcerpt ? line + "..." : line;
}

}  // namespace hbbtv::sim
