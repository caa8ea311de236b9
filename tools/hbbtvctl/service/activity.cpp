#include "service/activity.h"

#include <fcntl.h>
#include <sys/types.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>

#include "common/local_socket.h"
#include "common/process.h"
#include "common/text/json.h"
#include "package/debug.h"

namespace hbbtv::ctl {

namespace {

// What lasts longer than this is trouble; the service logs it as well.
constexpr int kLongMs = 1000;

std::string Seconds(const Json::Value& ms) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f s", static_cast<double>(ms.asInt64()) / 1000);
    return text;
}

std::string Listed(const Json::Value& processes) {
    std::string text;
    for (const Json::Value& process : processes) text += (text.empty() ? "" : ", ") + DescribeProcess(process.asInt());
    return text;
}

// Returns the process of each registered interface.
std::map<pid_t, std::vector<std::string>> ServingProcesses(Milliseconds limit) {
    struct Shared {
        std::mutex mutex;
        std::map<pid_t, std::vector<std::string>> processes;
    };
    const auto shared = std::make_shared<Shared>();
    InTime(limit, "getDebugInfo", [shared] {
        for (const auto& [name, binding] : AllBindings()) {
            const auto service = binding->find();
            if (service == nullptr) continue;
            const auto keep = [&, &interface = name](const auto& info) {
                std::lock_guard<std::mutex> lock(shared->mutex);
                shared->processes[info.pid].push_back(interface);
            };
            (void)service->getDebugInfo(keep).isOk();
        }
    });
    std::lock_guard<std::mutex> lock(shared->mutex);
    return shared->processes;
}

// Returns the process that has locked the directory for its service, or 0.
pid_t HolderOf(const std::string& directory) {
    const Descriptor file(open((directory + "/hbbtv-service.lock").c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    if (file.Get() < 0 || fcntl(file.Get(), F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) return 0;
    return lock.l_pid;
}

void CheckProcesses(const std::string& directory, Milliseconds limit, Checks& troubles) {
    const auto processes = ServingProcesses(limit);
    if (processes.size() > 1) {
        std::string all;
        for (const auto& [pid, interfaces] : processes) {
            all += (all.empty() ? "" : "; ") + DescribeProcess(pid) + " has " + std::to_string(interfaces.size()) +
                   ", such as " + interfaces[0];
        }
        troubles.push_back({"services", Check::Level::Problem, "the interfaces are of several processes: " + all,
                            "end all of them, and start one service", kUnavailable});
    }
    const pid_t holder = HolderOf(directory);
    if (holder != 0 && !processes.empty() && processes.count(holder) == 0) {
        troubles.push_back({"services", Check::Level::Problem,
                            DescribeProcess(holder) + " serves the sockets, but its names have been taken by " +
                                DescribeProcess(processes.begin()->first),
                            "end one of them, and restart the other", kUnavailable});
    }
}

// A request that is open, or a one-way message that is being written.
struct Overdue {
    const char* state;
    const char* platform;  // what it does not do
    const Json::Value& open;
    const Json::Value& waiting;
};

std::string Waiting(const Json::Value& callers) {
    if (callers.empty()) return "no callers wait";
    const std::string count = callers.size() == 1 ? "1 caller waits" : std::to_string(callers.size()) + " callers wait";
    return count + " (" + Listed(callers) + ")";
}

Check TroubleOf(const Json::Value& family, const Overdue& overdue) {
    const std::string operation = family["family"].asString() + "." + overdue.open["operation"].asString();
    const std::string waiting = Waiting(overdue.waiting);
    const std::string begin =
        operation + " has been " + overdue.state + " for " + Seconds(overdue.open["age_ms"]) + ", " + waiting;
    const Json::Value& peer = family["requests"]["connected_to"];
    if (peer.isNull()) {
        return {"requests", Check::Level::Problem, begin + "; the platform accepts no connection",
                "check the platform's log", kTimeout};
    }
    const pid_t platform = peer.asInt();
    if (IsStopped(platform)) {
        return {"requests", Check::Level::Problem, begin + "; " + DescribeProcess(platform) + " is stopped",
                "continue it: kill -CONT " + std::to_string(platform), kTimeout};
    }
    return {"requests", Check::Level::Problem,
            begin + "; " + DescribeProcess(platform) + " does not " + overdue.platform,
            "attach a debugger to it to see where it is, or restart it", kTimeout};
}

void CheckFamily(const Json::Value& family, Checks& troubles) {
    const Json::Value& requests = family["requests"];
    for (const Overdue& overdue :
         {Overdue{"open", "reply", requests["open"], requests["waiting"]},
          Overdue{"in the middle of being sent", "read", requests["sending"], requests["waiting_to_send"]}}) {
        const bool isLong = !overdue.open.isNull() && overdue.open["age_ms"].asInt64() > kLongMs;
        if (isLong) troubles.push_back(TroubleOf(family, overdue));
    }
    const Json::Value& event = family["events"]["open_ms"];
    if (event.isNull() || event.asInt64() <= kLongMs) return;
    troubles.push_back({"clients", Check::Level::Problem,
                        "the client of " + family["family"].asString() + ", " + Listed(family["clients"]) +
                            ", has not returned from an event for " + Seconds(event),
                        "its family gets no events until it returns or ends", kTimeout});
}

}  // namespace

Checks FindTrouble(Milliseconds limit) {
    Checks troubles;
    try {
        CheckProcesses(std::getenv("TMPDIR"), limit, troubles);
        const Json::Value report = ParseJson(Debug(AnyService(limit), {"--all", "--json"}, limit));
        for (const Json::Value& family : report["families"]) CheckFamily(family, troubles);
    } catch (const Failure&) {
        // Without a service, which another check reports.
    } catch (const BadJson&) {
        troubles.push_back({"service", Check::Level::Problem, "its status is not that of this version",
                            "build service and hbbtvctl from the same package", kInvalidReply});
    }
    return troubles;
}

}  // namespace hbbtv::ctl
