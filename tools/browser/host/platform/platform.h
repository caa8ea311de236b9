// The browser as a client of the service: its callbacks, which pass events and commands to the loop, and its calls.
#pragma once

#include <json/value.h>

#include <sys/types.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "common/duration.h"
#include "devtools/loop.h"
#include "platform/services.h"
#include "platform/worker.h"

namespace hbbtv::browser {

// Must exist until the process ends, since callbacks may arrive until then.
class Platform : public EventSink {
  public:
    // Receives the results of a command by name, once, on any thread.
    using Reply = std::function<void(const Json::Value& results)>;

    // All of them run on the thread of the loop.
    struct Handlers {
        // An event: {"interface": "IVideoBroadcast", "event": "onPlayStateChange", "arguments": {...}}. Enumerators are
        // numbers.
        std::function<void(const Json::Value& event)> onEvent;

        // A command of the platform for tabs, for example "CreateApp".
        std::function<void(const std::string& command, const Json::Value& arguments, Reply reply)> onCommand;

        // The service has ended; and it is there again, where no object of the old one exists.
        std::function<void()> onLost;
        std::function<void()> onFound;

        // The platform has been started again: it knows no object and no client of the old one.
        std::function<void()> onRestarted;
    };

    // `limit` is that of looking the service up.
    Platform(devtools::Loop& loop, Milliseconds limit);

    // Registers for all events and for commands. Throws Failure(kUnavailable) if there is no service, or another
    // browser is registered.
    void Start(Handlers handlers);

    // Calls a method and waits for as long as it takes. Objects with events of their own are registered for them when
    // they are created. Thread-safe.
    CallResult Call(const std::string& method, const Json::Value& arguments);

    // Calls a method later, in the order of these calls of its interface, on a thread of the interface: a family that
    // hangs stops no other. Failures are ignored. For the thread of the loop.
    void CallLater(const std::string& method, const Json::Value& arguments);

    // Calls the function on the loop once commands and events of applications reach this browser, or cannot. Never if
    // the platform hangs.
    void AfterRegistration(const std::function<void()>& function);

    // Waits until the calls so far have been made, at most for this time.
    void Flush(Milliseconds limit);

    // Called by the service, on any thread.
    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override;

  private:
    class Death;

    void Register();
    void RegisterForEvents();
    void Repeat(const std::string& method, const Json::Value& arguments);
    void WatchPlatform();
    void LookAtPlatform();
    void Watch();
    pid_t ConnectedTo();
    void RegisterObject(const std::string& method, const CallResult& created);
    void AwaitService();
    void CheckOtherBrowser();
    void Lost();
    void FindAgain();
    Json::Value TakeCommand(const Method& method, const Json::Value& named);

    devtools::Loop& mLoop;
    const Milliseconds mLimit;
    Services mServices;
    std::map<std::string, Worker> mWorkers;  // by the interface
    Handlers mHandlers;
    android::sp<android::hardware::hidl_death_recipient> mDeath;
    std::shared_ptr<ServiceCaller> mService;  // kept, because the end of a service is not reported without its proxy
    bool mLost = false;                       // on the loop
    pid_t mPlatform = 0;                      // on the worker that watches it; 0: not known
};

}  // namespace hbbtv::browser
