// Components of services for line-up formats without details.
#pragma once

#include <string>

#include "television/line_up/line_up.h"

namespace hbbtv::sim {

// Adds a component with the next free tag. An unknown PID is 0; the language is "und".
void AddPicture(Service& service, const std::string& encoding, int pid);
void AddSound(Service& service, const std::string& encoding, int pid);
void AddSubtitle(Service& service, const std::string& encoding, int pid);

}  // namespace hbbtv::sim
