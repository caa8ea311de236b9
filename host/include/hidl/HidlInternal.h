// Small pieces that the other HIDL headers share: the 64-bit pointer slot of everything that crosses processes as raw
// memory, the tags of generated classes, and the fatal log line. Included by HidlSupport.h.
#pragma once

#include <cstdint>
#include <string>

namespace android {
namespace hardware {
namespace details {

// Tags by which templates tell the kinds of generated classes apart.
struct i_tag {};
struct bphw_tag {};
struct bnhw_tag {};
struct bs_tag {};

// Writes the message at level fatal and ends the process.
[[noreturn]] void logAlwaysFatal(const char* message);

// A pointer that takes eight bytes whatever the word size, so that structures have one layout.
template <typename T>
struct hidl_pointer {
    hidl_pointer() : mBits(0) {}
    hidl_pointer(T* pointer) : mBits(0) { mPointer = pointer; }
    hidl_pointer& operator=(T* pointer) {
        mBits = 0;
        mPointer = pointer;
        return *this;
    }
    operator T*() const { return mPointer; }
    T* operator->() const { return mPointer; }

  private:
    union {
        T* mPointer;
        uint64_t mBits;
    };
};
static_assert(sizeof(hidl_pointer<char>) == 8, "the layout of what crosses processes");

}  // namespace details
}  // namespace hardware
}  // namespace android
