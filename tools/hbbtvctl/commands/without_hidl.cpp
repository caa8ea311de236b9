// A build without HIDL: the commands that need it say so, and nothing is known about the service.
#include <CLI/App.hpp>

#include "commands/commands.h"
#include "common/failure.h"
#include "service/service.h"

namespace hbbtv::ctl {

namespace {

void Refuse(CLI::App& app, Invocation& invocation, const std::string& name) {
    CLI::App* command = app.add_subcommand(name, "Requires HIDL, which this build does not have");
    command->group("")->allow_extras()->footer("");
    command->callback([name, &invocation] {
        invocation.run = [name]() -> int {
            throw Failure(kUsage, name + " requires HIDL, which this build does not have; use the hbbtvctl that is " +
                                      "installed with the service");
        };
    });
}

}  // namespace

void AddCall(CLI::App& app, Invocation& invocation) {
    Refuse(app, invocation, "call");
}

void AddListen(CLI::App& app, Invocation& invocation) {
    Refuse(app, invocation, "listen");
}

void AddPlay(CLI::App& app, Invocation& invocation) {
    Refuse(app, invocation, "play");
}

void AddBench(CLI::App& app, Invocation& invocation) {
    Refuse(app, invocation, "bench");
}

void AddStatus(CLI::App& app, Invocation& invocation) {
    Refuse(app, invocation, "status");
}

void AddLog(CLI::App& app, Invocation& invocation) {
    Refuse(app, invocation, "log");
}

std::optional<std::vector<std::pair<std::string, bool>>> RegisteredInterfaces(Milliseconds) {
    return std::nullopt;
}

Checks CheckService(Milliseconds) {
    return {{"service", Check::Level::Warning, "not checked: this build has no HIDL",
             "use the hbbtvctl that is installed with the service"}};
}

}  // namespace hbbtv::ctl
