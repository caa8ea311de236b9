// The sockets of the wire, and what is to be found at their paths.
#pragma once

#include <string>
#include <vector>

#include "wire/protocol.h"

namespace hbbtv {

struct Endpoint {
    std::string family;
    bool ofPlatform = true;  // serves requests; otherwise of the library, which serves events
    int key = 0;
    int port = 0;
    std::string socket;  // name of the file
};

// The platform's first, each kind in the order of the keys.
std::vector<Endpoint> AllEndpoints();

// Throws Failure(kUsage) when the family has no events.
Endpoint RequestsOf(const WireFamily& family);
Endpoint EventsOf(const WireFamily& family);

// Where the sockets are when nobody says: $TMPDIR, else /tmp.
std::string DefaultDirectory();

std::string PathOf(const std::string& directory, const Endpoint& endpoint);

// The longest name of a file that the library or the platform makes there: a client's own end.
std::string LongestFileName();

struct Finding {
    enum class State { Serving, Stale, Missing, Forbidden, NoSocket, Unreachable };

    State state = State::Missing;
    std::string peer;    // "hbbtv-sim (4711)", of who serves; empty when it cannot be known
    std::string reason;  // Unreachable
    unsigned mode = 0;   // of the file, as in chmod

    // "serving", "stale", ...
    std::string InWords() const;
};

// Connects for a moment to see who is there.
Finding LookAt(const std::string& path);

}  // namespace hbbtv
