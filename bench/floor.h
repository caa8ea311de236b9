// The floor that the library is measured against: the same framing over the same kind of socket, and JSON in the plain
// way (Json::Value, toStyledString, Json::Reader), and nothing else: no locks, no routing, no log lines.
#pragma once

#include <json/json.h>

#include <cstddef>
#include <functional>
#include <string>

namespace hbbtv::bench {

// Connects to a socket file, waiting for it; listens on one. The process ends with a message when that fails.
int ConnectTo(const std::string& path);
int ListenOn(const std::string& path);

// One exchange: the reply's "ret".
int FloorExchange(int fd, const Json::Value& request);

// Answers requests of one connection until the peer closes it.
void FloorServe(int listenFd, const std::function<Json::Value(const Json::Value& request)>& answer);

// Sends and receives one-way messages.
void FloorSendEvents(int fd, const std::function<Json::Value(size_t index)>& event, size_t count);
void FloorReceiveEvents(int fd, const std::function<void(const Json::Value& event)>& receive, size_t count);

}  // namespace hbbtv::bench
