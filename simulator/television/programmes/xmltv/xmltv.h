// Programmes from an XMLTV file; docs/simulator.md documents the elements that are used.
#pragma once

#include <memory>
#include <string>

#include "television/line_up/line_up.h"
#include "television/programmes/listed_guide.h"
#include "text/lines.h"

namespace hbbtv::sim {

// Reads the programmes of the line-up's services. `name` is the file's name in messages. Unusable parts are skipped
// with a warning; an unusable file throws Fatal.
std::unique_ptr<ListedGuide> ParseXmltv(std::string text, const std::string& name, const LineUp& lineUp,
                                        const FileWarning& warn);

std::unique_ptr<ListedGuide> ReadXmltv(const std::string& path, const LineUp& lineUp, const FileWarning& warn);

}  // namespace hbbtv::sim
