// The tokens of a play's line.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "play/language/script.h"

namespace hbbtv::ctl {

struct Token {
    enum class Kind { Word, Name, Text, Number, Time, Sign, End };

    Kind kind = Kind::End;
    std::string text;  // Name: without its "$"; Text: unescaped
    Json::Value number;
    Place place;

    bool Is(const std::string& sign) const { return (kind == Kind::Sign || kind == Kind::Word) && text == sign; }
};

// An error in a line, with its place.
struct SyntaxError {
    Place place;
    std::string reason;
};

// Returns the tokens of the line at `next` and, while a bracket is open, of the following ones; sets `next` to the
// first line not read. Throws SyntaxError.
std::vector<Token> ReadTokens(const std::vector<std::string>& lines, size_t& next);

}  // namespace hbbtv::ctl
