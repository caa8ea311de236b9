// Strings with values: "{$name}", "{$start:time}", "{$name:26}".
#pragma once

#include <json/value.h>

#include <functional>
#include <string>
#include <vector>

namespace hbbtv::ctl {

struct Format {
    struct Piece {
        std::string text;                  // before the value
        std::string name;                  // of the value, without its "$"; empty: no value
        std::vector<std::string> members;  // of the value, outermost first: "info.appId"
        std::vector<std::string> forms;    // how it is formatted
    };

    std::vector<Piece> pieces;

    bool HasNames() const;
};

// Throws BadValue for an open brace or an unknown form.
Format ReadFormat(const std::string& text);

// Returns the string with the values that `valueOf` returns for names. `nameOf` returns the name of a handle.
std::string Filled(const Format& format, const std::function<Json::Value(const std::string&)>& valueOf,
                   const std::function<std::string(int64_t)>& nameOf);

// Returns the string as one cell of a table: control characters become dots, and a longer string is cut.
std::string OneLine(const std::string& text);

}  // namespace hbbtv::ctl
