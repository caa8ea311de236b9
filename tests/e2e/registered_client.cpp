// A client process for the tests: registers a callback, says "registered", writes a line for each event and lives until
// it is killed or told "unregister" on standard input.

#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <cstdio>
#include <iostream>
#include <string>

#include "recording_callback.h"

namespace {

using android::sp;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int64_t kVb = 0x1000;
constexpr int64_t kContext = 0xabc;

class PrintingCallback : public hbbtv::test::RecordingCallback {
  public:
    Return<void> onPlayPositionChanged(int32_t position) override {
        printf("position %d\n", position);
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

}  // namespace

int main() {
    const sp<IVideoBroadcast> service = IVideoBroadcast::getService();
    const auto status = service->RegisterCallback(kVb, new PrintingCallback, kContext);
    if (!status.isOk() || static_cast<int32_t>(status) != 0) {
        printf("not registered\n");
        return 1;
    }
    printf("registered\n");
    fflush(stdout);
    std::string command;
    while (std::getline(std::cin, command)) {
        if (command != "unregister") continue;
        printf(service->UnregisterCallback(kVb).isOk() ? "unregistered\n" : "not unregistered\n");
        fflush(stdout);
    }
    return 0;
}
