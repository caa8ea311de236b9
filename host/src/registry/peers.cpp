#include "registry/peers.h"

#include <map>
#include <mutex>
#include <tuple>

namespace android::hardware::host {

std::shared_ptr<Session> SessionTo(const ServiceDirectory& directory, const std::string& socketName) {
    struct Peers {
        std::mutex mutex;
        std::map<std::pair<std::pair<dev_t, ino_t>, std::string>, std::weak_ptr<Session>> sessions;
    };
    static Peers* const peers = new Peers;

    std::lock_guard<std::mutex> lock(peers->mutex);
    for (auto entry = peers->sessions.begin(); entry != peers->sessions.end();) {
        entry = entry->second.expired() ? peers->sessions.erase(entry) : std::next(entry);
    }
    std::weak_ptr<Session>& known = peers->sessions[{directory.Identity(), socketName}];
    std::shared_ptr<Session> session = known.lock();
    if (session != nullptr && !session->IsDead()) return session;
    const int fd = directory.Connect(socketName);
    session = fd < 0 ? nullptr : Session::Start(fd, nullptr);
    known = session;
    return session;
}

}  // namespace android::hardware::host
