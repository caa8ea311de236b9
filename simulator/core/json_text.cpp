#include "core/json_text.h"

#include <json/reader.h>

#include <exception>
#include <memory>

namespace hbbtv::sim {

bool ParseJson(const std::string& text, Json::Value& document, std::string& error) {
    static const std::unique_ptr<Json::CharReader> reader = [] {
        Json::CharReaderBuilder builder;
        builder["collectComments"] = false;
        builder["failIfExtra"] = true;
        builder["stackLimit"] = kDeepestNesting;
        return std::unique_ptr<Json::CharReader>(builder.newCharReader());
    }();
    try {
        return reader->parse(text.data(), text.data() + text.size(), &document, &error);
    } catch (const std::exception&) {
        // The reader throws for one reason only.
        error = "nested deeper than " + std::to_string(kDeepestNesting) + " levels";
        return false;
    }
}

std::string JsonText(const Json::Value& document) {
    return document.toStyledString();
}

}  // namespace hbbtv::sim
