// See caller.h.
#include "hidl/caller.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "failure.h"

namespace hbbtv::ctl {

namespace {

std::atomic<int> gAtWork{0};

std::string InWords(Milliseconds time) {
    const std::string text = std::to_string(time.count());
    return time.count() % 1000 == 0 ? std::to_string(time.count() / 1000) + " s" : text + " ms";
}

Invoker InvokerOf(const Interface& interface, const Method& method) {
    for (const MethodBinding& binding : AllBindings().at(interface.name)->methods) {
        if (binding.name == method.name) return binding.invoke;
    }
    throw std::logic_error(method.name);
}

struct Progress {
    std::mutex mutex;
    std::condition_variable changed;
    bool done = false;
};

}  // namespace

bool LeftThreads() {
    return gAtWork != 0;
}

void InTime(Milliseconds limit, const std::string& what, const std::function<void()>& work) {
    const auto progress = std::make_shared<Progress>();
    ++gAtWork;
    std::thread([progress, work] {
        work();
        const std::lock_guard<std::mutex> lock(progress->mutex);
        --gAtWork;
        progress->done = true;
        progress->changed.notify_all();
    }).detach();
    std::unique_lock<std::mutex> lock(progress->mutex);
    if (progress->changed.wait_for(lock, limit, [&] { return progress->done; })) return;
    throw Failure(kTimeout, what + ": no answer within " + InWords(limit));
}

ServiceCaller::ServiceCaller(const Interface& interface, Milliseconds limit) : mInterface(interface), mLimit(limit) {
    const auto found = std::make_shared<android::sp<android::hidl::base::V1_0::IBase>>();
    const auto find = AllBindings().at(interface.name)->find;
    InTime(limit, "asking for " + interface.name, [found, find] { *found = find(); });
    mService = *found;
    if (mService == nullptr) {
        throw Failure(kNobodyThere, "no process has registered " + Package::Get().name + "::" + interface.name +
                                        "; start the service, and check with `hbbtvctl doctor`");
    }
}

CallOutcome ServiceCaller::CallNow(const Method& method, const Json::Value& arguments, EventSink& sink) const {
    return InvokerOf(mInterface, method)(*mService, arguments, sink);
}

Json::Value ServiceCaller::Call(const Method& method, const Json::Value& arguments, EventSink& sink) {
    const std::string what = mInterface.name + "." + method.name;
    const auto outcome = std::make_shared<CallOutcome>();
    const Invoker invoker = InvokerOf(mInterface, method);
    // Nothing of the caller's is referred to: the thread may outlive this call.
    InTime(mLimit, what,
           [service = mService, invoker, arguments, &sink, outcome] { *outcome = invoker(*service, arguments, sink); });
    if (outcome->answered) return outcome->results;
    if (outcome->peerLost) throw Failure(kPeerLost, what + ": the service went away during the call");
    throw Failure(kNotUnderstood, what + ": the call failed: " + outcome->error);
}

}  // namespace hbbtv::ctl
