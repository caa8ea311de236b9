// What one <programme> says of itself, beside its time and its channel.
#pragma once

#include <functional>
#include <pugixml.hpp>
#include <string>

#include "television/programmes/programme.h"

namespace hbbtv::sim {

// The text of an element's first child of that name, fit to be shown.
std::string ShownText(const pugi::xml_node& parent, const char* child);

// `warn` gets a sentence about whatever is left out.
void FillProgramme(Programme& programme, const pugi::xml_node& node,
                   const std::function<void(const std::string&)>& warn);

}  // namespace hbbtv::sim
