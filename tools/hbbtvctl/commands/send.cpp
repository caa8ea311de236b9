// hbbtvctl send: sends a request to the platform, as the library does.
#include "cli/arguments.h"
#include "cli/options.h"
#include "commands/commands.h"
#include "commands/exchange.h"
#include "common/failure.h"
#include "common/nearest_name.h"
#include "terminal/style.h"
#include "wire/check.h"
#include "wire/connection.h"
#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

struct SendOptions {
    std::string operation;
    ArgumentOptions arguments;
    ExchangeOptions exchange;
};

struct QualifiedOperation {
    const WireFamily* family;
    const Json::Value* operation;
};

QualifiedOperation FindOperation(const std::string& wanted) {
    const size_t dot = wanted.find('.');
    const WireFamily& family = FindFamily(wanted.substr(0, dot));
    const std::string name = dot == std::string::npos ? "" : wanted.substr(dot + 1);
    if (const Json::Value* operation = family.Operation(name)) return {&family, operation};
    if (dot == std::string::npos) {
        throw Failure(kUsage,
                      "\"" + wanted + "\" is not an operation: write FAMILY.OPERATION, for example channel.GetOnid");
    }
    throw Failure(kUsage, "family " + family.name + " has no operation \"" + name + "\"" +
                              DidYouMean(name, family.OperationNames(), kShortList) + " (see `hbbtvctl describe " +
                              family.name + "`)");
}

int Run(const std::string& directory, const SendOptions& options) {
    if (options.exchange.raw) {
        if (options.operation.find('.') != std::string::npos || options.arguments.Any()) {
            throw Failure(kUsage, "with --raw, send takes only a family");
        }
        const WireFamily& family = FindFamily(options.operation);
        return ExchangeRaw(PathOf(directory, RequestsOf(family)), options.arguments.json, options.exchange);
    }
    const auto [family, operation] = FindOperation(options.operation);
    const std::string name = family->name + "." + (*operation)["name"].asString();
    const std::vector<Parameter> parameters = WireArguments((*operation)["request"]);
    const Json::Value values = ReadMembers(name, parameters, options.arguments.given);
    const Json::Value request = MakeRequest(*family, *operation, values);
    RefuseProblems(name, CheckRequest(*family, *operation, request), options.exchange);
    const Endpoint endpoint = RequestsOf(*family);
    const bool oneWay = (*operation)["form"] == "one-way";
    return Exchange({name, PathOf(directory, endpoint), endpoint.port, request, !oneWay}, options.arguments.json,
                    options.exchange);
}

}  // namespace

void AddSend(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<SendOptions>();
    CLI::App* command = app.add_subcommand("send", "Send a request to the platform, as the library does");
    command
        ->add_option("OPERATION", options->operation,
                     "FAMILY.OPERATION, for example channel.GetOnid; with --raw, FAMILY")
        ->type_name("OPERATION")
        ->required();
    AddArguments(*command, options->arguments);
    AddExchangeOptions(*command, options->exchange);
    command->footer(
        "Examples:\n"
        "  hbbtvctl send channel_config.GetCurrentChannel\n"
        "  hbbtvctl send channel.GetName c_handle=0x1000 --json\n"
        "  hbbtvctl send channel_config.CreateChannelList channel=0x1000,0x1000\n"
        "  hbbtvctl send local_system.GetDeviceID more=1 --unchecked\n"
        "  hbbtvctl send channel --raw @request.bin");
    command->callback([options, &invocation] {
        invocation.run = [options, &invocation] { return Run(invocation.directory, *options); };
    });
}

}  // namespace hbbtv::ctl
