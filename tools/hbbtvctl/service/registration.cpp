#include "service/registration.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "common/failure.h"
#include "package/debug.h"

namespace hbbtv::ctl {

namespace {

// The only service that keeps its other clients when one more registers.
bool KeepsItsClients(const ServiceCaller& service) {
    return service.Name() == "IConfiguration";
}

// The service may not know yet that a process has ended.
bool HasEnded(pid_t process) {
    return kill(process, 0) != 0 && errno == ESRCH;
}

// Returns the other processes that are registered, as words.
std::string OtherClients(const ServiceCaller& service, Milliseconds limit) {
    std::string words;
    for (const pid_t process : ClientsOf(service, limit)) {
        if (process == getpid() || HasEnded(process)) continue;
        words += (words.empty() ? "process " : ", ") + std::to_string(process);
    }
    return words;
}

}  // namespace

const Parameter* CallbackOf(const Method& method) {
    for (const Parameter& argument : method.arguments) {
        if (argument.type->kind == Type::Kind::Callback) return &argument;
    }
    return nullptr;
}

bool Registers(const Method& method) {
    return CallbackOf(method) != nullptr && method.name.find("Unregister") == std::string::npos;
}

void CheckOtherClients(const ServiceCaller& service, bool takeOver, Milliseconds limit) {
    if (KeepsItsClients(service)) return;
    const std::string clients = OtherClients(service, limit);
    if (clients.empty()) return;
    const std::string loses = service.Name() + ": " + clients + " is registered and loses its events";
    if (!takeOver) {
        throw Failure(kUsage, loses +
                                  "; use --take-over to replace it, or `hbbtvctl listen --passive` to see its events "
                                  "without registering");
    }
    std::fprintf(stderr, "hbbtvctl: %s until it registers again\n", loses.c_str());
}

}  // namespace hbbtv::ctl
