// The command line of the service process: the directory of the sockets.
#pragma once

#include <optional>

// Takes the directory from the command line and sets TMPDIR to it, which the library reads when it is first used: call
// this before an interface is published and before there is another thread. Returns the exit code if the process is to
// end: after --help and --version, or because of a wrong argument, which is reported.
std::optional<int> TakeArguments(int argc, char** argv);
