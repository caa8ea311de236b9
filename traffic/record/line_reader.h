// Reads files of any size line by line.
#pragma once

#include <cstdint>
#include <string>

#include "common/local_socket.h"

namespace hbbtv::traffic {

class LineReader {
  public:
    // "-" is standard input. Of longer lines than `longest` bytes, one byte more is kept. Throws Failure(kUsage).
    LineReader(const std::string& path, size_t longest);

    // Reads a line without its end. Returns false at the end of the file. Throws Failure(kUsage).
    bool Next(std::string& line);

    // Returns whether the line that was read had an end; only the last one of a file has none, if it was cut.
    bool Whole() const { return mWhole; }

    // Returns "traffic.ndjson" or "standard input"; and with the number of the line that was read, "traffic.ndjson:17".
    const std::string& Name() const { return mName; }
    std::string Place() const { return mName + ":" + std::to_string(mNumber); }

  private:
    // Returns false at the end of the file.
    bool Fill();

    const std::string mName;
    const size_t mLongest;
    Descriptor mFile;
    std::string mBuffer;
    size_t mUsed = 0;  // of the buffer
    uint64_t mNumber = 0;
    bool mWhole = true;
};

}  // namespace hbbtv::traffic
