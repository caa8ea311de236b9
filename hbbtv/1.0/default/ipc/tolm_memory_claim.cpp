#include "ipc/tolm_memory_claim.h"

#include <malloc.h>

#include <cstdlib>
#include <mutex>

namespace tolm {

namespace {

std::mutex gMutex;
size_t gClaimed = 0;  // guarded by gMutex

// Kept free for memory that is not claimed (log lines, results, a thread's stack) and for short messages.
constexpr size_t kReserve = 16u << 20;
constexpr size_t kShort = 64u << 10;

bool AvailableLocked(size_t size) {
    // volatile, because compilers remove an unused allocation.
    void* volatile probe = malloc(size > kShort ? gClaimed + size + kReserve : size);
    const bool available = probe != nullptr;
    free(probe);
    return available;
}

}  // namespace

MemoryClaim::~MemoryClaim() {
    if (mAsked == 0) return;
    {
        std::lock_guard<std::mutex> lock(gMutex);
        gClaimed -= mSize;
    }
    ReturnFreedMemory(mAsked);
}

bool MemoryClaim::Take(size_t size) {
    mAsked = size;
    std::lock_guard<std::mutex> lock(gMutex);
    if (!AvailableLocked(size)) return false;
    gClaimed += size;
    mSize = size;
    return true;
}

bool Reserve(std::vector<unsigned char>& bytes, size_t capacity, size_t total) {
    std::lock_guard<std::mutex> lock(gMutex);
    if (!AvailableLocked(total)) return false;
    bytes.reserve(capacity);
    return true;
}

void ReturnFreedMemory([[maybe_unused]] size_t size) {
    constexpr size_t kWorthwhile = 1u << 20;
    if (size < kWorthwhile) return;
#ifdef __GLIBC__
    // glibc raises its thresholds with every large block that is freed, unless they are set.
    static const bool kFixed = mallopt(M_MMAP_THRESHOLD, 128 << 10) != 0 && mallopt(M_TRIM_THRESHOLD, 128 << 10) != 0;
    static_cast<void>(kFixed);
    malloc_trim(0);
    // This does not trim the end of a thread's arena, but freeing a block of more than 64 KiB does.
    void* volatile block = malloc(96 << 10);
    free(block);
#endif
}

}  // namespace tolm
