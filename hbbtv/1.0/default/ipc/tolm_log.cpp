#include "ipc/tolm_log.h"

#include <cstdarg>
#include <cstdio>

namespace tolm {

void LogSocketLine(int priority, const char* file, int line, const char* function, const char* format, ...) {
    char message[1024];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    __android_log_print(priority, "tolm_IPC", "[tolm](%s:%d) %s: %s", file, line, function, message);
    printf("tolm_IPC \"%s\"\n", message);
}

}  // namespace tolm
