#include "platform.h"

#include <unistd.h>

#include <iostream>
#include <string>
#include <thread>

#include "floor.h"
#include "ipc/src/tolm_base_client.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/tolm_ipc_key_converter.h"

namespace hbbtv::bench {

namespace {

constexpr int kGetPlayState = 7;
constexpr int kPort = 7;

// Returns the reply of the platform: "ret", and 64 KiB more for GetPlayState.
Json::Value AnswerTo(const Json::Value& request) {
    static const std::string kBulk(64 * 1024, 'x');
    Json::Value reply(Json::objectValue);
    reply["ret"] = 0;
    if (request["method"].asInt() == kGetPlayState) {
        reply["state"] = 2;
        reply["note"] = kBulk;
    }
    return reply;
}

Json::Value PlayStateEvent(size_t index) {
    Json::Value event(Json::objectValue);
    event["type"] = "videobroadcast";
    event["event"] = 1;
    event["context"] = "0x1000";
    event["state"] = static_cast<int>(index & 3);
    event["error"] = 0;
    return event;
}

// Reads a number per line until the end of the input.
template <typename Send>
void SendWhenAsked(Send&& send) {
    size_t count;
    while (std::cin >> count) send(count);
}

class LibraryEndpoint : public TolmBaseServer {
  public:
    LibraryEndpoint() : TolmBaseServer(TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB, kPort) { Start(); }
    ~LibraryEndpoint() override { Stop(); }

    void ReceiveIpc(const Json::Value& request, Json::Value& reply) override { reply = AnswerTo(request); }
};

class LibraryEvents : public TolmBaseClient {
  public:
    LibraryEvents() : TolmBaseClient(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB, kPort) {}
};

}  // namespace

int RunFloorPlatform() {
    const int listenFd = ListenOn(tolm::GetSocketFilePath(kFloorRequests));
    std::thread server([listenFd] { FloorServe(listenFd, AnswerTo); });
    SendWhenAsked([](size_t count) {
        const int fd = ConnectTo(tolm::GetSocketFilePath(kFloorEvents));
        FloorSendEvents(fd, PlayStateEvent, count);
        close(fd);
    });
    server.join();
    return 0;
}

int RunLibraryPlatform() {
    LibraryEndpoint endpoint;
    LibraryEvents events;
    SendWhenAsked([&events](size_t count) {
        for (size_t i = 0; i < count; ++i) events.SendIpcWithNoRet(PlayStateEvent(i));
    });
    return 0;
}

}  // namespace hbbtv::bench
