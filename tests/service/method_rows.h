// The methods of a HIDL interface, row by row: the request that each makes of the platform, and what its caller is
// answered. The service runs in the test's process, the platform is at the other end of a real socket. A program of an
// interface compiles method_rows.cpp, says what it tests (UnderTest()) and instantiates the suite for its rows. The
// number of the interface's methods, as hidl-gen counts them, is HBBTV_METHODS.
#pragma once

#include <gtest/gtest.h>
#include <hidl/HidlSupport.h>
#include <json/json.h>
#include <utils/StrongPointer.h>

#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "raw_socket.h"
#include "scratch_directory.h"

namespace hbbtv::test {

struct InterfaceUnderTest {
    const char* socket;  // of its requests
    int port;
    std::optional<int> type;         // of its requests, if they have one
    const char* codeKey = "method";  // of their codes
};

const InterfaceUnderTest& UnderTest();

struct MethodRow {
    const char* name;

    // What the caller is answered: "status", or "status value ...".
    std::function<std::string()> call;

    int code;
    const char* request;  // members besides the type and the code
    const char* reply;    // members besides "ret"
    const char* answer;
    const char* answerWithoutAdaptor;
    const char* statusFor17 = "17";  // what becomes of this status of the platform
};

void PrintTo(const MethodRow& row, std::ostream* out);
std::string NameOf(const testing::TestParamInfo<MethodRow>& row);

// A value as text: a handle in hexadecimal, a number in decimal, a text as it is, a list in brackets.
std::string Shown(int64_t handle);
std::string Shown(const android::hardware::hidl_string& text);
std::string Shown(const android::hardware::hidl_vec<int32_t>& numbers);
template <typename Value>
std::string Shown(const Value& value) {
    return std::to_string(static_cast<std::conditional_t<std::is_enum_v<Value>, int32_t, Value>>(value));
}

Json::Value Parsed(const std::string& text);

// As long as it lives there is no memory for an adaptor, so that GetInstance() gives none where there is none yet.
class NoMemoryForAdaptors {
  public:
    NoMemoryForAdaptors();
    ~NoMemoryForAdaptors();
    NoMemoryForAdaptors(const NoMemoryForAdaptors&) = delete;
    NoMemoryForAdaptors& operator=(const NoMemoryForAdaptors&) = delete;
};

// The words of the rows for the service that a HIDL_FETCH_... function makes.
template <auto Fetch>
struct ServiceOf {
    static auto Make() { return android::sp(Fetch("default")); }

    // A method whose only result is the status.
    template <typename Call>
    static std::function<std::string()> Status(Call call) {
        return [call] {
            const auto service = Make();
            const auto returned = call(*service);
            return returned.isOk() ? Shown(static_cast<int32_t>(returned)) : "transport failed";
        };
    }

    // A method with results: `call` is given the result callback.
    template <typename... Values, typename Call>
    static std::function<std::string()> Result(Call call) {
        return [call] {
            const auto service = Make();
            std::string answer = "no answer";
            int times = 0;
            const auto returned = call(*service, [&](int32_t status, const Values&... values) {
                ++times;
                answer = Shown(status);
                ((answer += " " + Shown(values)), ...);
            });
            EXPECT_TRUE(returned.isOk());
            EXPECT_EQ(1, times);
            return answer;
        };
    }
};

class Method : public testing::TestWithParam<MethodRow> {
  protected:
    ScratchDirectory mDirectory;
};

// Of the methods that do not wait for the platform.
class OneWayMethod : public Method {};

}  // namespace hbbtv::test
