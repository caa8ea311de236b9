// Memory for messages. An allocation that fails ends the process, so the memory of a long message is claimed before it
// is allocated, and the message is refused if there is not enough.
#pragma once

#include <cstddef>
#include <vector>

namespace tolm {

// A part of the available memory, taken into account until the claim is destroyed. Not thread-safe.
class MemoryClaim {
  public:
    MemoryClaim() = default;

    // The memory itself has been freed before, also that of a message that was refused.
    ~MemoryClaim();

    MemoryClaim(const MemoryClaim&) = delete;
    MemoryClaim& operator=(const MemoryClaim&) = delete;

    // Returns whether so much can be allocated in addition to all other claims. Call it at most once.
    bool Take(size_t size);

  private:
    size_t mAsked = 0;
    size_t mSize = 0;  // 0 if it was refused
};

// Makes room for `capacity` bytes. Returns false if there is not enough memory for `total` in addition to all claims.
bool Reserve(std::vector<unsigned char>& bytes, size_t capacity, size_t total);

// Returns the freed memory of a long message to the system, which the C library would otherwise keep.
void ReturnFreedMemory(size_t size);

}  // namespace tolm
