// hbbtvctl listen: registers callback objects for whole families and shows what arrives.
#include <hidl/HidlTransportSupport.h>

#include <algorithm>
#include <cstdio>

#include "arguments.h"
#include "commands/commands.h"
#include "commands/options.h"
#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/quote.h"
#include "death_notice.h"
#include "event_printer.h"
#include "package/caller.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

constexpr size_t kThreads = 4;  // for events of several families at once

struct ListenOptions {
    std::vector<std::string> families;
    std::vector<std::string> with;
    std::vector<std::string> answers;
    bool json = false;
    bool numbers = false;
    uint64_t count = 0;
    TimeOption duration{""};
    TimeOption timeout{"10s"};
};

const Parameter* CallbackOf(const Method& method) {
    for (const Parameter& argument : method.arguments) {
        if (argument.type->kind == Type::Kind::Callback) return &argument;
    }
    return nullptr;
}

bool Holds(const std::string& name, const std::string& word) {
    return name.find(word) != std::string::npos;
}

// "RegisterCallback" and its kin: what takes a callback and does not take it away again.
const Method* Registrar(const Interface& interface) {
    for (const Method& method : interface.methods) {
        if (CallbackOf(method) != nullptr && !Holds(method.name, "Unregister")) return &method;
    }
    return nullptr;
}

const Method* Unregistrar(const Interface& interface) {
    for (const Method& method : interface.methods) {
        if (Holds(method.name, "Unregister")) return &method;
    }
    return nullptr;
}

// Whether the "NAME=VALUE" is for an argument of the method.
bool Takes(const Method& method, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    return std::any_of(method.arguments.begin(), method.arguments.end(),
                       [&name](const Parameter& argument) { return argument.name == name; });
}

// The arguments of the registration, of those that were given for all families.
Json::Value Given(const Interface& interface, const std::vector<std::string>& with) {
    const Method& method = *Registrar(interface);
    GivenArguments given;
    for (const std::string& word : with) {
        if (Takes(method, word)) given.words.push_back(word);
    }
    return ReadArguments(interface.name + "." + method.name, method.arguments, given, false);
}

// What makes the object whose handle the registration needs: "Create" for a video/broadcast object.
const Method* Maker(const Interface& interface, const std::string& handle) {
    for (const Method& method : interface.methods) {
        if (method.results.size() != 2 || method.results[1].name != handle) continue;
        if (Holds(method.name, "Create") || Holds(method.name, "create")) return &method;
    }
    return nullptr;
}

// And what ends it.
const Method* Ender(const Interface& interface, const std::string& handle) {
    for (const char* word : {"Destroy", "Release"}) {
        for (const Method& method : interface.methods) {
            if (Holds(method.name, word) && method.arguments.size() == 1 && method.arguments[0].name == handle) {
                return &method;
            }
        }
    }
    return nullptr;
}

