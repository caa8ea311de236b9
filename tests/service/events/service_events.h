// Shared by the tests of services' events: the service and its client in this process, and a platform at the other end
// of real sockets.
#pragma once

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "event_connection.h"
#include "log_capture.h"
#include "method_rows.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

// The type of a client for its death recipient.
using IBase = android::hidl::base::V1_0::IBase;

// The log lines of all services that watch their clients.
inline constexpr char kStarted[] = "ClientDeathRecipient::StartMonitor";
inline constexpr char kStopped[] = "ClientDeathRecipient::StopMonitor";
inline constexpr char kDied[] = "ClientDeathRecipient::serviceDied - client died";
inline constexpr char kNoCallback[] = "cb is null";

template <typename TheService, typename TheClient>
class ServiceEvents : public testing::Test {
  protected:
    using Service = TheService;
    using Client = TheClient;

    // `tag` is the tag of the service's lines about its clients.
    explicit ServiceEvents(const char* tag) : mTag(tag) {}

    // Sends a one-way event and waits until it has been handled.
    void Send(const std::string& json) { ASSERT_TRUE(Events().Send({json})); }

    // Sends an event that requires a reply, and returns the reply.
    std::string Ask(const std::string& json) {
        const auto reply = Events().Ask(json);
        return reply ? reply->payload : "no reply";
    }

    // Returns the requests since the platform's last ForgetFrames(), in order of arrival.
    std::vector<std::string> Requests() const {
        std::vector<std::string> requests;
        for (const Frame& frame : mPlatform.Frames()) requests.push_back(frame.payload);
        return requests;
    }

    int Logged(int priority, const char* message) const { return mLog.Count(priority, mTag, message); }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{UnderTest().Socket(), R"({"ret": 0})"};
    android::sp<Service> mService = new Service;
    const android::sp<Client> mClient = new Client;

  private:
    // Created for the first event: before its first use, the adaptor does not serve a socket.
    EventConnection& Events() {
        const Endpoint events = EventsOf(UnderTest().Wire());
        if (mEvents == nullptr) mEvents = std::make_unique<EventConnection>(mDirectory / events.socket, events.port);
        return *mEvents;
    }

    const char* const mTag;
    std::unique_ptr<EventConnection> mEvents;
};

}  // namespace hbbtv::test
