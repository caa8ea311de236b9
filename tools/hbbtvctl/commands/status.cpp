// hbbtvctl status: what the service is doing, from its debug.
#include <cstdio>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "package/debug.h"

namespace hbbtv::ctl {

namespace {

struct StatusOptions {
    std::vector<std::string> families;
    bool json = false;
    TimeOption timeout{"5s"};
};

const Interface& InterfaceOf(const std::string& name) {
    const WireFamily& family = FindFamily(name);
    if (const Interface* interface = Package::Get().InterfaceOf(family)) return *interface;
    throw Failure(kUsage, "family " + family.name + " has no interface");
}

// Asks the service of the first family, which knows all.
int Run(const StatusOptions& options) {
    std::vector<std::string> words;
    for (const std::string& family : options.families) words.push_back(InterfaceOf(family).name);
    const ServiceCaller service = options.families.empty()
                                      ? AnyService(options.timeout.Value())
                                      : ServiceCaller(InterfaceOf(options.families[0]), options.timeout.Value());
    if (words.empty()) words.push_back("--all");
    if (options.json) words.push_back("--json");
    const std::string text = Debug(service, words, options.timeout.Value());
    if (!options.json) {
        std::printf("%s", Printable(text, LineBreaks::Kept).c_str());
        return kDone;
    }
    try {
        std::printf("%s\n", WriteJson(ParseJson(text)).c_str());
    } catch (const BadJson& e) {
        throw Failure(kInvalidReply, "the service wrote " + Quoted(text) + ", which is " + e.what() +
                                         "; were service and hbbtvctl built from the same package?");
    }
    return kDone;
}

}  // namespace

void AddStatus(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<StatusOptions>();
    CLI::App* command = app.add_subcommand("status", "Show what the service is doing");
    command->add_option("FAMILY", options->families, "For example channel or IChannel (default: all)")
        ->type_name("FAMILY");
    AddJson(*command, options->json);
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for the service");
    command->footer(
        "Per family: the open request or one-way message, its age and the callers that wait; requests, events and "
        "connections so far;\n"
        "the registered client; the last error. The service answers also while all families hang.\n\n"
        "Examples:\n"
        "  hbbtvctl status\n"
        "  hbbtvctl status video_broadcast IChannel --json");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
