// Reads the lines of recordings that this program writes, several times as fast as a JSON reader that keeps everything.
#pragma once

#include <optional>
#include <string_view>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// What is read of the messages' JSON. Skipped: objects are empty, their syntax is checked. Other payloads are read.
enum class Payloads { Read, Skipped };

// Returns the record, or nothing if the line has anything unusual, such as an escape in a name or an error: FromJson()
// then decides. What it returns is what FromJson() returns.
std::optional<Record> ScanRecord(std::string_view line, Payloads payloads);

}  // namespace hbbtv::traffic
