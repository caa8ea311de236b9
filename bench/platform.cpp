#include "platform.h"

#include <unistd.h>

#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "floor.h"
#include "ipc/src/tolm_base_client.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_family.h"
#include "ipc/tolm_ipc_key_converter.h"

namespace hbbtv::bench {

namespace {

using tolm::Family;
namespace families = tolm::families;

constexpr int kPort = 7;
constexpr char kHandle[] = "0x12b1d002";

Json::Value Ok() {
    Json::Value reply(Json::objectValue);
    reply["ret"] = 0;
    return reply;
}

Json::Value OkWith(const char* key, const Json::Value& value) {
    Json::Value reply = Ok();
    reply[key] = value;
    return reply;
}

Json::Value BulkReply() {
    Json::Value reply = OkWith("state", 2);
    reply["note"] = std::string(64 * 1024, 'x');
    return reply;
}

Json::Value NumbersReply() {
    Json::Value reply = OkWith("num", 10);
    for (int i = 0; i < 10; ++i) reply["k" + std::to_string(i)] = 8442 + i;
    return reply;
}

// The replies with results, by "type" and "method". Any other has a status only.
const std::map<std::pair<int, int>, Json::Value>& Replies() {
    const auto type = [](const Family& family) { return family.type.value(); };
    static const std::map<std::pair<int, int>, Json::Value> replies = {
        {{type(families::kVideoBroadcast), 7}, BulkReply()},                        // GetPlayState
        {{type(families::kVideoBroadcast), 22}, OkWith("speed", 1.5)},              // GetPlaySpeed
        {{type(families::kVideoBroadcast), 38}, OkWith("channel", kHandle)},        // GetCurrentChannel
        {{type(families::kChannel), 13}, OkWith("name", std::string(64, 'n'))},     // GetName
        {{type(families::kChannelConfig), 9}, OkWith("handle", kHandle)},           // CreateFilteredList
        {{type(families::kChannelConfig), 8}, OkWith("list", kHandle)},             // CreateChannelList
        {{type(families::kChannelList), 2}, OkWith("channel", kHandle)},            // Item
        {{type(families::kConfiguration), 32}, NumbersReply()},                     // GetDttNetworkIds
        {{type(families::kFavouriteList), 5}, OkWith("channel", kHandle)},          // Item
        {{type(families::kFavouriteListCollection), 14}, OkWith("list", kHandle)},  // Item
        {{type(families::kSearchManager), 5}, OkWith("out_handle", kHandle)},       // SearchManager_CreateSearch
    };
    return replies;
}

Json::Value AnswerTo(const Json::Value& request) {
    const auto found = Replies().find({request["type"].asInt(), request["method"].asInt()});
    return found != Replies().end() ? found->second : Ok();
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
    explicit LibraryEndpoint(const Family& family) : TolmBaseServer(family.requests, family.port) { Start(); }
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
    std::vector<std::unique_ptr<LibraryEndpoint>> endpoints;
    for (const Family* family : families::kAll) endpoints.push_back(std::make_unique<LibraryEndpoint>(*family));
    LibraryEvents events;
    SendWhenAsked([&events](size_t count) {
        for (size_t i = 0; i < count; ++i) events.SendIpcWithNoRet(PlayStateEvent(i));
    });
    return 0;
}

}  // namespace hbbtv::bench
