// A process that serves endpoints and ends by itself, for the test of its end: what its standard input tells it to do,
// it does, and the input's end ends it by returning from main(), with servers, connections and handlers as they are.
//
//     exit-in-handler    the handler of the next event calls exit(0)
//     slow               the handler of each event takes a while
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

#include "ipc/src/tolm_base_server.h"

namespace {

enum class Manner { kQuick, kSlow, kExit };
std::atomic<Manner> gManner{Manner::kQuick};

class Receiver : public TolmBaseServer {
  public:
    using TolmBaseServer::TolmBaseServer;

    void ReceiveIpc(const Json::Value&) override {
        if (gManner == Manner::kExit) exit(0);
        if (gManner == Manner::kSlow) std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }

    void ReceiveIpc(const Json::Value&, Json::Value& out) override { out["text"] = std::string(8 << 20, 'x'); }
};

}  // namespace

int main() {
    // Like adaptors, never destroyed.
    static Receiver* const broadcast = new Receiver(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB, 7);
    static Receiver* const search = new Receiver(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_SM, 8);
    broadcast->Start();
    search->Start();
    std::cout << "serving" << std::endl;
    std::string line;
    while (std::getline(std::cin, line)) {
        gManner = line == "slow" ? Manner::kSlow : Manner::kExit;
        std::cout << "will be " << line << std::endl;
    }
    return 0;
}
