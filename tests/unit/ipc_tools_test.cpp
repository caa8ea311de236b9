// Pointers as strings in JSON.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "ipc/src/tolm_hbbtv_ipc_tools.h"

namespace {

void* Pointer(uintptr_t number) {
    return reinterpret_cast<void*>(number);
}

// Returns the pointer that is read from the string; 0x5555 if it is unchanged.
uintptr_t ParsedFrom(const std::string& text) {
    Json::Value object(Json::objectValue);
    object["handle"] = text;
    void* out = Pointer(0x5555);
    EXPECT_EQ(TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out), 0) << text;
    return reinterpret_cast<uintptr_t>(out);
}

TEST(AddPointerValue, WritesLowerCaseHexadecimalWithALeading0x) {
    Json::Value object(Json::objectValue);
    TolmHbbtvIpcTools::AddPointerValue(Pointer(0xABCDEF12), "handle", object);
    EXPECT_EQ(object["handle"].asString(), "0xabcdef12");
    TolmHbbtvIpcTools::AddPointerValue(Pointer(1), "handle", object);
    EXPECT_EQ(object["handle"].asString(), "0x1");
    TolmHbbtvIpcTools::AddPointerValue(Pointer(0xFFFFFFFF), "handle", object);
    EXPECT_EQ(object["handle"].asString(), "0xffffffff");
}

TEST(AddPointerValue, WritesNullAsTheEmptyString) {
    Json::Value object(Json::objectValue);
    TolmHbbtvIpcTools::AddPointerValue(nullptr, "context", object);
    ASSERT_TRUE(object["context"].isString());
    EXPECT_EQ(object["context"].asString(), "");
}

TEST(AddPointerValue, ReplacesTheMemberAndKeepsTheOthers) {
    Json::Value object(Json::objectValue);
    object["handle"] = 5;
    object["other"] = 6;
    TolmHbbtvIpcTools::AddPointerValue(Pointer(0x10), "handle", object);
    EXPECT_EQ(object.toStyledString(), "{\n\t\"handle\" : \"0x10\",\n\t\"other\" : 6\n}\n");
}

TEST(ParsePointerValue, ReadsWhatWasWritten) {
    for (const uintptr_t number : {uintptr_t{1}, uintptr_t{0x7f001234}, uintptr_t{0xFFFFFFFF}, UINTPTR_MAX}) {
        Json::Value object(Json::objectValue);
        TolmHbbtvIpcTools::AddPointerValue(Pointer(number), "handle", object);
        void* out = nullptr;
        EXPECT_EQ(TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out), 0);
        EXPECT_EQ(out, Pointer(number));
    }
}

TEST(ParsePointerValue, ReadsHexadecimalOfEitherCaseWithAndWithout0x) {
    EXPECT_EQ(ParsedFrom("0x12ab"), 0x12abu);
    EXPECT_EQ(ParsedFrom("0X12AB"), 0x12abu);
    EXPECT_EQ(ParsedFrom("12ab"), 0x12abu);
    EXPECT_EQ(ParsedFrom("  0x12ab and more"), 0x12abu);
    EXPECT_EQ(ParsedFrom("0x0"), 0u);
}

TEST(ParsePointerValue, KeepsTheLowHalfOfANumberThatThePointerCannotHold) {
    EXPECT_EQ(ParsedFrom("0x123456789abcdef0"), static_cast<uintptr_t>(0x123456789abcdef0));
    EXPECT_EQ(ParsedFrom("0x100000000"), static_cast<uintptr_t>(0x100000000));
    EXPECT_EQ(ParsedFrom("ffffffff00000007"), static_cast<uintptr_t>(0xffffffff00000007));
}

TEST(ParsePointerValue, ReadsNullAsCLibrariesPrintIt) {
    EXPECT_EQ(ParsedFrom("(nil)"), 0u);
    EXPECT_EQ(ParsedFrom("  (nil) and more"), 0u);
    EXPECT_EQ(ParsedFrom("(nil"), 0x5555u);
}

TEST(ParsePointerValue, OfTheEmptyStringSucceedsAndLeavesThePointerUnchanged) {
    Json::Value object(Json::objectValue);
    TolmHbbtvIpcTools::AddPointerValue(nullptr, "context", object);
    void* out = Pointer(0x5555);
    EXPECT_EQ(TolmHbbtvIpcTools::ParsePointerValue(object, "context", &out), 0);
    EXPECT_EQ(out, Pointer(0x5555));
}

TEST(ParsePointerValue, OfAStringThatIsNotAPointerSucceedsAndLeavesThePointerUnchanged) {
    for (const char* text : {"", " ", "xyz", "-", "handle", "\xff\xff"}) EXPECT_EQ(ParsedFrom(text), 0x5555u) << text;
}

TEST(ParsePointerValue, FailsForAMemberThatIsNotAString) {
    Json::Value object(Json::objectValue);
    void* out = Pointer(0x5555);
    for (const Json::Value& member :
         {Json::Value(), Json::Value(5), Json::Value(5u), Json::Value(true), Json::Value(1.5),
          Json::Value(Json::arrayValue), Json::Value(Json::objectValue)}) {
        object["handle"] = member;
        EXPECT_EQ(TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out), -1);
    }
    EXPECT_EQ(out, Pointer(0x5555));
}

TEST(ParsePointerValue, FailsForAMissingMemberAndDoesNotAddIt) {
    const Json::Value object(Json::objectValue);
    void* out = Pointer(0x5555);
    EXPECT_EQ(TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out), -1);
    EXPECT_EQ(out, Pointer(0x5555));
    EXPECT_TRUE(object.empty());
}

TEST(ParsePointerValue, FailsForANullTarget) {
    Json::Value object(Json::objectValue);
    object["handle"] = "0x1";
    EXPECT_EQ(TolmHbbtvIpcTools::ParsePointerValue(object, "handle", nullptr), -1);
}

TEST(ParsePointerValue, FailsForADocumentThatIsNotAnObject) {
    void* out = Pointer(0x5555);
    for (const Json::Value& document :
         {Json::Value(), Json::Value(5), Json::Value("handle"), Json::Value(Json::arrayValue)}) {
        EXPECT_EQ(TolmHbbtvIpcTools::ParsePointerValue(document, "handle", &out), -1);
    }
    EXPECT_EQ(out, Pointer(0x5555));
}

}  // namespace
