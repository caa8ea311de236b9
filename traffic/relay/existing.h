// Connections to a socket that were there before the relay, so that it does not see them.
#pragma once

#include <sys/types.h>

#include <set>
#include <string>
#include <vector>

namespace hbbtv::traffic {

struct ExistingConnection {
    std::string socket;       // name of the file
    unsigned long inode = 0;  // of the end of the process that serves the socket, as /proc names it
    pid_t process = 0;        // that process; 0: unknown
    int descriptor = -1;      // its descriptor, if the process is known
};

// Returns the connections to sockets of these names in the directory. Call it before connecting to them: a connection
// that has just been closed counts until its other end is closed.
std::vector<ExistingConnection> ExistingConnections(const std::string& directory, const std::set<std::string>& names);

// Ends a connection for both ends, without their help: they see that the other one has closed it. Returns why it
// cannot: the kernel (at least 5.6), or the rights of this user (to trace the process).
std::string Break(const ExistingConnection& connection);

}  // namespace hbbtv::traffic
