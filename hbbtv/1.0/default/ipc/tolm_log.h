// The log lines of this library: "[tolm](file:line) function: message" under a tag per area.
#pragma once

#include <android/log.h>

#include <cstring>

namespace tolm {

// The file's name without its directories.
constexpr const char* LogFileName(const char* path) {
    const char* name = path;
    for (const char* c = path; *c != '\0'; ++c) {
        if (*c == '/') name = c + 1;
    }
    return name;
}

// Whether a line of this priority and tag would be written. Ask before making a costly text for it.
inline bool LogEnabled(int priority, const char* tag) {
    return __android_log_is_loggable(priority, tag, ANDROID_LOG_VERBOSE) != 0;
}

// A line of the socket layer: to the log under the tag "tolm_IPC" and, in short, to standard output.
void LogSocketLine(int priority, const char* file, int line, const char* function, const char* format, ...)
    __attribute__((format(printf, 5, 6)));

}  // namespace tolm

// A line that names this place. `format` is a literal.
#define TOLM_LOG(priority, tag, format, ...)                                                                 \
    __android_log_print(priority, tag, "[tolm](%s:%d) %s: " format, ::tolm::LogFileName(__FILE__), __LINE__, \
                        static_cast<const char*>(__func__), ##__VA_ARGS__)

#define TOLM_SOCKET_LOG(priority, format, ...) \
    ::tolm::LogSocketLine(priority, ::tolm::LogFileName(__FILE__), __LINE__, __func__, format, ##__VA_ARGS__)
