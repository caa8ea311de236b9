// Message queue descriptors. The host does not support fast message queues; generated code only asserts the size.
#pragma once

#include <hidl/HidlSupport.h>

namespace android::hardware {

struct GrantorDescriptor {
    uint32_t flags;
    uint32_t fdIndex;
    uint32_t offset;
    uint64_t extent;
};

enum MQFlavor : uint32_t { kSynchronizedReadWrite = 0x01, kUnsynchronizedWrite = 0x02 };

template <typename T, MQFlavor flavor>
struct MQDescriptor {
    hidl_vec<GrantorDescriptor> mGrantors;
    details::hidl_pointer<native_handle_t> mHandle;
    uint32_t mQuantum = 0;
    uint32_t mFlags = 0;
};

}  // namespace android::hardware
