#include "package/debug.h"

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <thread>

#include "common/failure.h"
#include "common/interruption.h"
#include "common/local_socket.h"
#include "common/text/json.h"

namespace hbbtv {

namespace {

using Clock = std::chrono::steady_clock;

// Calls debug and closes the descriptor. Returns whether the call succeeded.
bool CallDebug(android::hidl::base::V1_0::IBase& service, int fd, const std::vector<std::string>& options) {
    const Descriptor owned(fd);
    hidl_vec<hidl_string> words;
    words.resize(options.size());
    for (size_t i = 0; i < options.size(); ++i) words[i] = options[i];
    const std::unique_ptr<native_handle_t, int (*)(native_handle_t*)> handle(native_handle_create(1, 0),
                                                                             native_handle_delete);
    handle->data[0] = fd;
    return service.debug(android::hardware::hidl_handle(handle.get()), words).isOk();
}

void CheckAnswered(const ServiceCaller& service, bool answered) {
    if (!answered) throw Failure(kPeerLost, service.Name() + ".debug: the call failed; check the log of the service");
}

// Returns what is written to the other end until all have closed it.
std::string ReadToEnd(int fd, const std::string& what, Milliseconds limit) {
    const Clock::time_point end = Clock::now() + limit;
    std::string text;
    char bytes[4096];
    for (;;) {
        const auto left = std::chrono::duration_cast<Milliseconds>(end - Clock::now());
        if (left <= Milliseconds(0) || !WaitUntilReadable(fd, left)) {
            throw Failure(kTimeout, what + ": no reply within " + FormatDuration(limit) + "; the service hangs");
        }
        const ssize_t n = read(fd, bytes, sizeof(bytes));
        if (n == 0) return text;
        if (n > 0) text.append(bytes, static_cast<size_t>(n));
    }
}

}  // namespace

// The call is made on a thread of its own: the answer may be larger than a pipe.
std::string Debug(const ServiceCaller& service, const std::vector<std::string>& options, Milliseconds limit) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw Failure(kUsage, std::string("cannot create a pipe: ") + std::strerror(errno));
    const Descriptor reading(ends[0]);
    const auto answered = std::make_shared<std::atomic<bool>>(false);
    std::thread([base = service.Service(), fd = ends[1], options, answered] {
        *answered = CallDebug(*base, fd, options);
    }).detach();
    const std::string text = ReadToEnd(ends[0], service.Name() + ".debug", limit);
    // A service that has ended has closed its end as well.
    CheckAnswered(service, !text.empty() || *answered);
    return text;
}

void PassForDebug(const ServiceCaller& service, int fd, const std::vector<std::string>& options, Milliseconds limit) {
    const auto answered = std::make_shared<std::atomic<bool>>(false);
    const int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    InTime(limit, service.Name() + ".debug",
           [base = service.Service(), copy, options, answered] { *answered = CallDebug(*base, copy, options); });
    CheckAnswered(service, *answered);
}

std::set<pid_t> ClientsOf(const ServiceCaller& service, Milliseconds limit) {
    std::set<pid_t> clients;
    try {
        const Json::Value report = ParseJson(Debug(service, {"--json"}, limit));
        for (const Json::Value& client : report["families"][0]["clients"]) clients.insert(client.asInt());
    } catch (const BadJson&) {
    }
    return clients;
}

ServiceCaller AnyService(Milliseconds limit) {
    for (const auto& [name, binding] : AllBindings()) {
        try {
            return ServiceCaller(Package::Get().FindInterface(name), limit);
        } catch (const Failure& e) {
            if (e.Code() != kUnavailable || name == AllBindings().rbegin()->first) throw;
        }
    }
    throw Failure(kUnavailable, "the package has no interfaces");
}

}  // namespace hbbtv
