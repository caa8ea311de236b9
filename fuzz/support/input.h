// What the fuzz targets share: taking an input apart, and the check of a promise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace hbbtv::fuzz {

// Ends the process, which is how libFuzzer learns that a promise was broken.
#define FUZZ_CHECK(condition) ((condition) ? void() : ::hbbtv::fuzz::Broken(#condition, __FILE__, __LINE__))
[[noreturn]] void Broken(const char* promise, const char* file, int line);

// An input whose first line selects what the rest is for.
struct Addressed {
    std::string line;
    std::string rest;
};

Addressed Split(const uint8_t* data, size_t size);

std::vector<std::string> Words(const std::string& line);
std::vector<std::string> LinesOf(const std::string& text);

// A directory of this process, which is removed at its end. Sets TMPDIR and HIDL_HOST_DIR to it.
const std::string& ScratchDirectory();

}  // namespace hbbtv::fuzz
