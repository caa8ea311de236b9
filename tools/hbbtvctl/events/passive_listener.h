// Shows the platform's messages that the service receives, without registering with it.
#pragma once

#include <string>
#include <vector>

#include "common/duration.h"
#include "common/interruption.h"
#include "common/local_socket.h"
#include "package/caller.h"

namespace hbbtv::ctl {

class PassiveListener {
  public:
    struct Settings {
        bool json = false;
        std::vector<std::string> events;  // those that are shown and counted, as FindEvent() takes them; empty: all
        uint64_t count = 0;               // 0: no limit
    };

    // Starts with these interfaces; all if there are none. Throws Failure.
    PassiveListener(const ServiceCaller& service, const std::vector<std::string>& interfaces, Settings settings,
                    Milliseconds limit);

    // Prints messages until the count or the time is reached. Throws Interrupted on a signal, and Failure(kPeerLost) if
    // the service ends.
    void Run(std::optional<Milliseconds> limit);

  private:
    // Returns an empty string at the end of the connection.
    std::string Receive();

    // Returns whether the message was shown.
    bool Print(const Json::Value& shown) const;
    bool Wants(const WireFamily& family, const Json::Value* event) const;

    const Settings mSettings;
    int mEnds[2];
    const Descriptor mSocket;
};

}  // namespace hbbtv::ctl