// One family that is listened to. What it did is undone when it goes.
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
            std::fprintf(stderr, "hbbtvctl: while leaving: %s\n", e.what());
        } catch (const Interrupted&) {
            std::fprintf(stderr, "hbbtvctl: left without unregistering from %s\n", mInterface.name.c_str());
        }
    }

    const ServiceCaller& Service() const { return mService; }

    // The service has gone: there is nothing to undo.
    void Forget() {
        mRegistered.clear();
        mMade.clear();
    }

  private:
    // Once; or once for each enumerator of an argument that nobody gave, as of the application manager's events.
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
        const Method* maker = Maker(mInterface, argument.name);
        if (maker == nullptr) return Nothing(*argument.type);
        Json::Value nothing(Json::arrayValue);
        for (const Parameter& parameter : maker->arguments) nothing.append(Nothing(*parameter.type));
        const Json::Value results = mService.Call(*maker, nothing, mSink);
        if (results[0].asInt() != 0)
            throw Failure(kStatusNotZero, mInterface.name + "." + maker->name + ": status " + results[0].asString() +
                                              "; the registration needs this object: give one as --with " +
                                              argument.name +
                                              "=HANDLE, or ask `hbbtvctl doctor` whether the platform is there");
        mMade[argument.name] = results[1];
        return results[1];
    }

    void RegisterOnce(const Method& method, const Json::Value& values) {
        const Json::Value results = mService.Call(method, InOrder(method.arguments, values), mSink);
        if (!results.empty() && results[0].asInt() != 0) {
            const std::string choice =
                mChoice == nullptr ? "" : " for " + ForPeople(*mChoice->type, values[mChoice->name], false);
            std::fprintf(stderr,
                         "hbbtvctl: %s.%s%s: status %s; listening all the same, since what the platform refuses to a "
                         "second client the service may hand on to it\n",
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
            const Method* ender = Ender(mInterface, name);
            if (ender != nullptr) mService.Call(*ender, InOrder(ender->arguments, mMade), mSink);
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

// The clients' side of what is listened to.
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
            answers[full] = InOrder(method.results,
                                    ReadArguments("--answer " + full, method.results, {{}, json, "the answer"}, true));
            return;
        }
    }
    throw Failure(kUsage, "--answer " + Quoted(word) + ": no method " + Quoted(name) +
                              " of what is listened to needs an answer" + DidYouMean(name, known, kShortList));
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
            throw Failure(kUsage, "the family " + family.name + " has no events to listen to" +
                                      DidYouMean("", others, kShortList));
        }
        if (std::find(interfaces.begin(), interfaces.end(), interface) == interfaces.end()) {
            interfaces.push_back(interface);
        }
    }
    return interfaces;
}

// Each has to be for one of the interfaces at least.
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
        throw Failure(kUsage, "--with " + Quoted(word) + ": no registration has an argument " + Quoted(name) +
                                  DidYouMean(name, known, kShortList));
    }
    for (const Interface* interface : interfaces) Given(*interface, with);
}

int Run(const ListenOptions& options) {
    EventPrinter::Settings settings{options.json, options.numbers, {}, options.count};
    const std::vector<const Interface*> interfaces = InterfacesOf(options.families);
    for (const std::string& answer : options.answers) AddAnswer(answer, interfaces, settings.answers);
    CheckWith(options.with, interfaces);
    // Callbacks may come as long as the process lives.
    static Interruption interruption;
    android::hardware::configureRpcThreadpool(kThreads, false);
    static EventPrinter events(settings, interruption);
    const android::sp<DeathNotice> notice = new DeathNotice(interruption);
    std::vector<std::unique_ptr<Listening>> listenings;
    for (const Interface* interface : interfaces) {
        listenings.push_back(std::make_unique<Listening>(*interface, options, events));
        notice->Watch(listenings.back()->Service());
    }
    std::fprintf(stderr, "hbbtvctl: listening, Ctrl-C ends\n");
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
    CLI::App* command = app.add_subcommand("listen", "Register callbacks and show every event");
    command->add_option("FAMILY", options->families, "As in video_broadcast or IVideoBroadcast")
        ->type_name("FAMILY")
        ->required();
    AddJson(*command, options->json);
    command->add_flag("--numbers", options->numbers, "In JSON, enumerators by number instead of by name");
    command->add_option("--count", options->count, "End after so many events")
        ->type_name("NUMBER")
        ->check(WholeNumber(1));
    AddTime(*command, "--for", options->duration, "End after this time");
    command->add_option("--with", options->with, "An argument of the registration, as in vb=0x1000")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->take_all();
    command->add_option("--answer", options->answers, "What a method that needs an answer gets; zeros without it")
        ->type_name("METHOD=JSON")
        ->expected(1)
        ->take_all();
    AddTime(*command, "--timeout", options->timeout, "Longest wait for the service");
    command->footer(
        "An object that the registration needs and nobody gave is made, and ended again afterwards. A registration "
        "for\n"
        "one of several kinds of events is made for all of them, unless --with says for which. Ctrl-C unregisters.\n\n"
        "Examples:\n"
        "  hbbtvctl listen channel_config video_broadcast --json --for 1s\n"
        "  hbbtvctl listen video_broadcast --with vb=0x2000 --with context=7 --count 3 --for 1s\n"
        "  hbbtvctl listen mtm --answer 'CreateApp={\"status\": 0, \"tabId\": 3}' --for 1s");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
