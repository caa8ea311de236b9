#include <fcntl.h>
#include <hwbinder/Descriptors.h>
#include <unistd.h>

namespace android::hardware::host {

Descriptors& Descriptors::operator=(Descriptors&& other) noexcept {
    if (this == &other) return *this;
    Close();
    mFds.swap(other.mFds);
    return *this;
}

bool Descriptors::AddCopyOf(int fd) {
    const int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    if (copy >= 0) Add(copy);
    return copy >= 0;
}

Descriptors Descriptors::TakeFirst(size_t count) {
    Descriptors first;
    const auto end = mFds.begin() + static_cast<std::ptrdiff_t>(count);
    first.mFds.assign(mFds.begin(), end);
    mFds.erase(mFds.begin(), end);
    return first;
}

void Descriptors::Close() {
    for (const int fd : mFds) close(fd);
    mFds.clear();
}

}  // namespace android::hardware::host
