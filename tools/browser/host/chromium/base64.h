// Bytes as text, as the DevTools protocol carries them.
#pragma once

#include <string>

namespace hbbtv::browser {

std::string Base64(const std::string& bytes);

// Ignores characters that are not of the alphabet.
std::string FromBase64(const std::string& text);

}  // namespace hbbtv::browser
