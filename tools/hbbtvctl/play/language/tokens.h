// The words of a play's line.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "play/language/script.h"

namespace hbbtv::ctl {

struct Token {
    enum class Kind { Word, Name, Text, Number, Time, Sign, End };

    Kind kind = Kind::End;
    std::string text;  // Name: without its "$"; Text: what it stands for
    Json::Value number;
    Place place;

    bool Is(const std::string& sign) const { return (kind == Kind::Sign || kind == Kind::Word) && text == sign; }
};

// What is wrong with a line, and where.
struct SyntaxError {
    Place place;
    std::string reason;
};

// Returns the tokens of the line at `next` and, while a bracket is open, of those that follow; `next` becomes the
// first line that is not read. Throws SyntaxError.
std::vector<Token> ReadTokens(const std::vector<std::string>& lines, size_t& next);

}  // namespace hbbtv::ctl
