// The styled form of documents: byte for byte that of Json::Value::toStyledString().
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "ipc/src/tolm_json_text.h"

namespace {

std::string Styled(const Json::Value& document) {
    const std::vector<unsigned char> bytes = tolm::ToStyledBytes(document);
    return std::string(bytes.begin(), bytes.end());
}

void ExpectLikeJsoncpp(const Json::Value& document) {
    const std::string expected = document.toStyledString();
    EXPECT_EQ(Styled(document), expected);

    Json::Value member(Json::objectValue);
    member["value"] = document;
    EXPECT_EQ(member.toStyledString(), Styled(member));

    Json::Value element(Json::arrayValue);
    element.append(document);
    element.append(document);
    EXPECT_EQ(element.toStyledString(), Styled(element));
}

Json::Value Parsed(const std::string& text) {
    Json::Value document;
    Json::CharReaderBuilder builder;
    std::string errors;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &document, &errors)) << text << errors;
    return document;
}

TEST(StyledText, IsIndentedByTabsAndEndsWithANewline) {
    Json::Value request(Json::objectValue);
    request["type"] = 3;
    request["method"] = 11;
    request["vb_handle"] = "0x12ab";
    request["trickPlay"] = false;
    EXPECT_EQ(Styled(request),
              "{\n"
              "\t\"method\" : 11,\n"
              "\t\"trickPlay\" : false,\n"
              "\t\"type\" : 3,\n"
              "\t\"vb_handle\" : \"0x12ab\"\n"
              "}\n");
}

TEST(StyledText, OfNullIsTheWordNull) {
    EXPECT_EQ(Styled(Json::Value()), "null\n");
}

TEST(StyledText, OfEmptyContainersIsAPairOfBrackets) {
    EXPECT_EQ(Styled(Json::Value(Json::objectValue)), "{}\n");
    EXPECT_EQ(Styled(Json::Value(Json::arrayValue)), "[]\n");
}

TEST(StyledText, KeepsEmbeddedZeroBytesAsEscapes) {
    Json::Value document(Json::objectValue);
    document["text"] = std::string("a\0b", 3);
    EXPECT_EQ(Styled(document), "{\n\t\"text\" : \"a\\u0000b\"\n}\n");
}

TEST(StyledText, HasNoTerminatingZero) {
    EXPECT_EQ(tolm::ToStyledBytes(Json::Value()).size(), 5u);
}

TEST(StyledText, IsThatOfJsoncppForAllTypesAndEmptyContainers) {
    const Json::Value values[] = {Json::Value(),
                                  Json::Value(true),
                                  Json::Value(false),
                                  Json::Value(1),
                                  Json::Value(1u),
                                  Json::Value(0.5),
                                  Json::Value(""),
                                  Json::Value("text"),
                                  Json::Value(Json::arrayValue),
                                  Json::Value(Json::objectValue)};
    for (const Json::Value& value : values) ExpectLikeJsoncpp(value);
}

TEST(StyledText, IsThatOfJsoncppForNumbersAtAllLimits) {
    for (const Json::Int64 number : {Json::Value::minInt64, Json::Value::maxInt64, Json::Int64{Json::Value::minInt},
                                     Json::Int64{Json::Value::maxInt}, Json::Int64{0}, Json::Int64{-1}}) {
        ExpectLikeJsoncpp(Json::Value(number));
    }
    for (const Json::UInt64 number : {Json::Value::maxUInt64, Json::UInt64{Json::Value::maxUInt}, Json::UInt64{0}}) {
        ExpectLikeJsoncpp(Json::Value(number));
    }
    using Real = std::numeric_limits<double>;
    for (const double number : {0.0,
                                -0.0,
                                0.1,
                                1.0 / 3,
                                -2.5,
                                1e15,
                                1e16,
                                1e17,
                                1e22,
                                1e-7,
                                123456789012345680.0,
                                3.0,
                                Real::max(),
                                Real::lowest(),
                                Real::min(),
                                Real::denorm_min(),
                                Real::epsilon(),
                                Real::infinity(),
                                -Real::infinity(),
                                Real::quiet_NaN()}) {
        ExpectLikeJsoncpp(Json::Value(number));
    }
}

TEST(StyledText, IsThatOfJsoncppForUtf8OfEveryLength) {
    for (const char* text : {"\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
                             "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf", "Gr\xc3\xbc\xc3\x9f Gott",
                             "\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e", "\xf0\x9f\x93\xba"}) {
        ExpectLikeJsoncpp(Json::Value(text));
    }
}

