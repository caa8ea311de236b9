// Chromium commanded by the DevTools protocol: starts it, sends commands to its sessions, and passes its events on.
// Knows nothing of what the pages are for.
#pragma once

#include <json/value.h>

#include <functional>
#include <memory>
#include <string>

#include "common/duration.h"
#include "devtools/loop.h"
#include "devtools/process.h"

namespace hbbtv::devtools {

// Of commands for which none is given.
constexpr Milliseconds kCommandLimit{10000};

// The session of the browser itself, which has no name. A target's session is named by "Target.attachedToTarget", with
// "flatten" set.
inline const std::string kBrowserSession;

struct Answer {
    Json::Value result{Json::objectValue};
    std::string error;  // empty if the command succeeded

    bool Ok() const { return error.empty(); }
};

class DevTools {
  public:
    using OnAnswer = std::function<void(const Answer&)>;
    using OnEvent = std::function<void(const std::string& session, const std::string& method, const Json::Value&)>;
    using OnEnd = std::function<void()>;

    // Starts Chromium. Functions run on the thread of the loop, which must exist for longer. Throws Failure.
    DevTools(Loop& loop, const ChromiumOptions& options);

    // Ends Chromium, and waits until its files are removed. No function is called any more.
    ~DevTools();
    DevTools(const DevTools&) = delete;
    DevTools& operator=(const DevTools&) = delete;

    // Sets the receivers of events, and of the end of Chromium, for which there is no other cause than its death.
    void SetHandlers(OnEvent onEvent, OnEnd onEnd);

    // Calls no function from now on, neither those of events nor those of commands that have been sent.
    void Forget();

    // Sends a command. `onAnswer` is called once: with the answer, or with an error at the limit or when Chromium ends.
    // Does not block, and may be called by any of the functions.
    void Send(const std::string& session, const std::string& method,
              const Json::Value& params = Json::Value(Json::objectValue), OnAnswer onAnswer = nullptr,
              Milliseconds limit = kCommandLimit);

    // Sends a command, and runs the loop until the answer arrives. Throws Failure(kTimeout), Failure(kPeerLost) if
    // Chromium ends, or Failure(kInvalidReply) with its message.
    Json::Value Command(const std::string& session, const std::string& method,
                        const Json::Value& params = Json::Value(Json::objectValue), Milliseconds limit = kCommandLimit);

    // Returns whether Chromium is running.
    bool Running() const;

    // Of Chromium's first process.
    pid_t Pid() const;

    // Returns its standard error, and that of its processes, after this many bytes.
    std::string Messages(size_t begin) const;

    // Returns the last line of its standard error.
    std::string LastMessage() const;

  private:
    class Connection;

    Loop& mLoop;
    ChromiumProcess mProcess;
    const std::shared_ptr<Connection> mConnection;
};

}  // namespace hbbtv::devtools
