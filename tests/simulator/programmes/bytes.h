// Bytes that a test writes in pieces, as a letter behind an escape may belong to it.
#pragma once

#include <string>

namespace hbbtv::test {

// Returns the pieces with their zero bytes.
template <size_t... N>
std::string Bytes(const char (&... pieces)[N]) {
    return (std::string(pieces, N - 1) + ...);
}

}  // namespace hbbtv::test
