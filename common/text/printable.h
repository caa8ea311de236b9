// Text of other programs and users on a terminal.
#pragma once

#include <string>

namespace hbbtv {

enum class LineBreaks { Escaped, Kept };

// Returns the string with control characters (C0, DEL, C1) and invalid UTF-8 written as \n or \x1b, so that it can
// neither look like further lines nor control the terminal. Write messages through it, unless each string in them is
// Quoted().
std::string Printable(const std::string& text, LineBreaks breaks = LineBreaks::Escaped);

}  // namespace hbbtv
