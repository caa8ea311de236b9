#include "play/arrivals.h"

#include <sys/eventfd.h>

#include <algorithm>

#include "common/failure.h"
#include "common/interruption.h"
#include "events/event_printer.h"

namespace hbbtv::ctl {

Arrivals::Arrivals(Transcript& transcript, const Display& display)
    : mTranscript(transcript), mDisplay(display), mWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void Arrivals::Answer(const std::string& method, const Json::Value& results) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mAnswers[method] = results;
}

void Arrivals::Ignore(const std::string& method) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mIgnored.insert(method);
    mArrivals.remove_if([&](const Arrival& arrival) { return arrival.method == method; });
}

std::optional<Arrival> Arrivals::Take(const std::string& method) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto first = std::find_if(mArrivals.begin(), mArrivals.end(),
                                    [&](const Arrival& arrival) { return method.empty() || arrival.method == method; });
    if (first == mArrivals.end()) return std::nullopt;
    const Arrival arrival = *first;
    mArrivals.erase(first);
    return arrival;
}

std::optional<Arrival> Arrivals::First(const std::string& method) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const Arrival& arrival : mArrivals) {
        if (method.empty() || arrival.method == method) return arrival;
    }
    return std::nullopt;
}

void Arrivals::Wait(Milliseconds limit) {
    const auto checkServices = [this] {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mDied) throw Failure(kPeerLost, "the service went away; look at its log, start it, and play again");
    };
    checkServices();
    WaitUntilReadable(mWake, limit);
    eventfd_t count = 0;
    eventfd_read(mWake, &count);
    checkServices();
}

void Arrivals::ServiceDied() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mDied = true;
    eventfd_write(mWake, 1);
}

void Arrivals::Forget() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mArrivals.clear();
    mAnswers.clear();
    mIgnored.clear();
}

Json::Value Arrivals::AnswerOfLocked(const std::string& name, const Method& method) const {
    const auto given = mAnswers.find(name);
    if (given != mAnswers.end()) return given->second;
    Json::Value answer(Json::arrayValue);
    for (const Parameter& result : method.results) answer.append(ZeroValue(*result.type));
    return answer;
}

Json::Value Arrivals::Take(const char* interfaceName, const char* methodName, Json::Value arguments) {
    const Interface& interface = Package::Get().FindInterface(interfaceName);
    const Method& method = *interface.Find(methodName);
    const std::string name = interface.name + "." + method.name;
    const std::lock_guard<std::mutex> lock(mMutex);
    const Json::Value answer = AnswerOfLocked(name, method);
    if (mIgnored.count(name) != 0) return answer;
    const std::string results = method.results.empty() ? "" : mDisplay.Results({&interface, &method}, answer);
    mTranscript.Event(method.name, mDisplay.Arguments({&interface, &method}, arguments) +
                                       (results.empty() || results == "done" ? "" : " -> " + results));
    mArrivals.push_back({name, std::move(arguments)});
    eventfd_write(mWake, 1);
    return answer;
}

}  // namespace hbbtv::ctl
