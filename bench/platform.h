// The platform's end, in a separate process: one for the floor, and one with the transport and JSON bases of the
// library, which serves all families.
#pragma once

#include <json/json.h>

namespace hbbtv::bench {

// Both reply to requests until the end of standard input. A line with a number makes them send that many events.
int RunFloorPlatform();
int RunLibraryPlatform();

// Socket files of the floor in $TMPDIR.
constexpr char kFloorRequests[] = "floor_requests";
constexpr char kFloorEvents[] = "floor_events";

}  // namespace hbbtv::bench
