// The place of one socket: the relay listens there, and the process that created the socket is reached elsewhere. In
// one directory, the two files are exchanged in one step: the other one is then beside the name, as `NAME.relay`.
// Between two directories, no file is moved.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

namespace hbbtv::traffic {

// The file of the owner while the relay has its place.
std::string BehindRelay(const std::string& path);

// Returns whether the name of a file is one of a socket that a relay passes on, if a process serves it: all service_*
// but the library's own ends of connections.
bool IsRelayable(const std::string& name);

class Place {
  public:
    // Takes the place at the path `served` of the process that serves `owned`: the same path, or that of another
    // directory. Returns null with a reason if it cannot; the reason is empty if there is no process.
    static std::unique_ptr<Place> Take(const std::string& owned, const std::string& served, std::string& reason);

    ~Place();
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    // Gives the place back, if it is still the relay's. The socket has the mode that it has been given meanwhile. The
    // relay can still accept the connections that have come before.
    void GiveBack();

    int Listener() const { return mListener; }
    pid_t Owner() const { return mOwner; }  // 0: unknown

    // Connects to the owner's socket to find its owner. Returns whether a process serves it.
    bool HasOwner();

    // Returns the path at which the owner is reached.
    const std::string& Behind() const { return mBehind; }

    // Returns whether the relay's file is at the served path, and the owner's where it was.
    bool Holds() const;

    // Returns whether the file at the path is the relay's.
    bool IsRelays(const std::string& path) const;

  private:
    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        static Identity Of(const std::string& path);  // zeros if there is none
        bool operator==(const Identity& other) const { return device == other.device && inode == other.inode; }
    };

    Place(const std::string& owned, const std::string& served, pid_t owner);
    std::string Listen(const std::string& at, const std::string& like);
    void Restore();

    std::string mOwned;
    std::string mServed;
    std::string mBehind;
    pid_t mOwner;
    int mListener = -1;
    Identity mRelays;
    Identity mOwners;
    bool mHas = false;  // the place
};

// Restores a socket that a relay has left without doing so, as after SIGKILL. Only for directories in which none runs.
// `moved`: the relay had one directory. Returns whether there was anything to restore.
bool Restore(const std::string& path, bool moved);

}  // namespace hbbtv::traffic
