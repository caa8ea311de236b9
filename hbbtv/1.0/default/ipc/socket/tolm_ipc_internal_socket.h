// The framing of the IPC wire: a 12-byte header, then the payload. Clients and servers read and write sockets only
// through these functions.
#pragma once

#include <sys/un.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ipc/socket/tolm_ipc_deadline.h"
#include "ipc/tolm_ipc_types.h"

namespace tolm {

// Sent as it is in memory: host byte order, no padding. Both ends are on the same machine.
struct TolmIpcSocketMsgHeader {
    uint32_t size;  // number of payload bytes after the header
    TolmIpcMessageType type;
    int32_t port;  // the sender's port; a reply carries that of its request
};
static_assert(sizeof(TolmIpcSocketMsgHeader) == 12, "the header is 12 bytes on the wire");

// Writes one message. Returns whether it was written completely. Sets `alive` to false if the peer has closed the
// connection. Not thread-safe for one socket. When the deadline passes, a part of the message may have been written.
bool SendInternalSocket(int fd, int port, TolmIpcMessageType type, const std::vector<unsigned char>& payload,
                        bool& alive, const Deadline& deadline = {});

// Reads one message and appends its payload to `payload`. Returns whether it was complete. A payload of more than
// kMaxPayloadBytes is read but not stored. Sets `alive` to false if the peer has closed the connection, if there is not
// enough memory for the payload, or if the message is empty, which is how a peer sends no reply. When the deadline
// passes, a part of the message may have been read.
bool RecvInternalSocket(int fd, TolmIpcSocketMsgHeader& header, std::vector<unsigned char>& payload, bool& alive,
                        const Deadline& deadline = {});

// Returns the address of a socket file, truncated to the 107 characters that fit into an address.
sockaddr_un SocketAddress(const std::string& path);

// Closes a descriptor unless it is negative.
void CloseSocket(int fd);

}  // namespace tolm
