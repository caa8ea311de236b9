// What the command line asks for.
#pragma once

#include <functional>
#include <string>

namespace hbbtv::ctl {

struct Invocation {
    std::string directory;     // of the sockets
    std::function<int()> run;  // runs the command and returns the exit code
};

}  // namespace hbbtv::ctl
