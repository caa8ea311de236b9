#include "service_report.h"

#include <log/log.h>

#include <cstdarg>
#include <cstdio>

void Report(int priority, const char* format, ...) {
    char line[1024];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    __android_log_write(priority, "hbbtv_service", line);
    FILE* const stream = priority >= ANDROID_LOG_WARN ? stderr : stdout;
    fprintf(stream, "%s\n", line);
    fflush(stream);
}
