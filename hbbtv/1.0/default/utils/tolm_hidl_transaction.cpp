#include "utils/include/tolm_hidl_transaction.h"

#include "utils/include/tolm_service_tags.h"

namespace tolm {

bool HidlCarries(size_t sizeOfResults) {
    constexpr size_t kMost = kMaxHidlBytes - kHidlOverhead;
    if (sizeOfResults <= kMost) return true;
    const std::string message = "results of " + std::to_string(sizeOfResults) +
                                " bytes are too large for HIDL, which takes " + std::to_string(kMost);
    LogAt(LastPlace(), ANDROID_LOG_WARN, kHidlBaseTag, message.c_str());
    return false;
}

}  // namespace tolm
