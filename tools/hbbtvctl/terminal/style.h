// Colour for people at a terminal, and columns.
#pragma once

#include <string>
#include <vector>

namespace hbbtv::ctl {

// Nothing is coloured when standard output is no terminal, or NO_COLOR is set and not empty.
std::string Bold(const std::string& text);
std::string Dim(const std::string& text);
std::string Red(const std::string& text);
std::string Yellow(const std::string& text);
std::string Green(const std::string& text);

// Rows of cells, each column as wide as its widest cell, two blanks between, `indent` in front.
std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::string& indent);

// The same for tables whose last column is prose: it goes on below itself where the line would be too long.
std::string WrappedColumns(const std::vector<std::vector<std::string>>& rows, const std::string& indent);

// Every paragraph of the text behind the indent, and what of it does not fit behind `hanging`, or the indent again. A
// line is as long as the terminal's, 100 characters at most.
std::string Wrapped(const std::string& text, const std::string& indent, const std::string& hanging = "");

}  // namespace hbbtv::ctl
