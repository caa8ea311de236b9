#include "common/text/quote.h"

#include <json/value.h>
#include <json/writer.h>

namespace hbbtv {

namespace {

std::string Written(const Json::Value& value, bool utf8) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = utf8;
    return Json::writeString(builder, value);
}

}  // namespace

std::string Quoted(const std::string& text) {
    const Json::Value value(text.data(), text.data() + text.size());
    const std::string ascii = Written(value, false);
    // Invalid UTF-8 has become \ufffd there; \u0080 to \u009f are control characters.
    const bool harmless = ascii.find("\\ufffd") == std::string::npos && ascii.find("\\u008") == std::string::npos &&
                          ascii.find("\\u009") == std::string::npos;
    std::string quoted = harmless ? Written(value, true) : ascii;
    for (size_t at = 0; (at = quoted.find('\x7f', at)) != std::string::npos;) quoted.replace(at, 1, "\\u007f");
    return quoted;
}

}  // namespace hbbtv
