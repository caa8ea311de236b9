// Shared by the other HIDL headers: the 64-bit pointer of structures that are sent as raw memory, the tags of generated
// classes, and the fatal log line. Included by HidlSupport.h.
#pragma once

#include <cstdint>
#include <string>

namespace android::hardware::details {

// Tags by which templates distinguish the kinds of generated classes.
struct i_tag {};
struct bphw_tag {};
struct bnhw_tag {};
struct bs_tag {};

// Logs a fatal message and ends the process.
[[noreturn]] void logAlwaysFatal(const char* message);

// A pointer of eight bytes whatever the word size, so that structures have one layout.
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
static_assert(sizeof(hidl_pointer<char>) == 8, "sent as raw memory");

}  // namespace android::hardware::details
