// Prints each call of a callback object as a line on standard output, and answers methods that return a value.
#pragma once

#include <json/value.h>

#include <map>
#include <mutex>
#include <set>
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
        std::set<std::string> shown;                 // names of the methods that are shown and counted; empty: all
        uint64_t count = 0;                          // wakes the interruption after this many; 0: never
    };

    // `interruption` is woken after Settings::count events, or when the reader of the output has gone.
    EventPrinter(Settings settings, Interruption& interruption)
        : mSettings(std::move(settings)), mInterruption(interruption) {}

    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override;

  private:
    Json::Value AnswerOf(const Interface& interface, const Method& method) const;

    const Settings mSettings;
    Interruption& mInterruption;
    std::mutex mMutex;    // keeps lines apart
    uint64_t mTaken = 0;  // guarded by mMutex
};

// Returns 0, false or an empty value.
Json::Value ZeroValue(const Type& type);

}  // namespace hbbtv::ctl
