#include "core/handles.h"

namespace hbbtv::sim {

namespace {

// More than all tables together hold in practice, so a live handle is never drawn again.
constexpr size_t kRemembered = 200000;

std::mt19937 Generator(std::optional<uint32_t> seed) {
    if (seed) return std::mt19937(*seed);
    std::random_device device;
    std::seed_seq words{device(), device(), device(), device(), device(), device(), device(), device()};
    return std::mt19937(words);
}

}  // namespace

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
