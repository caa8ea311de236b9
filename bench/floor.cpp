#include "floor.h"

#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "ipc/socket/tolm_ipc_internal_socket.h"

namespace hbbtv::bench {

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kPort = 7;

[[noreturn]] void Fail(const char* what, const std::string& path) {
    std::perror((std::string(what) + " " + path).c_str());
    std::exit(1);
}

bool Send(int fd, TolmIpcMessageType type, const Json::Value& document) {
    const std::string text = document.toStyledString();
    bool alive = true;
    return tolm::SendInternalSocket(fd, kPort, type, Bytes(text.begin(), text.end()), alive);
}

bool Receive(int fd, Json::Value& document) {
    tolm::TolmIpcSocketMsgHeader header{};
    Bytes payload;
    bool alive = true;
    if (!tolm::RecvInternalSocket(fd, header, payload, alive)) return false;
    Json::Reader reader;
    return reader.parse(std::string(payload.begin(), payload.end()), document, true);
}

}  // namespace

int ConnectTo(const std::string& path) {
    const sockaddr_un address = tolm::SocketAddress(path);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    for (int attempt = 0; connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0; ++attempt) {
        if (attempt == 5000) Fail("connect", path);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return fd;
}

int ListenOn(const std::string& path) {
    const sockaddr_un address = tolm::SocketAddress(path);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) Fail("bind", path);
    if (listen(fd, 1) != 0) Fail("listen", path);
    return fd;
}

int FloorExchange(int fd, const Json::Value& request) {
    Json::Value reply;
    if (!Send(fd, TOLM_IPC_MSG_SYNC, request) || !Receive(fd, reply)) return -1;
    return reply["ret"].asInt();
}

void FloorServe(int listenFd, const std::function<Json::Value(const Json::Value& request)>& answer) {
    const int fd = accept(listenFd, nullptr, nullptr);
    Json::Value request;
    while (Receive(fd, request) && Send(fd, TOLM_IPC_MSG_REPLY, answer(request))) {
    }
    close(fd);
}

void FloorSendEvents(int fd, const std::function<Json::Value(size_t index)>& event, size_t count) {
    for (size_t i = 0; i < count; ++i) Send(fd, TOLM_IPC_MSG_ASYNC, event(i));
}

void FloorReceiveEvents(int fd, const std::function<void(const Json::Value& event)>& receive, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Json::Value event;
        if (!Receive(fd, event)) Fail("receive", "event");
        receive(event);
    }
}

}  // namespace hbbtv::bench
