// The calls of pages: one request carries any number of them, which are made one after the other on a thread of their
// own, so that a platform that hangs stops no other page.
#pragma once

#include <json/value.h>

#include <functional>
#include <string>
#include <vector>

#include "common/duration.h"
#include "devtools/loop.h"
#include "platform/platform.h"

namespace hbbtv::browser {

// A call that succeeded.
struct MadeCall {
    std::string method;
    Json::Value arguments;
    Json::Value results;
};

class PageCalls {
  public:
    // Returns the results of a call of the browser itself, by name.
    using HostCall = std::function<Json::Value(const std::string& name, const Json::Value& arguments)>;

    // What was called; also what was called too late. Runs on the loop before the answer is used.
    using OnMade = std::function<void(const std::vector<MadeCall>& calls)>;

    // {"answers": [...]}, or an empty string if the request is not valid.
    using OnAnswer = std::function<void(const std::string& answer)>;

    // `limit` is the time for all calls of a request. Those without an answer then get the error "timeout".
    PageCalls(devtools::Loop& loop, Platform& platform, Milliseconds limit)
        : mLoop(loop), mPlatform(platform), mLimit(limit) {}

    // Makes the calls of {"calls": [{"method": ..., "arguments": ...} or {"host": ..., "arguments": ...}]}.
    void Make(const std::string& request, const HostCall& hostCall, const OnMade& onMade, const OnAnswer& onAnswer);

  private:
    struct Batch;

    devtools::Loop& mLoop;
    Platform& mPlatform;
    const Milliseconds mLimit;
};

}  // namespace hbbtv::browser
