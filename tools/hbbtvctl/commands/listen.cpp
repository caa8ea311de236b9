// hbbtvctl listen: registers callback objects and prints every event.
#include <hidl/HidlTransportSupport.h>

#include <algorithm>
#include <cstdio>

#include "cli/arguments.h"
#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "events/death_notice.h"
#include "events/event_printer.h"
#include "events/passive_listener.h"
#include "package/caller.h"
#include "package/debug.h"
#include "service/registration.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

constexpr size_t kThreads = 4;  // for events of several families at once

struct ListenOptions {
    std::vector<std::string> families;
    std::vector<std::string> with;
    std::vector<std::string> answers;
    std::vector<std::string> events;
    bool passive = false;
    bool takeOver = false;
    bool json = false;
    bool numbers = false;
    uint64_t count = 0;
    TimeOption duration{""};
    TimeOption timeout{"10s"};
};

bool Holds(const std::string& name, const std::string& word) {
    return name.find(word) != std::string::npos;
}

// Returns the method that registers a callback object, such as RegisterCallback.
const Method* Registrar(const Interface& interface) {
    for (const Method& method : interface.methods) {
        if (Registers(method)) return &method;
    }
    return nullptr;
}

const Method* Unregistrar(const Interface& interface) {
    for (const Method& method : interface.methods) {
        if (Holds(method.name, "Unregister")) return &method;
    }
    return nullptr;
}

// Returns whether the NAME of "NAME=VALUE" is an argument of the method.
bool Takes(const Method& method, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    return std::any_of(method.arguments.begin(), method.arguments.end(),
                       [&name](const Parameter& argument) { return argument.name == name; });
}

// Returns the arguments of the registration, of those given for all families.
Json::Value Given(const Interface& interface, const std::vector<std::string>& with) {
    const Method& method = *Registrar(interface);
    GivenArguments given;
    for (const std::string& word : with) {
        if (Takes(method, word)) given.words.push_back(word);
    }
    return ReadArguments(interface.name + "." + method.name, method.arguments, given, false);
}

// Returns the method that creates the object with this handle: Create for a video/broadcast object.
const Method* Creator(const Interface& interface, const std::string& handle) {
    for (const Method& method : interface.methods) {
        if (method.results.size() != 2 || method.results[1].name != handle) continue;
        if (Holds(method.name, "Create") || Holds(method.name, "create")) return &method;
    }
    return nullptr;
}

// Returns the method that destroys the object.
const Method* Destroyer(const Interface& interface, const std::string& handle) {
    for (const char* word : {"Destroy", "Release"}) {
        for (const Method& method : interface.methods) {
            if (Holds(method.name, word) && method.arguments.size() == 1 && method.arguments[0].name == handle) {
                return &method;
            }
        }
    }
    return nullptr;
}

// A registration for one family. The destructor undoes it.
class Listening {
  public:
    Listening(const Interface& interface, const ListenOptions& options, EventSink& sink)
        : mInterface(interface), mOptions(options), mSink(sink), mService(interface, options.timeout.Value()) {
        const Method* registrar = Registrar(interface);
        if (registrar == nullptr) throw Failure(kUsage, interface.name + " has no events to listen to");
        Register(*registrar);
    }

    ~Listening() {
        try {
            Undo();
        } catch (const Failure& e) {
            std::fprintf(stderr, "hbbtvctl: cannot unregister: %s\n", Printable(e.what(), LineBreaks::Kept).c_str());
        } catch (const Interrupted&) {
            std::fprintf(stderr, "hbbtvctl: interrupted before unregistering from %s\n", mInterface.name.c_str());
        }
    }

    const ServiceCaller& Service() const { return mService; }

    // For when the service has died: there is nothing to undo.
    void Forget() {
        mRegistered.clear();
        mMade.clear();
    }

  private:
    // Registers once, or once per enumerator of a missing argument, such as the event of the application manager.
    void Register(const Method& method) {
        Json::Value values = Given(mInterface, mOptions.with);
        for (const Parameter& argument : method.arguments) {
            if (values.isMember(argument.name)) continue;
            if (argument.type->kind == Type::Kind::Enum) {
                mChoice = &argument;
            } else {
                values[argument.name] = Missing(argument);
            }
        }
        if (mChoice == nullptr) return RegisterOnce(method, values);
        for (const Enumerator& enumerator : mChoice->type->enumerators) {
            values[mChoice->name] = static_cast<Json::Int64>(enumerator.value);
            RegisterOnce(method, values);
        }
    }

    Json::Value Missing(const Parameter& argument) {
        if (argument.type->kind == Type::Kind::Callback) return "@listen";
        const Method* creator = Creator(mInterface, argument.name);
        if (creator == nullptr) return ZeroValue(*argument.type);
        Json::Value nothing(Json::arrayValue);
        for (const Parameter& parameter : creator->arguments) nothing.append(ZeroValue(*parameter.type));
        const Json::Value results = mService.Call(*creator, nothing, mSink);
        if (results[0].asInt() != 0)
            throw Failure(kStatusNotZero, mInterface.name + "." + creator->name + ": status " + results[0].asString() +
                                              "; the registration requires this object: pass one as --with " +
                                              argument.name + "=HANDLE, or check the platform with `hbbtvctl doctor`");
        mMade[argument.name] = results[1];
        return results[1];
    }

