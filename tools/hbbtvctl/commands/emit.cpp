// hbbtvctl emit: sends an event to the library, as the platform does.
#include "cli/arguments.h"
#include "cli/options.h"
#include "commands/commands.h"
#include "commands/exchange.h"
#include "common/failure.h"
#include "wire/check.h"
#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

struct EmitOptions {
    std::string family;
    std::string event;
    ArgumentOptions arguments;
    bool request = false;
    bool oneWay = false;
    ExchangeOptions exchange;
};

// Uses the first form of the event by default.
bool WithReply(const EmitOptions& options, const Json::Value& event) {
    if (options.request || options.oneWay) return options.request;
    return event["forms"][0] == "request";
}

int Run(const std::string& directory, const EmitOptions& options) {
    const WireFamily& family = FindFamily(options.family);
    const Endpoint endpoint = EventsOf(family);
    if (options.exchange.raw) {
        if (!options.event.empty()) throw Failure(kUsage, "with --raw, emit takes only a family");
        return ExchangeRaw(PathOf(directory, endpoint), options.arguments.json, options.exchange);
    }
    if (options.event.empty()) {
        throw Failure(kUsage, "emit requires an event of " + family.name + " (see `hbbtvctl describe " + family.name +
                                  "`) or --raw");
    }
    const Json::Value& event = family.FindEvent(options.event);
    const Json::Value members = EventMembers(family, event);
    const std::vector<Parameter> parameters = WireArguments(members);
    const std::string name = family.name + " event " + event["name"].asString();
    const Json::Value message = MakeEvent(family, event, ReadMembers(name, parameters, options.arguments.given));
    RefuseProblems(name, CheckEvent(family, event, message), options.exchange);
    return Exchange({name, PathOf(directory, endpoint), endpoint.port, message, WithReply(options, event)},
                    options.arguments.json, options.exchange);
}

}  // namespace

void AddEmit(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<EmitOptions>();
    CLI::App* command = app.add_subcommand("emit", "Send an event to the library, as the platform does");
    command->add_option("FAMILY", options->family, "For example channel_config")->type_name("FAMILY")->required();
    command->add_option("EVENT", options->event, "Its code, its name, or the client method that it reaches")
        ->type_name("EVENT");
    AddArguments(*command, options->arguments);
    CLI::Option* request = command->add_flag("--request", options->request, "Request a reply and wait for it");
    command->add_flag("--one-way", options->oneWay, "Do not request a reply")->excludes(request);
    AddExchangeOptions(*command, options->exchange);
    command->footer(
        "Examples:\n"
        "  hbbtvctl emit channel_config changed reserved=A\n"
        "  hbbtvctl emit video_broadcast onPlayStateChange state=2 error=0 context=0xc0de --one-way\n"
        "  hbbtvctl emit channel_config changed --unchecked\n"
        "  hbbtvctl emit video_broadcast --raw @damaged.bin");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
