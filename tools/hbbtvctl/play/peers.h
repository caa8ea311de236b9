// The peers of a play: the service's interfaces, the sockets of the wire, and the simulated platform's control socket.
// Ctrl-C ends every wait with Interrupted.
#pragma once

#include <json/value.h>

#include <map>
#include <memory>
#include <string>

#include "package/caller.h"
#include "play/arrivals.h"
#include "wire/connection.h"

namespace hbbtv::ctl {

class Peers {
  public:
    struct Settings {
        std::string directory;
        Milliseconds timeout;
        bool takeOver;  // see CheckOtherClients()
    };

    Peers(Settings settings, Arrivals& arrivals);

    // To be called before a method that is called with @listen. Throws Failure if another process is registered.
    void CheckOtherClients(const Package::QualifiedMethod& method);

    // Calls a method of the service. Throws Failure.
    Json::Value Call(const Package::QualifiedMethod& method, const Json::Value& arguments);

    // Returns whether the interface is registered.
    bool Has(const Interface& interface) const;

    // Writes a message to the socket and returns its reply; null for one without a reply.
    Json::Value Exchange(const std::string& socket, int port, const Json::Value& message, bool withReply);

    // Sends the line to the simulated platform and returns its answer.
    std::string Tell(const std::string& line) const;

    const std::string& Directory() const { return mSettings.directory; }

  private:
    ServiceCaller& ServiceOf(const Interface& interface);

    const Settings mSettings;
    Arrivals& mArrivals;
    const android::sp<android::hardware::hidl_death_recipient> mDeath;  // of any service that was called
    std::map<std::string, std::unique_ptr<ServiceCaller>> mServices;
    std::map<std::string, std::shared_ptr<WireConnection>> mConnections;
};

}  // namespace hbbtv::ctl
