#include "ipc/socket/tolm_ipc_internal_socket.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "ipc/tolm_log.h"
#include "ipc/tolm_memory_claim.h"

namespace tolm {

namespace {

constexpr size_t kChunk = 1024;

struct Free {
    void operator()(void* block) const { free(block); }
};

// Continues after a signal, which must not lose the position in the stream.
ssize_t Receive(int fd, void* to, size_t size, const Deadline& deadline) {
    ssize_t n;
    do {
        if (!deadline.Limit(fd, SO_RCVTIMEO)) return -1;
        n = recvfrom(fd, to, size, MSG_WAITALL, nullptr, nullptr);
    } while (n < 0 && deadline.AllowsAnotherTry());
    return n;
}

ssize_t SendPart(int fd, const void* from, size_t size, const Deadline& deadline) {
    if (!deadline.Limit(fd, SO_SNDTIMEO)) return -1;
    return sendto(fd, from, size, MSG_NOSIGNAL, nullptr, 0);
}

void PeerClosed(bool& alive) {
    alive = false;
    TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "peer closed!");
}

// The announced size is not trusted. A size that could not be stored is refused immediately. For a large one, only the
// first part is reserved, and the rest as its bytes arrive.
bool ReserveAhead(std::vector<unsigned char>& payload, size_t size) {
    constexpr size_t kAhead = 1u << 20;
    const size_t total = payload.size() + size;
    const size_t ahead = payload.size() + std::min(size, kAhead);
    return payload.capacity() >= total || Reserve(payload, ahead, total);
}

// `total` is the final size of the payload.
bool Append(const unsigned char* bytes, size_t size, size_t total, std::vector<unsigned char>& payload) {
    if (payload.size() + size > payload.capacity()) {
        const size_t capacity = std::min(total, std::max(payload.size() + size, 2 * payload.capacity()));
        if (!Reserve(payload, capacity, capacity)) return false;
    }
    payload.insert(payload.end(), bytes, bytes + size);
    return true;
}

bool CannotStore(bool& alive) {
    alive = false;
    TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "malloc error");
    return false;
}

// `header` is set only once it is complete, so that the caller does not act on a part of it.
bool ReceiveHeader(int fd, TolmIpcSocketMsgHeader& header, bool& alive, const Deadline& deadline) {
    unsigned char bytes[sizeof(header)];
    size_t received = 0;
    while (received < sizeof(bytes)) {
        const ssize_t n = Receive(fd, bytes + received, sizeof(bytes) - received, deadline);
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
                        bool& alive, const Deadline& deadline) {
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
        const ssize_t n = SendPart(fd, next, std::min(remaining, kChunk), deadline);
        if (n < 0) {
            if (deadline.AllowsAnotherTry()) continue;
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

bool RecvInternalSocket(int fd, TolmIpcSocketMsgHeader& header, std::vector<unsigned char>& payload, bool& alive,
                        const Deadline& deadline) {
    if (!ReceiveHeader(fd, header, alive, deadline)) return false;
    if (header.size == 0) {
        PeerClosed(alive);
        return false;
    }
    const bool stored = header.size <= kMaxPayloadBytes;
    if (stored && !ReserveAhead(payload, header.size)) return CannotStore(alive);
    const size_t total = payload.size() + header.size;
    unsigned char chunk[kChunk] = {};
    size_t remaining = header.size;
    while (remaining > 0) {
        const ssize_t n = Receive(fd, chunk, std::min(remaining, kChunk), deadline);
        if (n == 0) {
            PeerClosed(alive);
            return false;
        }
        if (n < 0) {
            TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Recv Error: %s", strerror(errno));
            return false;
        }
        if (stored && !Append(chunk, static_cast<size_t>(n), total, payload)) return CannotStore(alive);
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
