// The contents of one <programme>, except its time and channel.
#pragma once

#include <functional>
#include <pugixml.hpp>
#include <string>

#include "television/programmes/programme.h"

namespace hbbtv::sim {

// The text of an element's first child of that name, printable.
std::string ShownText(const pugi::xml_node& parent, const char* child);

// `warn` is called with a message for each value that is left out.
void FillProgramme(Programme& programme, const pugi::xml_node& node,
                   const std::function<void(const std::string&)>& warn);

}  // namespace hbbtv::sim
