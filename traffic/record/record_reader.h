// Reads the lines of recordings. The JSON library is hidden here: that of the messages is several times as slow, and a
// recording has a million lines.
#pragma once

#include <memory>
#include <string_view>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// What is read of the messages. Skipped: their JSON is checked, objects are empty.
enum class Payloads { Read, Skipped };

class RecordReader {
  public:
    explicit RecordReader(Payloads payloads);
    ~RecordReader();

    // Members of other versions are ignored. Throws std::runtime_error with what is missing or has another type.
    Record Read(std::string_view line);

  private:
    struct Memory;

    const Payloads mPayloads;
    const std::unique_ptr<Memory> mMemory;  // of a document; reused
};

}  // namespace hbbtv::traffic
