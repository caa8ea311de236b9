// Text with values in it: "{$name}", "{$start:time}", "{$name:26}".
#pragma once

#include <json/value.h>

#include <functional>
#include <string>
#include <vector>

namespace hbbtv::ctl {

struct Format {
    struct Piece {
        std::string text;                  // in front of the value
        std::string name;                  // of the value, without its "$"; empty: no value
        std::vector<std::string> members;  // of the value, from the outside to the inside: "info.appId"
        std::vector<std::string> forms;    // how it is written
    };

    std::vector<Piece> pieces;

    bool HasNames() const;
};

// Throws BadValue for an open brace or an unknown form.
Format ReadFormat(const std::string& text);

// Returns the text with the values that `valueOf` gives for names. `nameOf` returns the name that a handle was given.
std::string Filled(const Format& format, const std::function<Json::Value(const std::string&)>& valueOf,
                   const std::function<std::string(int64_t)>& nameOf);

// Returns the text as one cell of a table: control characters become dots, and what is too long is cut.
std::string OneLine(const std::string& text);

}  // namespace hbbtv::ctl
