// The calls of this process's callback objects while a play runs.
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

// Must exist as long as the process: callbacks may arrive at any time.
class Arrivals : public EventSink {
  public:
    Arrivals(Transcript& transcript, const Display& display);

    // Sets the results of a method from now on; default: zeros and empty strings.
    void Answer(const std::string& method, const Json::Value& results);

    // Calls of the method are neither stored nor shown.
    void Ignore(const std::string& method);

    // Removes and returns the first arrival of the method, or of any method if it is empty.
    std::optional<Arrival> Take(const std::string& method);

    // Returns the first arrival without removing it.
    std::optional<Arrival> First(const std::string& method) const;

    // Waits until something arrives, a service dies, or the time is over. Throws Interrupted, and Failure(kPeerLost) if
    // a service has died.
    void Wait(Milliseconds limit);

    void ServiceDied();

    // Discards arrivals, answers and the list of ignored methods.
    void Forget();

    // EventSink; called on the threads that serve this process's callbacks.
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
