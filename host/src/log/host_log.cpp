#include "log/host_log.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace android::hardware::host {

namespace {

// Lines are short and mostly ASCII, so anything else is escaped.
std::string Escaped(const char* text) {
    std::string line;
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (byte >= 0x20 && byte < 0x7f) {
            line += *text;
            continue;
        }
        char escaped[5];
        snprintf(escaped, sizeof(escaped), byte == '\n' ? "\\n" : "\\x%02x", byte);
        line += escaped;
    }
    return line;
}

}  // namespace

int Log(int priority, const char* tag, const char* format, ...) {
    char text[1024];  // as long as a line of the log can be
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    return __android_log_print(priority, tag, "%s", Escaped(text).c_str());
}

}  // namespace android::hardware::host
