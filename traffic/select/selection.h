// The records of a recording that the user has asked for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "traffic/record/recording.h"
#include "traffic/select/follow.h"
#include "traffic/select/redaction.h"
#include "traffic/view/filter.h"
#include "traffic/view/names.h"

namespace hbbtv::traffic {

struct SelectionSettings {
    std::string path;  // "-" is standard input
    std::string filter;
    std::optional<uint64_t> follow;  // a handle
    std::string from;                // "12:47:25", "2026-11-22T12:47:25.5", or ""
    std::string to;
    bool redacted = false;
    bool withPayloads = true;  // false if nothing but the filter looks at payloads
};

// Reads a recording. Not thread-safe.
class Selection {
  public:
    // Throws Failure(kUsage) about the filter, the times and the file.
    explicit Selection(const SelectionSettings& settings);

    // Of the recording; with another directory's name if it is redacted.
    const RecordingHead& Head() const { return mHead; }

    // Returns the next record that is selected.
    std::optional<Record> Next();

    // Returns what the records so far, also those that are not selected, have told about handles.
    const traffic::Names& Names() const { return mNames; }

    // Returns what is known of the handle that is followed.
    const Follow* Followed() const { return mFollow ? &*mFollow : nullptr; }

    // The lines that could not be read, and their number: see RecordingReader.
    const RecordingReader& Reader() const { return mReader; }

  private:
    bool Selected(const Record& record);

    const Filter mFilter;
    RecordingReader mReader;
    RecordingHead mHead;
    const bool mLearns;
    uint64_t mFrom = 0;  // wall clock
    uint64_t mTo = UINT64_MAX;
    std::optional<Follow> mFollow;
    std::optional<Redaction> mRedaction;
    traffic::Names mNames;
};

// Returns the wall-clock time in microseconds that a text means in a zone. A time without a date is the first one that
// is not before `start`. Throws Failure(kUsage).
uint64_t ParseTime(const std::string& text, const std::string& zone, uint64_t start);

}  // namespace hbbtv::traffic
