#include "transcript.h"

#include <cstdio>

namespace hbbtv::demo {

void Transcript::Step(const std::string& title) {
    std::lock_guard<std::mutex> lock(mMutex);
    std::printf("\n%s\n", title.c_str());
    std::fflush(stdout);
}

void Transcript::Call(const std::string& what, const std::string& answer, Clock::duration took) {
    char line[160];
    std::snprintf(line, sizeof(line), "%-46s -> %-34s %7.2f ms", what.c_str(), answer.c_str(),
                  std::chrono::duration<double, std::milli>(took).count());
    Line(line);
}

void Transcript::Event(const std::string& what, const std::string& values) {
    char line[160];
    std::snprintf(line, sizeof(line), "    <- %-39s    %s", what.c_str(), values.c_str());
    Line(line);
}

void Transcript::Line(const std::string& text) {
    std::lock_guard<std::mutex> lock(mMutex);
    const std::chrono::duration<double> at = Clock::now() - mStart;
    std::printf("%8.3f s  %s\n", at.count(), text.c_str());
    std::fflush(stdout);
}

}  // namespace hbbtv::demo
