// A file of records: a line about the recording, then a line for each record.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/local_socket.h"
#include "traffic/record/line_reader.h"
#include "traffic/record/record.h"
#include "traffic/record/record_reader.h"

namespace hbbtv::traffic {

constexpr int kRecordingVersion = 1;

// The first line of a recording.
struct RecordingHead {
    int version = kRecordingVersion;
    std::string program;    // its name and version
    std::string directory;  // of the sockets
    std::string zone;       // of the machine's wall clock: "+01:00"
    TimeStamp time;         // of the beginning
};

// Writes a recording to a new file. Each record is in the file when Write() returns, whatever happens to the process.
class RecordingWriter {
  public:
    // "-" is standard output. Throws Failure(kUsage) if the file exists or cannot be created.
    RecordingWriter(const std::string& path, const RecordingHead& head);

    // Returns what is wrong, or an empty string. After an error, the file ends with a whole line, and later records are
    // tried again; their numbers show what is missing.
    std::string Write(const Record& record);

  private:
    std::string Append(const std::string& line);

    Descriptor mFile;
    uint64_t mSize = 0;  // of the whole lines
};

// Reads a recording record by record, so that its size does not matter.
class RecordingReader {
  public:
    // "-" is standard input. Throws Failure(kUsage) if the file cannot be read or is not a recording of this version.
    explicit RecordingReader(const std::string& path, Payloads payloads = Payloads::Read);

    const RecordingHead& Head() const { return mHead; }

    // Returns the next record that can be read, or nothing at the end.
    std::optional<Record> Next();

    // The lines that were skipped, with the reason: "traffic.ndjson:17: not valid JSON: ...". At most 100 are kept.
    const std::vector<std::string>& Problems() const { return mProblems; }
    uint64_t Skipped() const { return mSkipped; }

  private:
    void Skip(const std::string& reason);

    LineReader mLines;
    RecordReader mReader;
    RecordingHead mHead;
    std::vector<std::string> mProblems;
    uint64_t mSkipped = 0;
};

}  // namespace hbbtv::traffic
