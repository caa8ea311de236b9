// The platform, within the process: the library's requests end here instead of at a socket, and its events begin here.
// A program that links this has no IPC sockets, and its log is formatted but only written if
// FUZZ_LOG is set.
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"

namespace hbbtv::fuzz {

class PlayedPlatform {
  public:
    static PlayedPlatform& Get();

    // The payload of each reply; nothing: the platform has gone. Thread-safe, like all functions.
    void AnswerWith(const std::optional<std::string>& reply);

    // Returns how many requests with a reply have been sent.
    size_t CountOfRequests() const { return mRequests; }

    // Sends an event to the receivers of an endpoint, if it is served. The second one returns the reply.
    void Send(int key, int port, const std::string& event);
    std::string SendAndWait(int key, int port, const std::string& event);

    // Called by the transport.
    bool Take(const std::vector<unsigned char>& request);
    bool Exchange(const std::vector<unsigned char>& request, std::vector<unsigned char>& reply);
    void Serve(TolmIpcKeyId key, tolm::TolmIpcServerDelegate* receiver);

  private:
    tolm::TolmIpcServerDelegate* ReceiverOf(int key);

    std::atomic<size_t> mRequests{0};
    std::mutex mMutex;
    std::optional<std::string> mReply = "{\"ret\":0}";
    std::map<int, tolm::TolmIpcServerDelegate*> mReceivers;
};

}  // namespace hbbtv::fuzz
