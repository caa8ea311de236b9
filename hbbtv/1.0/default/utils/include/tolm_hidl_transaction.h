// Messages that HIDL does not carry: results that are too large for a transaction, and events that their client does
// not receive.
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

#include <cstddef>
#include <string>
#include <type_traits>

#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_log.h"

namespace tolm {

// The limit of a transaction. A larger one fails, and its caller would get no status at all.
constexpr size_t kMaxHidlBytes = (1u << 20) - (8u << 10);

// The limit of what describes a result in a transaction, and of the rest of the transaction.
constexpr size_t kHidlOverhead = 128;

// Return what a result takes in a transaction, at most.
template <typename Scalar, typename = std::enable_if_t<std::is_arithmetic_v<Scalar> || std::is_enum_v<Scalar>>>
constexpr size_t HidlSize(Scalar) {
    return sizeof(int64_t);
}
inline size_t HidlSize(const ::android::hardware::hidl_string& text) {
    return kHidlOverhead + text.size();
}
template <typename Element>
size_t HidlSize(const ::android::hardware::hidl_vec<Element>& elements) {
    static_assert(std::is_arithmetic_v<Element>, "the memory of other elements is not counted");
    return kHidlOverhead + elements.size() * sizeof(Element);
}

// Returns whether HIDL carries the results of the operation that this thread has called last, and logs a warning if
// not.
bool HidlCarries(size_t sizeOfResults);

// Returns whether a client has received an event, and logs a warning if not: the client may have just died, or the
// event is too large. A failed Return that is not checked ends the process.
template <typename Result>
bool Received(const ::android::hardware::Return<Result>& returned, const char* tag,
              const char* function = __builtin_FUNCTION(), const char* file = __builtin_FILE(),
              int line = __builtin_LINE()) {
    if (returned.isOk()) {
        EndpointStatus::Event::Received();
        return true;
    }
    const std::string message = "the client has not received the event: " + returned.description();
    EndpointStatus::Event::NotReceived(message);
    LogAt({file, line, function}, ANDROID_LOG_WARN, tag, message.c_str());
    return false;
}

}  // namespace tolm
