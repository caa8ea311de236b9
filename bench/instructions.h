// Instructions in user space per message, counted by valgrind. They hardly depend on the machine, so a bound on them
// notices a slower library whatever else the machine does.
#pragma once

#include <vector>

#include "report/table.h"

namespace hbbtv::bench {

std::vector<Row> Instructions();

// The roles of the processes in which instructions are counted.
int RunCountedClient();
int RunCountedService();

}  // namespace hbbtv::bench
