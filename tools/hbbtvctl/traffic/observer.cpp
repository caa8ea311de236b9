#include "traffic/observer.h"

#include <unistd.h>

#include <cstdio>

#include "common/text/json.h"
#include "traffic/view/line.h"

namespace hbbtv::ctl {

namespace {

constexpr uint64_t kLong = 1000000;  // microseconds that an exchange may be open

// Moves the cursor of a terminal to its upper left corner and clears what is below.
constexpr char kClear[] = "\x1b[H\x1b[J";

}  // namespace

Observer::Observer(const ObserverSettings& settings, Output& output, std::function<void()> onCount)
    : mSettings(settings), mFilter(settings.filter), mOutput(output), mOnCount(std::move(onCount)) {
    if (settings.file.empty()) return;
    traffic::RecordingHead head = settings.head;
    if (settings.redacted) traffic::Redaction::Apply(head);
    mWriter = std::make_unique<traffic::RecordingWriter>(settings.file, head);
}

// The filter selects by what is then redacted.
void Observer::Take(const traffic::Record& seen) {
    const bool selected = mFilter.Matches(seen);
    const std::optional<traffic::Record> redacted = Redacted(seen);
    const traffic::Record& record = redacted ? *redacted : seen;
    std::string line;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mNames.Learn(record);
        if (selected) mStatistics.Add(record);
        if (selected && !mSettings.json && !mSettings.statistics) line = Line(record, mNames, mSettings.head.zone);
    }
    if (mWriter != nullptr) Write(record);
    if (!selected || (mSettings.count != 0 && mShown == mSettings.count)) return;
    if (mSettings.json) line = WriteJson(ToJson(record));
    if (!mSettings.statistics) mOutput.Print(line);
    if (++mShown == mSettings.count) mOnCount();
}

std::optional<traffic::Record> Observer::Redacted(const traffic::Record& record) {
    if (!mSettings.redacted) return std::nullopt;
    traffic::Record redacted = record;
    std::lock_guard<std::mutex> lock(mMutex);
    mRedaction.Apply(redacted);
    return redacted;
}

// The file is tried again with each record: there may be room later.
void Observer::Write(const traffic::Record& record) {
    const std::string problem = mWriter->Write(record);
    if (problem.empty()) {
        ++mWritten;
    } else {
        ++mMissing;
    }
    if (problem == mProblem) return;
    mProblem = problem;
    if (problem.empty()) {
        std::fprintf(stderr, "hbbtvctl: %s can be written again; %llu records are missing\n", mSettings.file.c_str(),
                     static_cast<unsigned long long>(mMissing));
    } else {
        std::fprintf(stderr, "hbbtvctl: cannot write %s: %s; the traffic continues, its records are lost\n",
                     mSettings.file.c_str(), problem.c_str());
    }
}

void Observer::Show(const std::vector<traffic::Record>& open) {
    if (mSettings.statistics) {
        if (++mTicks % 4 == 0) ShowStatistics(open);
        return;
    }
    if (mSettings.json) return;
    const uint64_t now = TimeStamp().Monotonic();
    decltype(mAges) ages;
    for (const traffic::Record& record : open) {
        if (!mFilter.Matches(record)) continue;
        const uint64_t age = now - record.time.Monotonic();
        const std::pair<uint64_t, uint64_t> key{record.connection, record.time.Monotonic()};
        const auto shown = mAges.find(key);
        ages[key] = shown == mAges.end() ? 0 : shown->second;
        if (age < kLong || age < 2 * ages[key]) continue;
        ages[key] = age;
        const std::optional<traffic::Record> redacted = Redacted(record);
        std::lock_guard<std::mutex> lock(mMutex);
        mOutput.Print(Line(redacted ? *redacted : record, mNames, mSettings.head.zone) + "  open for " +
                      traffic::DurationText(age));
    }
    mAges.swap(ages);
}

void Observer::ShowStatistics(const std::vector<traffic::Record>& open) {
    traffic::Statistics statistics;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        statistics = mStatistics;
    }
    for (const traffic::Record& record : open) {
        if (mFilter.Matches(record)) statistics.Add(record);
    }
    if (mSettings.json) return mOutput.Print(WriteJson(statistics.Json()));
    mOutput.Print((isatty(STDOUT_FILENO) != 0 ? kClear : "") + statistics.Text(mSettings.head.zone));
}

void Observer::Finish() {
    if (!mSettings.json || mSettings.statistics) ShowStatistics({});
    if (mOutput.Lost() > 0) {
        std::fprintf(stderr, "hbbtvctl: %llu lines were not shown: standard output was not read in time\n",
                     static_cast<unsigned long long>(mOutput.Lost()));
    }
    if (mWriter == nullptr) return;
    // In one piece, since other output may go to the same place.
    const std::string missing = mMissing > 0 ? "; " + std::to_string(mMissing) + " are missing" : "";
    std::fprintf(stderr, "hbbtvctl: %llu records in %s%s\n", static_cast<unsigned long long>(mWritten),
                 mSettings.file.c_str(), missing.c_str());
}

}  // namespace hbbtv::ctl
