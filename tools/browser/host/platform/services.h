// The service's interfaces: found when they are needed, and again after the service was restarted.
#pragma once

#include <json/value.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "package/caller.h"

namespace hbbtv::browser {

// Results by name, with the status, or an error.
struct CallResult {
    Json::Value results{Json::objectValue};
    std::string error;

    bool Ok() const { return error.empty() && results["status"].asInt() == 0; }
};

// Thread-safe.
class Services {
  public:
    // `sink` receives the calls of callback objects. `limit` is that of looking an interface up.
    Services(EventSink& sink, Milliseconds limit) : mSink(sink), mLimit(limit) {}

    // Calls "IChannel.GetName" with arguments by name, and waits for as long as it takes. Enumerators are numbers in
    // the results.
    CallResult Call(const std::string& method, const Json::Value& arguments);

    // Returns the caller of an interface. Throws Failure(kUnavailable).
    std::shared_ptr<ServiceCaller> Of(const Interface& interface);

    // Forgets what was found: the service has ended.
    void Forget();

  private:
    EventSink& mSink;
    const Milliseconds mLimit;
    std::mutex mMutex;
    std::map<std::string, std::shared_ptr<ServiceCaller>> mFound;  // guarded by mMutex
};

}  // namespace hbbtv::browser
