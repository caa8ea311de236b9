// The log lines of this library: "[tolm](file:line) function: message" under one tag per area. Control characters and
// invalid UTF-8 in a message are written as \n or \x1b, so callers can pass text of peers.
#pragma once

// <android/log.h> declares __android_log_is_loggable only from Android 11 on.
#include <log/log.h>

#include <cstring>

namespace tolm {

inline constexpr char kIpcBaseTag[] = "[ipc_base]";  // the JSON bases and the registry of receivers

// Returns the file's name without its directories.
constexpr const char* LogFileName(const char* path) {
    const char* name = path;
    for (const char* c = path; *c != '\0'; ++c) {
        if (*c == '/') name = c + 1;
    }
    return name;
}

// Returns whether a line of this priority and tag would be written. Ask before building an expensive message.
inline bool LogEnabled(int priority, const char* tag) {
    return __android_log_is_loggable(priority, tag, ANDROID_LOG_VERBOSE) != 0;
}

// A place in the source, for functions that log on behalf of their caller. As default arguments, __builtin_FILE(),
// __builtin_LINE() and __builtin_FUNCTION() are those of the call.
struct Place {
    const char* file;
    int line;
    const char* function;
};

// Writes a line that names `place`.
void LogAt(const Place& place, int priority, const char* tag, const char* message);

// The same with a format: see TOLM_LOG and TOLM_LOG_DOCUMENTS.
void LogFormatted(const Place& place, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
void LogDocuments(const Place& place, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

// Returns the place of the LogScope that this thread has created last: that of the operation that it has just called.
const Place& LastPlace();

// Writes ENTER when it is created and LEAVE at the end of its scope.
class LogScope {
  public:
    explicit LogScope(const char* tag, const char* file = __builtin_FILE(), int line = __builtin_LINE(),
                      const char* function = __builtin_FUNCTION())
        : LogScope(tag, Place{file, line, function}) {}
    LogScope(const char* tag, const Place& place);
    ~LogScope();
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;

    // Omits LEAVE: a message that is dropped halfway ends without it, and log filters rely on that.
    void Abandon() { mLeaves = false; }

  private:
    const char* const mTag;
    const Place mPlace;
    bool mLeaves = true;
};

// Writes a line of the socket layer: to the log under the tag "tolm_IPC" and, without its place, to standard output.
void LogSocketLine(int priority, const char* file, int line, const char* function, const char* format, ...)
    __attribute__((format(printf, 5, 6)));

}  // namespace tolm

#define TOLM_LOG_PLACE (::tolm::Place{__FILE__, __LINE__, static_cast<const char*>(__func__)})

// Writes a line that names this place. `format` is a literal.
#define TOLM_LOG(priority, tag, format, ...) ::tolm::LogFormatted(TOLM_LOG_PLACE, priority, tag, format, ##__VA_ARGS__)

// The same for a message with JSON documents in styled form, whose line breaks are kept.
#define TOLM_LOG_DOCUMENTS(priority, tag, format, ...) \
    ::tolm::LogDocuments(TOLM_LOG_PLACE, priority, tag, format, ##__VA_ARGS__)

#define TOLM_SOCKET_LOG(priority, format, ...) \
    ::tolm::LogSocketLine(priority, ::tolm::LogFileName(__FILE__), __LINE__, __func__, format, ##__VA_ARGS__)
