#include "utils/include/tolm_debug.h"

#include <android/log.h>
#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <string>
#include <vector>

#include "ipc/src/tolm_event_taps.h"
#include "ipc/src/tolm_json_text.h"
#include "ipc/src/tolm_status_report.h"

// Android has it from 11 on.
extern "C" __attribute__((weak)) int32_t __android_log_set_minimum_priority(int32_t priority);

namespace tolm {

namespace {

constexpr std::chrono::seconds kPatience{1};

constexpr char kHelp[] =
    "options:\n"
    "  INTERFACE    the family of another interface, for example IChannel\n"
    "  --all        all families\n"
    "  --json       as JSON\n"
    "  --events     instead, shows the platform's messages on the descriptor, a socket of packets, until it is closed\n"
    "  --log=LEVEL  instead, sets the lowest priority of the log: verbose, debug, info, warn, error, or default\n";

struct Level {
    const char* name;
    int priority;
};

constexpr Level kLevels[] = {{"verbose", ANDROID_LOG_VERBOSE}, {"debug", ANDROID_LOG_DEBUG},
                             {"info", ANDROID_LOG_INFO},       {"warn", ANDROID_LOG_WARN},
                             {"error", ANDROID_LOG_ERROR},     {"default", ANDROID_LOG_DEFAULT}};

struct Request {
    std::vector<const Family*> families;
    bool json = false;
    bool events = false;
};

// Writes a text to a descriptor that others may use as well, so that it cannot be made non-blocking. What was polled
// takes PIPE_BUF bytes without waiting.
void WriteTo(int fd, const std::string& text) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    const char* next = text.data();
    size_t left = text.size();
    while (left > 0) {
        const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd room{fd, POLLOUT, 0};
        const int ready = poll(&room, 1, static_cast<int>(std::max<int64_t>(rest.count(), 0)));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0 || (room.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0) return;
        const ssize_t written = write(fd, next, std::min<size_t>(left, PIPE_BUF));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        next += written;
        left -= static_cast<size_t>(written);
    }
}

// Reads one option. Returns whether it is known.
bool Take(const std::string& option, Request& request) {
    if (option == "--json") {
        request.json = true;
    } else if (option == "--events") {
        request.events = true;
    } else if (option == "--all") {
        request.families.assign(std::begin(families::kAll), std::end(families::kAll));
    } else if (const Family* const family = FindFamily(option)) {
        request.families.push_back(family);
    } else {
        return false;
    }
    return true;
}

// Sets the lowest priority of this process's log.
std::string SetLog(const std::string& name) {
    const auto* const level =
        std::find_if(std::begin(kLevels), std::end(kLevels), [&](const Level& one) { return name == one.name; });
    if (level == std::end(kLevels)) return "unknown log level \"" + name + "\"\n" + kHelp;
    if (__android_log_set_minimum_priority == nullptr) {
        return "this system has no log level of a process; set the property log.tag instead\n";
    }
    __android_log_set_minimum_priority(level->priority);
    return "log level: " + name + "\n";
}

std::string AnswerTo(const char* descriptor, int fd,
                     const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options) {
    constexpr char kLog[] = "--log=";
    if (options.size() == 1 && std::string(options[0]).rfind(kLog, 0) == 0) {
        return SetLog(std::string(options[0]).substr(sizeof(kLog) - 1));
    }
    Request request;
    for (const ::android::hardware::hidl_string& option : options) {
        if (!Take(option, request)) return "unknown option \"" + std::string(option) + "\"\n" + kHelp;
    }
    if (request.families.empty()) {
        const std::string name = descriptor;
        const Family* const own = FindFamily(name.substr(name.rfind(':') + 1));
        if (own != nullptr) request.families.push_back(own);
    }
    if (request.events) {
        const std::string refused = EventTaps::Add(fd, request.families);
        return refused.empty() ? "" : refused + "\n";
    }
    const Json::Value report = StatusReport(request.families);
    if (!request.json) return StatusText(report);
    const std::vector<unsigned char> bytes = ToStyledBytes(report);
    return std::string(bytes.begin(), bytes.end());
}

}  // namespace

void Debug(const char* descriptor, const ::android::hardware::hidl_handle& handle,
           const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options) {
    if (handle == nullptr || handle->numFds < 1) return;
    WriteTo(handle->data[0], AnswerTo(descriptor, handle->data[0], options));
}

}  // namespace tolm
