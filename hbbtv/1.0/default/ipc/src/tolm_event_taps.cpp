#include "ipc/src/tolm_event_taps.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <utility>

namespace tolm {

namespace {

// The connection to a tool.
class Tap {
  public:
    Tap(int fd, std::vector<const Family*> families) : mFd(fd), mFamilies(std::move(families)) {}
    ~Tap() {
        if (mFd >= 0) close(mFd);
    }
    Tap(Tap&& other) noexcept
        : mFd(std::exchange(other.mFd, -1)), mFamilies(std::move(other.mFamilies)), mLost(other.mLost) {}
    Tap& operator=(Tap&& other) noexcept {
        std::swap(mFd, other.mFd);
        std::swap(mFamilies, other.mFamilies);
        std::swap(mLost, other.mLost);
        return *this;
    }

    bool Wants(const Family& family) const {
        return std::find(mFamilies.begin(), mFamilies.end(), &family) != mFamilies.end();
    }

    bool IsClosed() const {
        pollfd peer{mFd, 0, 0};
        return poll(&peer, 1, 0) == 1 && (peer.revents & (POLLHUP | POLLERR)) != 0;
    }

    // Returns whether the other end still exists.
    bool Write(const std::string& line) {
        if (mLost > 0 && Send("{\"lost\":" + std::to_string(mLost) + "}\n")) mLost = 0;
        if (mLost > 0 || !Send(line)) ++mLost;
        return !mGone;
    }

  private:
    bool Send(const std::string& line) {
        const ssize_t sent = send(mFd, line.data(), line.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent < 0 && (errno == EPIPE || errno == ECONNRESET || errno == ENOTCONN)) mGone = true;
        return sent >= 0;
    }

    int mFd;
    std::vector<const Family*> mFamilies;
    size_t mLost = 0;
    bool mGone = false;
};

struct Taps {
    std::atomic<bool> any{false};
    std::mutex mutex;
    std::vector<Tap> taps;  // guarded by mutex

    void RemoveLocked(bool (*gone)(const Tap&)) {
        taps.erase(std::remove_if(taps.begin(), taps.end(), gone), taps.end());
        any = !taps.empty();
    }
};

// Never destroyed, as the threads that use it.
Taps& TheTaps() {
    static Taps* const taps = new Taps;
    return *taps;
}

bool IsOfPackets(int fd) {
    int type = 0;
    socklen_t size = sizeof(type);
    return getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

std::string OnOneLine(const Json::Value& document) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, document) + "\n";
}

const Family* FamilyOfEvents(TolmIpcKeyId key) {
    for (const Family* family : families::kAll) {
        if (family->events == key) return family;
    }
    return nullptr;
}

}  // namespace

std::string EventTaps::Add(int fd, std::vector<const Family*> families) {
    if (!IsOfPackets(fd)) return "events need a socket of packets";
    const int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    if (copy < 0) return strerror(errno);
    Tap tap(copy, std::move(families));
    Taps& all = TheTaps();
    std::lock_guard<std::mutex> lock(all.mutex);
    all.RemoveLocked([](const Tap& other) { return other.IsClosed(); });
    if (all.taps.size() >= kMost) return "too many tools listen";
    if (!tap.Write("{\"listening\":true}\n")) return "the socket is closed";
    all.taps.push_back(std::move(tap));
    all.any = true;
    return {};
}

void EventTaps::Show(TolmIpcKeyId key, const char* form, const std::vector<unsigned char>& bytes,
                     const Json::Value& message) {
    Taps& all = TheTaps();
    if (!all.any) return;
    const Family* const family = FamilyOfEvents(key);
    if (family == nullptr) return;
    Json::Value shown(Json::objectValue);
    shown["family"] = family->interface;
    shown["form"] = form;
    if (bytes.size() <= kMostBytes) {
        shown["message"] = message;
    } else {
        shown["message"] = Json::Value();
        shown["bytes"] = static_cast<Json::UInt64>(bytes.size());
    }
    const std::string line = OnOneLine(shown);
    std::lock_guard<std::mutex> lock(all.mutex);
    std::vector<Tap> kept;
    for (Tap& tap : all.taps) {
        if (!tap.Wants(*family) || tap.Write(line)) kept.push_back(std::move(tap));
    }
    all.taps = std::move(kept);
    all.any = !all.taps.empty();
}

}  // namespace tolm
