// The calls that arrive at the callback objects of this process while a play runs.
#pragma once

#include <hidl/HidlSupport.h>
#include <json/value.h>

#include <chrono>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "common/duration.h"
#include "package/bindings.h"
#include "play/display.h"
#include "play/transcript.h"

namespace hbbtv::ctl {

struct Arrival {
    std::string method;  // "IMtmCallback.CreateApp"
    Json::Value arguments;
};

// Has to exist as long as the process: callbacks may come at any time.
class Arrivals : public EventSink {
  public:
    Arrivals(Transcript& transcript, const Display& display);

    // Sets the results of a method from now on; default: zeros and empty strings.
    void Answer(const std::string& method, const Json::Value& results);

    // Arrivals of the method are not kept, nor shown.
    void Ignore(const std::string& method);

    // Takes the first arrival of the method, or of any method when it is empty, that nobody has taken.
    std::optional<Arrival> Take(const std::string& method);

    // Returns the first that nobody has taken, without taking it.
    std::optional<Arrival> First(const std::string& method) const;

    // Waits until something arrives, a service dies, or the time is over. Throws Interrupted, and Failure(kPeerLost)
    // when a service has died.
    void Wait(Milliseconds limit);

    void ServiceDied();

    // Forgets arrivals, answers and what is ignored.
    void Forget();

    // EventSink: on the threads that serve this process's callbacks.
    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override;

  private:
    Json::Value AnswerOfLocked(const std::string& name, const Method& method) const;

    Transcript& mTranscript;
    const Display& mDisplay;
    const int mWake;
    mutable std::mutex mMutex;
    std::list<Arrival> mArrivals;                 // guarded by mMutex
    std::map<std::string, Json::Value> mAnswers;  // guarded by mMutex
    std::set<std::string> mIgnored;               // guarded by mMutex
    bool mDied = false;                           // guarded by mMutex
};

}  // namespace hbbtv::ctl
