// Lets the JSON bases, which do not know HIDL, find the client process that a request is made for.

#include <hwbinder/IPCThreadState.h>

#include "ipc/src/tolm_calling_process.h"

namespace {

[[maybe_unused]] const bool kSet = [] {
    tolm::SetFindCallingPid([] { return ::android::hardware::IPCThreadState::self()->getCallingPid(); });
    return true;
}();

}  // namespace
