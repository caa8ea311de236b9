// The page that shows traffic in a browser: as one file with the records in it, or served by `hbbtvctl web`, which
// sends the records as they come.
#pragma once

#include <functional>
#include <string>

#include "traffic/record/record.h"
#include "traffic/record/recording.h"

namespace hbbtv::traffic {

struct PageSettings {
    RecordingHead head;
    bool live = false;       // served, so that it asks the server for records
    bool simulator = false;  // the server passes commands on to a simulator; live only
};

// Returns the document without records.
std::string LivePage(const PageSettings& settings);

// Makes one HTML file of a recording. It needs nothing else, and loads nothing from anywhere. The memory does not
// depend on the number of records.
class HtmlWriter {
  public:
    using Write = std::function<void(const std::string&)>;

    // `write` gets the file, part by part.
    HtmlWriter(const RecordingHead& head, Write write);

    void Add(const Record& record);

    // Writes the end of the document.
    void Finish();

  private:
    void EndBlock();

    const Write mWrite;
    size_t mInBlock = 0;  // records; 0: no block has begun
};

}  // namespace hbbtv::traffic
