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

// Every line of the text behind the indent.
std::string Indented(const std::string& text, const std::string& indent);

}  // namespace hbbtv::ctl
