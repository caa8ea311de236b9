#include "registry/service_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "log/host_log.h"

namespace android::hardware::host {

namespace {

std::string PathFromEnvironment() {
    const char* const path = getenv("HIDL_HOST_DIR");
    if (path != nullptr && *path != '\0') return path;
    const char* const temporary = getenv("TMPDIR");
    return std::string(temporary != nullptr && *temporary != '\0' ? temporary : "/tmp") + "/hidl-host";
}

// Returns the process id in a socket's name, or 0 for any other name.
pid_t PidOf(const std::string& socketName) {
    int pid = 0;
    unsigned long long time = 0;
    int end = 0;
    if (sscanf(socketName.c_str(), "s%d.%llu%n", &pid, &time, &end) != 2) return 0;
    return static_cast<size_t>(end) == socketName.size() && pid > 0 ? pid : 0;
}

// A path in sun_path is limited to 107 characters. Through /proc, the length of the directory's path does not matter.
bool FillAddress(int directory, const std::string& socketName, sockaddr_un* address) {
    *address = {};
    address->sun_family = AF_UNIX;
    const int length =
        snprintf(address->sun_path, sizeof(address->sun_path), "/proc/self/fd/%d/%s", directory, socketName.c_str());
    return length > 0 && static_cast<size_t>(length) < sizeof(address->sun_path);
}

}  // namespace

std::shared_ptr<ServiceDirectory> ServiceDirectory::Open(bool create) {
    const std::string path = PathFromEnvironment();
    if (create && mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        ALOGE("cannot create directory %s: %s", path.c_str(), strerror(errno));
    }
    const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        if (errno != ENOENT) ALOGE("cannot open directory %s: %s", path.c_str(), strerror(errno));
        return nullptr;
    }
    struct stat status = {};
    if (fstat(fd, &status) != 0 || status.st_uid != geteuid()) {
        ALOGE("not using directory %s: it belongs to another user", path.c_str());
        close(fd);
        return nullptr;
    }
    return std::make_shared<ServiceDirectory>(path, fd, std::make_pair(status.st_dev, status.st_ino));
}

ServiceDirectory::~ServiceDirectory() {
    close(mFd);
}

std::string ServiceDirectory::LinkName(const std::string& descriptor, const std::string& instance) {
    std::string name = descriptor + ",";
    for (const char c : instance) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && c != '/' && c != '%') {
            name += c;
            continue;
        }
        char escaped[4];
        snprintf(escaped, sizeof(escaped), "%%%02X", byte);
        name += escaped;
    }
    return name;
}

std::string ServiceDirectory::SocketOf(const std::string& link) const {
    char target[NAME_MAX + 1];
    const ssize_t length = readlinkat(mFd, link.c_str(), target, sizeof(target));
    if (length <= 0) return "";
    const std::string name(target, static_cast<size_t>(length));
    return PidOf(name) > 0 ? name : "";
}

int ServiceDirectory::Connect(const std::string& socketName) const {
    sockaddr_un address;
    if (!FillAddress(mFd, socketName, &address)) return -1;
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0) {
        ALOGE("cannot create a socket: %s", strerror(errno));
        return -1;
    }
    // Non-blocking: a process that does not accept connections counts as not running.
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        close(fd);
        return -1;
    }
    fcntl(fd, F_SETFL, 0);
    return fd;
}

int ServiceDirectory::Listen(const std::string& socketName) const {
    sockaddr_un address;
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool listening = fd >= 0 && FillAddress(mFd, socketName, &address) &&
                           bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
                           listen(fd, SOMAXCONN) == 0;
    if (listening) return fd;
    ALOGE("cannot listen on %s/%s: %s", mPath.c_str(), socketName.c_str(), strerror(errno));
    if (fd >= 0) close(fd);
    return -1;
}

bool ServiceDirectory::Link(const std::string& link, const std::string& socketName) const {
    const std::string fresh = "new." + socketName;
    unlinkat(mFd, fresh.c_str(), 0);
    if (symlinkat(socketName.c_str(), mFd, fresh.c_str()) == 0) {
        if (renameat(mFd, fresh.c_str(), mFd, link.c_str()) == 0) return true;
        const int error = errno;
        unlinkat(mFd, fresh.c_str(), 0);
        errno = error;
    }
    ALOGE("cannot create link %s/%s: %s", mPath.c_str(), link.c_str(), strerror(errno));
    return false;
}

template <typename Visit>
void ServiceDirectory::ForEachEntry(Visit&& visit) const {
    const int fd = openat(mFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const entries = fd < 0 ? nullptr : fdopendir(fd);
    if (entries == nullptr) {
        if (fd >= 0) close(fd);
        return;
    }
    while (const dirent* entry = readdir(entries)) visit(std::string(entry->d_name));
    closedir(entries);
}

void ServiceDirectory::Remove(const std::string& socketName) const {
    std::vector<std::string> found = {socketName};
    ForEachEntry([&](const std::string& name) {
        if (SocketOf(name) == socketName) found.push_back(name);
    });
    for (const std::string& name : found) unlinkat(mFd, name.c_str(), 0);
}

// The process may be in another pid namespace, so it is gone only if nothing listens on its socket either.
bool ServiceDirectory::IsAbandoned(const std::string& socketName) const {
    const pid_t pid = PidOf(socketName);
    if (pid <= 0 || kill(pid, 0) == 0 || errno != ESRCH) return false;
    const int fd = Connect(socketName);
    if (fd >= 0) close(fd);
    return fd < 0;
}

void ServiceDirectory::Sweep() const {
    std::vector<std::string> found;
    ForEachEntry([&](const std::string& name) {
        const std::string socketName = PidOf(name) > 0 ? name : SocketOf(name);
        if (!socketName.empty() && IsAbandoned(socketName)) found.push_back(name);
    });
    for (const std::string& name : found) unlinkat(mFd, name.c_str(), 0);
}

DirectoryLock::DirectoryLock(const ServiceDirectory& directory)
    : mFd(open(directory.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    // A failure is ignored: at worst, a link has to be created again.
    while (mFd >= 0 && flock(mFd, LOCK_EX) != 0 && errno == EINTR) {
    }
}

DirectoryLock::~DirectoryLock() {
    if (mFd >= 0) close(mFd);
}

}  // namespace android::hardware::host
