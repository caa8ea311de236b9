// Loads passthrough implementations from libraries.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/ServiceManagement.h>

#include <string>

namespace android::hardware::host {

// Searches the libraries <package>@<version>-impl*.so in the directories of HIDL_HOST_PASSTHROUGH_PATH (separated by
// ':'; default: hidl-host in the directory of this library) for an instance of the interface. If there is none, logs an
// error and returns null.
sp<::android::hidl::base::V1_0::IBase> LoadPassthrough(const std::string& descriptor, const std::string& instance,
                                                       details::CallFetch callFetch);

}  // namespace android::hardware::host
