#include "ipc/tolm_reply_timeout.h"

#include <cerrno>
#include <cstdlib>

#include "ipc/tolm_log.h"

namespace tolm {

namespace {

constexpr char kVariable[] = "TOLM_REPLY_TIMEOUT_MS";
constexpr long kMost = 24L * 60 * 60 * 1000;

std::chrono::milliseconds Read() {
    const char* text = getenv(kVariable);
    if (text == nullptr) return {};
    char* end = nullptr;
    errno = 0;
    const long number = strtol(text, &end, 10);
    // strtol() skips blanks and takes a sign.
    if (*text >= '0' && *text <= '9' && *end == '\0' && errno == 0 && number <= kMost) {
        return std::chrono::milliseconds(number);
    }
    TOLM_LOG(ANDROID_LOG_ERROR, kIpcBaseTag, "%s is not a number from 0 to %ld; replies are awaited for ever",
             kVariable, kMost);
    return {};
}

}  // namespace

std::chrono::milliseconds ReplyTimeout() {
    static const std::chrono::milliseconds timeout = Read();
    return timeout;
}

}  // namespace tolm
