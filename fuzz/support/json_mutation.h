// Mutations of JSON documents: libFuzzer's own, on bytes, seldom leave a document that is read to its end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace hbbtv::fuzz {

using Random = std::minstd_rand;

// Returns a number below `end`, which is not 0.
size_t Below(Random& random, size_t end);

// Applies libFuzzer's own mutation.
std::string MutatedBytes(const std::string& bytes, size_t mostBytes);

// Changes a value, a name or the structure of a document, or, now and then and if the text is not JSON, its bytes.
std::string MutatedJson(const std::string& text, size_t mostBytes, Random& random);

// Writes a result of a custom mutator. Returns its size.
size_t Store(const std::string& mutated, uint8_t* data, size_t mostBytes);

}  // namespace hbbtv::fuzz
