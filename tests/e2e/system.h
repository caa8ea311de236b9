// The programs of the system as processes of a test: the service, the simulated platform, clients.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <string>
#include <vector>

#include "child_process.h"

namespace hbbtv::test {

// In the directory of the test's ScratchDirectory.
class ServiceProcess : public ChildProcess {
  public:
    // `variable` is "NAME=value".
    explicit ServiceProcess(const std::string& variable = "TOLM_REPLY_TIMEOUT_MS=0")
        : ChildProcess({HBBTV_SERVICE_PROGRAM},
                       {std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES, variable}) {}
};

class SimulatedPlatform : public ChildProcess {
  public:
    explicit SimulatedPlatform(const std::vector<std::string>& options = {}) : ChildProcess(Command(options)) {}

    bool Ready() { return WaitForOutput("ready"); }

  private:
    static std::vector<std::string> Command(const std::vector<std::string>& options) {
        std::vector<std::string> command{HBBTV_SIM_PROGRAM, "--tune-time", "20ms", "--ping-interval", "100ms"};
        command.insert(command.end(), options.begin(), options.end());
        return command;
    }
};

// A client that registers a callback and then waits until it is killed: see registered_client.cpp.
class RegisteredClient : public ChildProcess {
  public:
    explicit RegisteredClient(const std::string& family = "video_broadcast")
        : ChildProcess({HBBTV_REGISTERED_CLIENT_PROGRAM, family}) {}

    bool Registered() { return WaitForOutput("registered\n"); }
};

// Waits for the service to start and returns its interface; null after the timeout.
template <typename Interface>
android::sp<Interface> Find() {
    android::sp<Interface> service;
    WaitFor([&] {
        service = Interface::tryGetService();
        return service != nullptr && service->ping().isOk();
    });
    return service;
}

inline android::sp<vantorel::hardware::hbbtv::V1_0::IVideoBroadcast> FindVideoBroadcast() {
    return Find<vantorel::hardware::hbbtv::V1_0::IVideoBroadcast>();
}

}  // namespace hbbtv::test
