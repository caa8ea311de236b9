// hbbtvctl list: shows the registered interfaces and the state of all sockets.
#include <cstdio>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "package/description.h"
#include "service/service.h"
#include "terminal/style.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

namespace {

struct ListOptions {
    bool json = false;
    TimeOption timeout{"5s"};
};

std::string State(const Finding& finding) {
    const std::string words = finding.InWords();
    if (finding.state == Finding::State::Serving) return Green(words);
    return finding.state == Finding::State::Missing ? Dim(words) : Red(words);
}

void PrintEndpoints(const std::string& directory, bool ofPlatform, const std::string& title) {
    std::vector<std::vector<std::string>> rows{{"KEY", "PORT", "FAMILY", "SOCKET", "STATE", "PROCESS"}};
    for (const Endpoint& endpoint : AllEndpoints()) {
        if (endpoint.ofPlatform != ofPlatform) continue;
        const Finding finding = LookAt(PathOf(directory, endpoint));
        rows.push_back({std::to_string(endpoint.key), std::to_string(endpoint.port), endpoint.family, endpoint.socket,
                        State(finding), finding.peer});
    }
    std::printf("%s\n%s", Bold(title + " in " + Printable(directory)).c_str(), Columns(rows, "  ").c_str());
}

void PrintInterfaces(const std::vector<std::pair<std::string, bool>>& interfaces) {
    std::vector<std::vector<std::string>> rows;
    for (const auto& [name, registered] : interfaces) {
        rows.push_back({name, registered ? Green("registered") : Dim("not registered")});
    }
    std::printf("%s\n%s\n", Bold("Interfaces of " + Package::Get().name).c_str(), Columns(rows, "  ").c_str());
}

int RunForPeople(const std::string& directory, const ListOptions& options) {
    if (const auto interfaces = RegisteredInterfaces(options.timeout.Value())) PrintInterfaces(*interfaces);
    PrintEndpoints(directory, true, "Sockets of the platform (requests)");
    std::printf("\n");
    PrintEndpoints(directory, false, "Sockets of the library (events)");
    return kDone;
}

Json::Value InterfacesForPrograms(const std::vector<std::pair<std::string, bool>>& interfaces) {
    Json::Value list(Json::arrayValue);
    for (const auto& [name, registered] : interfaces) {
        Json::Value entry(Json::objectValue);
        entry["name"] = name;
        entry["registered"] = registered;
        list.append(entry);
    }
    return list;
}

int RunForPrograms(const std::string& directory, const ListOptions& options) {
    Json::Value document(Json::objectValue);
    document["package"] = Package::Get().name;
    document["directory"] = directory;
    if (const auto interfaces = RegisteredInterfaces(options.timeout.Value())) {
        document["interfaces"] = InterfacesForPrograms(*interfaces);
    }
    document["endpoints"] = Json::Value(Json::arrayValue);
    for (const Endpoint& endpoint : AllEndpoints()) {
        const Finding finding = LookAt(PathOf(directory, endpoint));
        Json::Value entry(Json::objectValue);
        entry["family"] = endpoint.family;
        entry["served_by"] = endpoint.ofPlatform ? "platform" : "library";
        entry["key"] = endpoint.key;
        entry["port"] = endpoint.port;
        entry["path"] = PathOf(directory, endpoint);
        entry["state"] = finding.InWords();
        entry["process"] = finding.peer;
        document["endpoints"].append(entry);
    }
    std::printf("%s\n", WriteJson(document).c_str());
    return kDone;
}

}  // namespace

void AddList(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<ListOptions>();
    CLI::App* command = app.add_subcommand("list", "Show the registered interfaces and the sockets of both sides");
    AddJson(*command, options->json);
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for the service");
    command->footer(
        "A socket is serving, missing, stale (its process has ended), forbidden (by its mode), no socket (another "
        "kind\n"
        "of file), or unreachable.\n\n"
        "Examples:\n"
        "  hbbtvctl list\n"
        "  hbbtvctl --directory /tmp list --json");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] {
            return options->json ? RunForPrograms(invocation.directory, *options)
                                 : RunForPeople(invocation.directory, *options);
        };
    });
}

}  // namespace hbbtv::ctl
