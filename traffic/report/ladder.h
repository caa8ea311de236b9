// A chart of the messages between processes, in the order of their times: one column a process, one row a message.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "traffic/record/record.h"
#include "traffic/view/names.h"

namespace hbbtv::traffic {

class Ladder {
  public:
    // A chart of more is unreadable.
    static constexpr size_t kMost = 2000;

    // `zone` is that of the recording.
    explicit Ladder(const std::string& zone) : mZone(zone) {}

    // Throws Failure(kUsage) at more than kMost records.
    void Add(const Record& record, const Names& names);

    // Returns the chart for a terminal, and as SVG, both with the latest messages at the bottom. In SVG, a message
    // shows all of its record while the pointer is over it.
    std::string Text() const;
    std::string Svg() const;

  private:
    struct Step {
        uint64_t wall = 0;
        size_t from = 0;  // columns; equal for what is not a message
        size_t to = 0;
        std::string text;
        std::string remark;  // behind the chart
        std::string whole;   // the line of its record
        bool failed = false;
    };

    size_t ColumnOf(const Peer& peer, bool platform);
    std::vector<Step> Sorted() const;

    const std::string mZone;
    std::vector<std::string> mColumns;
    std::vector<Step> mSteps;
    size_t mRecords = 0;
};

}  // namespace hbbtv::traffic
