// The places that a relay has taken: of the sockets that there are, and of those that appear later or are created again
// by processes that restart. A socket without a process that serves it stays as it is.
#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "traffic/relay/claim.h"
#include "traffic/relay/directory_watch.h"
#include "traffic/relay/place.h"

namespace hbbtv::traffic {

struct PlacesHandlers {
    // A connection to the socket; its owner is reached at `behind`. The function owns the descriptor.
    std::function<void(int fd, const std::string& socket, const std::string& behind)> onAccept;
    std::function<void(const std::string& note, const std::string& socket)> onNote;
};

// All functions are called by the thread of the io_context.
class Places {
  public:
    // One directory, or those of the library and of the platform. `sockets`: names, or none for all. Throws Failure if
    // a relay is already in a directory.
    Places(asio::io_context& context, const std::vector<std::string>& directories, std::set<std::string> sockets,
           const std::string& program, PlacesHandlers handlers);
    ~Places();

    // Takes the places of the sockets that there are, and of later ones until GiveBack().
    void Take();

    // Takes the places of sockets that have appeared by now. Not to be called by a handler.
    void Look();

    // Another relay can then begin.
    void GiveBack();

    // Returns the names of the sockets in a directory that a relay takes, if a process serves them.
    std::set<std::string> SocketsIn(const std::string& directory) const;

    // Returns the names of the sockets whose place the relay has.
    std::set<std::string> Taken() const;

    std::vector<std::string> Restored() const;

    // The socket's owner does not accept connections: its process may have ended.
    void CheckOwner(const std::string& socket);

  private:
    using Key = std::pair<size_t, std::string>;  // the owner's directory, and the socket

    struct Served {
        Served(asio::io_context& context, std::unique_ptr<Place> thePlace);
        ~Served();

        std::unique_ptr<Place> place;
        asio::posix::stream_descriptor listener;
        asio::posix::stream_descriptor owner;  // readable when its process ends
        asio::steady_timer again;
    };

    bool IsMoved() const { return mDirectories.size() == 1; }
    size_t Opposite(size_t side) const { return IsMoved() ? side : 1 - side; }
    void Check(const Key& key);
    void CheckAll();
    void Add(const Key& key, std::unique_ptr<Place> place);
    void Drop(Key key);
    void Complain(const Key& key, const std::string& reason);
    void CheckOwners();
    void AwaitConnections(const Key& key, const std::shared_ptr<Served>& served);
    bool Accept(const Key& key, Served& served);
    void AwaitEnd(const Key& key, const std::shared_ptr<Served>& served);
    void AwaitNames(size_t side);
    void LookAtNames(size_t side);
    void AwaitTime();

    asio::io_context& mContext;
    const std::vector<std::string> mDirectories;
    const std::set<std::string> mSockets;
    const PlacesHandlers mHandlers;
    std::vector<std::unique_ptr<Claim>> mClaims;  // as the directories
    std::vector<std::unique_ptr<DirectoryWatch>> mWatches;
    std::vector<std::unique_ptr<asio::posix::stream_descriptor>> mNames;  // of the watches
    std::map<Key, std::shared_ptr<Served>> mServed;
    std::map<Key, std::string> mComplaints;
    asio::steady_timer mTimer;
    std::chrono::milliseconds mPause;
    bool mEnded = false;
};

}  // namespace hbbtv::traffic
