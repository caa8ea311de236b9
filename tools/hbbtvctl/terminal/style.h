// Colors, columns and line wrapping for terminals.
#pragma once

#include <string>
#include <vector>

namespace hbbtv::ctl {

// These return the string unchanged if standard output is not a terminal, or NO_COLOR is set and not empty.
std::string Bold(const std::string& text);
std::string Dim(const std::string& text);
std::string Red(const std::string& text);
std::string Yellow(const std::string& text);
std::string Green(const std::string& text);

// Formats rows of cells. Each column is as wide as its widest cell; two blanks separate columns; lines begin with
// `indent`.
std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::string& indent);

// The same, but wraps the last column.
std::string WrappedColumns(const std::vector<std::vector<std::string>>& rows, const std::string& indent);

// Wraps each paragraph to the width of the terminal, at most 100 characters. The first line of a paragraph begins with
// `indent`, the following ones with `hanging`, or with the indent if it is empty.
std::string Wrapped(const std::string& text, const std::string& indent, const std::string& hanging = "");

}  // namespace hbbtv::ctl
