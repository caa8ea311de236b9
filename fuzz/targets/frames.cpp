// Any bytes on a connection: the library's reader of messages, that of the simulator and the tools, and what one says
// about the other. A message that is sent arrives as it was.
#include <sys/socket.h>
#include <unistd.h>

#include "common/frame.h"
#include "input.h"
#include "ipc/socket/tolm_ipc_internal_socket.h"

namespace hbbtv::fuzz {

namespace {

// What a socket takes without a reader.
constexpr size_t kMostBytes = 64u << 10;

struct Pair {
    Pair() { FUZZ_CHECK(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0); }
    ~Pair() {
        for (const int end : ends) close(end);
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    int ends[2];
};

struct Message {
    tolm::TolmIpcSocketMsgHeader header{};
    std::vector<unsigned char> payload;
    bool complete = false;
    bool alive = true;
};

Message Receive(int fd) {
    Message message;
    message.complete = tolm::RecvInternalSocket(fd, message.header, message.payload, message.alive);
    return message;
}

std::vector<Message> MessagesIn(const uint8_t* data, size_t size) {
    const Pair pair;
    FUZZ_CHECK(send(pair.ends[0], data, size, MSG_DONTWAIT) == static_cast<ssize_t>(size));
    shutdown(pair.ends[0], SHUT_WR);
    std::vector<Message> messages;
    do {
        messages.push_back(Receive(pair.ends[1]));
    } while (messages.back().alive);
    FUZZ_CHECK(!messages.back().complete);
    messages.pop_back();
    return messages;
}

// The other reader gets the bytes in pieces. It refuses what the library reads and drops, and takes an empty payload.
void Compare(const std::vector<Message>& messages, const uint8_t* data, size_t size) {
    FrameReader reader;
    size_t next = 0;
    for (size_t at = 0; at < size && !reader.Oversized();) {
        const size_t count = std::min(size - at, size_t{1} + data[at] % 31);
        reader.Take(reinterpret_cast<const char*>(data) + at, count);
        at += count;
        while (const auto frame = reader.Next()) {
            if (frame->payload.empty()) return;
            FUZZ_CHECK(next < messages.size());
            const Message& message = messages[next++];
            FUZZ_CHECK(message.complete && message.header.type == frame->type && message.header.port == frame->port);
            FUZZ_CHECK(std::string(message.payload.begin(), message.payload.end()) == frame->payload);
        }
    }
    FUZZ_CHECK(next == messages.size());
}

void SendAndReceive(const Message& message) {
    const Pair pair;
    bool alive = true;
    FUZZ_CHECK(
        tolm::SendInternalSocket(pair.ends[0], message.header.port, message.header.type, message.payload, alive));
    FUZZ_CHECK(alive);
    const Message received = Receive(pair.ends[1]);
    FUZZ_CHECK(received.complete && received.alive && received.payload == message.payload);
    FUZZ_CHECK(received.header.type == message.header.type && received.header.port == message.header.port);
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    if (size > kMostBytes) return -1;
    const std::vector<Message> messages = MessagesIn(data, size);
    Compare(messages, data, size);
    if (!messages.empty()) SendAndReceive(messages.front());
    return 0;
}
