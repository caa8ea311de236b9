// Components of services of which a line-up says little.
#pragma once

#include <string>

#include "television/line_up/line_up.h"

namespace hbbtv::sim {

// Adds a component with the next free tag. The PID is 0 when it is not known, and so the language is "und".
void AddPicture(Service& service, const std::string& encoding, int pid);
void AddSound(Service& service, const std::string& encoding, int pid);
void AddSubtitle(Service& service, const std::string& encoding, int pid);

}  // namespace hbbtv::sim
