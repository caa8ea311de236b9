// The directory on disk that maps the name of a service to the socket of its process. A socket is named
// "s<pid>.<time>"; a name is a symbolic link to it, which is replaced atomically. The files of a killed process are
// harmless, since nothing listens, and are removed by the next process that registers a service.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <utility>

namespace android::hardware::host {

class ServiceDirectory {
  public:
    // Opens HIDL_HOST_DIR (default: hidl-host in TMPDIR, or in /tmp). Returns null if it does not exist and `create` is
    // false, or, after logging the reason, if it cannot be used.
    static std::shared_ptr<ServiceDirectory> Open(bool create);

    ServiceDirectory(const std::string& path, int fd, std::pair<dev_t, ino_t> identity)
        : mPath(path), mFd(fd), mIdentity(identity) {}
    ~ServiceDirectory();
    ServiceDirectory(const ServiceDirectory&) = delete;
    ServiceDirectory& operator=(const ServiceDirectory&) = delete;

    const std::string& Path() const { return mPath; }

    // Identifies the directory. A directory that was removed and created again has another identity.
    const std::pair<dev_t, ino_t>& Identity() const { return mIdentity; }

    // Returns the name of a service's link. Characters that are not allowed in file names are written as %XX.
    static std::string LinkName(const std::string& descriptor, const std::string& instance);

    // Returns the name of the socket that a link points to, or an empty string.
    std::string SocketOf(const std::string& link) const;

    // Returns a connected socket, or -1 if no process listens.
    int Connect(const std::string& socketName) const;

    // Returns a listening socket. On failure, logs the reason and returns -1.
    int Listen(const std::string& socketName) const;

    // Creates or replaces a link. On failure, logs the reason and returns false.
    bool Link(const std::string& link, const std::string& socketName) const;

    // Removes the socket and all links to it.
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

// A lock against other processes, held while files are created or removed. Finding a service does not need it.
class DirectoryLock {
  public:
    explicit DirectoryLock(const ServiceDirectory& directory);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

  private:
    int mFd;
};

}  // namespace android::hardware::host
