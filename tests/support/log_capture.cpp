#include "log_capture.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace hbbtv::test {

namespace {

// Never destroyed, as lines are written during static destruction too.
std::mutex& Mutex() {
    static std::mutex* const mutex = new std::mutex;
    return *mutex;
}

std::vector<LogLine>& Collected() {
    static auto* const lines = new std::vector<LogLine>;
    return *lines;
}

constexpr int kOff = ANDROID_LOG_SILENT;
int gMinimum = kOff;  // guarded by Mutex()

LogLine Split(int priority, const char* tag, const std::string& text) {
    LogLine line{priority, tag != nullptr ? tag : "", text, "", 0, "", text};
    const std::string prefix = "[tolm](";
    const size_t colon = text.find(':');
    const size_t close = text.find(") ");
    const size_t end = close == std::string::npos ? close : text.find(": ", close);
    if (text.rfind(prefix, 0) != 0 || colon == std::string::npos || end == std::string::npos) return line;
    line.file = text.substr(prefix.size(), colon - prefix.size());
    line.line = std::atoi(text.c_str() + colon + 1);
    line.function = text.substr(close + 2, end - close - 2);
    line.message = text.substr(end + 2);
    return line;
}

}  // namespace

LogCapture::LogCapture(int minimum) {
    std::lock_guard<std::mutex> lock(Mutex());
    Collected().clear();
    gMinimum = minimum;
}

LogCapture::~LogCapture() {
    std::lock_guard<std::mutex> lock(Mutex());
    gMinimum = kOff;
    Collected().clear();
}

std::vector<LogLine> LogCapture::Lines() const {
    std::lock_guard<std::mutex> lock(Mutex());
    return Collected();
}

int LogCapture::Count(int priority, const std::string& tag, const std::string& message) const {
    int count = 0;
    for (const LogLine& line : Lines()) {
        if (line.priority == priority && line.tag == tag && line.message == message) ++count;
    }
    return count;
}

std::string LogCapture::Text() const {
    std::string all;
    for (const LogLine& line : Lines()) all += std::to_string(line.priority) + " " + line.tag + " " + line.text + "\n";
    return all;
}

void LogCapture::Clear() {
    std::lock_guard<std::mutex> lock(Mutex());
    Collected().clear();
}

}  // namespace hbbtv::test

using hbbtv::test::Collected;
using hbbtv::test::gMinimum;
using hbbtv::test::Mutex;

extern "C" int __android_log_is_loggable(int priority, const char*, int) {
    std::lock_guard<std::mutex> lock(Mutex());
    return priority >= gMinimum ? 1 : 0;
}

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    char* text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    va_end(arguments);
    if (length < 0) return -1;
    {
        std::lock_guard<std::mutex> lock(Mutex());
        if (priority >= gMinimum) Collected().push_back(hbbtv::test::Split(priority, tag, text));
    }
    free(text);
    return 1;
}
