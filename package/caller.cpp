#include "package/caller.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

#include "common/failure.h"
#include "common/interruption.h"

namespace hbbtv {

namespace {

// Limit of a transaction. Numbers and lengths of a call are small compared to its strings.
constexpr size_t kMostBytes = 1024 * 1024 - 8 * 1024;

size_t BytesOfStrings(const Json::Value& value) {
    if (value.isString()) return value.asString().size();
    size_t bytes = 0;
    for (const Json::Value& element : value) bytes += BytesOfStrings(element);
    return bytes;
}

Invoker InvokerOf(const Interface& interface, const Method& method) {
    for (const MethodBinding& binding : AllBindings().at(interface.name)->methods) {
        if (binding.name == method.name) return binding.invoke;
    }
    throw std::logic_error(method.name);
}

// A flag that one thread sets, once, and another waits for.
class Done {
  public:
    Done() : mFd(eventfd(0, EFD_CLOEXEC)) {}
    ~Done() { close(mFd); }
    Done(const Done&) = delete;
    Done& operator=(const Done&) = delete;

    void Set() {
        mSet = true;
        eventfd_write(mFd, 1);
    }
    bool Wait(Milliseconds limit) const { return WaitUntilReadable(mFd, limit) && mSet; }

  private:
    const int mFd;
    std::atomic<bool> mSet{false};  // orders the writes of one thread before the reads of the other
};

}  // namespace

void InTime(Milliseconds limit, const std::string& what, const std::function<void()>& work) {
    const auto done = std::make_shared<Done>();
    std::thread([done, work] {
        work();
        done->Set();
    }).detach();
    if (done->Wait(limit)) return;
    throw Failure(kTimeout, what + ": no reply within " + FormatDuration(limit) +
                                "; the service hangs (see `hbbtvctl doctor`), or the platform does "
                                "(try `hbbtvctl send`)");
}

std::string HostDirectory() {
    const char* own = std::getenv("HIDL_HOST_DIR");
    return own != nullptr ? own : std::string(std::getenv("TMPDIR")) + "/hidl-host";
}

int StatusOf(const Method& method, const Json::Value& results) {
    for (Json::ArrayIndex i = 0; i < method.results.size(); ++i) {
        if (method.results[i].name == "status") return results[i].asInt();
    }
    return 0;
}

bool Listens(const Json::Value& arguments) {
    return std::find(arguments.begin(), arguments.end(), "@listen") != arguments.end();
}

ServiceCaller::ServiceCaller(const Interface& interface, Milliseconds limit) : mInterface(interface), mLimit(limit) {
    const auto found = std::make_shared<android::sp<android::hidl::base::V1_0::IBase>>();
    const auto find = AllBindings().at(interface.name)->find;
    InTime(limit, "looking up " + interface.name, [found, find] { *found = find(); });
    mService = *found;
    if (mService == nullptr) {
        throw Failure(kUnavailable, "no process has registered " + Package::Get().name + "::" + interface.name +
                                        " in " + HostDirectory() +
                                        "; start the service with the same TMPDIR, or run `hbbtvctl doctor`");
    }
}

CallOutcome ServiceCaller::CallNow(const Method& method, const Json::Value& arguments, EventSink& sink) const {
    return InvokerOf(mInterface, method)(*mService, arguments, sink);
}

Json::Value ServiceCaller::Call(const Method& method, const Json::Value& arguments, EventSink& sink) {
    const std::string what = mInterface.name + "." + method.name;
    if (const size_t bytes = BytesOfStrings(arguments); bytes > kMostBytes) {
        throw Failure(kUsage, what + ": the arguments take " + std::to_string(bytes) +
                                  " bytes; the limit of a call is " + std::to_string(kMostBytes));
    }
    const auto outcome = std::make_shared<CallOutcome>();
    const Invoker invoker = InvokerOf(mInterface, method);
    // Captures copies only: the thread may outlive this call.
    InTime(mLimit, what,
           [service = mService, invoker, arguments, &sink, outcome] { *outcome = invoker(*service, arguments, sink); });
    CheckAnswered(method, *outcome);
    return outcome->results;
}

void ServiceCaller::CheckAnswered(const Method& method, const CallOutcome& outcome) const {
    if (outcome.answered) return;
    const std::string what = mInterface.name + "." + method.name;
    if (outcome.peerLost)
        throw Failure(kPeerLost, what + ": the service ended during the call; check its log, and restart it");
    throw Failure(kInvalidReply, what + ": the call failed: " + outcome.error +
                                     "; were service and hbbtvctl built from the same package?");
}

}  // namespace hbbtv
