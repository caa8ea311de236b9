#include "method_rows.h"

#include <atomic>
#include <cstdio>
#include <new>
#include <sstream>

namespace {

std::atomic<bool> gNoMemory{false};

}  // namespace

// What adaptors are made with; everything else uses the throwing form.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return gNoMemory ? nullptr : ::operator new(size);
}

namespace hbbtv::test {

void PrintTo(const MethodRow& row, std::ostream* out) {
    *out << row.name;
}

std::string NameOf(const testing::TestParamInfo<MethodRow>& row) {
    return row.param.name;
}

std::string Shown(int64_t handle) {
    char text[64];
    snprintf(text, sizeof(text), "0x%llx", static_cast<unsigned long long>(handle));
    return text;
}

std::string Shown(const android::hardware::hidl_string& text) {
    return text;
}

std::string Shown(const android::hardware::hidl_vec<int32_t>& numbers) {
    std::string text;
    for (const int32_t number : numbers) text += (text.empty() ? "" : " ") + Shown(number);
    return "[" + text + "]";
}

NoMemoryForAdaptors::NoMemoryForAdaptors() {
    gNoMemory = true;
}

NoMemoryForAdaptors::~NoMemoryForAdaptors() {
    gNoMemory = false;
}

Json::Value Parsed(const std::string& text) {
    Json::Value document;
    std::string errors;
    std::istringstream stream(text);
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &document, &errors)) << errors;
    return document;
}

namespace {

std::string ReplyOf(const MethodRow& row, int ret) {
    Json::Value reply = Parsed(row.reply);
    reply["ret"] = ret;
    return reply.toStyledString();
}

// "-1 0x0" and the like, with another status.
std::string FailedWith(const std::string& status, const MethodRow& row) {
    const std::string answer = row.answerWithoutAdaptor;
    return status + answer.substr(2);
}

void ExpectTheOneRequest(const FakePlatform& platform, const MethodRow& row, int form) {
    ASSERT_TRUE(platform.WaitForFrames(1));
    ASSERT_EQ(1u, platform.Frames().size());
    Json::Value expected = Parsed(row.request);
    if (UnderTest().type) expected["type"] = *UnderTest().type;
    expected[UnderTest().codeKey] = row.code;
    EXPECT_EQ(expected, Parsed(platform.Frames()[0].payload));
    EXPECT_EQ(form, platform.Frames()[0].type);
    EXPECT_EQ(UnderTest().port, platform.Frames()[0].port);
}

}  // namespace

TEST_P(Method, AsksThePlatformAndAnswersOnce) {
    FakePlatform platform(UnderTest().socket, ReplyOf(GetParam(), 0));

    EXPECT_EQ(GetParam().answer, GetParam().call());
    ExpectTheOneRequest(platform, GetParam(), kRequest);
}

TEST_P(Method, PassesThePlatformsStatusOnWithZeroResults) {
    FakePlatform platform(UnderTest().socket, ReplyOf(GetParam(), 17));
    EXPECT_EQ(FailedWith(GetParam().statusFor17, GetParam()), GetParam().call());
}

TEST_P(Method, GivesMinusOneAndZeroWhenThePlatformIsDown) {
    EXPECT_EQ(FailedWith("-1", GetParam()), GetParam().call());
}

TEST_P(Method, GivesMinusOneAndZeroWithoutAnAdaptor) {
    FakePlatform platform(UnderTest().socket, ReplyOf(GetParam(), 0));
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(GetParam().answerWithoutAdaptor, GetParam().call());
    EXPECT_TRUE(platform.Frames().empty());
}

// Not every interface has such methods.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneWayMethod);

TEST_P(OneWayMethod, TellsThePlatformAndDoesNotWait) {
    FakePlatform platform(UnderTest().socket, [](const Frame&) { return std::nullopt; });
    EXPECT_EQ("0", GetParam().call());
    ExpectTheOneRequest(platform, GetParam(), kOneWay);
}

TEST_P(OneWayMethod, GivesMinusOneWhenThePlatformIsDown) {
    EXPECT_EQ("-1", GetParam().call());
}

TEST_P(OneWayMethod, GivesMinusOneWithoutAnAdaptor) {
    FakePlatform platform(UnderTest().socket, "");
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ("-1", GetParam().call());
    EXPECT_TRUE(platform.Frames().empty());
}

}  // namespace hbbtv::test
