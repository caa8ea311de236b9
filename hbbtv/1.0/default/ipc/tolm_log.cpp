#include "ipc/tolm_log.h"

#include <cstdarg>
#include <cstdio>

namespace tolm {

namespace {

thread_local Place tLastPlace{"", 0, ""};

}  // namespace

const Place& LastPlace() {
    return tLastPlace;
}

void LogAt(const Place& place, int priority, const char* tag, const char* message) {
    __android_log_print(priority, tag, "[tolm](%s:%d) %s: %s", LogFileName(place.file), place.line, place.function,
                        message);
}

LogScope::LogScope(const char* tag, const Place& place) : mTag(tag), mPlace(place) {
    tLastPlace = place;
    LogAt(mPlace, ANDROID_LOG_VERBOSE, mTag, "ENTER");
}

LogScope::~LogScope() {
    if (mLeaves) LogAt(mPlace, ANDROID_LOG_VERBOSE, mTag, "LEAVE");
}

void LogSocketLine(int priority, const char* file, int line, const char* function, const char* format, ...) {
    char message[1024];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    LogAt({file, line, function}, priority, "tolm_IPC", message);
    printf("tolm_IPC \"%s\"\n", message);
}

}  // namespace tolm
