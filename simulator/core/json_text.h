// JSON text to documents and back. Nothing that arrives makes these functions throw or run away.
#pragma once

#include <json/value.h>

#include <string>

namespace hbbtv::sim {

// No message of the interface nests deeper than two levels.
constexpr int kDeepestNesting = 32;

// False and a sentence in `error` when the text is not one JSON document, or one that nests too deep.
bool ParseJson(const std::string& text, Json::Value& document, std::string& error);

// The indented form in which both sides send their documents.
std::string JsonText(const Json::Value& document);

}  // namespace hbbtv::sim
