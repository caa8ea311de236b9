// Programmes from an XMLTV file: what of it is used, and how, is documented in docs/simulator.md.
#pragma once

#include <memory>
#include <string>

#include "television/line_up/line_up.h"
#include "television/programmes/listed_guide.h"
#include "text/lines.h"

namespace hbbtv::sim {

// For the services of the line-up. `name` stands for the text in messages. What cannot be used by itself is skipped
// with a warning; a text that cannot be used at all throws Fatal.
std::unique_ptr<ListedGuide> ParseXmltv(std::string text, const std::string& name, const LineUp& lineUp,
                                        const FileWarning& warn);

std::unique_ptr<ListedGuide> ReadXmltv(const std::string& path, const LineUp& lineUp, const FileWarning& warn);

}  // namespace hbbtv::sim
