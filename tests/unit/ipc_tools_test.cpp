// Pointers as text in JSON.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "ipc/src/tolm_hbbtv_ipc_tools.h"

namespace {

void* Pointer(uintptr_t number) {
    return reinterpret_cast<void*>(number);
}

// What is read from the text, starting from 0x5555.
uintptr_t ParsedFrom(const std::string& text) {
    Json::Value object(Json::objectValue);
    object["handle"] = text;
    void* out = Pointer(0x5555);
    EXPECT_EQ(0, TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out)) << text;
    return reinterpret_cast<uintptr_t>(out);
}

TEST(AddPointerValue, WritesLowerCaseHexadecimalWithALeading0x) {
    Json::Value object(Json::objectValue);
    TolmHbbtvIpcTools::AddPointerValue(Pointer(0xABCDEF12), "handle", object);
    EXPECT_EQ("0xabcdef12", object["handle"].asString());
    TolmHbbtvIpcTools::AddPointerValue(Pointer(1), "handle", object);
    EXPECT_EQ("0x1", object["handle"].asString());
    TolmHbbtvIpcTools::AddPointerValue(Pointer(0xFFFFFFFF), "handle", object);
    EXPECT_EQ("0xffffffff", object["handle"].asString());
}

TEST(AddPointerValue, WritesNullAsTheEmptyText) {
    Json::Value object(Json::objectValue);
    TolmHbbtvIpcTools::AddPointerValue(nullptr, "context", object);
    ASSERT_TRUE(object["context"].isString());
    EXPECT_EQ("", object["context"].asString());
}

TEST(AddPointerValue, ReplacesWhatWasThereAndLeavesOtherMembers) {
    Json::Value object(Json::objectValue);
    object["handle"] = 5;
    object["other"] = 6;
    TolmHbbtvIpcTools::AddPointerValue(Pointer(0x10), "handle", object);
    EXPECT_EQ("{\n\t\"handle\" : \"0x10\",\n\t\"other\" : 6\n}\n", object.toStyledString());
}

TEST(ParsePointerValue, ReadsWhatWasWritten) {
    for (const uintptr_t number : {uintptr_t{1}, uintptr_t{0x7f001234}, uintptr_t{0xFFFFFFFF}, UINTPTR_MAX}) {
        Json::Value object(Json::objectValue);
        TolmHbbtvIpcTools::AddPointerValue(Pointer(number), "handle", object);
        void* out = nullptr;
        EXPECT_EQ(0, TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out));
        EXPECT_EQ(Pointer(number), out);
    }
}

TEST(ParsePointerValue, ReadsHexadecimalOfEitherCaseWithAndWithout0x) {
    EXPECT_EQ(0x12abu, ParsedFrom("0x12ab"));
    EXPECT_EQ(0x12abu, ParsedFrom("0X12AB"));
    EXPECT_EQ(0x12abu, ParsedFrom("12ab"));
    EXPECT_EQ(0x12abu, ParsedFrom("  0x12ab and more"));
    EXPECT_EQ(0u, ParsedFrom("0x0"));
}

TEST(ParsePointerValue, OfTheEmptyTextSucceedsAndLeavesThePointerAsItWas) {
    Json::Value object(Json::objectValue);
    TolmHbbtvIpcTools::AddPointerValue(nullptr, "context", object);
    void* out = Pointer(0x5555);
    EXPECT_EQ(0, TolmHbbtvIpcTools::ParsePointerValue(object, "context", &out));
    EXPECT_EQ(Pointer(0x5555), out);
}

TEST(ParsePointerValue, OfATextThatIsNoPointerSucceedsAndLeavesThePointerAsItWas) {
    for (const char* text : {"", " ", "xyz", "-", "handle", "\xff\xff"}) EXPECT_EQ(0x5555u, ParsedFrom(text)) << text;
}

TEST(ParsePointerValue, FailsForAMemberThatIsNoText) {
    Json::Value object(Json::objectValue);
    void* out = Pointer(0x5555);
    for (const Json::Value& member :
         {Json::Value(), Json::Value(5), Json::Value(5u), Json::Value(true), Json::Value(1.5),
          Json::Value(Json::arrayValue), Json::Value(Json::objectValue)}) {
        object["handle"] = member;
        EXPECT_EQ(-1, TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out));
    }
    EXPECT_EQ(Pointer(0x5555), out);
}

TEST(ParsePointerValue, FailsForAMissingMemberAndAddsNone) {
    const Json::Value object(Json::objectValue);
    void* out = Pointer(0x5555);
    EXPECT_EQ(-1, TolmHbbtvIpcTools::ParsePointerValue(object, "handle", &out));
    EXPECT_EQ(Pointer(0x5555), out);
    EXPECT_TRUE(object.empty());
}

TEST(ParsePointerValue, FailsWithoutAPlaceForThePointer) {
    Json::Value object(Json::objectValue);
    object["handle"] = "0x1";
    EXPECT_EQ(-1, TolmHbbtvIpcTools::ParsePointerValue(object, "handle", nullptr));
}

TEST(ParsePointerValue, FailsForADocumentThatIsNoObject) {
    void* out = Pointer(0x5555);
    for (const Json::Value& document :
         {Json::Value(), Json::Value(5), Json::Value("handle"), Json::Value(Json::arrayValue)}) {
        EXPECT_EQ(-1, TolmHbbtvIpcTools::ParsePointerValue(document, "handle", &out));
    }
    EXPECT_EQ(Pointer(0x5555), out);
}

}  // namespace
