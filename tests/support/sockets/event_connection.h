// The platform's connection to a socket for events that the library serves.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "raw_socket.h"

namespace hbbtv::test {

class EventConnection {
  public:
    // Connects to the socket file; see RawConnection::To().
    EventConnection(const std::string& path, int port) : mConnection(RawConnection::To(path)), mPort(port) {}

    // Sends one-way events and waits until they have been handled: messages of a connection are handled in order, and
    // the message after them, `last`, is answered. Returns whether all of that succeeded.
    bool Send(const std::vector<std::string>& events, const std::string& last = "{}") {
        for (const std::string& event : events) {
            if (!mConnection.Write(FrameBytes(kOneWay, mPort, event))) return false;
        }
        return Ask(last).has_value();
    }

    // Sends an event as a request and returns the reply.
    std::optional<Frame> Ask(const std::string& event) {
        if (!mConnection.Write(FrameBytes(kRequest, mPort, event))) return std::nullopt;
        return mConnection.ReadFrame();
    }

    // Returns the payload of the reply, whose head is checked; "no reply" if there is none.
    std::string Reply(const std::string& event) {
        const std::optional<Frame> reply = Ask(event);
        if (!reply) return "no reply";
        EXPECT_EQ(reply->type, kReply);
        EXPECT_EQ(reply->port, mPort);
        return reply->payload;
    }

  private:
    RawConnection mConnection;
    const int mPort;
};

}  // namespace hbbtv::test
