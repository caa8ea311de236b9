#include "traffic/relay/place.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "common/local_socket.h"
#include "wire/endpoint.h"

namespace hbbtv::traffic {

namespace {

constexpr char kSuffix[] = ".relay";
constexpr unsigned kExchange = 2;  // RENAME_EXCHANGE, which not every <stdio.h> has

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Exchanges two files in one step, so that no process finds none.
int Exchange(const std::string& a, const std::string& b) {
    return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), kExchange));
}

// The relay's socket gets the rights of the other one, and later the other way round: its owner may set them at any
// time, by the name.
void CopyRights(const std::string& from, const std::string& to) {
    struct stat status {};
    if (lstat(from.c_str(), &status) != 0) return;
    // Only root may, and only then the owners differ.
    (void)!lchown(to.c_str(), status.st_uid, status.st_gid);
    chmod(to.c_str(), status.st_mode & 07777);
}

bool IsStale(const std::string& path) {
    return LookAt(path).state == Finding::State::Stale;
}

}  // namespace

std::string BehindRelay(const std::string& path) {
    return path + kSuffix;
}

bool IsRelayable(const std::string& name) {
    if (name.rfind("service_", 0) != 0 || EndsWith(name, kSuffix) || name.find('/') != std::string::npos) return false;
    const size_t port = name.rfind("_port_");
    return port == std::string::npos ||
           !std::all_of(name.begin() + static_cast<ptrdiff_t>(port) + 6, name.end(),
                        [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; });
}

Place::Identity Place::Identity::Of(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

Place::Place(const std::string& owned, const std::string& served, pid_t owner)
    : mOwned(owned), mServed(served), mBehind(owned == served ? BehindRelay(owned) : owned), mOwner(owner) {}

std::unique_ptr<Place> Place::Take(const std::string& owned, const std::string& served, std::string& reason) {
    reason.clear();
    const Finding finding = LookAt(owned);
    if (finding.state != Finding::State::Serving) return nullptr;
    std::unique_ptr<Place> place(new Place(owned, served, finding.process));
    const bool moved = owned == served;
    if (!moved) {
        const Finding other = LookAt(served);
        if (other.state == Finding::State::Serving) {
            reason = served + " is served by " + other.peer;
            return nullptr;
        }
    }
    const std::string at = moved ? place->mBehind : served;
    reason = place->Listen(at, owned);
    if (!reason.empty()) return nullptr;
    if (moved && Exchange(owned, place->mBehind) != 0) {
        reason = "cannot rename " + owned + ": " + std::strerror(errno);
        unlink(at.c_str());
        return nullptr;
    }
    place->mOwners = Identity::Of(place->mBehind);
    place->mHas = true;
    return place;
}

std::string Place::Listen(const std::string& at, const std::string& like) {
    if (unlink(at.c_str()) != 0 && errno != ENOENT) return "cannot remove " + at + ": " + std::strerror(errno);
    mListener = ListenOn(at);
    if (mListener < 0) return "cannot listen on " + at + ": " + std::strerror(errno);
    CopyRights(like, at);
    mRelays = Identity::Of(at);
    return "";
}

Place::~Place() {
    GiveBack();
    if (mListener >= 0) close(mListener);
}

bool Place::HasOwner() {
    const Finding finding = LookAt(mBehind);
    if (finding.state != Finding::State::Serving) return false;
    mOwner = finding.process;
    return true;
}

bool Place::IsRelays(const std::string& path) const {
    return mRelays == Identity::Of(path);
}

bool Place::Holds() const {
    return IsRelays(mServed) && mOwners == Identity::Of(mBehind);
}

void Place::GiveBack() {
    if (std::exchange(mHas, false)) Restore();
}

void Place::Restore() {
    if (mOwned != mServed) {
        if (IsRelays(mServed)) unlink(mServed.c_str());
        return;
    }
    if (IsRelays(mServed)) {
        CopyRights(mServed, mBehind);
        if (Exchange(mServed, mBehind) == 0) {
            if (IsRelays(mBehind)) {
                unlink(mBehind.c_str());
                return;
            }
            // Between the two steps, a process has replaced the relay's file by its own.
            Exchange(mServed, mBehind);
        } else {
            unlink(mServed.c_str());  // the owner's file has gone
        }
    }
    // The name is of another socket, or of none: whoever did that has removed the owner's.
    if (mOwners == Identity::Of(mBehind)) unlink(mBehind.c_str());
}

bool Restore(const std::string& path, bool moved) {
    const Finding finding = LookAt(path);
    const bool left = finding.state == Finding::State::Stale;  // it may be the relay's
    if (!moved) return left && unlink(path.c_str()) == 0;
    const std::string behind = BehindRelay(path);
    const Finding owner = LookAt(behind);
    if (owner.state == Finding::State::Missing) return false;
    if (finding.state == Finding::State::Serving || (finding.state == Finding::State::Missing && IsStale(behind))) {
        unlink(behind.c_str());  // its owner has another one, or has removed it
        return true;
    }
    if (left) CopyRights(path, behind);
    return std::rename(behind.c_str(), path.c_str()) == 0;
}

}  // namespace hbbtv::traffic
