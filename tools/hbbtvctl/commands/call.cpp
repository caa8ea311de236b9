// hbbtvctl call: calls a method of the running service.
#include <cstdio>

#include "cli/arguments.h"
#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "events/death_notice.h"
#include "events/event_printer.h"
#include "package/caller.h"
#include "package/handles.h"
#include "service/registration.h"
#include "terminal/style.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

struct CallOptions {
    std::string method;
    ArgumentOptions arguments;
    bool time = false;
    bool numbers = false;
    std::string get;  // the only result to print
    TimeOption timeout{"10s"};
    TimeOption duration{""};
    uint64_t count = 0;
    bool takeOver = false;
};

void PrintForPeople(const Method& method, const Json::Value& results, double milliseconds, bool time) {
    std::vector<std::vector<std::string>> rows;
    for (Json::ArrayIndex i = 0; i < method.results.size(); ++i) {
        const Parameter& result = method.results[i];
        rows.push_back({result.name, ForPeople(*result.type, results[i], IsHandle(result))});
    }
    char text[40];
    std::snprintf(text, sizeof(text), "%.3f ms", milliseconds);
    if (time) rows.push_back({"time", text});
    std::printf("%s", Columns(rows, "").c_str());
}

// Prints one result as scripts take it: strings without quotes, handles as they are given to the next call.
void PrintOne(const Method& method, const Json::Value& results, const CallOptions& options) {
    for (Json::ArrayIndex i = 0; i < method.results.size(); ++i) {
        const Parameter& result = method.results[i];
        if (result.name != options.get) continue;
        const Type& type = *result.type;
        const Json::Value value = ForPrograms(type, results[i], options.numbers);
        std::string text = WriteJson(value);
        if (!options.arguments.json) {
            if (value.isString()) text = Printable(value.asString());
            if (IsHandle(result) || type.bytes) text = ForPeople(type, results[i], true);
            if (type.bytes) text = text.substr(1, text.size() - 2);
        }
        std::printf("%s\n", text.c_str());
    }
}

void CheckName(const std::string& name, const Method& method, const std::string& get) {
    std::set<std::string> known;
    for (const Parameter& result : method.results) known.insert(result.name);
    if (get.empty() || known.count(get) != 0) return;
    throw Failure(kUsage, name + ": no result \"" + get + "\"" + DidYouMean(get, known, kShortList));
}

void PrintForPrograms(const std::string& name, const Method& method, const Json::Value& results, double milliseconds,
                      const CallOptions& options) {
    Json::Value document(Json::objectValue);
    document["method"] = name;
    Json::Value& named = document["results"] = Json::Value(Json::objectValue);
    for (Json::ArrayIndex i = 0; i < method.results.size(); ++i) {
        const Parameter& result = method.results[i];
        named[result.name] = ForPrograms(*result.type, results[i], options.numbers);
    }
    if (options.time) document["took_us"] = static_cast<Json::Int64>(milliseconds * 1000);
    std::printf("%s\n", WriteJson(document).c_str());
}

// Returns the exit code for the status.
int CallAndPrint(ServiceCaller& service, const Method& method, const Json::Value& arguments, EventSink& events,
                 const CallOptions& options) {
    const auto begin = std::chrono::steady_clock::now();
    const Json::Value results = service.Call(method, arguments, events);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    if (!options.get.empty()) {
        PrintOne(method, results, options);
    } else if (options.arguments.json) {
        PrintForPrograms(service.Name() + "." + method.name, method, results, took.count(), options);
    } else {
        PrintForPeople(method, results, took.count(), options.time);
    }
    std::fflush(stdout);
    return StatusOf(method, results) == 0 ? kDone : kStatusNotZero;
}

// Does not unregister: the service drops the callback object when this process ends.
int CallAndListen(const Interface& interface, const Method& method, const Json::Value& arguments,
                  const CallOptions& options) {
    // Static: callbacks may arrive until the process ends.
    static Interruption interruption;
    static EventPrinter events({options.arguments.json, options.numbers, {}, {}, options.count}, interruption);
    ServiceCaller service(interface, options.timeout.Value());
    if (Registers(method)) CheckOtherClients(service, options.takeOver, options.timeout.Value());
    const android::sp<DeathNotice> notice = new DeathNotice(interruption);
    notice->Watch(service);
    if (const int code = CallAndPrint(service, method, arguments, events, options); code != kDone) return code;
    interruption.Wait(options.duration.Limit());
    notice->Check();
    return kDone;
}

int Run(const CallOptions& options) {
    const auto [interface, method] = Package::Get().FindMethod(options.method);
    const std::string name = interface->name + "." + method->name;
    if (interface->callback) {
        throw Failure(kUsage, "cannot call " + interface->name +
                                  ": clients implement it; `hbbtvctl emit` sends the events that reach it");
    }
    CheckName(name, *method, options.get);
    const Json::Value byName = ReadArguments(name, method->arguments, options.arguments.given, true);
    const Json::Value arguments = InOrder(method->arguments, byName);
    if (Listens(arguments)) return CallAndListen(*interface, *method, arguments, options);
    if (options.count != 0 || options.duration.Limit() || options.takeOver) {
        throw Failure(kUsage, "--for, --count and --take-over require an argument @listen");
    }
    static NoEvents events;
    ServiceCaller service(*interface, options.timeout.Value());
    return CallAndPrint(service, *method, arguments, events, options);
}

}  // namespace

void AddCall(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<CallOptions>();
    CLI::App* command = app.add_subcommand("call", "Call a method of the running service");
    command->add_option("METHOD", options->method, "INTERFACE.METHOD, for example IChannel.GetOnid")
        ->type_name("METHOD")
        ->required();
    AddArguments(*command, options->arguments);
    command->add_flag("--time", options->time, "Show how long the call took");
    command->add_option("--get", options->get, "Print only this result, and nothing else")->type_name("RESULT");
    command->add_flag("--numbers", options->numbers, "In JSON, print enumerators as numbers instead of names");
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for the reply");
    AddTime(*command, "--for", options->duration, "With @listen, stop after this time");
    command->add_option("--count", options->count, "With @listen, stop after this many events")
        ->type_name("NUMBER")
        ->check(WholeNumber(1));
    AddTakeOver(*command, options->takeOver);
    command->footer(
        "In JSON, the bytes of a result that is not text (see IProgramme.GetSIDescriptorByIndex) are the characters 0\n"
        "to 255.\n\n"
        "Examples:\n"
        "  hbbtvctl call IChannelConfig.GetCurrentChannel\n"
        "  hbbtvctl call IChannelConfig.GetCurrentChannel --get channel\n"
        "  hbbtvctl call IChannel.GetName channel=0x1000\n"
        "  hbbtvctl call IVideoBroadcast.SetWindow 0x2000 '{\"x\": 0, \"y\": 0, \"width\": 640, \"height\": 360}'\n"
        "  hbbtvctl call IChannelConfig.RegisterCallback cb=@listen context=1 --for 1s");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
