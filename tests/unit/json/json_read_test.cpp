// Reading the members of an object: one that cannot be converted reads like a missing one.
#include <json/json.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "ipc/src/tolm_json_text.h"

namespace {

Json::Value With(const Json::Value& member) {
    Json::Value object(Json::objectValue);
    object["m"] = member;
    return object;
}

Json::Value Int64(Json::Int64 number) {
    return With(Json::Value(number));
}

Json::Value UInt64(Json::UInt64 number) {
    return With(Json::Value(number));
}

const Json::Value kText = With("12");
const Json::Value kEmptyText = With("");
const Json::Value kArray = With(Json::Value(Json::arrayValue));
const Json::Value kObject = With(Json::Value(Json::objectValue));
const Json::Value kNull = With(Json::Value());
const Json::Value kMissing = Json::Value(Json::objectValue);
const double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(ReadInt, ReturnsIntegersThatFit) {
    EXPECT_EQ(tolm::ReadInt(With(0), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(With(-1), "m"), -1);
    EXPECT_EQ(tolm::ReadInt(With(2147483647), "m"), 2147483647);
    EXPECT_EQ(tolm::ReadInt(With(2147483647u), "m"), 2147483647);
    EXPECT_EQ(tolm::ReadInt(Int64(-2147483648LL), "m"), -2147483647 - 1);
}

TEST(ReadInt, ReturnsZeroForIntegersOutOfRange) {
    EXPECT_EQ(tolm::ReadInt(Int64(2147483648LL), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(Int64(-2147483649LL), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(With(4294967295u), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(Int64(9223372036854775807LL), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(UInt64(18446744073709551615ULL), "m"), 0);
}

TEST(ReadInt, TruncatesRealsAndReturnsZeroForThoseOutOfRange) {
    EXPECT_EQ(tolm::ReadInt(With(1.5), "m"), 1);
    EXPECT_EQ(tolm::ReadInt(With(-1.5), "m"), -1);
    EXPECT_EQ(tolm::ReadInt(With(-0.5), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(With(2147483647.0), "m"), 2147483647);
    EXPECT_EQ(tolm::ReadInt(With(2147483648.0), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(With(1e300), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(With(-1e300), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(With(kInfinity), "m"), 0);
    EXPECT_EQ(tolm::ReadInt(With(kNaN), "m"), 0);
}

TEST(ReadInt, ReturnsZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(tolm::ReadInt(object, "m"), 0);
    }
    EXPECT_EQ(tolm::ReadInt(With(true), "m"), 1);
    EXPECT_EQ(tolm::ReadInt(With(false), "m"), 0);
}

TEST(ReadUInt, ReturnsIntegersThatFitAndZeroForOthers) {
    EXPECT_EQ(tolm::ReadUInt(With(0), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(Int64(2147483648LL), "m"), 2147483648u);
    EXPECT_EQ(tolm::ReadUInt(With(4294967295u), "m"), 4294967295u);
    EXPECT_EQ(tolm::ReadUInt(With(-1), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(Int64(4294967296LL), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(UInt64(18446744073709551615ULL), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(Int64(-9223372036854775807LL - 1), "m"), 0u);
}

TEST(ReadUInt, TruncatesRealsAndReturnsZeroForThoseOutOfRange) {
    EXPECT_EQ(tolm::ReadUInt(With(1.5), "m"), 1u);
    EXPECT_EQ(tolm::ReadUInt(With(4294967295.0), "m"), 4294967295u);
    EXPECT_EQ(tolm::ReadUInt(With(4294967296.0), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(With(-0.5), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(With(-1.0), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(With(kInfinity), "m"), 0u);
    EXPECT_EQ(tolm::ReadUInt(With(kNaN), "m"), 0u);
}

TEST(ReadUInt, ReturnsZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(tolm::ReadUInt(object, "m"), 0u);
    }
    EXPECT_EQ(tolm::ReadUInt(With(true), "m"), 1u);
}

TEST(ReadInt64, ReturnsIntegersThatFitAndZeroForOthers) {
    EXPECT_EQ(tolm::ReadInt64(With(-1), "m"), -1);
    EXPECT_EQ(tolm::ReadInt64(With(4294967295u), "m"), 4294967295LL);
    EXPECT_EQ(tolm::ReadInt64(Int64(9223372036854775807LL), "m"), 9223372036854775807LL);
    EXPECT_EQ(tolm::ReadInt64(UInt64(9223372036854775807ULL), "m"), 9223372036854775807LL);
    EXPECT_EQ(tolm::ReadInt64(Int64(-9223372036854775807LL - 1), "m"), -9223372036854775807LL - 1);
    EXPECT_EQ(tolm::ReadInt64(UInt64(9223372036854775808ULL), "m"), 0);
    EXPECT_EQ(tolm::ReadInt64(UInt64(18446744073709551615ULL), "m"), 0);
}

TEST(ReadInt64, TruncatesRealsAndReturnsZeroForThoseOutOfRange) {
    EXPECT_EQ(tolm::ReadInt64(With(1.5), "m"), 1);
    EXPECT_EQ(tolm::ReadInt64(With(-1.5), "m"), -1);
    EXPECT_EQ(tolm::ReadInt64(With(9223372036854774784.0), "m"), 9223372036854774784LL);
    EXPECT_EQ(tolm::ReadInt64(With(-9223372036854775808.0), "m"), -9223372036854775807LL - 1);
    EXPECT_EQ(tolm::ReadInt64(With(9223372036854775808.0), "m"), 0);
    EXPECT_EQ(tolm::ReadInt64(With(-9223372036854777856.0), "m"), 0);
    EXPECT_EQ(tolm::ReadInt64(With(kInfinity), "m"), 0);
    EXPECT_EQ(tolm::ReadInt64(With(kNaN), "m"), 0);
}

TEST(ReadInt64, ReturnsZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(tolm::ReadInt64(object, "m"), 0);
    }
    EXPECT_EQ(tolm::ReadInt64(With(true), "m"), 1);
}

TEST(ReadUInt64, ReturnsIntegersThatFitAndZeroForOthers) {
    EXPECT_EQ(tolm::ReadUInt64(Int64(4294967296LL), "m"), 4294967296ULL);
    EXPECT_EQ(tolm::ReadUInt64(Int64(9223372036854775807LL), "m"), 9223372036854775807ULL);
    EXPECT_EQ(tolm::ReadUInt64(UInt64(9223372036854775808ULL), "m"), 9223372036854775808ULL);
    EXPECT_EQ(tolm::ReadUInt64(UInt64(18446744073709551615ULL), "m"), 18446744073709551615ULL);
    EXPECT_EQ(tolm::ReadUInt64(With(-1), "m"), 0ULL);
    EXPECT_EQ(tolm::ReadUInt64(Int64(-9223372036854775807LL - 1), "m"), 0ULL);
}

TEST(ReadUInt64, TruncatesRealsAndReturnsZeroForThoseOutOfRange) {
    EXPECT_EQ(tolm::ReadUInt64(With(1.5), "m"), 1ULL);
    EXPECT_EQ(tolm::ReadUInt64(With(18446744073709549568.0), "m"), 18446744073709549568ULL);
    EXPECT_EQ(tolm::ReadUInt64(With(18446744073709551616.0), "m"), 0ULL);
    EXPECT_EQ(tolm::ReadUInt64(With(-0.5), "m"), 0ULL);
    EXPECT_EQ(tolm::ReadUInt64(With(kInfinity), "m"), 0ULL);
    EXPECT_EQ(tolm::ReadUInt64(With(kNaN), "m"), 0ULL);
}

TEST(ReadUInt64, ReturnsZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(tolm::ReadUInt64(object, "m"), 0ULL);
    }
    EXPECT_EQ(tolm::ReadUInt64(With(true), "m"), 1ULL);
}

TEST(ReadBool, IsTrueForTrueAndForNumbersOtherThanZero) {
    for (const Json::Value& object :
         {With(true), With(1), With(-1), With(1u), With(0.5), UInt64(18446744073709551615ULL), With(kInfinity)}) {
        EXPECT_TRUE(tolm::ReadBool(object, "m"));
    }
    for (const Json::Value& object : {With(false), With(0), With(0u), With(0.0), With(-0.0), With("true"), With("1"),
                                      kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_FALSE(tolm::ReadBool(object, "m")) << object;
    }
}

TEST(ReadReal, ReturnsNumbersOfAllKindsAndZeroForOtherTypes) {
    EXPECT_EQ(tolm::ReadReal(With(1.5), "m"), 1.5);
    EXPECT_EQ(tolm::ReadReal(With(-7), "m"), -7.0);
    EXPECT_EQ(tolm::ReadReal(With(4294967295u), "m"), 4294967295.0);
    EXPECT_EQ(tolm::ReadReal(UInt64(18446744073709551615ULL), "m"), 18446744073709551616.0);
    EXPECT_EQ(tolm::ReadReal(With(1e300), "m"), 1e300);
    EXPECT_EQ(tolm::ReadReal(With(true), "m"), 1.0);
    for (const Json::Value& object : {With("1.5"), kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(tolm::ReadReal(object, "m"), 0.0);
    }
}

TEST(ReadText, ReturnsStringsAndScalarsAsStrings) {
    EXPECT_EQ(tolm::ReadText(kText, "m"), "12");
    EXPECT_EQ(tolm::ReadText(kEmptyText, "m"), "");
    EXPECT_EQ(tolm::ReadText(With(std::string("a\0b", 3)), "m"), std::string("a\0b", 3));
    EXPECT_EQ(tolm::ReadText(With(-1), "m"), "-1");
    EXPECT_EQ(tolm::ReadText(UInt64(18446744073709551615ULL), "m"), "18446744073709551615");
    EXPECT_EQ(tolm::ReadText(With(1.5), "m"), "1.5");
    EXPECT_EQ(tolm::ReadText(With(true), "m"), "true");
    EXPECT_EQ(tolm::ReadText(With(false), "m"), "false");
    for (const Json::Value& object : {kArray, kObject, kNull, kMissing}) EXPECT_EQ(tolm::ReadText(object, "m"), "");
}

TEST(ReadMember, OfAnythingThatIsNotAnObjectIsMissing) {
    Json::Value array(Json::arrayValue);
    array.append(5);
    for (const Json::Value& document : {Json::Value(), Json::Value(5), Json::Value("m"), Json::Value(true),
                                        Json::Value(1.5), Json::Value(Json::arrayValue), array}) {
        EXPECT_EQ(tolm::ReadInt(document, "m"), 0);
        EXPECT_EQ(tolm::ReadUInt(document, "m"), 0u);
        EXPECT_EQ(tolm::ReadUInt64(document, "m"), 0ULL);
        EXPECT_FALSE(tolm::ReadBool(document, "m"));
        EXPECT_EQ(tolm::ReadReal(document, "m"), 0.0);
        EXPECT_EQ(tolm::ReadText(document, "m"), "");
    }
}

TEST(ReadMember, DoesNotAddAMember) {
    const Json::Value object(Json::objectValue);
    tolm::ReadInt(object, "m");
    tolm::ReadText(object, "m");
    EXPECT_TRUE(object.empty());
}

}  // namespace
