// A hostile client: any bytes on its connection to the service. Behind a line "events", the services send it events,
// and the rest of the bytes arrives while they wait for its answers.
#include <linux/sockios.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

#include "common/failure.h"
#include "connection/session.h"
#include "input.h"
#include "package_values.h"
#include "parcels.h"
#include "played_platform.h"
#include "services.h"
#include "usual_messages.h"
#include "wire/endpoint.h"

#include <hidl/HidlBinderSupport.h>

namespace hbbtv::fuzz {

namespace {

using namespace android::hardware;
using host::Session;

const std::string kEvents = "\nevents\n";

class AllServices : public host::ServiceSource {
  public:
    // Also takes a part of the name.
    android::sp<BHwBinder> FindStub(const std::string& name) override {
        for (const Service& service : Services()) {
            if (name.find(service.interface + "/") == std::string::npos) continue;
            return getOrCreateCachedBinder(service.object.get())->localBinder();
        }
        return nullptr;
    }
};

AllServices gServices;

void SendAll(int fd, const std::string& bytes) {
    for (size_t at = 0; at < bytes.size();) {
        const ssize_t sent = send(fd, bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
        if (sent < 0) return;  // the session has closed the connection
        at += static_cast<size_t>(sent);
    }
}

void WaitUntilRead(int fd, const std::shared_ptr<Session>& session) {
    for (int unread = 1; unread > 0 && !session->IsDead(); sched_yield()) {
        if (ioctl(fd, SIOCOUTQ, &unread) != 0) return;
    }
}

void SendEvents() {
    static const auto events = [] {
        std::vector<std::pair<Endpoint, std::string>> all;
        for (const WireFamily& family : WireFamilies()) {
            for (const Json::Value& event : family.protocol["events"]) {
                all.emplace_back(EventsOf(family), UsualEvent(family, event).toStyledString());
            }
        }
        return all;
    }();
    for (const auto& [endpoint, event] : events) {
        PlayedPlatform::Get().Send(endpoint.key, endpoint.port, event);
        PlayedPlatform::Get().SendAndWait(endpoint.key, endpoint.port, event);
    }
}

// Returns when nothing refers to the session any more: it is dead, all its calls have ended, and the services have
// dropped its objects.
void Converse(const std::string& bytes) {
    int ends[2];
    FUZZ_CHECK(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0);
    std::shared_ptr<Session> session = Session::Start(ends[1], &gServices);
    FUZZ_CHECK(session != nullptr);
    const size_t split = bytes.find(kEvents);
    SendAll(ends[0], bytes.substr(0, split));
    std::thread events;
    if (split != std::string::npos) {
        WaitUntilRead(ends[0], session);
        events = std::thread(SendEvents);
        SendAll(ends[0], bytes.substr(split + kEvents.size()));
    }
    shutdown(ends[0], SHUT_WR);
    if (events.joinable()) events.join();
    const std::weak_ptr<Session> left = session;
    session.reset();
    while (!left.expired()) sched_yield();
    close(ends[0]);
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    hbbtv::fuzz::ScratchDirectory();
    hbbtv::fuzz::Services();
    android::hardware::host::ThreadPool::Get().Configure(2, false);
    android::hardware::host::ThreadPool::Get().Start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    hbbtv::fuzz::Converse(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
