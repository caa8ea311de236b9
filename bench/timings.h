// The library relative to the floor, in time per message. All processes run on one processor.
#pragma once

#include <vector>

#include "report/table.h"

namespace hbbtv::bench {

std::vector<Row> Timings();

}  // namespace hbbtv::bench
