#include "connection/socket_reader.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace android::hardware::host {

bool SocketReader::Read(void* destination, size_t size) {
    uint8_t* out = static_cast<uint8_t*>(destination);
    while (size > 0) {
        if (mStart < mEnd) {
            const size_t taken = std::min(size, mEnd - mStart);
            memcpy(out, &mBuffer[mStart], taken);
            mStart += taken;
            out += taken;
            size -= taken;
            continue;
        }
        const bool direct = size >= kBufferSize;
        const ssize_t n = recv(mFd, direct ? out : mBuffer.get(), direct ? size : kBufferSize, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        if (direct) {
            out += n;
            size -= static_cast<size_t>(n);
        } else {
            mStart = 0;
            mEnd = static_cast<size_t>(n);
        }
    }
    return true;
}

}  // namespace android::hardware::host
