#include "platform/platform.h"

#include <hidl/HidlTransportSupport.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <future>
#include <set>
#include <thread>
#include <utility>

#include "common/failure.h"
#include "common/process.h"
#include "common/text/json.h"
#include "package/debug.h"

namespace hbbtv::browser {

namespace {

constexpr size_t kThreads = 8;  // for events of several families, while a command is open
constexpr Milliseconds kBetweenLookUps{100};
constexpr Milliseconds kTimeToStart{3000};
constexpr Milliseconds kBetweenLooks{1000};

const char* const kWatcher = "watcher";

// The library gives a browser up after 10 seconds.
constexpr std::chrono::seconds kMostForCommand{9};

const char* const kCommands = "IMtmCallback";

Json::Value Arguments(std::initializer_list<std::pair<const char*, Json::Value>> values) {
    Json::Value arguments(Json::objectValue);
    for (const auto& value : values) arguments[value.first] = value.second;
    return arguments;
}

// "IVideoBroadcastCallback" for pages: the interface that a client registers with.
std::string WithoutCallback(const std::string& interface) {
    if (interface == "IAIPEventCallback") return "IApplicationManager";
    const size_t end = interface.rfind("Callback");
    return interface.substr(0, end);
}

}  // namespace

class Platform::Death : public android::hardware::hidl_death_recipient {
  public:
    explicit Death(Platform& platform) : mPlatform(platform) {}
    void serviceDied(uint64_t, const android::wp<android::hidl::base::V1_0::IBase>&) override {
        mPlatform.mLoop.Post([this] { mPlatform.Lost(); });
    }

