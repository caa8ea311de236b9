// The framing of the IPC wire: a 12-byte header, then the payload. Clients and servers touch a socket's data only
// through these functions.
#pragma once

#include <sys/un.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ipc/tolm_ipc_types.h"

namespace tolm {

// On the wire as it is in memory: host byte order, no padding. Both ends are on the same machine.
struct TolmIpcSocketMsgHeader {
    uint32_t size;  // number of payload bytes behind the header
    TolmIpcMessageType type;
    int32_t port;  // the sender's port; a reply carries that of its request
};
static_assert(sizeof(TolmIpcSocketMsgHeader) == 12, "the header is 12 bytes on the wire");

// Writes one message: whether all of it was written. `alive` becomes false when the peer has gone, and is not touched
// otherwise. Two threads must not write to one socket at the same time.
bool SendInternalSocket(int fd, int port, TolmIpcMessageType type, const std::vector<unsigned char>& payload,
                        bool& alive);

// Reads one message: whether a whole one came. The payload is appended to `payload`. `alive` becomes false when the
// peer has closed the connection, when the payload cannot be stored, and when the message is empty, which is how a peer
// says that it has no reply; it is not touched otherwise.
bool RecvInternalSocket(int fd, TolmIpcSocketMsgHeader& header, std::vector<unsigned char>& payload, bool& alive);

// The address of a socket file, cut at the 107 characters that an address holds.
sockaddr_un SocketAddress(const std::string& path);

// Closes a descriptor, if it is one.
void CloseSocket(int fd);

}  // namespace tolm
