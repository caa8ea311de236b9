// Random texts, the same in each run: ParseJson() never throws and agrees with jsoncpp's reader.
#include <json/json.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "build_kind.h"
#include "ipc/src/tolm_json_text.h"
#include "json_reader.h"

namespace {

// Fewer under a sanitizer, which is ten times slower.
constexpr int kRounds = hbbtv::test::kSanitized ? 3000 : 30000;

class Random {
  public:
    explicit Random(unsigned seed) : mEngine(seed) {}

    size_t Below(size_t limit) { return mEngine() % limit; }
    char Byte() { return static_cast<char>(mEngine()); }

  private:
    std::mt19937 mEngine;
};

void ExpectWhatTheReaderSays(const std::string& text) {
    Json::Value expectedDocument;
    const bool expected = ReaderAccepts(text, expectedDocument);
    Json::Value document;
    ASSERT_EQ(tolm::ParseJson(std::vector<unsigned char>(text.begin(), text.end()), document), expected) << text;
    if (!expected) return;
    ASSERT_EQ(expectedDocument.toStyledString(), document.toStyledString()) << text;
}

TEST(ParseJsonFuzz, OfRandomBytes) {
    Random random(1);
    for (int round = 0; round < kRounds; ++round) {
        std::string text(random.Below(100), '\0');
        for (char& c : text) c = random.Byte();
        ASSERT_NO_FATAL_FAILURE(ExpectWhatTheReaderSays(text));
    }
}

TEST(ParseJsonFuzz, OfRandomPiecesOfJson) {
    const std::vector<std::string> pieces = {"{",    "}",     "[",    "]",    ",",  ":",      "\"a\"", "\"", "1",
                                             "-0.5", "1e5",   "true", "null", "/*", "*/",     "//",    "\n", " ",
                                             "\\",   "\\u00", "\r",   "{}",   "[]", "\"b\":", "\xc3",  "\t", "false"};
    Random random(2);
    for (int round = 0; round < kRounds; ++round) {
        std::string text;
        for (size_t count = random.Below(30); count > 0; --count) text += pieces[random.Below(pieces.size())];
        ASSERT_NO_FATAL_FAILURE(ExpectWhatTheReaderSays(text));
    }
}

TEST(ParseJsonFuzz, OfDocumentsWithSomeBytesChanged) {
    const std::string document =
        "// a comment\n{\"ret\" : 0, \"channel\" : \"0x7f3210\", \"list\" : [1, -2, 3.5e10, null, true, "
        "{\"name\" : \"Das \\u00dcbliche \\ud83d\\udcfa\", \"empty\" : {}, \"none\" : []}], /* end */ \"last\" : "
        "false}\n";
    Random random(3);
    for (int round = 0; round < kRounds; ++round) {
        std::string text = document;
        for (size_t changes = 1 + random.Below(4); changes > 0; --changes) {
            const size_t at = random.Below(text.size());
            switch (random.Below(3)) {
                case 0:
                    text[at] = random.Byte();
                    break;
                case 1:
                    text.erase(at, 1 + random.Below(5));
                    break;
                default:
                    text.insert(at, 1, document[random.Below(document.size())]);
                    break;
            }
            if (text.empty()) break;
        }
        ASSERT_NO_FATAL_FAILURE(ExpectWhatTheReaderSays(text));
    }
}

// A document near the depth at which the reader throws, then a few pieces that may close it, deepen it or make it
// invalid.
TEST(ParseJsonFuzz, OfTextsNestedAsDeeplyAsTheLimit) {
    const std::vector<std::string> pieces = {"[", "]",  "{",  "}",    "\"a\":", "\"[\"", ",",  "1",  "/*[*/", "//{\n",
                                             " ", "[]", "{}", "null", "\n",     "/",     "\"", "\\", "\r",    "\x01"};
    const std::vector<std::string> openings = {"[", "{\"a\":", "[1,", "{\"b\":1,\"a\":", "[/*]*/", "[ "};
    Random random(4);
    for (int round = 0; round < kRounds / 30; ++round) {
        std::string text;
        const size_t depth = 994 + random.Below(10);
        const bool uniform = random.Below(2) == 0;
        const size_t kind = random.Below(openings.size());
        for (size_t i = 0; i < depth; ++i) text += openings[uniform ? kind : random.Below(openings.size())];
        for (size_t count = random.Below(12); count > 0; --count) text += pieces[random.Below(pieces.size())];
        const size_t closers = random.Below(3) == 0 ? 0 : 1100;
        for (size_t i = 0; i < closers; ++i) text += random.Below(60) == 0 ? "}" : "]";
        ASSERT_NO_FATAL_FAILURE(ExpectWhatTheReaderSays(text));
    }
}

}  // namespace
