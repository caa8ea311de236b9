// The programs that the browser starts: Chromium, once or twice, and the remote control of the viewer.
#pragma once

#include <string>

#include "devtools/process.h"
#include "options.h"

namespace hbbtv::browser {

constexpr int kWidthOfRemote = 220;  // beside the screen, in the window

devtools::ChromiumOptions ChromiumFor(const Options& options);
devtools::ChromiumOptions WindowFor(const Options& options);

// Runs a program with one argument, and does not wait for it.
void RunProgram(const std::string& program, const std::string& argument);

}  // namespace hbbtv::browser
