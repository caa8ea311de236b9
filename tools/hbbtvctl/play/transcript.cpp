#include "play/transcript.h"

#include <cstdio>

#include "common/text/json.h"
#include "common/text/printable.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

using FractionalMilliseconds = std::chrono::duration<double, std::milli>;

// Prints request, result and duration.
std::string Line(const std::string& asked, const std::string& answered, double milliseconds) {
    char duration[40];
    std::snprintf(duration, sizeof(duration), "%7.2f ms", milliseconds);
    std::string text = asked;
    text.resize(std::max<size_t>(text.size(), 64), ' ');
    text += " -> " + answered;
    text.resize(std::max<size_t>(text.size(), 96), ' ');
    return text + " " + duration;
}

}  // namespace

void Transcript::Title(const std::string& title) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mMode == Mode::Steps) std::printf("\n%s\n", Printable(title).c_str());
    std::fflush(stdout);
}

void Transcript::Print(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mMode != Mode::Json) std::printf("%s\n", Printable(line).c_str());
    std::fflush(stdout);
}

void Transcript::Begin() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mInStep = true;
    mBegun = Clock::now();
}

void Transcript::End(const StepReport& report) {
    const auto now = Clock::now();
    const std::lock_guard<std::mutex> lock(mMutex);
    const double milliseconds = FractionalMilliseconds(now - mBegun).count();
    const bool shown = mMode == Mode::Steps && !report.asked.empty();
    if (mMode == Mode::Json) WriteJsonLocked(report, milliseconds);
    if (shown && mQuiet > 0) ++mQuietSteps;
    if (shown && mQuiet == 0) WriteLineLocked(mBegun, Line(report.asked, report.answered, milliseconds));
    for (const auto& [when, text] : mDeferred) WriteLineLocked(when, text);
    mDeferred.clear();
    mInStep = false;
    std::fflush(stdout);
}

void Transcript::BeginQuiet() {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mQuiet++ != 0) return;
    mQuietSteps = 0;
    mQuietBegun = Clock::now();
}

void Transcript::EndQuiet() {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (--mQuiet != 0 || mMode != Mode::Steps) return;
    WriteLineLocked(mQuietBegun, Line(std::to_string(mQuietSteps) + " steps", "done",
                                      FractionalMilliseconds(Clock::now() - mQuietBegun).count()));
    std::fflush(stdout);
}

void Transcript::Event(const std::string& method, const std::string& arguments) {
    if (mMode != Mode::Steps) return;
    std::string line = "    <- " + method;
    line.resize(std::max<size_t>(line.size(), 44), ' ');
    line += "  " + arguments;
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mInStep) {
        mDeferred.emplace_back(Clock::now(), line);
    } else {
        WriteLineLocked(Clock::now(), line);
        std::fflush(stdout);
    }
}

void Transcript::WriteLineLocked(Clock::time_point when, const std::string& text) {
    std::printf("%8.3f s  %s\n", std::chrono::duration<double>(when - mStart).count(), Printable(text).c_str());
}

void Transcript::WriteJsonLocked(const StepReport& report, double milliseconds) {
    Json::Value document = report.details;
    document["file"] = report.file;
    document["line"] = report.line;
    document["step"] = report.keyword;
    document["ms"] = static_cast<Json::Int64>(milliseconds);
    const bool unexpected = report.failure && report.failure->Code() == kUnexpected;
    document["outcome"] = !report.failure ? "held" : unexpected ? "failed" : "error";
    if (report.failure) document["problem"] = report.failure->what();
    std::printf("%s\n", WriteJson(document).c_str());
}

}  // namespace hbbtv::ctl
