#include "connection/poller.h"

#include <sys/epoll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

#include "log/host_log.h"

namespace android::hardware::host {

namespace {

// A reader per processor can serve a call, while another one waits for data.
const int kMostReaders = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 3) + 1;

epoll_event EventOf(uint32_t events, uint64_t number) {
    epoll_event event = {};
    event.events = events;
    event.data.u64 = number;
    return event;
}

}  // namespace

Poller& Poller::Get() {
    static Poller* const poller = new Poller;
    return *poller;
}

Poller::Poller() : mSet(epoll_create1(EPOLL_CLOEXEC)) {
    LOG_ALWAYS_FATAL_IF(mSet < 0, "epoll_create1: %s", strerror(errno));
}

uint64_t Poller::Add(int fd, const std::shared_ptr<Pollable>& connection) {
    if (mReaders == 0 && !StartReader()) return 0;
    uint64_t number;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        number = ++mLastNumber;
        mConnections.emplace(number, connection);
    }
    epoll_event event = EventOf(EPOLLIN | EPOLLRDHUP | EPOLLONESHOT, number);
    if (epoll_ctl(mSet, EPOLL_CTL_ADD, fd, &event) == 0) return number;
    ALOGE("cannot wait for a connection: %s", strerror(errno));
    std::lock_guard<std::mutex> lock(mMutex);
    mConnections.erase(number);
    return 0;
}

void Poller::Remove(int fd, uint64_t number) {
    epoll_ctl(mSet, EPOLL_CTL_DEL, fd, nullptr);
    std::shared_ptr<Pollable> connection;  // released after the lock
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mConnections.find(number);
    if (found == mConnections.end()) return;
    connection = std::move(found->second);
    mConnections.erase(found);
}

void Poller::Arm(int fd, uint64_t number) {
    epoll_event event = EventOf(EPOLLIN | EPOLLRDHUP | EPOLLONESHOT, number);
    epoll_ctl(mSet, EPOLL_CTL_MOD, fd, &event);
}

void Poller::Disarm(int fd, uint64_t number) {
    epoll_event event = EventOf(EPOLLONESHOT, number);
    epoll_ctl(mSet, EPOLL_CTL_MOD, fd, &event);
}

std::shared_ptr<Pollable> Poller::Find(uint64_t number) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mConnections.find(number);
    return found == mConnections.end() ? nullptr : found->second;
}

bool Poller::StartReader() {
    ++mReaders;
    ++mWaiting;
    if (StartThread("hidl-reader", false, [this] { Run(); })) return true;
    --mReaders;
    --mWaiting;
    return false;
}

void Poller::Run() {
    for (;;) {
        epoll_event event;
        if (epoll_wait(mSet, &event, 1, -1) != 1) continue;
        const std::shared_ptr<Pollable> connection = Find(event.data.u64);
        if (connection == nullptr) continue;
        --mWaiting;
        std::unique_ptr<Task> call = connection->Readable();
        if (call != nullptr) RunOrPost(std::move(call));
        ++mWaiting;
    }
}

// A reader serves a call itself, which saves waking a thread of the pool, if another one waits for data and the pool
// may serve one call more.
void Poller::RunOrPost(std::unique_ptr<Task> call) {
    if (mWaiting == 0 && mReaders < kMostReaders) StartReader();
    if (mWaiting == 0 || !ThreadPool::Get().RunHere(call)) ThreadPool::Get().Post(std::move(call));
}

}  // namespace android::hardware::host
