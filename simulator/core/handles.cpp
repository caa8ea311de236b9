#include "core/handles.h"

#include <cctype>
#include <cinttypes>
#include <cstdio>

namespace hbbtv::sim {

namespace {

// More than all tables together hold in any use that was ever seen, so a live handle is never drawn again.
constexpr size_t kRemembered = 200000;

std::mt19937 Generator(std::optional<uint32_t> seed) {
    if (seed) return std::mt19937(*seed);
    std::random_device device;
    std::seed_seq words{device(), device(), device(), device(), device(), device(), device(), device()};
    return std::mt19937(words);
}

}  // namespace

std::string PointerText(uint64_t pointer) {
    if (pointer == 0) return "";
    char text[24];
    std::snprintf(text, sizeof(text), "0x%" PRIx64, pointer);
    return text;
}

std::optional<uint64_t> ReadPointer(const std::string& text) {
    size_t at = 0;
    while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at]))) ++at;
    if (at == text.size() || text.compare(at, 5, "(nil)") == 0) return 0;
    if (text[at] == '0' && at + 1 < text.size() && (text[at + 1] == 'x' || text[at + 1] == 'X')) at += 2;
    uint64_t value = 0;
    size_t digits = 0;
    for (; at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])); ++at, ++digits) {
        const int c = std::tolower(static_cast<unsigned char>(text[at]));
        if (value >> 60 != 0) return std::nullopt;
        value = value * 16 + static_cast<uint64_t>(c <= '9' ? c - '0' : c - 'a' + 10);
    }
    if (digits == 0) return std::nullopt;
    return value;
}

HandleSource::HandleSource(std::optional<uint32_t> seed) : mRandom(Generator(seed)) {}

Handle HandleSource::New() {
    Handle handle = static_cast<Handle>(mRandom());
    while (handle == 0 || !mKnown.insert(handle).second) handle = static_cast<Handle>(mRandom());
    mOrder.push_back(handle);
    if (mOrder.size() > kRemembered) {
        mKnown.erase(mOrder.front());
        mOrder.pop_front();
    }
    return handle;
}

}  // namespace hbbtv::sim
