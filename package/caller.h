// Calls of the service, with an end to every wait.
#pragma once

#include <json/value.h>

#include <functional>
#include <string>

#include "common/duration.h"
#include "package/bindings.h"
#include "package/description.h"

namespace hbbtv {

// Runs `work` on a thread of its own and waits for it. Throws Failure(kTimeout) with `what` when it takes too long, and
// Interrupted: the thread is left to itself then, and the process has to end by std::_Exit.
void InTime(Milliseconds limit, const std::string& what, const std::function<void()>& work);

// Where processes that register interfaces put their names. TMPDIR has to be set.
std::string HostDirectory();

// What a call came to: 0 for a method without a status.
int StatusOf(const Method& method, const Json::Value& results);

// Whether one of the arguments is "@listen".
bool Listens(const Json::Value& arguments);

class ServiceCaller {
  public:
    // Throws Failure(kNobodyThere) when no process has registered the interface.
    ServiceCaller(const Interface& interface, Milliseconds limit);

    // The results in the order of the .hal file. Throws Failure.
    Json::Value Call(const Method& method, const Json::Value& arguments, EventSink& sink);

    // The same without a limit, and without exceptions.
    CallOutcome CallNow(const Method& method, const Json::Value& arguments, EventSink& sink) const;

    // Throws Failure(kPeerLost) or Failure(kNotUnderstood) when the call was not answered.
    void CheckAnswered(const Method& method, const CallOutcome& outcome) const;

    const std::string& Name() const { return mInterface.name; }
    const android::sp<android::hidl::base::V1_0::IBase>& Service() const { return mService; }

  private:
    const Interface& mInterface;
    Milliseconds mLimit;
    android::sp<android::hidl::base::V1_0::IBase> mService;
};

}  // namespace hbbtv
