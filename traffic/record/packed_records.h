// Many records in little memory: as the lines that a recording has, which are read again when they are needed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "traffic/record/record.h"
#include "traffic/record/record_reader.h"

namespace hbbtv::traffic {

// Not thread-safe.
class PackedRecords {
  public:
    void Add(const Record& record);

    size_t size() const { return mLines.size(); }

    // Reads the record of this place.
    Record At(size_t place) const;

  private:
    std::vector<std::string> mLines;
    std::unique_ptr<RecordReader> mReader = std::make_unique<RecordReader>(Payloads::Read);
};

}  // namespace hbbtv::traffic
