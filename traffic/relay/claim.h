// A relay's claim to a directory: one relay at a time, and a file that names what it has to give back, for the one who
// restores the sockets after it has been killed.
#pragma once

#include <json/value.h>
#include <sys/types.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "common/local_socket.h"

namespace hbbtv::traffic {

class Claim {
  public:
    // Restores what a killed relay has left. `moved`: this relay exchanges files of the directory with its own. Throws
    // Failure if another one is there.
    Claim(const std::string& directory, const std::string& program, bool moved);

    // Removes the file. Give the places back before.
    ~Claim();
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;

    // Before a place is taken, and after it has been given back. Nothing is written if files are moved, as their names
    // show that.
    void Add(const std::string& socket);
    void Remove(const std::string& socket);

    const std::vector<std::string>& Restored() const { return mRestored; }

    // Returns the path of the socket at which the relay answers.
    static std::string ControlPath(const std::string& directory);

  private:
    void Write() const;

    const std::string mDirectory;
    const std::string mProgram;
    const bool mMoved;
    const std::string mPath;
    std::set<std::string> mSockets;
    std::vector<std::string> mRestored;
    Descriptor mFile;
};

// What is known about a relay in a directory.
struct RelayFound {
    pid_t process = 0;                  // of a running one; 0: none
    std::string name;                   // "hbbtvctl monitor (4711)"
    std::vector<std::string> restored;  // sockets that a killed one had left
    std::string problem;                // why they could not be restored
};

// Looks for a relay, and restores the sockets if it has been killed.
RelayFound LookForRelay(const std::string& directory);

// Asks a running relay. Returns nothing if it does not answer within two seconds.
std::optional<Json::Value> AskRelay(const std::string& directory);

}  // namespace hbbtv::traffic
