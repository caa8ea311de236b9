#include "service/relay_check.h"

#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include "common/process.h"
#include "common/text/counted.h"
#include "traffic/relay/claim.h"
#include "traffic/relay/place.h"

namespace hbbtv::ctl {

namespace {

// What lasts longer than this is trouble; the service logs it as well.
constexpr uint64_t kLongMs = 1000;

std::string Seconds(uint64_t ms) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f s", static_cast<double>(ms) / 1000);
    return text;
}

std::string NameOf(const Json::Value& open) {
    const std::string family = open["family"].asString();
    const std::string operation = open["operation"].asString();
    if (family.empty()) return "a message to " + open["socket"].asString();
    return family + "." + (operation.empty() ? "(unknown)" : operation);
}

// By the name that the relay has seen: a process that has ended has none.
std::string Describe(const Json::Value& peer) {
    const pid_t process = peer["pid"].asInt();
    const std::string name = peer["name"].asString();
    return name.empty() ? DescribeProcess(process) : name + " (" + std::to_string(process) + ")";
}

// Whoever has to reply to it: the platform to a request, the library to an event.
Check OpenExchange(const Json::Value& open) {
    const bool event = open["event"].asBool();
    const Json::Value& peer = open[event ? "library" : "platform"];
    const pid_t process = peer["pid"].asInt();
    const std::string begin = NameOf(open) + " has been open for " + Seconds(open["age_ms"].asUInt64());
    const std::string who = (event ? "the library, " : "the platform, ") + Describe(peer);
    if (process != 0 && kill(process, 0) != 0 && errno == ESRCH) {
        return {"requests", Check::Level::Problem, begin + "; " + who + ", has ended",
                "another process keeps its connections: end that one, too, and start it again", kUnavailable};
    }
    if (process != 0 && IsStopped(process)) {
        return {"requests", Check::Level::Problem, begin + "; " + who + ", is stopped",
                "continue it: kill -CONT " + std::to_string(process), kTimeout};
    }
    return {"requests", Check::Level::Problem, begin + "; " + who + ", is alive but does not reply",
            "attach a debugger to it to see where it is, or restart it", kTimeout};
}

Check Silent(const traffic::RelayFound& relay) {
    const std::string begin = relay.name + " has the place of the sockets and ";
    if (relay.process > 0 && IsStopped(relay.process)) {
        return {"monitor", Check::Level::Problem, begin + "is stopped, so that nothing is passed on",
                "continue it: kill -CONT " + std::to_string(relay.process), kTimeout};
    }
    return {"monitor", Check::Level::Problem, begin + "does not respond to this user",
            "run doctor as the user of the monitor; if it hangs, end it, and run doctor again", kTimeout};
}

Checks CheckRunning(const std::string& directory, const traffic::RelayFound& relay) {
    const std::optional<Json::Value> answer = traffic::AskRelay(directory);
    if (!answer || !(*answer)["sockets"].isArray() || !(*answer)["open"].isArray()) return {Silent(relay)};
    Checks checks;
    const std::string finding = relay.name + " passes on " + Counted((*answer)["sockets"].size(), "socket");
    if (answer->isMember("rules")) {
        checks.push_back({"monitor", Check::Level::Warning, finding + " and does something to messages on purpose",
                          "end it, or remove its rules", kDone});
    } else {
        checks.push_back(Good("monitor", finding));
    }
    for (const Json::Value& open : (*answer)["open"]) {
        if (open["age_ms"].asUInt64() > kLongMs) checks.push_back(OpenExchange(open));
    }
    return checks;
}

}  // namespace

Checks CheckRelay(const std::string& directory) {
    const traffic::RelayFound relay = traffic::LookForRelay(directory);
    if (relay.process != 0) return CheckRunning(directory, relay);
    if (!relay.problem.empty()) {
        return {{"monitor", Check::Level::Problem, relay.name + " was killed; " + relay.problem,
                 "run doctor as the user of the monitor", kUnavailable}};
    }
    if (relay.name.empty()) return {};
    return {{"monitor", Check::Level::Warning,
             relay.name + " was killed; restored " + Counted(relay.restored.size(), "socket") + " that it had left", "",
             kDone}};
}

std::string PathOfOwner(const std::string& path) {
    const std::string behind = traffic::BehindRelay(path);
    struct stat status {};
    return lstat(behind.c_str(), &status) == 0 ? behind : path;
}

}  // namespace hbbtv::ctl
