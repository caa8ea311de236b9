// The methods of a HIDL interface: the request that each sends to the platform, and what its caller receives. The
// service runs in the test's process, the platform is at the other end of a real socket. The rows are those of the
// family (tests/rows/families); the methods, with their arguments and results, are known from the package.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <gtest/gtest.h>
#include <json/value.h>
#include <utils/StrongPointer.h>

#include <string>

#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

// Creates a service of the interface under test.
android::sp<android::hidl::base::V1_0::IBase> MakeService();

// Calls a method of a new service of the interface under test. Returns its results as JSON: "[0,5]", the status first.
std::string Answer(const std::string& method, const Json::Value& arguments = Json::Value(Json::arrayValue));

// An array, or any other document.
Json::Value Parsed(const std::string& text);

// While it exists there is no memory for an adaptor, so that GetInstance() returns null where there is none yet.
class NoMemoryForAdaptors {
  public:
    NoMemoryForAdaptors();
    ~NoMemoryForAdaptors();
    NoMemoryForAdaptors(const NoMemoryForAdaptors&) = delete;
    NoMemoryForAdaptors& operator=(const NoMemoryForAdaptors&) = delete;
};

}  // namespace hbbtv::test
