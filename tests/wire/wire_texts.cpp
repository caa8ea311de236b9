#include "wire_texts.h"

namespace hbbtv::test {

namespace {

WireText Unchanged(const char* name, const std::string& text, const std::string& onTheWire) {
    return {name, text, onTheWire, text};
}

std::string Repeated(int times, const std::string& text) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

}  // namespace

const std::vector<WireText>& WireTexts() {
    static const auto* const texts = new std::vector<WireText>{
        Unchanged("Empty", "", R"("")"),
        Unchanged("Quotes", R"(say "no" \ /)", R"("say \"no\" \\ /")"),
        Unchanged("ControlCharacters", "\b\f\n\r\t\x01\x1f\x7f", "\"\\b\\f\\n\\r\\t\\u0001\\u001f\x7f\""),
        Unchanged("Utf8", "K\xc3\xb6ln \xe2\x82\xac \xf0\x9f\x93\xba", R"("K\u00f6ln \u20ac \ud83d\udcfa")"),
        Unchanged("TwoBytesEach", "\xc2\x80\xdf\xbf \xce\xa9 \xd0\x96 \xd7\xa9 \xd8\xb9",
                  R"("\u0080\u07ff \u03a9 \u0416 \u05e9 \u0639")"),
        Unchanged("ThreeBytesEach", "\xe0\xa0\x80\xef\xbf\xbf \xe6\x97\xa5 \xe2\x80\xa8 \xef\xbb\xbf",
                  R"("\u0800\uffff \u65e5 \u2028 \ufeff")"),
        Unchanged("FourBytesEach", "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf", R"("\ud800\udc00\udbff\udfff")"),
        Unchanged("CombiningMarks", "e\xcc\x81", R"("e\u0301")"),
        {"NoUtf8", "a\xff z", R"("a\ufffd z")", "a\xef\xbf\xbd z"},
        Unchanged("ZeroByte", std::string("a\0b", 3), R"("a\u0000b")"),
        Unchanged("Long", std::string(64 * 1024, 'x'), "\"" + std::string(64 * 1024, 'x') + "\""),
        Unchanged("LongUtf8", Repeated(16 * 1024, "\xf0\x9f\x93\xba"),
                  "\"" + Repeated(16 * 1024, R"(\ud83d\udcfa)") + "\""),
        Unchanged("LongQuotes", std::string(64 * 1024, '"'), "\"" + Repeated(64 * 1024, "\\\"") + "\""),
        Unchanged("LooksLikeJson", R"(","method":0,")", R"("\",\"method\":0,\"")"),
        Unchanged("LooksLikeAFormat", "%s%n%d", R"("%s%n%d")"),
    };
    return *texts;
}

}  // namespace hbbtv::test
