// Bytes as text, as RFC 4648 defines it.
#pragma once

#include <string>

namespace hbbtv {

std::string Base64(const std::string& bytes);

// Throws std::runtime_error with the reason if it is not Base64.
std::string FromBase64(const std::string& text);

}  // namespace hbbtv
