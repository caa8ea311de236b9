// The line-up formats, one function each. `name` is the file's name in messages. Unusable lines are skipped with a
// warning; an unusable file throws Fatal.
#pragma once

#include <string>

#include "television/line_up/line_up.h"
#include "text/lines.h"

namespace hbbtv::sim {

// An M3U playlist of streams.
LineUp ParseM3u(const std::string& text, const std::string& name, const FileWarning& warn);

// The services of an enigma2 receiver, versions 4 and 5. `path` is that of the lamedb; its bouquets are next to it.
LineUp ParseLamedb(const std::string& text, const std::string& path, const FileWarning& warn);

// Any format, detected from the start of the file.
LineUp ParseAnyLineUp(const std::string& text, const std::string& path, const FileWarning& warn);

}  // namespace hbbtv::sim
