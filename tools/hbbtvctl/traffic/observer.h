// What `hbbtvctl monitor` does with the records of the relay: shows, counts and writes them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "traffic/output.h"
#include "traffic/record/recording.h"
#include "traffic/select/redaction.h"
#include "traffic/view/filter.h"
#include "traffic/view/names.h"
#include "traffic/view/statistics.h"

namespace hbbtv::ctl {

struct ObserverSettings {
    std::string filter;
    bool json = false;
    bool statistics = false;  // instead of the records
    std::string file;         // of the recording; empty: none
    bool redacted = false;    // what is shown and what is written
    uint64_t count = 0;       // of shown records, 0: no limit
    traffic::RecordingHead head;
};

class Observer {
  public:
    // `onCount` is called when enough records have been shown. Throws Failure for a wrong filter or file.
    Observer(const ObserverSettings& settings, Output& output, std::function<void()> onCount);

    // For the thread of the recorder.
    void Take(const traffic::Record& record);

    // For another thread, four times a second: shows each exchange that has been open for a second, and again each time
    // its age has doubled; or once a second the statistics.
    void Show(const std::vector<traffic::Record>& open);

    // Shows the statistics, and what has not been shown or written. Call it when there are no more records.
    void Finish();

  private:
    void Write(const traffic::Record& record);

    // Returns nothing if records are shown as they are.
    std::optional<traffic::Record> Redacted(const traffic::Record& record);
    void ShowStatistics(const std::vector<traffic::Record>& open);

    const ObserverSettings mSettings;
    const traffic::Filter mFilter;
    Output& mOutput;
    const std::function<void()> mOnCount;
    std::unique_ptr<traffic::RecordingWriter> mWriter;
    std::string mProblem;  // of writing
    uint64_t mWritten = 0;
    uint64_t mMissing = 0;  // in the file
    uint64_t mShown = 0;
    uint64_t mTicks = 0;
    std::mutex mMutex;
    traffic::Redaction mRedaction;                            // guarded by mMutex
    traffic::Names mNames;                                    // guarded by mMutex
    traffic::Statistics mStatistics;                          // guarded by mMutex
    std::map<std::pair<uint64_t, uint64_t>, uint64_t> mAges;  // of open exchanges that were shown: connection, time
};

}  // namespace hbbtv::ctl