  private:
    Platform& mPlatform;
};

Platform::Platform(devtools::Loop& loop, Milliseconds limit)
    : mLoop(loop), mLimit(limit), mServices(*this, limit), mDeath(new Death(*this)) {
    android::hardware::configureRpcThreadpool(kThreads, false);
}

void Platform::Start(Handlers handlers) {
    mHandlers = std::move(handlers);
    AwaitService();
    CheckOtherBrowser();
    Register();
    Watch();
    // So the platform knows that there is a browser, and that tabs of an earlier one are gone.
    CallLater("IMtm.OnAllTabsDestroyed", Json::Value(Json::objectValue));
}

void Platform::Watch() {
    mLoop.After(kBetweenLooks, [this] {
        LookAtPlatform();
        Watch();
    });
}

// The processes start in any order.
void Platform::AwaitService() {
    const auto end = std::chrono::steady_clock::now() + kTimeToStart;
    while (true) {
        try {
            mServices.Of(Package::Get().FindInterface("IMtm"));
            return;
        } catch (const Failure& e) {
            if (e.Code() != kUnavailable || std::chrono::steady_clock::now() >= end) throw;
        }
        std::this_thread::sleep_for(kBetweenLookUps);
    }
}

void Platform::CheckOtherBrowser() {
    const Interface& tabs = Package::Get().FindInterface("IMtm");
    const std::set<pid_t> clients = ClientsOf(ServiceCaller(tabs, mLimit), mLimit);
    if (clients.empty()) return;
    throw Failure(kUnavailable, "another browser is registered: " + DescribeProcess(*clients.begin()) +
                                    "; end it, or use another TMPDIR with a service of its own");
}

void Platform::Register() {
    mService = mServices.Of(Package::Get().FindInterface("IMtm"));
    if (!mService->Service()->linkToDeath(mDeath, 0).withDefault(false))
        throw Failure(kUnavailable, "the service has just ended; start it again");
    CallLater("IMtm.RegisterCallback", Arguments({{"callback", "@listen"}}));
    mWorkers[kWatcher].Post([this] { mPlatform = 0; });
    LookAtPlatform();
}

// The callbacks of families whose platform has to know that there is a client.
void Platform::RegisterForEvents() {
    Repeat("IConfiguration.RegisterCallback", Arguments({{"callback", "@listen"}}));
    Repeat("IDsmcc.RegisterCallback", Arguments({{"cb", "@listen"}}));
    Repeat("IAVControl.RegisterCallback", Arguments({{"cb", "@listen"}, {"context", 0}}));
    for (const auto& type : Package::Get().types) {
        if (type->name != "TolmAIPEvent") continue;
        for (const Enumerator& event : type->enumerators) {
            Repeat("IApplicationManager.RegisterCallback",
                   Arguments({{"event", static_cast<Json::Int64>(event.value)},
                              {"callback", "@listen"},
                              {"context", static_cast<Json::Int64>(event.value)}}));
        }
    }
}

// The first request of a family fails after a restart of the platform.
void Platform::Repeat(const std::string& method, const Json::Value& arguments) {
    mWorkers[method.substr(0, method.find('.'))].Post([this, method, arguments] {
        if (!Call(method, arguments).Ok()) Call(method, arguments);
    });
}

// The service does not say when the platform ends: its process is looked at.
void Platform::LookAtPlatform() {
    mWorkers[kWatcher].Post([this] { WatchPlatform(); });
}

void Platform::WatchPlatform() {
    if (mPlatform > 0 && (kill(mPlatform, 0) == 0 || errno != ESRCH)) return;
    const Json::Value arguments = Arguments({{"cb", "@listen"}, {"context", 0}});
    const char* const method = "IChannelConfig.RegisterCallback";
    if (!Call(method, arguments).Ok() && !Call(method, arguments).Ok()) return;
    const pid_t process = ConnectedTo();
    if (process == 0) return;
    const bool restarted = std::exchange(mPlatform, process) != 0;
    mLoop.Post([this, restarted] {
        RegisterForEvents();
        if (restarted) mHandlers.onRestarted();
    });
}

// Returns the platform's process, or 0.
pid_t Platform::ConnectedTo() {
    try {
        const auto service = mServices.Of(Package::Get().FindInterface("IChannelConfig"));
        const Json::Value report = ParseJson(Debug(*service, {"--json"}, mLimit));
        return report["families"][0]["requests"]["connected_to"].asInt();
    } catch (const std::exception&) {
        return 0;  // the service is ending
    }
}

// The events of a video/broadcast object do not name it, those of a search manager have its context.
void Platform::RegisterObject(const std::string& method, const CallResult& created) {
    if (method == "IVideoBroadcast.Create") {
        const Json::Value& vb = created.results["vb"];
        mServices.Call("IVideoBroadcast.RegisterCallback", Arguments({{"vb", vb}, {"cb", "@listen"}, {"context", vb}}));
    } else if (method == "ISearchManager.SearchManager_Create") {
        const Json::Value& manager = created.results["manager"];
        mServices.Call("ISearchManager.SearchManager_RegisterCallback",
                       Arguments({{"manager", manager}, {"callback", "@listen"}, {"context", manager}}));
    }
}

CallResult Platform::Call(const std::string& method, const Json::Value& arguments) {
    CallResult result = mServices.Call(method, arguments);
    if (result.Ok()) RegisterObject(method, result);
    return result;
}

void Platform::CallLater(const std::string& method, const Json::Value& arguments) {
    mWorkers[method.substr(0, method.find('.'))].Post([this, method, arguments] { Call(method, arguments); });
}

void Platform::AfterRegistration(const std::function<void()>& function) {
    Worker& applications = mWorkers["IApplicationManager"];
    Worker& tabs = mWorkers["IMtm"];
    // The watcher's end lets the loop post the registrations to the other two.
    mWorkers[kWatcher].Post([this, function, &applications, &tabs] {
        mLoop.Post([this, function, &applications, &tabs] {
            applications.Post([this, function, &tabs] { tabs.Post([this, function] { mLoop.Post(function); }); });
        });
    });
}

void Platform::Flush(Milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    for (auto& worker : mWorkers) worker.second.Flush(end);
}

void Platform::Lost() {
    if (mLost) return;
    mLost = true;
    mServices.Forget();
    mHandlers.onLost();
    mLoop.After(kBetweenLookUps, [this] { FindAgain(); });
}

void Platform::FindAgain() {
    try {
        Register();
    } catch (const Failure&) {
        mServices.Forget();
        mLoop.After(kBetweenLookUps, [this] { FindAgain(); });
        return;
    }
    mLost = false;
    mHandlers.onFound();
}

Json::Value Platform::Take(const char* interfaceName, const char* methodName, Json::Value arguments) {
    const Interface& interface = Package::Get().FindInterface(interfaceName);
    const Method& method = *interface.Find(methodName);
    Json::Value named(Json::objectValue);
    for (Json::ArrayIndex i = 0; i < method.arguments.size(); ++i) named[method.arguments[i].name] = arguments[i];
    if (interface.name == kCommands) return TakeCommand(method, named);
    Json::Value event;
    event["interface"] = WithoutCallback(interface.name);
    event["event"] = method.name;
    event["arguments"] = named;
    mLoop.Post([this, event] { mHandlers.onEvent(event); });
    return Json::Value(Json::arrayValue);
}

Json::Value Platform::TakeCommand(const Method& method, const Json::Value& named) {
    const auto promise = std::make_shared<std::promise<Json::Value>>();
    std::future<Json::Value> future = promise->get_future();
    mLoop.Post([this, name = method.name, named, promise] {
        mHandlers.onCommand(name, named, [promise](const Json::Value& results) { promise->set_value(results); });
    });
    const bool came = future.wait_for(kMostForCommand) == std::future_status::ready;
    const Json::Value results = came ? future.get() : Json::Value(Json::objectValue);
    Json::Value values(Json::arrayValue);
    for (const Parameter& result : method.results) {
        if (results.isMember(result.name)) {
            values.append(results[result.name]);
        } else if (result.type->kind == Type::Kind::Text) {
            values.append("");
        } else {
            values.append(result.name == "status" ? -1 : 0);
        }
    }
    return values;
}

}  // namespace hbbtv::browser
