// The members of an object as the wire is read: what cannot be converted reads like a missing member.
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

TEST(ReadInt, GivesIntegersThatFit) {
    EXPECT_EQ(0, tolm::ReadInt(With(0), "m"));
    EXPECT_EQ(-1, tolm::ReadInt(With(-1), "m"));
    EXPECT_EQ(2147483647, tolm::ReadInt(With(2147483647), "m"));
    EXPECT_EQ(2147483647, tolm::ReadInt(With(2147483647u), "m"));
    EXPECT_EQ(-2147483647 - 1, tolm::ReadInt(Int64(-2147483648LL), "m"));
}

TEST(ReadInt, GivesZeroForIntegersOutOfRange) {
    EXPECT_EQ(0, tolm::ReadInt(Int64(2147483648LL), "m"));
    EXPECT_EQ(0, tolm::ReadInt(Int64(-2147483649LL), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(4294967295u), "m"));
    EXPECT_EQ(0, tolm::ReadInt(Int64(9223372036854775807LL), "m"));
    EXPECT_EQ(0, tolm::ReadInt(UInt64(18446744073709551615ULL), "m"));
}

TEST(ReadInt, CutsRealsAndGivesZeroForThoseOutOfRange) {
    EXPECT_EQ(1, tolm::ReadInt(With(1.5), "m"));
    EXPECT_EQ(-1, tolm::ReadInt(With(-1.5), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(-0.5), "m"));
    EXPECT_EQ(2147483647, tolm::ReadInt(With(2147483647.0), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(2147483648.0), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(1e300), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(-1e300), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(kInfinity), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(kNaN), "m"));
}

TEST(ReadInt, GivesZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(0, tolm::ReadInt(object, "m"));
    }
    EXPECT_EQ(1, tolm::ReadInt(With(true), "m"));
    EXPECT_EQ(0, tolm::ReadInt(With(false), "m"));
}

