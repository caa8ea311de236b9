// What arrives at the callback objects of hbbtvctl: one line each on standard output, and the answers to methods that
// need one.
#pragma once

#include <json/value.h>

#include <map>
#include <mutex>
#include <string>

#include "common/interruption.h"
#include "package/bindings.h"
#include "package/description.h"

namespace hbbtv::ctl {

class EventPrinter : public EventSink {
  public:
    struct Settings {
        bool json = false;
        bool numbers = false;                        // enumerators by number in JSON
        std::map<std::string, Json::Value> answers;  // results by "Interface.Method", in the order of the .hal file
        uint64_t count = 0;                          // ends the waiting after so many; 0: never
    };

    // `interruption` is woken when enough has come.
    EventPrinter(Settings settings, Interruption& interruption)
        : mSettings(std::move(settings)), mInterruption(interruption) {}

    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override;

  private:
    Json::Value AnswerOf(const Interface& interface, const Method& method) const;

    const Settings mSettings;
    Interruption& mInterruption;
    std::mutex mMutex;    // lines do not mix
    uint64_t mTaken = 0;  // guarded by mMutex
};

// A result that says nothing: 0, false, empty.
Json::Value Nothing(const Type& type);

}  // namespace hbbtv::ctl
