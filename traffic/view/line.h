// A record as a line of text.
#pragma once

#include <cstdint>
#include <string>

#include "traffic/record/record.h"
#include "traffic/view/names.h"

namespace hbbtv::traffic {

// Returns the record on one line, without a line break at its end: time, a star for an event, operation, members,
// reply, duration. Handles have their names, long strings are cut. Control characters are escaped. `zone` is that of
// the recording, "+01:00", or "" for UTC.
//
//   12:47:25.458629   channel.GetName c_handle=0x1388f0af "Das Erste HD" -> 0 name="Das Erste HD"  0.312 ms
//   12:47:26.000113 * channel_config.changed reserved="A"
std::string Line(const Record& record, const Names& names, const std::string& zone = "");

// Returns the time of day in a zone, "12:47:25.458629"; and the microseconds from UTC that a zone is, 0 if it is not
// one.
std::string TimeOfDay(uint64_t wall, const std::string& zone);
int64_t ZoneOffset(const std::string& zone);

// Returns "0.312 ms", or seconds from one second on: "5.201 s".
std::string DurationText(uint64_t microseconds);

// Returns the members of a payload without its envelope: `c_handle=0x1388f0af "Das Erste HD"`.
std::string MembersText(const Record& record, const Message& message, const Names& names);

}  // namespace hbbtv::traffic
