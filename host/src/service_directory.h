// The directory on disk that leads from the name of a service to the socket of its process. A socket is called
// "s<pid>.<time>"; a name is a symbolic link to it, replaced atomically. What a killed process leaves behind is
// harmless (nobody listens) and swept by the next process that registers something.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <utility>

namespace android {
namespace hardware {
namespace host {

class ServiceDirectory {
  public:
    // HIDL_HOST_DIR, else hidl-host in TMPDIR or /tmp. Null when it is not there (and not to be made), or, with a log
    // line, when it belongs to another user.
    static std::shared_ptr<ServiceDirectory> Open(bool create);

    ServiceDirectory(const std::string& path, int fd, std::pair<dev_t, ino_t> identity)
        : mPath(path), mFd(fd), mIdentity(identity) {}
    ~ServiceDirectory();
    ServiceDirectory(const ServiceDirectory&) = delete;
    ServiceDirectory& operator=(const ServiceDirectory&) = delete;

    const std::string& Path() const { return mPath; }

    // Tells directories apart, also one that was removed and made again.
    const std::pair<dev_t, ino_t>& Identity() const { return mIdentity; }

    // The name of the link for a service. Characters that a file name cannot have are written as %XX.
    static std::string LinkName(const std::string& descriptor, const std::string& instance);

    // Where a link leads, empty when it is not there.
    std::string SocketOf(const std::string& link) const;

    // A connected socket, or -1 when nobody listens.
    int Connect(const std::string& socketName) const;

    // A listening socket, or -1 with a log line.
    int Listen(const std::string& socketName) const;

    // Makes or replaces a link; false with a log line when it cannot.
    bool Link(const std::string& link, const std::string& socketName) const;

    // Removes the socket and every link that leads to it.
    void Remove(const std::string& socketName) const;

    // Removes the sockets and links of processes that are gone.
    void Sweep() const;

  private:
    template <typename Visit>
    void ForEachEntry(Visit&& visit) const;
    bool IsAbandoned(const std::string& socketName) const;

    const std::string mPath;
    const int mFd;
    const std::pair<dev_t, ino_t> mIdentity;
};

// Held while entries are made or removed, against other processes that do the same. Finding a service takes no lock.
class DirectoryLock {
  public:
    explicit DirectoryLock(const ServiceDirectory& directory);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

  private:
    int mFd;
};

}  // namespace host
}  // namespace hardware
}  // namespace android
