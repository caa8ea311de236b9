#include "ipc/socket/tolm_ipc_internal_socket.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>

#include "ipc/tolm_log.h"

namespace tolm {

namespace {

constexpr size_t kChunk = 1024;

struct Free {
    void operator()(void* block) const { free(block); }
};

// Continues after a signal, which must not lose the position in the stream.
ssize_t Receive(int fd, void* to, size_t size) {
    ssize_t n;
    do {
        n = recvfrom(fd, to, size, MSG_WAITALL, nullptr, nullptr);
    } while (n < 0 && errno == EINTR);
    return n;
}

void PeerClosed(bool& alive) {
    alive = false;
    TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "peer closed!");
}

// A vector that cannot grow ends the process, so malloc is tried first; volatile, because compilers remove an unused
// allocation. One thread at a time: otherwise two could count on the same memory.
std::mutex gMemoryMutex;

bool AvailableLocked(size_t size) {
    void* volatile probe = malloc(size);
    const bool available = probe != nullptr;
    free(probe);
    return available;
}

bool Reserve(std::vector<unsigned char>& payload, size_t capacity) {
    if (payload.capacity() >= capacity) return true;
    std::lock_guard<std::mutex> lock(gMemoryMutex);
    if (!AvailableLocked(capacity)) return false;
    payload.reserve(capacity);
    return true;
}

// The announced size is not trusted. A size that could not be stored is refused immediately. For a large one, only the
// first part is reserved, and the rest as its bytes arrive.
bool ReserveAhead(std::vector<unsigned char>& payload, size_t size) {
    constexpr size_t kAhead = 1u << 20;
    if (size > payload.max_size() - payload.size()) return false;
    if (size <= kAhead) return Reserve(payload, payload.size() + size);
    std::lock_guard<std::mutex> lock(gMemoryMutex);
    if (!AvailableLocked(payload.size() + size)) return false;
    payload.reserve(payload.size() + kAhead);
    return true;
}

bool Append(const unsigned char* bytes, size_t size, std::vector<unsigned char>& payload) {
    const size_t needed = payload.size() + size;
    if (needed > payload.capacity() && !Reserve(payload, std::max(needed, 2 * payload.capacity()))) return false;
    payload.insert(payload.end(), bytes, bytes + size);
    return true;
}

bool CannotStore(bool& alive) {
    alive = false;
    TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "malloc error");
    return false;
}

// `header` is set only once it is complete, so that the caller does not act on a part of it.
bool ReceiveHeader(int fd, TolmIpcSocketMsgHeader& header, bool& alive) {
    unsigned char bytes[sizeof(header)];
    size_t received = 0;
    while (received < sizeof(bytes)) {
        const ssize_t n = Receive(fd, bytes + received, sizeof(bytes) - received);
        if (n == 0) {
            PeerClosed(alive);
            return false;
        }
        if (n < 0) {
            // Log filters on the device look for this text with the full-width colon.
            TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "Recv Error：:%s", strerror(errno));
            return false;
        }
        received += static_cast<size_t>(n);
    }
    memcpy(&header, bytes, sizeof(header));
    return true;
}

}  // namespace

bool SendInternalSocket(int fd, int port, TolmIpcMessageType type, const std::vector<unsigned char>& payload,
                        bool& alive) {
    const TolmIpcSocketMsgHeader header{static_cast<uint32_t>(payload.size()), type, port};
    size_t remaining = sizeof(header) + payload.size();
    const std::unique_ptr<unsigned char, Free> message(static_cast<unsigned char*>(malloc(remaining)));
    if (message == nullptr) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "malloc error");
        return false;
    }
    memcpy(message.get(), &header, sizeof(header));
    if (!payload.empty()) memcpy(message.get() + sizeof(header), payload.data(), payload.size());

    const unsigned char* next = message.get();
    while (remaining > 0) {
        const ssize_t n = sendto(fd, next, std::min(remaining, kChunk), MSG_NOSIGNAL, nullptr, 0);
        if (n < 0) {
            if (errno == EINTR) continue;
            if (errno == EPIPE) {
                PeerClosed(alive);
            } else {
                TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Send Error: %s", strerror(errno));
            }
            return false;
        }
        next += n;
        remaining -= static_cast<size_t>(n);
    }
    return true;
}

bool RecvInternalSocket(int fd, TolmIpcSocketMsgHeader& header, std::vector<unsigned char>& payload, bool& alive) {
    if (!ReceiveHeader(fd, header, alive)) return false;
    if (header.size == 0) {
        PeerClosed(alive);
        return false;
    }
    if (!ReserveAhead(payload, header.size)) return CannotStore(alive);
    unsigned char chunk[kChunk] = {};
    size_t remaining = header.size;
    while (remaining > 0) {
        const ssize_t n = Receive(fd, chunk, std::min(remaining, kChunk));
        if (n == 0) {
            PeerClosed(alive);
            return false;
        }
        if (n < 0) {
            TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Recv Error: %s", strerror(errno));
            return false;
        }
        if (!Append(chunk, static_cast<size_t>(n), payload)) return CannotStore(alive);
        remaining -= static_cast<size_t>(n);
    }
    return true;
}

sockaddr_un SocketAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    return address;
}

void CloseSocket(int fd) {
    if (fd >= 0) close(fd);
}

}  // namespace tolm
