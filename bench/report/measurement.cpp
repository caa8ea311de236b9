#include "measurement.h"

#include <sched.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace hbbtv::bench {

namespace {

using Clock = std::chrono::steady_clock;

volatile sig_atomic_t gInterrupted = 0;

// With both ends on one processor, the work per message is compared rather than the time that an idle processor takes
// to wake up.
constexpr int kCpu = 0;

void RunOn(int first, int end) {
    cpu_set_t set;
    CPU_ZERO(&set);
    for (int cpu = first; cpu < end; ++cpu) CPU_SET(cpu, &set);
    sched_setaffinity(0, sizeof(set), &set);
}

double MedianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

double MicrosecondsEach(size_t count, const std::function<void()>& once) {
    const auto start = Clock::now();
    for (size_t i = 0; i < count; ++i) once();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / static_cast<double>(count);
}

void Run(std::vector<Measurement>& measurements, int rounds) {
    for (int round = 0; round < rounds; ++round) {
        for (Measurement& measurement : measurements) {
            if (Interrupted()) return;
            measurement.rounds.push_back(measurement.round());
        }
    }
}

std::vector<Row> RowsOf(const std::vector<Measurement>& measurements) {
    std::vector<Row> rows;
    for (const Measurement& measurement : measurements) {
        if (measurement.rounds.empty()) continue;
        Row row{measurement.name, measurement.unit, MedianOf(measurement.rounds)};
        for (const Measurement& other : measurements) {
            if (other.name == measurement.against) row.ratio = row.value / MedianOf(other.rounds);
        }
        row.target = measurement.target;
        rows.push_back(row);
    }
    return rows;
}

void TakeInterrupts() {
    for (const int number : {SIGINT, SIGTERM}) {
        struct sigaction action = {};
        action.sa_handler = [](int) { gInterrupted = 1; };
        action.sa_flags = SA_RESTART;
        sigaction(number, &action, nullptr);
    }
}

bool Interrupted() {
    return gInterrupted != 0;
}

void Expect(bool ok, const char* what) {
    if (ok) return;
    std::fprintf(stderr, "hbbtv-bench: %s failed\n", what);
    std::exit(1);
}

void Pin() {
    RunOn(kCpu, kCpu + 1);
}

void Unpin() {
    RunOn(0, CPU_SETSIZE);
}

}  // namespace hbbtv::bench
