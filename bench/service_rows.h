// The service as a process that uses all processors: many clients at once, memory, and starting.
#pragma once

#include <string>
#include <vector>

#include "report/table.h"

namespace hbbtv::bench {

std::vector<Row> ServiceRows();

// The role of a client process: calls a method of one family. A line "NUMBER" on standard input makes it call for so
// many milliseconds, and print the number of calls per second.
int RunClient(int family);

}  // namespace hbbtv::bench