TEST(StyledText, IsThatOfJsoncppForEveryPairOfBytes) {
    Json::Value pairs(Json::arrayValue);
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            pairs.append(std::string{static_cast<char>(first), static_cast<char>(second)});
        }
    }
    EXPECT_EQ(pairs.toStyledString(), Styled(pairs));
}

TEST(StyledText, IsThatOfJsoncppForInvalidUtf8) {
    for (const char* text : {"\x80", "\xbf\xbf", "\xc3", "a\xc3", "\xe2\x82", "\xf0\x9f\x93", "\xc0\x80",
                             "\xe0\x80\x80", "\xf0\x80\x80\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80",
                             "\xf8\x88\x80\x80\x80", "\xfe", "\xff\xff\xff\xff", "\xc3(", "\xe2(\xa1", "\xf0(\x8c("}) {
        ExpectLikeJsoncpp(Json::Value(text));
    }
}

TEST(StyledText, IsThatOfJsoncppForControlCharactersInValuesAndNames) {
    for (int c = 0; c < 0x20; ++c) {
        const std::string text = std::string("a") + static_cast<char>(c) + "b";
        ExpectLikeJsoncpp(Json::Value(text));
        Json::Value named(Json::objectValue);
        named[text] = text;
        ExpectLikeJsoncpp(named);
    }
    for (const char* text : {"\"", "\\", "/", "\\u0041", "</script>", "'"}) ExpectLikeJsoncpp(Json::Value(text));
}

TEST(StyledText, IsThatOfJsoncppForStringsOf64KiB) {
    for (const char* unit : {"x", "\"", "\xc3\xa4", "\x01", "\xff"}) {
        std::string text;
        while (text.size() < 65536) text += unit;
        ExpectLikeJsoncpp(Json::Value(text));
    }
}

TEST(StyledText, IsThatOfJsoncppForArraysOnOneLineAndOnSeveral) {
    for (int count = 0; count < 100; ++count) {
        Json::Value array(Json::arrayValue);
        for (int i = 0; i < count; ++i) array.append(i * 1000);
        ExpectLikeJsoncpp(array);
    }
}

TEST(StyledText, IsThatOfJsoncppForDeepDocuments) {
    Json::Value document(7);
    for (int depth = 0; depth < 300; ++depth) {
        Json::Value outer(depth % 2 == 0 ? Json::arrayValue : Json::objectValue);
        if (depth % 2 == 0) {
            outer.append(document);
        } else {
            outer["inner"] = document;
        }
        document = outer;
    }
    EXPECT_EQ(document.toStyledString(), Styled(document));
}

TEST(StyledText, IsThatOfJsoncppForDocumentsWithComments) {
    for (const char* text :
         {"// before\n{}", "/* before */ {\"a\": 1} // after", "{\"a\": 1 // same line\n, \"b\": 2}",
          "{\n// before a\n\"a\": 1,\n/* before b\n in two lines */\n\"b\": [1, // one\n 2] // b\n}\n// end\n",
          "[\n// only a comment\n1]", "// one\n// two\n\"text\""}) {
        const Json::Value document = Parsed(text);
        EXPECT_EQ(document.toStyledString(), Styled(document)) << text;
    }
    Json::Value commented(5);
    commented.setComment(std::string("// before"), Json::commentBefore);
    commented.setComment(std::string("// beside"), Json::commentAfterOnSameLine);
    commented.setComment(std::string("// after"), Json::commentAfter);
    ExpectLikeJsoncpp(commented);
}

TEST(StyledText, DoesNotDependOnEarlierDocumentsOfTheThread) {
    Json::Value large(Json::objectValue);
    for (int i = 0; i < 1000; ++i) large["member" + std::to_string(i)] = std::string(100, 'x');
    const Json::Value commented = Parsed("// before\n[1, 2] // after\n");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(large.toStyledString(), Styled(large));
        EXPECT_EQ(commented.toStyledString(), Styled(commented));
        EXPECT_EQ(Styled(Json::Value()), "null\n");
    }
}

TEST(StyledText, IsTheSameFromManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t] {
            Json::Value document(Json::objectValue);
            document["thread"] = t;
            const std::string expected = "{\n\t\"thread\" : " + std::to_string(t) + "\n}\n";
            for (int i = 0; i < 1000; ++i) ASSERT_EQ(Styled(document), expected);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
