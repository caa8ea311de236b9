// A file of the directory protocol/.
#pragma once

#include <json/json.h>

#include <string>

namespace hbbtv::test {

// Reads protocol/<family>.json; the process ends with a message when it is not proper JSON.
Json::Value ReadProtocolFile(const std::string& family);

}  // namespace hbbtv::test
