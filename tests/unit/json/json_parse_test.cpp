// Which texts are JSON documents, and that no text makes the parser throw: on the device, that would end the process.
#include <json/json.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ipc/src/tolm_json_text.h"
#include "json_reader.h"

namespace {

bool Parses(const std::string& text, Json::Value& document) {
    return tolm::ParseJson(std::vector<unsigned char>(text.begin(), text.end()), document);
}

bool Parses(const std::string& text) {
    Json::Value document;
    return Parses(text, document);
}

bool ReaderAccepts(const std::string& text) {
    Json::Value document;
    return ::ReaderAccepts(text, document);
}

std::string Times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

std::string InArrays(int depth, const std::string& inner) {
    return Times(depth, "[") + inner + Times(depth, "]");
}

std::string InObjects(int depth, const std::string& inner) {
    return Times(depth, "{\"a\":") + inner + Times(depth, "}");
}

std::string InBoth(int depth, const std::string& inner) {
    std::string begin;
    std::string end;
    for (int i = 0; i < depth; ++i) {
        begin += i % 2 == 0 ? "[" : "{\"a\":";
        end.insert(0, i % 2 == 0 ? "]" : "}");
    }
    return begin + inner + end;
}

void ExpectParses(bool expected, const std::string& text, const char* what) {
    EXPECT_EQ(Parses(text), expected) << what;
    EXPECT_EQ(ReaderAccepts(text), expected) << "jsoncpp: " << what;
}

TEST(ParseJson, ReadsAnObject) {
    Json::Value document;
    ASSERT_TRUE(Parses("{\"ret\" : 3, \"name\" : \"x\"}\n", document));
    EXPECT_EQ(document["ret"].asInt(), 3);
    EXPECT_EQ(document["name"].asString(), "x");
}

TEST(ParseJson, ReadsEveryKindOfValueAsADocument) {
    for (const char* text : {"null", "true", "false", "0", "-1", "1.5", "\"text\"", "[]", "{}", " \t\r\n{}\n"}) {
        EXPECT_TRUE(Parses(text)) << text;
    }
}

TEST(ParseJson, CollectsComments) {
    Json::Value document;
    ASSERT_TRUE(Parses("// before\n{\"a\": 1}", document));
    EXPECT_EQ(document.getComment(Json::commentBefore), "// before");
}

TEST(ParseJson, ReplacesThePreviousDocument) {
    Json::Value document;
    ASSERT_TRUE(Parses("{\"a\": 1}", document));
    ASSERT_TRUE(Parses("{\"b\": 2}", document));
    EXPECT_FALSE(document.isMember("a"));
}

TEST(ParseJson, RefusesInvalidTexts) {
    for (const char* text : {"",
                             " ",
                             "\n",
                             "{",
                             "}",
                             "[",
                             "]",
                             "[1,",
                             "[1",
                             "{\"a\"",
                             "{\"a\":",
                             "{\"a\":1",
                             "{\"a\" 1}",
                             "{a:1}",
                             "{1:1}",
                             "nul",
                             "tru",
                             "xyz",
                             "\"open",
                             "\"\\",
                             "\"\\u12",
                             "\"\\u12g4\"",
                             "\"\\q\"",
                             "/",
                             "/*",
                             "/* open",
                             "//",
                             "[1 2]",
                             "{\"a\":1 \"b\":2}",
                             "[,]",
                             "[1,,2]",
                             "{,}",
                             "'a'",

                             "1e",
                             "+1",
                             "[0x10]",
                             "NaN",
                             "Infinity",
                             "{\"a\":1]",
                             "[1}",
                             "\xef\xbb\xbf{}",
                             "\xff",
                             "1e999"}) {
        ExpectParses(false, text, text);
    }
}

TEST(ParseJson, RefusesAZeroByteOutsideAStringAndKeepsAnEscapedOneInside) {
    ExpectParses(false, std::string("\0{}", 3), "zero byte before");
    ExpectParses(false, std::string("{\0}", 3), "zero byte inside");
    Json::Value document;
    ASSERT_TRUE(Parses("[\"a\\u0000b\"]", document));
    EXPECT_EQ(document[0].asString(), std::string("a\0b", 3));
}

TEST(ParseJson, IgnoresTextAfterTheDocument) {
    for (const char* text : {"{} x", "{}}", "{}{", "[] 1"}) ExpectParses(true, text, text);
    ExpectParses(true, "{}" + Times(3000, "["), "brackets behind an object");
    ExpectParses(true, InArrays(1000, "") + Times(3000, "["), "brackets behind the deepest array");
}

TEST(ParseJson, AcceptsAScalarIn999ContainersButNotIn1000) {
    for (const char* scalar : {"1", "null", "\"text\"", "-2.5", "true"}) {
        ExpectParses(true, InArrays(999, scalar), scalar);
        ExpectParses(true, InObjects(999, scalar), scalar);
        ExpectParses(true, InBoth(999, scalar), scalar);
        for (const int depth : {1000, 1001, 5000}) {
            ExpectParses(false, InArrays(depth, scalar), scalar);
            ExpectParses(false, InObjects(depth, scalar), scalar);
            ExpectParses(false, InBoth(depth, scalar), scalar);
        }
    }
}

TEST(ParseJson, AcceptsA1000thEmptyContainerButNotA1001st) {
    for (const char* empty : {"[]", "{}", "[ ]", "{ }", "[\t\r\n]"}) {
        ExpectParses(true, InArrays(998, empty), empty);
        ExpectParses(true, InArrays(999, empty), empty);
        ExpectParses(true, InObjects(999, empty), empty);
        ExpectParses(true, InBoth(999, empty), empty);
        ExpectParses(false, InArrays(1000, empty), empty);
        ExpectParses(false, InObjects(1000, empty), empty);
        ExpectParses(false, InBoth(1000, empty), empty);
    }
}

TEST(ParseJson, RefusesAnInnermostArrayThatDoesNotCloseImmediately) {
    // The reader tries to read a value here, which would be nested too deeply, before it looks at the text.
    for (const char* end : {"", " ", "\n"}) ExpectParses(false, Times(1000, "[") + end, "the text's end");
    for (const char* inner : {",", ":", "}", "/", "/**/", "//\n", "\"", "x", "\v]", "\f]"}) {
        ExpectParses(false, Times(1000, "[") + inner, inner);
        ExpectParses(false, InArrays(1000, inner), inner);
    }
    ExpectParses(false, Times(1000, "[") + std::string(1, '\0'), "zero byte");
    ExpectParses(true, InArrays(999, "/**/1"), "a comment one level higher");
}

TEST(ParseJson, RefusesAnInnermostObjectWithAMember) {
    for (const char* inner : {"\"a\":1", "\"a\":", "\"a\"", "\"\":[]", "\"a\":/**/1", "/**/\"a\":1"}) {
        ExpectParses(false, InObjects(999, "{" + std::string(inner) + "}"), inner);
    }
    ExpectParses(true, InObjects(999, "{/* nothing */}"), "a comment in the innermost object");
}

TEST(ParseJson, DoesNotCountBracketsInStrings) {
    const std::string brackets = Times(3000, "[{");
    ExpectParses(true, "\"" + brackets + "\"", "text");
    ExpectParses(true, "{\"" + brackets + "\":\"" + brackets + "\"}", "name and value");
    ExpectParses(true, "[\"\\\"" + brackets + "\"]", "behind an escaped quotation mark");
    ExpectParses(true, "[\"\\\\\"," + Times(900, "[") + Times(900, "]") + "]", "behind an escaped backslash");
    ExpectParses(false, "[\"\\\\\"," + InArrays(999, "1") + "]", "too deep behind an escaped backslash");
    ExpectParses(true, InArrays(999, "\"" + brackets + "\""), "in the deepest text");
}

TEST(ParseJson, DoesNotCountBracketsInComments) {
    const std::string brackets = Times(3000, "[{");
    ExpectParses(true, "/*" + brackets + "*/{}", "block");
    ExpectParses(true, "//" + brackets + "\n{}", "line");
    ExpectParses(true, "//" + brackets + "\r{}", "line ended by a carriage return");
    ExpectParses(true, "[1, /*" + brackets + "\"*/ 2]", "with a quotation mark");
    ExpectParses(true, "/*/" + brackets + "*/{}", "a slash is not yet the end");
    ExpectParses(true, "{} //" + brackets, "at the end");
    ExpectParses(false, "/**/" + InArrays(1001, ""), "too deep behind a comment");
    ExpectParses(false, "//\n" + InArrays(1000, "1"), "too deep behind a line");
    ExpectParses(false, "/*\"*/" + InArrays(1000, "1"), "too deep behind a quotation mark in a comment");
    ExpectParses(false, "[\"//\"," + InArrays(999, "1") + "]", "too deep behind a text that looks like a comment");
}

TEST(ParseJson, SurvivesBracketsThatDoNotMatch) {
    for (const std::string& text :
         {Times(5000, "["), Times(5000, "{"), Times(5000, "]"), Times(5000, "}"), Times(5000, "[}"), Times(5000, "{]"),
          Times(5000, "[{"), Times(2000, "]") + Times(5000, "["), Times(999, "[") + "}" + Times(5000, "["),
          Times(999, "[") + "\"" + Times(5000, "["), Times(999, "[") + "/*" + Times(5000, "[")}) {
        ExpectParses(false, text, text.substr(0, 4).c_str());
    }
}

TEST(ParseJson, DoesNotCountSiblingsAsDepth) {
    ExpectParses(true, "[" + Times(5000, "[],{},") + "[]]", "siblings");
}

// The byte after the last one would turn a slash into a comment.
TEST(ParseJson, ReadsNoByteAfterTheLast) {
    for (const char next : {'/', '*'}) {
        const std::string text = "[" + Times(1000, "[],") + "/" + next;
        std::vector<unsigned char> bytes(text.begin(), text.end());
        bytes.pop_back();
        Json::Value document;
        EXPECT_FALSE(tolm::ParseJson(bytes, document)) << next;
    }
}

TEST(ParseJson, AcceptsExactly16MiBAndRefusesOneByteMore) {
    std::string text = "{\"a\":1}";
    text.resize(size_t{16} << 20, ' ');
    EXPECT_TRUE(Parses(text));
    text += ' ';
    EXPECT_FALSE(Parses(text));
}

TEST(ParseJson, DoesNotCollectTheCommentsOfALongDocument) {
    Json::Value document;
    ASSERT_TRUE(Parses("// before\n{\"a\": \"" + std::string(16 << 10, 'x') + "\"}", document));
    EXPECT_FALSE(document.hasComment(Json::commentBefore));
}

// With comments collected, this one would take an hour.
TEST(ParseJson, AcceptsAMillionCommentsAfterAValue) {
    EXPECT_TRUE(Parses("{\"a\":1" + Times(1000000, "/**/") + "}"));
}

TEST(ParseJson, WorksAfterAFailure) {
    EXPECT_FALSE(Parses("[1, {\"a\": [// open"));
    EXPECT_FALSE(Parses(InArrays(1000, "1")));
    Json::Value document;
    ASSERT_TRUE(Parses("{\"a\": 1}", document));
    EXPECT_EQ(document.toStyledString(), "{\n\t\"a\" : 1\n}\n");
}

}  // namespace
