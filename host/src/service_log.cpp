// The log of a service. Linked into the program of a service, this file replaces the part of liblog that writes lines
// on a host: their time has milliseconds, and the lowest priority can be set while the service runs, as on a television
// from Android 11 on.

#include <android/log.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

constexpr int kUsual = ANDROID_LOG_INFO;

int FromEnvironment() {
    const char* const value = getenv("HIDL_HOST_LOG");
    const char* const letters = "  VDIWEFS";
    const char* const found = value == nullptr || *value == '\0' ? nullptr : strchr(letters + 2, toupper(*value));
    return found == nullptr ? kUsual : static_cast<int>(found - letters);
}

std::atomic<int>& Minimum() {
    static std::atomic<int> minimum{FromEnvironment()};
    return minimum;
}

char Letter(int priority) {
    return priority >= ANDROID_LOG_VERBOSE && priority <= ANDROID_LOG_SILENT ? "??VDIWEFS"[priority] : '?';
}

// One line for each of the text, written at once.
void WriteLines(int priority, const char* tag, const char* text) {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char time[32];
    strftime(time, sizeof(time), "%m-%d %H:%M:%S", &local);
    char head[96];
    snprintf(head, sizeof(head), " %c %s.%03d %5d %5ld ", Letter(priority), time, static_cast<int>(now.tv_usec / 1000),
             getpid(), syscall(SYS_gettid));
    const std::string begin = (tag == nullptr ? "" : tag) + std::string(head);
    std::string lines;
    while (*text != '\0') {
        const size_t length = strcspn(text, "\n");
        lines += begin + std::string(text, length) + "\n";
        text += length;
        if (*text == '\n') ++text;
    }
    fputs(lines.c_str(), stderr);
}

}  // namespace

extern "C" {

int __android_log_is_loggable(int priority, const char*, int) {
    return priority >= Minimum() ? 1 : 0;
}

int32_t __android_log_set_minimum_priority(int32_t priority) {
    return Minimum().exchange(priority == ANDROID_LOG_DEFAULT ? FromEnvironment() : priority);
}

int __android_log_write(int priority, const char* tag, const char* text) {
    if (__android_log_is_loggable(priority, tag, 0) == 0) return 0;
    WriteLines(priority, tag, text == nullptr ? "" : text);
    return 1;
}

int __android_log_vprint(int priority, const char* tag, const char* format, va_list arguments) {
    char text[1024];  // as long as a line of the log can be
    vsnprintf(text, sizeof(text), format, arguments);
    return __android_log_write(priority, tag, text);
}

int __android_log_print(int priority, const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = __android_log_vprint(priority, tag, format, arguments);
    va_end(arguments);
    return result;
}

int __android_log_buf_write(int, int priority, const char* tag, const char* text) {
    return __android_log_write(priority, tag, text);
}

}  // extern "C"
