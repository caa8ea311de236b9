// The sockets of the wire, and the state of the files at their paths.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "wire/protocol.h"

namespace hbbtv {

struct Endpoint {
    std::string family;
    bool ofPlatform = true;  // served by the platform, for requests; else by the library, for events
    int key = 0;
    int port = 0;
    std::string socket;  // name of the file
};

// Returns the platform's, then the library's, each in the order of the keys.
std::vector<Endpoint> AllEndpoints();

Endpoint RequestsOf(const WireFamily& family);

// Throws Failure(kUsage) if the family has no events.
Endpoint EventsOf(const WireFamily& family);

// Returns $TMPDIR, or /tmp if it is not set.
std::string DefaultDirectory();

std::string PathOf(const std::string& directory, const Endpoint& endpoint);

// Returns the longest name of a socket file that the library or the platform creates: that of a client's own end.
std::string LongestFileName();

struct Finding {
    enum class State { Serving, Stale, Missing, Forbidden, NoSocket, Unreachable };

    State state = State::Missing;
    std::string peer;    // "hbbtv-sim (4711)": the serving process; empty if unknown
    pid_t process = 0;   // its id; 0 if unknown
    bool full = false;   // it accepts no connection, and no more can wait for that
    std::string reason;  // Unreachable
    unsigned mode = 0;   // of the file, as in chmod

    // "serving", "stale", ...
    std::string InWords() const;
};

// Connects for a moment to find out which process serves the socket.
Finding LookAt(const std::string& path);

}  // namespace hbbtv
