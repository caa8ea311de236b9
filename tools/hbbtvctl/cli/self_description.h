// Commands that print what the program knows about its own command line.
#pragma once

#include <string>
#include <vector>

#include "cli/invocation.h"

namespace CLI {
class App;
}  // namespace CLI

namespace hbbtv::ctl {

void AddCompletion(CLI::App& app, Invocation& invocation);
void AddMan(CLI::App& app, Invocation& invocation);

// Runs `hbbtvctl complete -- WORD...`, the request of the completion scripts: prints the candidates for the last word,
// each followed by a tab and a hint. Returns the exit code.
int Complete(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace hbbtv::ctl
