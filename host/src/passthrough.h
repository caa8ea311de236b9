// Implementations from libraries that are loaded into this process.
#pragma once

#include <android/hidl/base/1.0/IBase.h>

#include <string>

namespace android {
namespace hardware {
namespace host {

// Asks the libraries <package>@<version>-impl*.so in the directories of HIDL_HOST_PASSTHROUGH_PATH (separated by ':')
// for an instance of the interface. Null, with a log line, when none has it.
sp<::android::hidl::base::V1_0::IBase> LoadPassthrough(const std::string& descriptor, const std::string& instance);

}  // namespace host
}  // namespace hardware
}  // namespace android