    void RegisterOnce(const Method& method, const Json::Value& values) {
        const Json::Value results = mService.Call(method, InOrder(method.arguments, values), mSink);
        if (!results.empty() && results[0].asInt() != 0) {
            const std::string choice =
                mChoice == nullptr ? "" : " for " + ForPeople(*mChoice->type, values[mChoice->name], false);
            std::fprintf(
                stderr,
                "hbbtvctl: %s.%s%s: status %s; listening anyway, because the service may still deliver events\n",
                mInterface.name.c_str(), method.name.c_str(), choice.c_str(), results[0].asString().c_str());
            return;
        }
        mRegistered.push_back(values);
    }

    void Undo() {
        const Method* method = Unregistrar(mInterface);
        for (const Json::Value& values : mRegistered) {
            if (method == nullptr) break;
            mService.Call(*method, InOrder(method->arguments, values), mSink);
        }
        for (const std::string& name : mMade.getMemberNames()) {
            const Method* destroyer = Destroyer(mInterface, name);
            if (destroyer != nullptr) mService.Call(*destroyer, InOrder(destroyer->arguments, mMade), mSink);
        }
    }

    const Interface& mInterface;
    const ListenOptions& mOptions;
    EventSink& mSink;
    ServiceCaller mService;
    const Parameter* mChoice = nullptr;
    std::vector<Json::Value> mRegistered;
    Json::Value mMade{Json::objectValue};
};

// Returns whether one of the interfaces takes this callback interface.
bool Takes(const std::vector<const Interface*>& listenedTo, const Interface& callback) {
    return std::any_of(listenedTo.begin(), listenedTo.end(), [&callback](const Interface* interface) {
        return CallbackOf(*Registrar(*interface))->type->name == callback.name;
    });
}

// "IMtmCallback.CreateApp={"status": 0, "tabId": 3}", or "CreateApp=...".
void AddAnswer(const std::string& word, const std::vector<const Interface*>& listenedTo,
               std::map<std::string, Json::Value>& answers) {
    const size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    if (equals == std::string::npos) throw Failure(kUsage, "--answer " + Quoted(word) + ": write METHOD=JSON");
    std::set<std::string> known;
    for (const Interface& interface : Package::Get().interfaces) {
        if (!Takes(listenedTo, interface)) continue;
        for (const Method& method : interface.methods) {
            if (method.results.empty()) continue;
            const std::string full = interface.name + "." + method.name;
            known.insert(method.name);
            if (name != full && name != method.name) continue;
            const std::string json = word.substr(equals + 1);
            answers[full] =
                InOrder(method.results, ReadArguments("--answer " + full, method.results, {{}, json, "value"}, true));
            return;
        }
    }
    throw Failure(kUsage, "--answer " + Quoted(word) + ": no method " + Quoted(name) +
                              " of these families needs an answer" + DidYouMean(name, known, kShortList));
}

std::vector<const Interface*> InterfacesOf(const std::vector<std::string>& families) {
    std::vector<const Interface*> interfaces;
    for (const std::string& name : families) {
        const WireFamily& family = FindFamily(name);
        const Interface* interface = Package::Get().InterfaceOf(family);
        if (interface == nullptr || Registrar(*interface) == nullptr) {
            std::set<std::string> others;
            for (const Interface& other : Package::Get().interfaces) {
                if (Registrar(other) != nullptr) others.insert(other.name);
            }
            throw Failure(kUsage,
                          "family " + family.name + " has no events to listen to" + DidYouMean("", others, kShortList));
        }
        if (std::find(interfaces.begin(), interfaces.end(), interface) == interfaces.end()) {
            interfaces.push_back(interface);
        }
    }
    return interfaces;
}

// Each argument must belong to at least one of the registrations.
void CheckWith(const std::vector<std::string>& with, const std::vector<const Interface*>& interfaces) {
    for (const std::string& word : with) {
        if (word.find('=') == std::string::npos) throw Failure(kUsage, "--with " + Quoted(word) + ": write NAME=VALUE");
        std::set<std::string> known;
        bool taken = false;
        for (const Interface* interface : interfaces) {
            const Method& registrar = *Registrar(*interface);
            taken = taken || Takes(registrar, word);
            for (const Parameter& argument : registrar.arguments) known.insert(argument.name);
        }
        if (taken) continue;
        const std::string name = word.substr(0, word.find('='));
        throw Failure(kUsage, "--with " + Quoted(word) + ": no registration takes an argument " + Quoted(name) +
                                  DidYouMean(name, known, kShortList));
    }
    for (const Interface* interface : interfaces) Given(*interface, with);
}

