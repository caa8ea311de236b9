// The floor that the library is compared to: the same framing over the same kind of socket, and plain use of jsoncpp
// (Json::Value, toStyledString, Json::Reader), without locks, routing and logging.
#pragma once

#include <json/json.h>

#include <cstddef>
#include <functional>
#include <string>

namespace hbbtv::bench {

// Connect to a socket file, waiting for it to exist, and listen on one. On failure, they print a message and exit.
int ConnectTo(const std::string& path);
int ListenOn(const std::string& path);

// Sends a request and returns "ret" of the reply.
int FloorExchange(int fd, const Json::Value& request);

// Replies to the requests of a connection until the peer closes it.
void FloorServe(int listenFd, const std::function<Json::Value(const Json::Value& request)>& answer);

// Sends and receives one-way messages.
void FloorSendEvents(int fd, const std::function<Json::Value(size_t index)>& event, size_t count);
void FloorReceiveEvents(int fd, const std::function<void(const Json::Value& event)>& receive, size_t count);

}  // namespace hbbtv::bench
