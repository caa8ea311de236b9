#include "ipc/tolm_thread.h"

#include <memory>
#include <utility>

namespace tolm {

namespace {

void* RunBody(void* argument) {
    const std::unique_ptr<std::function<void()>> body(static_cast<std::function<void()>*>(argument));
    (*body)();
    return nullptr;
}

}  // namespace

TolmThread::TolmThread(TolmThread&& other) noexcept
    : mJoinable(std::exchange(other.mJoinable, false)), mThread(other.mThread) {}

TolmThread& TolmThread::operator=(TolmThread&& other) noexcept {
    Join();
    mJoinable = std::exchange(other.mJoinable, false);
    mThread = other.mThread;
    return *this;
}

TolmThread::~TolmThread() {
    Join();
}

bool TolmThread::Start(std::function<void()> body) {
    auto owned = std::make_unique<std::function<void()>>(std::move(body));
    if (pthread_create(&mThread, nullptr, RunBody, owned.get()) != 0) return false;
    owned.release();  // the thread owns it now
    mJoinable = true;
    return true;
}

void TolmThread::Detach() {
    if (mJoinable) pthread_detach(mThread);
    mJoinable = false;
}

void TolmThread::Join() {
    if (mJoinable) pthread_join(mThread, nullptr);
    mJoinable = false;
}

}  // namespace tolm
