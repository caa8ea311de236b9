// Calls of the service. Every wait has a time limit.
#pragma once

#include <json/value.h>

#include <functional>
#include <string>

#include "common/duration.h"
#include "package/bindings.h"
#include "package/description.h"

namespace hbbtv {

// Runs `work` on another thread and waits for it. Throws Failure(kTimeout), with a message that begins with `what`, if
// it takes longer than the limit, or Interrupted. The thread then keeps running, and the process must end with
// std::_Exit().
void InTime(Milliseconds limit, const std::string& what, const std::function<void()>& work);

// Returns the directory where processes register interfaces. TMPDIR must be set.
std::string HostDirectory();

// Returns the status among the results, or 0 if the method has none.
int StatusOf(const Method& method, const Json::Value& results);

// Returns whether one of the arguments is "@listen".
bool Listens(const Json::Value& arguments);

class ServiceCaller {
  public:
    // Throws Failure(kUnavailable) if no process has registered the interface.
    ServiceCaller(const Interface& interface, Milliseconds limit);

    // Returns the results in the order of the .hal file. Throws Failure.
    Json::Value Call(const Method& method, const Json::Value& arguments, EventSink& sink);

    // Calls without a time limit. Does not throw.
    CallOutcome CallNow(const Method& method, const Json::Value& arguments, EventSink& sink) const;

    // Throws Failure(kPeerLost) or Failure(kInvalidReply) if the call failed.
    void CheckAnswered(const Method& method, const CallOutcome& outcome) const;

    const std::string& Name() const { return mInterface.name; }
    const android::sp<android::hidl::base::V1_0::IBase>& Service() const { return mService; }

  private:
    const Interface& mInterface;
    Milliseconds mLimit;
    android::sp<android::hidl::base::V1_0::IBase> mService;
};

}  // namespace hbbtv
