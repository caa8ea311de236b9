// The relay: takes the place of the sockets of a directory, passes on each connection unchanged, and turns what it has
// passed on into records. On leaving, the sockets are as before.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

struct RelaySettings {
    std::string directory;           // of the sockets; of the library's if `platform` is set
    std::string platform;            // directory of the platform's sockets; empty: the same
    std::set<std::string> sockets;   // names of files; empty: all, also unknown ones
    std::vector<std::string> rules;  // what to do to messages on purpose
    bool breaks = false;             // end the connections that exist already, so that their ends connect again
    std::string program;             // "hbbtvctl monitor", for other programs that find the relay here
};

class Relay {
  public:
    // Takes the place of the sockets that there are. `onRecord` is called by one thread of the relay. Throws Failure if
    // the directory cannot be used, a relay is already there, or a rule is wrong.
    Relay(const RelaySettings& settings, std::function<void(const Record&)> onRecord);

    // Restores the sockets, if Run() has not done that.
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    // Passes on until Stop(), also sockets that appear later; then restores the sockets, and ends the connections when
    // no request is open on them, at most a second later. All records have been passed to the function when it returns.
    void Run();

    // Thread-safe.
    void Stop();

    // Returns the exchanges that have no reply yet, as records without a number, oldest first. Thread-safe.
    std::vector<Record> Open() const;

    // Carries out a line about rules: a rule to add, or a command; "help" returns a list. Returns the answer. Throws
    // Failure(kUsage). Thread-safe, while Run() runs and has not been stopped.
    std::string Tell(const std::string& line);

    // Returns the names of the sockets whose place it has. Not while Run() runs.
    std::set<std::string> Sockets() const;

    // Returns the names of the sockets that an earlier relay, which was killed, had left and this one has restored.
    const std::vector<std::string>& Restored() const;

  private:
    class Body;
    std::unique_ptr<Body> mBody;
};

}  // namespace hbbtv::traffic
