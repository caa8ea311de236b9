// The other process of the tests: serves a workshop, or is a client that does what the test cannot do itself because it
// is to die of it. Says "ready" when it is, and ends with its standard input.
#include <hidl/HidlTransportSupport.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "workshop.h"

using namespace hbbtv::test;

namespace {

void Say(const char* text) {
    std::printf("%s\n", text);
    std::fflush(stdout);
}

void WaitForEndOfInput() {
    char buffer[64];
    while (read(STDIN_FILENO, buffer, sizeof(buffer)) > 0) {
    }
}

// serve INSTANCE [THREADS]
int Serve(const std::string& instance, const char* threads) {
    if (threads != nullptr) ::android::hardware::configureRpcThreadpool(std::strtoul(threads, nullptr, 10), false);
    const sp<Workshop> workshop = new Workshop;
    if (workshop->registerAsService(instance) != ::android::OK) return 1;
    Say("ready");
    WaitForEndOfInput();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc >= 3 && std::strcmp(argv[1], "serve") == 0) return Serve(argv[2], argc > 3 ? argv[3] : nullptr);
    std::fprintf(stderr, "usage: %s serve INSTANCE [THREADS]\n", argv[0]);
    return 2;
}
