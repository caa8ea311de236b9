#include "registry/server.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "log/host_log.h"

namespace android::hardware::host {

using ::android::hidl::base::V1_0::IBase;

namespace {

struct Servers {
    std::mutex mutex;
    std::map<std::pair<dev_t, ino_t>, Server*> byDirectory;
    pid_t owner = 0;  // a forked child has a copy of the list, but the files belong to its parent
};

Servers& TheServers() {
    static Servers* const servers = new Servers;
    return *servers;
}

void RemoveAllFromDisk() {
    Servers& servers = TheServers();
    std::lock_guard<std::mutex> lock(servers.mutex);
    if (servers.owner != getpid()) return;
    for (const auto& entry : servers.byDirectory) entry.second->RemoveFromDisk();
}

std::string NewSocketName() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const unsigned long long time = static_cast<unsigned long long>(now.tv_sec) * 1000000000ULL + now.tv_nsec;
    return "s" + std::to_string(getpid()) + "." + std::to_string(time);
}

}  // namespace

Server* Server::GetOrCreate() {
    const std::shared_ptr<ServiceDirectory> directory = ServiceDirectory::Open(true);
    if (directory == nullptr) return nullptr;
    Servers& servers = TheServers();
    std::lock_guard<std::mutex> lock(servers.mutex);
    const auto found = servers.byDirectory.find(directory->Identity());
    if (found != servers.byDirectory.end()) return found->second;
    auto server = std::make_unique<Server>(directory, NewSocketName());
    {
        const DirectoryLock directoryLock(*directory);
        directory->Sweep();
        if (!server->Listen()) return nullptr;
    }
    if (servers.owner == 0) {
        servers.owner = getpid();
        atexit(RemoveAllFromDisk);
    }
    return servers.byDirectory[directory->Identity()] = server.release();
}

Server* Server::Get(const ServiceDirectory& directory) {
    Servers& servers = TheServers();
    std::lock_guard<std::mutex> lock(servers.mutex);
    const auto found = servers.byDirectory.find(directory.Identity());
    return found == servers.byDirectory.end() ? nullptr : found->second;
}

bool Server::Listen() {
    mListener = mDirectory->Listen(mSocketName);
    if (mListener < 0) return false;
    mSpareFd = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (StartThread("hidl-accept", false, [this] { Accept(); })) return true;
    close(mListener);
    if (mSpareFd >= 0) close(mSpareFd);
    mDirectory->Remove(mSocketName);
    return false;
}

void Server::Accept() {
    for (;;) {
        const int fd = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd >= 0) {
            mRefusing = false;
            Session::Start(fd, this);
        } else if (errno == EMFILE || errno == ENFILE) {
            Refuse();
        } else if (errno != EINTR && errno != ECONNABORTED) {
            ALOGE("cannot accept a connection: %s", strerror(errno));
            poll(nullptr, 0, 100);  // probably out of memory: do not retry at full speed
        }
    }
}

// No descriptor is left for the connection. It is closed, so that the client notices instead of waiting.
void Server::Refuse() {
    if (!mRefusing) ALOGE("out of file descriptors: refusing connections");
    mRefusing = true;
    if (mSpareFd >= 0) close(mSpareFd);
    const int fd = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd >= 0) {
        close(fd);
    } else {
        poll(nullptr, 0, 100);  // another thread has taken the spare descriptor
    }
    mSpareFd = open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool Server::Register(const std::vector<std::string>& names, const sp<IBase>& object, const sp<BHwBinder>& stub) {
    std::vector<Entry> replaced;  // released after the lock
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const std::string& name : names) {
            Entry& entry = mEntries[name];
            replaced.push_back(std::move(entry));
            entry = {object, stub};
        }
    }
    const DirectoryLock directoryLock(*mDirectory);
    mDirectory->Sweep();
    for (const std::string& name : names) {
        if (!mDirectory->Link(name, mSocketName)) return false;
    }
    return true;
}

sp<IBase> Server::FindObject(const std::string& name) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mEntries.find(name);
    return found == mEntries.end() ? nullptr : found->second.object;
}

sp<BHwBinder> Server::FindStub(const std::string& name) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mEntries.find(name);
    return found == mEntries.end() ? nullptr : found->second.stub;
}

void Server::RemoveFromDisk() {
    const DirectoryLock directoryLock(*mDirectory);
    mDirectory->Remove(mSocketName);
}

}  // namespace android::hardware::host
