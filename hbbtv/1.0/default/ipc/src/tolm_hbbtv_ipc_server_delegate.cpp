#include "ipc/src/tolm_hbbtv_ipc_server_delegate.h"

#include <string>

#include "ipc/tolm_ipc_factory.h"
#include "ipc/tolm_log.h"

namespace {

thread_local bool tInHandler = false;

}  // namespace

TolmHbbtvIpcServerDelegate::TolmHbbtvIpcServerDelegate(TolmIpcKeyId key)
    : mKey(key),
      mStatus(tolm::EndpointStatus::Of(key)),
      mServer(tolm::TolmIpcFactory::GetInstance()->CreateIpcServer(key, this, TOLM_IPC_TYPE_SOCKET)) {
    mServer->Start();
}

TolmHbbtvIpcServerDelegate::~TolmHbbtvIpcServerDelegate() {
    mServer.reset();
}

void TolmHbbtvIpcServerDelegate::RegisterIpcServerDelegate(int port, tolm::TolmIpcServerDelegate* receiver) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mReceivers.emplace(port, receiver).second) {
        TOLM_LOG(ANDROID_LOG_ERROR, tolm::kIpcBaseTag, "ipc server start in channel(%x) port(%d) repeatedly ", mKey,
                 port);
        return;
    }
    TOLM_LOG(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "ipc server start success in channel(%x) port(%d)", mKey, port);
}

void TolmHbbtvIpcServerDelegate::UnRegisterIpcServerDelegate(int port) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mReceivers.erase(port) == 0) return;
    TOLM_LOG(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "ipc server stop success in channel(%x) port(%d)", mKey, port);
}

void TolmHbbtvIpcServerDelegate::WaitForDelivery() {
    std::lock_guard<std::mutex> lock(mDelivery);
}

tolm::TolmIpcServerDelegate* TolmHbbtvIpcServerDelegate::Find(int port) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mReceivers.find(port);
    if (found != mReceivers.end() && found->second != nullptr) return found->second;
    mStatus.Refused("a message for port " + std::to_string(port) + ", which has no receiver");
    TOLM_LOG(ANDROID_LOG_WARN, tolm::kIpcBaseTag, "channel(%x) port(%d): no receiver", mKey, port);
    return nullptr;
}

std::unique_lock<std::mutex> TolmHbbtvIpcServerDelegate::WaitForTurn() {
    std::unique_lock<std::mutex> delivery(mDelivery, std::try_to_lock);
    if (delivery.owns_lock()) return delivery;
    mStatus.EventWaits();
    delivery.lock();
    mStatus.EventWaitsNoMore();
    return delivery;
}

void TolmHbbtvIpcServerDelegate::OnRecv(const std::vector<unsigned char>& msg, int port) {
    const std::unique_lock<std::mutex> delivery = WaitForTurn();
    tolm::TolmIpcServerDelegate* receiver = Find(port);
    if (receiver == nullptr) return;
    tInHandler = true;
    receiver->OnRecv(msg, port);
    tInHandler = false;
}

void TolmHbbtvIpcServerDelegate::OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply,
                                            int port) {
    const std::unique_lock<std::mutex> delivery = WaitForTurn();
    tolm::TolmIpcServerDelegate* receiver = Find(port);
    if (receiver == nullptr) return;
    tInHandler = true;
    receiver->OnRecvSync(msg, reply, port);
    tInHandler = false;
}

size_t TolmHbbtvIpcServerDelegate::GetNum() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mReceivers.size();
}

bool TolmHbbtvIpcServerDelegate::InHandler() {
    return tInHandler;
}
