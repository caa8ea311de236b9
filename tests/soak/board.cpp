#include "board.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "wire/endpoint.h"

namespace hbbtv::soak {

namespace {

constexpr int kSteps = 16;  // per power of two

}  // namespace

void Histogram::Add(std::chrono::nanoseconds duration) {
    const auto nanoseconds = static_cast<uint64_t>(std::max<int64_t>(duration.count(), 1));
    const auto bucket = static_cast<size_t>(std::log2(static_cast<double>(nanoseconds)) * kSteps);
    ++mCounts[std::min(bucket, mCounts.size() - 1)];
    uint64_t most = mMax;
    while (nanoseconds > most && !mMax.compare_exchange_weak(most, nanoseconds)) {
    }
}

uint64_t Histogram::Count() const {
    uint64_t count = 0;
    for (const auto& bucket : mCounts) count += bucket;
    return count;
}

double Histogram::Percentile(double percent) const {
    const double wanted = static_cast<double>(Count()) * percent / 100;
    uint64_t count = 0;
    size_t bucket = 0;
    for (; bucket + 1 < mCounts.size(); ++bucket) {
        count += mCounts[bucket];
        if (static_cast<double>(count) >= wanted) break;
    }
    return std::min(Max(), std::exp2(static_cast<double>(bucket + 1) / kSteps) / 1e6);
}

double Histogram::Max() const {
    return static_cast<double>(mMax) / 1e6;
}

void Board::Fail(const std::string& sentence) {
    if (failed.exchange(true)) return;
    strncpy(failure, sentence.c_str(), sizeof(failure) - 1);
    failureWritten = true;
}

void Board::RestWhilePaused(int process) {
    if (!pause) return;
    --busy[process];
    while (pause) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ++busy[process];
}

Board& OpenBoard() {
    const std::string path = DefaultDirectory() + "/board";
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    void* memory = MAP_FAILED;
    if (fd >= 0 && ftruncate(fd, sizeof(Board)) == 0) {
        memory = mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    }
    if (memory == MAP_FAILED) {
        std::perror(path.c_str());
        std::exit(1);
    }
    close(fd);
    return *static_cast<Board*>(memory);
}

}  // namespace hbbtv::soak
