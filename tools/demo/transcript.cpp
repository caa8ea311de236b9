#include "transcript.h"

#include <cstdio>

namespace hbbtv::demo {

void Transcript::Step(const std::string& title) {
    std::lock_guard<std::mutex> lock(mMutex);
    std::printf("\n%s\n", title.c_str());
    std::fflush(stdout);
}

void Transcript::Text(const std::string& lines) {
    std::lock_guard<std::mutex> lock(mMutex);
    std::printf("%s", lines.c_str());
    std::fflush(stdout);
}

void Transcript::Ask(const std::string& what) {
    std::lock_guard<std::mutex> lock(mMutex);
    mAsked = what;
    mAskedAt = Clock::now();
}

void Transcript::Answer(const std::string& answer) {
    const auto now = Clock::now();
    std::lock_guard<std::mutex> lock(mMutex);
    char line[160];
    std::snprintf(line, sizeof(line), "%-46s -> %-34s %7.2f ms", mAsked.c_str(), answer.c_str(),
                  std::chrono::duration<double, std::milli>(now - mAskedAt).count());
    LineLocked(mAskedAt, line);
    for (const auto& [when, text] : mDeferred) LineLocked(when, text);
    mDeferred.clear();
    mAsked.clear();
}

void Transcript::Event(const std::string& what, const std::string& values) {
    char line[160];
    std::snprintf(line, sizeof(line), "    <- %-39s    %s", what.c_str(), values.c_str());
    std::lock_guard<std::mutex> lock(mMutex);
    if (mAsked.empty()) {
        LineLocked(Clock::now(), line);
    } else {
        mDeferred.emplace_back(Clock::now(), line);
    }
}

void Transcript::LineLocked(Clock::time_point when, const std::string& text) {
    const std::chrono::duration<double> at = when - mStart;
    std::printf("%8.3f s  %s\n", at.count(), text.c_str());
    std::fflush(stdout);
}

}  // namespace hbbtv::demo
