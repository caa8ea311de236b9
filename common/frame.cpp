#include "common/frame.h"

#include <cstring>

namespace hbbtv {

namespace {

struct Header {
    uint32_t size;
    int32_t type;
    int32_t port;
};
static_assert(sizeof(Header) == 12, "the header has no padding");

}  // namespace

std::string Encode(const Frame& frame) {
    const Header header{static_cast<uint32_t>(frame.payload.size()), frame.type, frame.port};
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof(header));
    return bytes += frame.payload;
}

std::optional<Frame> FrameReader::Next() {
    Header header;
    const size_t available = mBytes.size() - mUsed;
    if (available >= sizeof(header)) {
        std::memcpy(&header, mBytes.data() + mUsed, sizeof(header));
        if (header.size <= kLargestPayload && available - sizeof(header) >= header.size) {
            Frame frame{header.type, header.port, mBytes.substr(mUsed + sizeof(header), header.size)};
            mUsed += sizeof(header) + header.size;
            return frame;
        }
    }
    mBytes.erase(0, mUsed);
    mUsed = 0;
    return std::nullopt;
}

std::optional<uint32_t> FrameReader::Oversized() const {
    uint32_t size = 0;
    if (mBytes.size() - mUsed < sizeof(Header)) return std::nullopt;
    std::memcpy(&size, mBytes.data() + mUsed, sizeof(size));
    if (size <= kLargestPayload) return std::nullopt;
    return size;
}

}  // namespace hbbtv
