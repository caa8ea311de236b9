#include "traffic/relay/places.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>

#include "common/failure.h"

#ifndef SYS_pidfd_open
#define SYS_pidfd_open 434
#endif

namespace hbbtv::traffic {

namespace {

using std::chrono::milliseconds;

// A process binds its socket first, and listens a moment later. So after a change, the files are looked at again soon,
// and then less and less often.
constexpr milliseconds kSoon{1};
constexpr milliseconds kRarely{1000};
constexpr milliseconds kShortOfDescriptors{10};

bool Exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

// Returns a descriptor that is readable when the process has ended, or -1 with an older kernel (before 5.3).
int OpenProcess(pid_t process) {
    return process == 0 ? -1 : static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

}  // namespace

Places::Served::Served(asio::io_context& context, std::unique_ptr<Place> thePlace)
    : place(std::move(thePlace)), listener(context, place->Listener()), owner(context), again(context) {
    const int process = OpenProcess(place->Owner());
    if (process >= 0) owner.assign(process);
}

Places::Served::~Served() {
    listener.release();  // the place closes it
}

Places::Places(asio::io_context& context, const std::vector<std::string>& directories, std::set<std::string> sockets,
               const std::string& program, PlacesHandlers handlers)
    : mContext(context),
      mDirectories(directories),
      mSockets(std::move(sockets)),
      mHandlers(std::move(handlers)),
      mTimer(context),
      mPause(kSoon) {
    for (const std::string& directory : mDirectories) {
        mClaims.push_back(std::make_unique<Claim>(directory, program, IsMoved()));
        mWatches.push_back(std::make_unique<DirectoryWatch>(directory));
        mNames.push_back(std::make_unique<asio::posix::stream_descriptor>(context));
        if (mWatches.back()->Fd() >= 0) mNames.back()->assign(mWatches.back()->Fd());
    }
}

Places::~Places() {
    GiveBack();
    for (const auto& names : mNames) {
        if (names->is_open()) names->release();  // the watch closes it
    }
}

void Places::Take() {
    CheckAll();
    for (size_t side = 0; side < mDirectories.size(); ++side) AwaitNames(side);
    AwaitTime();
}

void Places::GiveBack() {
    mEnded = true;
    mTimer.cancel();
    for (const auto& names : mNames) {
        asio::error_code ignored;
        if (names->is_open()) names->cancel(ignored);
    }
    while (!mServed.empty()) Drop(mServed.begin()->first);
    mClaims.clear();
}

std::set<std::string> Places::SocketsIn(const std::string& directory) const {
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        const std::string name = entry.path().filename().string();
        if (IsRelayable(name) && (mSockets.empty() || mSockets.count(name) != 0)) names.insert(name);
    }
    return names;
}

std::set<std::string> Places::Taken() const {
    std::set<std::string> names;
    for (const auto& [key, served] : mServed) names.insert(key.second);
    return names;
}

std::vector<std::string> Places::Restored() const {
    std::vector<std::string> names;
    for (const auto& claim : mClaims) names.insert(names.end(), claim->Restored().begin(), claim->Restored().end());
    return names;
}

void Places::CheckAll() {
    std::set<Key> keys;
    for (const auto& [key, served] : mServed) keys.insert(key);
    for (size_t side = 0; side < mDirectories.size(); ++side) {
        for (const std::string& name : SocketsIn(mDirectories[side])) keys.insert({side, name});
    }
    for (const Key& key : keys) Check(key);
}

// Between two directories, the relay's own file in one is not a socket to be taken to the other.
void Places::Check(const Key& key) {
    const auto& [side, name] = key;
    if (mEnded || !IsRelayable(name) || (!mSockets.empty() && mSockets.count(name) == 0)) return;
    const auto found = mServed.find(key);
    if (found != mServed.end()) {
        if (found->second->place->Holds()) return;
        Drop(key);
    }
    const size_t other = Opposite(side);
    const std::string owned = mDirectories[side] + "/" + name;
    const auto opposite = mServed.find({other, name});
    const bool relays = opposite != mServed.end() && opposite->second->place->IsRelays(owned);
    if (relays || !Exists(owned)) return;
    mClaims[other]->Add(name);
    std::string reason;
    std::unique_ptr<Place> place = Place::Take(owned, mDirectories[other] + "/" + name, reason);
    if (place != nullptr) return Add(key, std::move(place));
    if (mServed.count({other, name}) == 0) mClaims[other]->Remove(name);
    Complain(key, reason);
}

// Once for each reason, as it is tried again and again.
void Places::Complain(const Key& key, const std::string& reason) {
    std::string& last = mComplaints[key];
    if (!reason.empty() && reason != last) mHandlers.onNote("not passed on: " + reason, key.second);
    last = reason;
}

void Places::Add(const Key& key, std::unique_ptr<Place> place) {
    const auto served = std::make_shared<Served>(mContext, std::move(place));
    mServed[key] = served;
    mComplaints.erase(key);
    AwaitConnections(key, served);
    AwaitEnd(key, served);
}

void Places::Drop(Key key) {
    const auto found = mServed.find(key);
    const std::shared_ptr<Served> served = found->second;
    served->place->GiveBack();
    Accept(key, *served);
    mServed.erase(found);
    mClaims[Opposite(key.first)]->Remove(key.second);
    asio::error_code ignored;
    served->listener.cancel(ignored);
    if (served->owner.is_open()) served->owner.close(ignored);
    served->again.cancel();
}

void Places::AwaitConnections(const Key& key, const std::shared_ptr<Served>& served) {
    served->listener.async_wait(asio::posix::descriptor_base::wait_read,
                                [this, key, served](const asio::error_code& error) {
                                    if (error || mServed.count(key) == 0 || mServed[key] != served) return;
                                    if (Accept(key, *served)) return AwaitConnections(key, served);
                                    served->again.expires_after(kShortOfDescriptors);
                                    served->again.async_wait([this, key, served](const asio::error_code& cancelled) {
                                        if (!cancelled) AwaitConnections(key, served);
                                    });
                                });
}

// Returns false if there are too few descriptors; the others wait in the backlog.
bool Places::Accept(const Key& key, Served& served) {
    while (true) {
        const int fd = accept4(served.place->Listener(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd >= 0) {
            mHandlers.onAccept(fd, key.second, served.place->Behind());
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return errno == EAGAIN;
        }
    }
}

// When its process has ended, the owner's file has to be at its name: whoever starts it again looks there.
void Places::AwaitEnd(const Key& key, const std::shared_ptr<Served>& served) {
    if (!served->owner.is_open()) return;
    served->owner.async_wait(asio::posix::descriptor_base::wait_read,
                             [this, key, served](const asio::error_code& error) {
                                 if (error || mServed.count(key) == 0 || mServed[key] != served) return;
                                 asio::error_code ignored;
                                 served->owner.close(ignored);
                                 if (!served->place->HasOwner()) Drop(key);
                             });
}

void Places::CheckOwner(const std::string& socket) {
    for (size_t side = 0; side < mDirectories.size(); ++side) {
        const auto found = mServed.find({side, socket});
        if (found != mServed.end() && !found->second->place->HasOwner()) Drop(found->first);
    }
}

// For kernels that do not report the end of a process.
void Places::CheckOwners() {
    for (const std::string& name : Taken()) {
        for (size_t side = 0; side < mDirectories.size(); ++side) {
            const auto found = mServed.find({side, name});
            if (found == mServed.end() || found->second->owner.is_open()) continue;
            const pid_t owner = found->second->place->Owner();
            if (owner != 0 && kill(owner, 0) != 0 && errno == ESRCH && !found->second->place->HasOwner()) {
                Drop(found->first);
            }
        }
    }
}

void Places::AwaitNames(size_t side) {
    if (!mNames[side]->is_open()) return;
    mNames[side]->async_wait(asio::posix::descriptor_base::wait_read, [this, side](const asio::error_code& error) {
        if (error || mEnded) return;
        LookAtNames(side);
        AwaitNames(side);
    });
}

void Places::LookAtNames(size_t side) {
    bool all = false;
    const std::set<std::string> names = mWatches[side]->Names(all);
    for (const std::string& name : names) {
        Check({side, name});
        if (!IsMoved()) Check({Opposite(side), name});  // its process may have removed the relay's file
        if (IsRelayable(name)) mPause = kSoon;
    }
    if (all) CheckAll();
    if (mPause == kSoon) AwaitTime();
}

void Places::Look() {
    if (mEnded) return;
    for (size_t side = 0; side < mDirectories.size(); ++side) {
        if (mNames[side]->is_open()) LookAtNames(side);
    }
    if (mPause < kRarely) CheckAll();
}

void Places::AwaitTime() {
    mTimer.expires_after(mPause);
    mTimer.async_wait([this](const asio::error_code& error) {
        if (error || mEnded) return;
        CheckAll();
        CheckOwners();
        mPause = std::min(mPause * 2, kRarely);
        AwaitTime();
    });
}

}  // namespace hbbtv::traffic
