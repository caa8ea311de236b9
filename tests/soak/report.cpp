// The table at the end of a soak run.

#include <cinttypes>
#include <cstdio>

#include "rows.h"
#include "run.h"

namespace hbbtv::soak {

namespace {

// What the service may use at the end more than after the warm-up.
constexpr long kMoreResidentKiB = 8 << 10;
constexpr long kMoreAddressSpaceKiB = 72 << 10;  // an arena of malloc, for a thread more than before
constexpr int kMoreThreads = 4;
constexpr int kMoreDescriptors = 0;

bool PrintUsage(const char* what, const char* unit, long begin, long most, long end, long more) {
    const bool kept = end <= begin + more;
    std::printf("%-26s %10ld %10ld %10ld   <= +%ld%s%s\n", what, begin, most, end, more, unit, kept ? "" : "  MISSED");
    return kept;
}

void PrintLatency(const char* what, const Histogram& latency) {
    std::printf("%-26s %10.2f %10.2f %10.2f   of %" PRIu64 "\n", what, latency.Percentile(50), latency.Percentile(99),
                latency.Max(), latency.Count());
}

void PrintFamilies(const Board& board) {
    std::printf("\n%-26s %10s %10s %10s\n", "family", "calls", "platform", "events");
    std::printf("%-26s %10s %10s %10s\n", "", "answered", "was killed", "received");
    uint64_t answered = 0, excused = 0, received = 0;
    for (int family = 0; family < kFamilies; ++family) {
        const CallCounts& calls = board.calls[family];
        std::printf("%-26s %10" PRIu64 " %10" PRIu64, kCalls[family].family, calls.answered.load(),
                    calls.excused.load());
        answered += calls.answered;
        excused += calls.excused;
        for (int event = 0; event < kEventFamilies; ++event) {
            if (std::string(kEvents[event].family) != kCalls[family].family) continue;
            std::printf(" %10" PRIu64, board.events[event].received.load());
            received += board.events[event].received;
        }
        std::printf("\n");
    }
    std::printf("%-26s %10" PRIu64 " %10" PRIu64 " %10" PRIu64 "\n", "all", answered, excused, received);
}

}  // namespace

bool Run::Report(std::chrono::seconds duration, unsigned seed) {
    int disturbances = 0;
    for (const auto& [kind, count] : mDisturbances) disturbances += count;
    std::printf(
        "%lld s, seed %u, %d clients with %d threads, %d disturbances: client killed %d, stopped %d; "
        "platform killed %d, stopped %d; client stopped and platform killed %d\n",
        static_cast<long long>(duration.count()), seed, kClients, kThreads, disturbances,
        mDisturbances[Kind::KillClient], mDisturbances[Kind::StopClient], mDisturbances[Kind::KillPlatform],
        mDisturbances[Kind::StopPlatform], mDisturbances[Kind::StopClientAndKillPlatform]);
    std::printf("\n%-26s %10s %10s %10s\n", "the service", "begin", "most", "end");
    bool kept = PrintUsage("resident memory, KiB", "", mBegin.residentKiB, mMost.residentKiB, mEnd.residentKiB,
                           kMoreResidentKiB);
    kept &= PrintUsage("address space, KiB", "", mBegin.addressSpaceKiB, mMost.addressSpaceKiB, mEnd.addressSpaceKiB,
                       kMoreAddressSpaceKiB);
    kept &= PrintUsage("threads", "", mBegin.threads, mMost.threads, mEnd.threads, kMoreThreads);
    kept &= PrintUsage("descriptors", "", mBegin.descriptors, mMost.descriptors, mEnd.descriptors, kMoreDescriptors);
    std::printf("\n%-26s %10s %10s %10s\n", "latency of calls, ms", "p50", "p99", "max");
    PrintLatency("undisturbed", mBoard.undisturbed);
    PrintLatency("all", mBoard.all);
    PrintFamilies(mBoard);
    std::fflush(stdout);
    if (mBoard.failed) {
        test::WaitFor([this] { return mBoard.failureWritten.load(); });
        std::fprintf(stderr, "hbbtv-soak: %s\n", mBoard.failure);
    } else if (!kept) {
        std::fprintf(stderr, "hbbtv-soak: the service uses more than after the warm-up\n");
    }
    return kept && !mBoard.failed;
}

}  // namespace hbbtv::soak
