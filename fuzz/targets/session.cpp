// A hostile client: any bytes on its connection to the service. Behind a line "events FAMILY", it gets the family's
// events, and answers each call by the next frame of the rest.
#include <hidl/HidlBinderSupport.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <optional>
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

namespace hbbtv::fuzz {

namespace {

using namespace android::hardware;
using host::Session;

const std::string kEvents = "\nevents ";

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

class Signal : public host::Task {
  public:
    explicit Signal(std::atomic<bool>& done) : mDone(done) {}
    void Run() override { mDone = true; }

  private:
    std::atomic<bool>& mDone;
};

// Waits until the session has read everything and its calls have been served.
void WaitUntilServed(int fd, const std::shared_ptr<Session>& session) {
    for (int unread = 1; unread > 0 && !session->IsDead(); sched_yield()) {
        if (ioctl(fd, SIOCOUTQ, &unread) != 0) return;
    }
    // The pool has one thread.
    std::atomic<bool> done{false};
    host::ThreadPool::Get().Post(std::make_unique<Signal>(done));
    while (!done) sched_yield();
}

void SendEvents(const std::string& familyName) {
    for (const WireFamily& family : WireFamilies()) {
        if (family.name != familyName) continue;
        for (const Json::Value& event : family.protocol["events"]) {
            const Endpoint endpoint = EventsOf(family);
            const std::string text = UsualEvent(family, event).toStyledString();
            PlayedPlatform::Get().Send(endpoint.key, endpoint.port, text);
            PlayedPlatform::Get().SendAndWait(endpoint.key, endpoint.port, text);
        }
    }
}

// Reads one frame. Returns whether it is a call, or nothing if the session has ended.
std::optional<bool> NextIsCall(int fd) {
    host::FrameHead head{};
    if (recv(fd, &head, sizeof(head), MSG_WAITALL) != static_cast<ssize_t>(sizeof(head))) return std::nullopt;
    std::string body(head.bodySize, '\0');
    if (recv(fd, body.data(), body.size(), MSG_WAITALL) != static_cast<ssize_t>(body.size())) return std::nullopt;
    return head.type == static_cast<uint32_t>(host::FrameType::kCall);
}

// Returns false if nothing comes: the services are done, or wait for an answer that the client has not given.
bool HasInput(int fd) {
    constexpr int kPatience = 100;  // milliseconds
    pollfd descriptor{fd, POLLIN, 0};
    return poll(&descriptor, 1, kPatience) > 0;
}

// The first frame of the bytes, as its head describes it.
std::string TakeFrame(std::string& bytes) {
    host::FrameHead head{};
    if (bytes.size() >= sizeof(head)) memcpy(&head, bytes.data(), sizeof(head));
    const size_t size = std::min(bytes.size(), sizeof(head) + head.bodySize);
    const std::string frame = bytes.substr(0, size);
    bytes.erase(0, size);
    return frame;
}

void AnswerEvents(int fd, const std::string& family, std::string answers) {
    std::thread events([&] {
        SendEvents(family);
        shutdown(fd, SHUT_RD);
    });
    while (!answers.empty() && HasInput(fd)) {
        const auto isCall = NextIsCall(fd);
        if (!isCall) break;
        if (*isCall) SendAll(fd, TakeFrame(answers));
    }
    SendAll(fd, answers);
    shutdown(fd, SHUT_WR);
    events.join();
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
    if (split != std::string::npos) {
        WaitUntilServed(ends[0], session);
        const std::string rest = bytes.substr(split + kEvents.size());
        const size_t end = std::min(rest.find('\n'), rest.size());
        AnswerEvents(ends[0], rest.substr(0, end), rest.substr(std::min(rest.size(), end + 1)));
    }
    shutdown(ends[0], SHUT_WR);
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
    android::hardware::host::ThreadPool::Get().Configure(1, false);
    android::hardware::host::ThreadPool::Get().Start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    hbbtv::fuzz::Converse(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
