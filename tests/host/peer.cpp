// The other process of the tests: serves a workshop, or is a client that dies. Prints "ready" when it is ready, and
// ends with its standard input.
#include <hidl/HidlTransportSupport.h>
#include <hidl/LegacySupport.h>
#include <signal.h>
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

bool ReadLine() {
    char buffer[64];
    return read(STDIN_FILENO, buffer, sizeof(buffer)) > 0;
}

int ServeUntilEndOfInput(const std::string& instance) {
    const sp<Workshop> workshop = new Workshop;
    if (workshop->registerAsService(instance) != ::android::OK) return 1;
    Say("ready");
    while (ReadLine()) {
    }
    return 0;
}

// THREADS: number of the pool's own threads (default: 1).
int Serve(const std::string& instance, const char* threads) {
    if (threads != nullptr) ::android::hardware::configureRpcThreadpool(std::strtoul(threads, nullptr, 10), false);
    return ServeUntilEndOfInput(instance);
}

class ReportingWorkshop : public Workshop {
  public:
    Return<void> interfaceChain(interfaceChain_cb callback) override {
        if (mReports) Say("asked for its interfaces");
        return Workshop::interfaceChain(callback);
    }
    std::atomic<bool> mReports{false};  // registering queries as well
};

// One thread, which joins the pool when a line arrives.
int ServeByJoining(const std::string& instance) {
    ::android::hardware::configureRpcThreadpool(1, true);
    const sp<ReportingWorkshop> workshop = new ReportingWorkshop;
    if (workshop->registerAsService(instance) != ::android::OK) return 1;
    workshop->mReports = true;
    Say("ready");
    if (!ReadLine()) return 0;
    Say("joining");
    ::android::hardware::joinRpcThreadpool();
}

class Listener : public IListener {
  public:
    explicit Listener(bool dies) : mDies(dies) {}
    Return<void> onEvent(uint32_t) override { return Void(); }
    Return<void> onItem(const Item&) override { return Void(); }
    Return<void> answer(const hidl_string& question, answer_cb callback) override {
        if (mDies) kill(getpid(), SIGKILL);
        callback("peer's answer to " + std::string(question));
        return Void();
    }

  private:
    const bool mDies;
};

// Registers a listener with the service. With "dies", the listener kills this process when it is called.
int Listen(const std::string& instance, bool dies) {
    const sp<IWorkshop> service = IWorkshop::getService(instance);
    const sp<Listener> listener = new Listener(dies);
    if (!service->setListener(listener).withDefault(false)) return 1;
    Say("ready");
    while (ReadLine()) {
    }
    return 0;
}

// Sends one-way calls without end.
int Flood(const std::string& instance) {
    const sp<IWorkshop> service = IWorkshop::getService(instance);
    Say("ready");
    for (uint32_t i = 0;; ++i) service->post(i).isOk();
}

// Waits for a service and prints what it finds.
int Find(const std::string& instance) {
    Say("ready");
    bool said = false;
    while (IWorkshop::tryGetService(instance) == nullptr) {
        if (!said) Say("not there");
        said = true;
    }
    Say("found");
    return 0;
}

// Makes a call that the service holds.
int Hold(const std::string& instance) {
    const sp<IWorkshop> service = IWorkshop::getService(instance);
    Say("ready");
    return service->hold().isOk() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string role = argc > 1 ? argv[1] : "";
    const std::string instance = argc > 2 ? argv[2] : "default";
    if (role == "serve") return Serve(instance, argc > 3 ? argv[3] : nullptr);
    if (role == "serve-by-joining") return ServeByJoining(instance);
    if (role == "serve-passthrough") {
        return ::android::hardware::defaultPassthroughServiceImplementation<IWorkshop>(instance, 2);
    }
    if (role == "listen") return Listen(instance, argc > 3 && std::strcmp(argv[3], "dies") == 0);
    if (role == "flood") return Flood(instance);
    if (role == "find") return Find(instance);
    if (role == "hold") return Hold(instance);
    std::fprintf(stderr, "usage: %s ROLE [INSTANCE [ARGUMENT]]\n", argv[0]);
    return 2;
}
