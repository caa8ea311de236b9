// The platform's end of what is measured, as a process of its own: one for the floor, one with the library's transport
// and JSON bases.
#pragma once

namespace hbbtv::bench {

// Both answer requests until standard input ends. A line with a number on standard input sends so many events.
int RunFloorPlatform();
int RunLibraryPlatform();

// The program's own arguments that start them.
constexpr char kFloorPlatform[] = "--as-floor-platform";
constexpr char kLibraryPlatform[] = "--as-library-platform";

// Socket files of the floor, in the directory TMPDIR.
constexpr char kFloorRequests[] = "floor_requests";
constexpr char kFloorEvents[] = "floor_events";

}  // namespace hbbtv::bench
