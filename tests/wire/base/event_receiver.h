// An adaptor's receiving half that keeps what it is given.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "ipc/src/tolm_base_server.h"
#include "wait_for.h"

namespace hbbtv::test {

class EventReceiver : public TolmBaseServer {
  public:
    using Handler = std::function<void(const Json::Value& msg, Json::Value& out)>;

    EventReceiver(TolmIpcKeyId key, int port, Handler handler = nullptr)
        : TolmBaseServer(key, port), mHandler(std::move(handler)) {}
    ~EventReceiver() override { Stop(); }

    void ReceiveIpc(const Json::Value& msg) override { Keep(msg); }

    void ReceiveIpc(const Json::Value& msg, Json::Value& out) override {
        Keep(msg);
        if (mHandler) mHandler(msg, out);
    }

    std::vector<Json::Value> Messages() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mMessages;
    }

    size_t Count() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mMessages.size();
    }

    bool WaitForMessages(size_t count) const {
        return WaitFor([&] { return Count() >= count; });
    }

  private:
    void Keep(const Json::Value& msg) {
        std::lock_guard<std::mutex> lock(mMutex);
        mMessages.push_back(msg);
    }

    const Handler mHandler;
    mutable std::mutex mMutex;
    std::vector<Json::Value> mMessages;  // guarded by mMutex
};

}  // namespace hbbtv::test
