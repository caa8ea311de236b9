// Which family a request is for, by its content alone: a log does not name the socket.
#pragma once

#include <json/value.h>

#include <string>

namespace hbbtv::traffic {

// Returns the name of the socket that the library sends the message to, or "" if no family has such a request. What
// identifies the operation is added to members of a message that was cut before it, if only one operation has them all.
std::string SocketOfRequest(Json::Value& members);

}  // namespace hbbtv::traffic