// Returns the callback methods of the events.
std::set<std::string> MethodsOf(const std::vector<std::string>& events,
                                const std::vector<const Interface*>& listenedTo) {
    std::set<std::string> methods;
    for (const std::string& event : events) {
        std::set<std::string> known;
        const Method* found = nullptr;
        for (const Interface& interface : Package::Get().interfaces) {
            if (!Takes(listenedTo, interface)) continue;
            for (const Method& method : interface.methods) {
                known.insert(method.name);
                if (FoldedName(method.name) == FoldedName(event)) found = &method;
            }
        }
        if (found == nullptr) {
            throw Failure(kUsage, "--event " + Quoted(event) + ": no such callback method of these families" +
                                      DidYouMean(event, known, kShortList));
        }
        methods.insert(found->name);
    }
    return methods;
}

int RunPassively(const ListenOptions& options) {
    const Interruption interruption;
    std::vector<std::string> interfaces;
    if (!options.families.empty()) {
        for (const Interface* interface : InterfacesOf(options.families)) interfaces.push_back(interface->name);
    }
    const Milliseconds limit = options.timeout.Value();
    const ServiceCaller service =
        interfaces.empty() ? AnyService(limit) : ServiceCaller(Package::Get().FindInterface(interfaces[0]), limit);
    PassiveListener listener(service, interfaces, {options.json, options.events, options.count}, limit);
    std::fprintf(stderr, "hbbtvctl: listening; press Ctrl-C to stop\n");
    listener.Run(options.duration.Limit());
    return kDone;
}

int Run(const ListenOptions& options) {
    if (options.passive) return RunPassively(options);
    EventPrinter::Settings settings{options.json, options.numbers, {}, {}, options.count};
    const std::vector<const Interface*> interfaces = InterfacesOf(options.families);
    settings.shown = MethodsOf(options.events, interfaces);
    for (const std::string& answer : options.answers) AddAnswer(answer, interfaces, settings.answers);
    CheckWith(options.with, interfaces);
    // Static: callbacks may arrive until the process ends.
    static Interruption interruption;
    android::hardware::configureRpcThreadpool(kThreads, false);
    static EventPrinter events(settings, interruption);
    const Milliseconds limit = options.timeout.Value();
    for (const Interface* interface : interfaces) {
        CheckOtherClients(ServiceCaller(*interface, limit), options.takeOver, limit);
    }
    const android::sp<DeathNotice> notice = new DeathNotice(interruption);
    std::vector<std::unique_ptr<Listening>> listenings;
    for (const Interface* interface : interfaces) {
        listenings.push_back(std::make_unique<Listening>(*interface, options, events));
        notice->Watch(listenings.back()->Service());
    }
    std::fprintf(stderr, "hbbtvctl: listening; press Ctrl-C to stop\n");
    interruption.Wait(options.duration.Limit());
    try {
        notice->Check();
    } catch (const Failure&) {
        for (const auto& listening : listenings) listening->Forget();
        throw;
    }
    return kDone;
}

}  // namespace

void AddListen(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<ListenOptions>();
    CLI::App* command = app.add_subcommand("listen", "Register callbacks and print every event");
    command->add_option("FAMILY", options->families, "For example video_broadcast or IVideoBroadcast")
        ->type_name("FAMILY");
    command->add_option("--event", options->events, "Show only this event, by the name of the client's method")
        ->type_name("EVENT")
        ->expected(1)
        ->take_all();
    CLI::Option* passive = command->add_flag(
        "--passive", options->passive, "Show what the platform sends, without registering (default: all families)");
    AddTakeOver(*command, options->takeOver)->excludes(passive);
    AddJson(*command, options->json);
    command->add_flag("--numbers", options->numbers, "In JSON, print enumerators as numbers instead of names");
    command->add_option("--count", options->count, "Stop after this many events")
        ->type_name("NUMBER")
        ->check(WholeNumber(1));
    AddTime(*command, "--for", options->duration, "Stop after this time");
    command->add_option("--with", options->with, "Argument of the registration, for example vb=0x1000")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->take_all();
    command->add_option("--answer", options->answers, "What a method that needs an answer returns (default: zeros)")
        ->type_name("METHOD=JSON")
        ->expected(1)
        ->take_all();
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for the service");
    command->footer(
        "If the registration requires an object and --with names none, the command creates one, and destroys it at "
        "the\n"
        "end. If it takes the kind of events, the command registers for all kinds, unless --with names one.\n"
        "Ctrl-C unregisters.\n"
        "With --passive, the events are those of the wire, whether or not a client receives them. A tool that does "
        "not\n"
        "read them loses some, which it reports; the service never waits for it.\n\n"
        "Examples:\n"
        "  hbbtvctl listen channel_config video_broadcast --json --for 1s\n"
        "  hbbtvctl listen video_broadcast --with vb=0x2000 --with context=7 --count 3 --for 1s\n"
        "  hbbtvctl listen --passive --json --for 1s\n"
        "  hbbtvctl listen mtm --answer 'CreateApp={\"status\": 0, \"tabId\": 3}' --for 1s");
    command->callback([options, &invocation] {
        if (options->families.empty() && !options->passive) throw CLI::RequiredError("FAMILY");
        invocation.run = [options] { return Run(*options); };
    });
}

}  // namespace hbbtv::ctl
