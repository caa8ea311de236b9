// The service of a test program, which its CMakeLists.txt names.

#include SERVICE_HEADER
#include "method_rows.h"

namespace hbbtv::test {

android::sp<android::hidl::base::V1_0::IBase> MakeService() {
    return vantorel::hardware::hbbtv::implementation::FETCH_SERVICE("default");
}

}  // namespace hbbtv::test
