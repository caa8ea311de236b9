#include "service_claim.h"

#ifdef __ANDROID__

bool ClaimDirectories() {
    return true;
}

#else

#include <android/log.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "service_report.h"

namespace {

constexpr char kLockFile[] = "/hbbtv-service.lock";

std::string FromEnvironment(const char* name, const std::string& otherwise) {
    const char* const value = getenv(name);
    return value != nullptr && *value != '\0' ? value : otherwise;
}

// Locks the file of the directory. The kernel releases the lock when the process ends, so a file without a service has
// no effect, and it knows the holder. A directory that cannot be used is reported by those who use it.
bool Claim(const std::string& directory, const char* variable) {
    const std::string path = directory + kLockFile;
    int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644);
    // The file of another user can only be read.
    if (fd < 0) fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0) return true;
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    // Never closed: that would release the lock.
    if (fcntl(fd, F_SETLK, &lock) == 0 || fcntl(fd, F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) return true;
    Report(ANDROID_LOG_ERROR, "process %d serves the directory \"%s\" already; end it or set %s to another directory",
           static_cast<int>(lock.l_pid), directory.c_str(), variable);
    return false;
}

}  // namespace

bool ClaimDirectories() {
    const std::string sockets = FromEnvironment("TMPDIR", "/tmp");
    const std::string names = FromEnvironment("HIDL_HOST_DIR", sockets + "/hidl-host");
    mkdir(names.c_str(), 0700);  // as the HIDL runtime creates it
    return Claim(sockets, "TMPDIR") && Claim(names, "HIDL_HOST_DIR");
}

#endif
