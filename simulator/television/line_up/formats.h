// The line-up formats, one function each. `name` stands for the text in messages; what cannot be used by itself is
// skipped with a warning, and a text that cannot be used at all throws Fatal.
#pragma once

#include <string>

#include "television/line_up/line_up.h"
#include "text/lines.h"

namespace hbbtv::sim {

// An M3U playlist of streams.
LineUp ParseM3u(const std::string& text, const std::string& name, const FileWarning& warn);

// The services of an enigma2 receiver, versions 4 and 5. `path` is where the text comes from: its bouquets lie beside
// it.
LineUp ParseLamedb(const std::string& text, const std::string& path, const FileWarning& warn);

// Whatever the text is, found out from its beginning.
LineUp ParseAnyLineUp(const std::string& text, const std::string& path, const FileWarning& warn);

}  // namespace hbbtv::sim
