// A server's delegate that records its messages and sends the reply that the test sets.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "ipc/tolm_ipc_server.h"
#include "raw_socket.h"
#include "wait_for.h"

namespace hbbtv::test {

class RecordingDelegate : public tolm::TolmIpcServerDelegate {
  public:
    using Answer = std::function<std::string(const Frame& request)>;

    // Answers a request with its own text.
    RecordingDelegate() : mAnswer([](const Frame& request) { return request.payload; }) {}
    explicit RecordingDelegate(Answer answer) : mAnswer(std::move(answer)) {}

    void OnRecv(const std::vector<unsigned char>& msg, int port) override { Keep({kOneWay, port, Text(msg)}); }

    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) override {
        const Frame request{kRequest, port, Text(msg)};
        Keep(request);
        const std::string answer = mAnswer(request);
        reply.assign(answer.begin(), answer.end());
    }

    std::vector<Frame> Frames() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mFrames;
    }

    size_t Count() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mFrames.size();
    }

    bool WaitForFrames(size_t count) const {
        return WaitFor([&] { return Count() >= count; });
    }

  private:
    static std::string Text(const std::vector<unsigned char>& msg) { return {msg.begin(), msg.end()}; }

    void Keep(const Frame& frame) {
        std::lock_guard<std::mutex> lock(mMutex);
        mFrames.push_back(frame);
    }

    const Answer mAnswer;
    mutable std::mutex mMutex;
    std::vector<Frame> mFrames;  // guarded by mMutex
};

}  // namespace hbbtv::test