TEST(ReadUInt, GivesIntegersThatFitAndZeroForOthers) {
    EXPECT_EQ(0u, tolm::ReadUInt(With(0), "m"));
    EXPECT_EQ(2147483648u, tolm::ReadUInt(Int64(2147483648LL), "m"));
    EXPECT_EQ(4294967295u, tolm::ReadUInt(With(4294967295u), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(With(-1), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(Int64(4294967296LL), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(UInt64(18446744073709551615ULL), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(Int64(-9223372036854775807LL - 1), "m"));
}

TEST(ReadUInt, CutsRealsAndGivesZeroForThoseOutOfRange) {
    EXPECT_EQ(1u, tolm::ReadUInt(With(1.5), "m"));
    EXPECT_EQ(4294967295u, tolm::ReadUInt(With(4294967295.0), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(With(4294967296.0), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(With(-0.5), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(With(-1.0), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(With(kInfinity), "m"));
    EXPECT_EQ(0u, tolm::ReadUInt(With(kNaN), "m"));
}

TEST(ReadUInt, GivesZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(0u, tolm::ReadUInt(object, "m"));
    }
    EXPECT_EQ(1u, tolm::ReadUInt(With(true), "m"));
}

TEST(ReadInt64, GivesIntegersThatFitAndZeroForOthers) {
    EXPECT_EQ(-1, tolm::ReadInt64(With(-1), "m"));
    EXPECT_EQ(4294967295LL, tolm::ReadInt64(With(4294967295u), "m"));
    EXPECT_EQ(9223372036854775807LL, tolm::ReadInt64(Int64(9223372036854775807LL), "m"));
    EXPECT_EQ(9223372036854775807LL, tolm::ReadInt64(UInt64(9223372036854775807ULL), "m"));
    EXPECT_EQ(-9223372036854775807LL - 1, tolm::ReadInt64(Int64(-9223372036854775807LL - 1), "m"));
    EXPECT_EQ(0, tolm::ReadInt64(UInt64(9223372036854775808ULL), "m"));
    EXPECT_EQ(0, tolm::ReadInt64(UInt64(18446744073709551615ULL), "m"));
}

TEST(ReadInt64, CutsRealsAndGivesZeroForThoseOutOfRange) {
    EXPECT_EQ(1, tolm::ReadInt64(With(1.5), "m"));
    EXPECT_EQ(-1, tolm::ReadInt64(With(-1.5), "m"));
    EXPECT_EQ(9223372036854774784LL, tolm::ReadInt64(With(9223372036854774784.0), "m"));
    EXPECT_EQ(-9223372036854775807LL - 1, tolm::ReadInt64(With(-9223372036854775808.0), "m"));
    EXPECT_EQ(0, tolm::ReadInt64(With(9223372036854775808.0), "m"));
    EXPECT_EQ(0, tolm::ReadInt64(With(-9223372036854777856.0), "m"));
    EXPECT_EQ(0, tolm::ReadInt64(With(kInfinity), "m"));
    EXPECT_EQ(0, tolm::ReadInt64(With(kNaN), "m"));
}

TEST(ReadInt64, GivesZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(0, tolm::ReadInt64(object, "m"));
    }
    EXPECT_EQ(1, tolm::ReadInt64(With(true), "m"));
}

TEST(ReadUInt64, GivesIntegersThatFitAndZeroForOthers) {
    EXPECT_EQ(4294967296ULL, tolm::ReadUInt64(Int64(4294967296LL), "m"));
    EXPECT_EQ(9223372036854775807ULL, tolm::ReadUInt64(Int64(9223372036854775807LL), "m"));
    EXPECT_EQ(9223372036854775808ULL, tolm::ReadUInt64(UInt64(9223372036854775808ULL), "m"));
    EXPECT_EQ(18446744073709551615ULL, tolm::ReadUInt64(UInt64(18446744073709551615ULL), "m"));
    EXPECT_EQ(0ULL, tolm::ReadUInt64(With(-1), "m"));
    EXPECT_EQ(0ULL, tolm::ReadUInt64(Int64(-9223372036854775807LL - 1), "m"));
}

TEST(ReadUInt64, CutsRealsAndGivesZeroForThoseOutOfRange) {
    EXPECT_EQ(1ULL, tolm::ReadUInt64(With(1.5), "m"));
    EXPECT_EQ(18446744073709549568ULL, tolm::ReadUInt64(With(18446744073709549568.0), "m"));
    EXPECT_EQ(0ULL, tolm::ReadUInt64(With(18446744073709551616.0), "m"));
    EXPECT_EQ(0ULL, tolm::ReadUInt64(With(-0.5), "m"));
    EXPECT_EQ(0ULL, tolm::ReadUInt64(With(kInfinity), "m"));
    EXPECT_EQ(0ULL, tolm::ReadUInt64(With(kNaN), "m"));
}

TEST(ReadUInt64, GivesZeroForOtherTypesAndOneForTrue) {
    for (const Json::Value& object : {kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(0ULL, tolm::ReadUInt64(object, "m"));
    }
    EXPECT_EQ(1ULL, tolm::ReadUInt64(With(true), "m"));
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

TEST(ReadReal, GivesNumbersOfAllKindsAndZeroForOtherTypes) {
    EXPECT_EQ(1.5, tolm::ReadReal(With(1.5), "m"));
    EXPECT_EQ(-7.0, tolm::ReadReal(With(-7), "m"));
    EXPECT_EQ(4294967295.0, tolm::ReadReal(With(4294967295u), "m"));
    EXPECT_EQ(18446744073709551616.0, tolm::ReadReal(UInt64(18446744073709551615ULL), "m"));
    EXPECT_EQ(1e300, tolm::ReadReal(With(1e300), "m"));
    EXPECT_EQ(1.0, tolm::ReadReal(With(true), "m"));
    for (const Json::Value& object : {With("1.5"), kText, kEmptyText, kArray, kObject, kNull, kMissing}) {
        EXPECT_EQ(0.0, tolm::ReadReal(object, "m"));
    }
}

TEST(ReadText, GivesTextsAndTheTextOfScalars) {
    EXPECT_EQ("12", tolm::ReadText(kText, "m"));
    EXPECT_EQ("", tolm::ReadText(kEmptyText, "m"));
    EXPECT_EQ(std::string("a\0b", 3), tolm::ReadText(With(std::string("a\0b", 3)), "m"));
    EXPECT_EQ("-1", tolm::ReadText(With(-1), "m"));
    EXPECT_EQ("18446744073709551615", tolm::ReadText(UInt64(18446744073709551615ULL), "m"));
    EXPECT_EQ("1.5", tolm::ReadText(With(1.5), "m"));
    EXPECT_EQ("true", tolm::ReadText(With(true), "m"));
    EXPECT_EQ("false", tolm::ReadText(With(false), "m"));
    for (const Json::Value& object : {kArray, kObject, kNull, kMissing}) EXPECT_EQ("", tolm::ReadText(object, "m"));
}

TEST(ReadMember, OfAnythingThatIsNoObjectIsMissing) {
    Json::Value array(Json::arrayValue);
    array.append(5);
    for (const Json::Value& document : {Json::Value(), Json::Value(5), Json::Value("m"), Json::Value(true),
                                        Json::Value(1.5), Json::Value(Json::arrayValue), array}) {
        EXPECT_EQ(0, tolm::ReadInt(document, "m"));
        EXPECT_EQ(0u, tolm::ReadUInt(document, "m"));
        EXPECT_EQ(0ULL, tolm::ReadUInt64(document, "m"));
        EXPECT_FALSE(tolm::ReadBool(document, "m"));
        EXPECT_EQ(0.0, tolm::ReadReal(document, "m"));
        EXPECT_EQ("", tolm::ReadText(document, "m"));
    }
}

TEST(ReadMember, AddsNoMember) {
    const Json::Value object(Json::objectValue);
    tolm::ReadInt(object, "m");
    tolm::ReadText(object, "m");
    EXPECT_TRUE(object.empty());
}

}  // namespace
