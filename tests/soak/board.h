// What the processes of a soak run share: a file in the run's directory that each of them maps. It survives the
// processes that are killed, so that numbers which they have sent or received are known exactly.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace hbbtv::soak {

constexpr int kClients = 4;
constexpr int kThreads = 9;  // of a client, each of which calls all families
constexpr int kFamilies = 18;
constexpr int kEventFamilies = 8;
constexpr int kPlatform = kClients;  // index of the platform among the processes; those before it are the clients

// Durations in buckets, each at most 1/16 wider than the one before.
class Histogram {
  public:
    void Add(std::chrono::nanoseconds duration);
    uint64_t Count() const;
    double Percentile(double percent) const;  // in milliseconds: the upper end of the bucket
    double Max() const;                       // in milliseconds

  private:
    std::array<std::atomic<uint64_t>, 40 * 16> mCounts;
    std::atomic<uint64_t> mMax;  // in nanoseconds
};

struct CallCounts {
    std::atomic<uint64_t> answered;
    std::atomic<uint64_t> excused;    // -1, because the platform was killed
    std::atomic<uint64_t> lastEpoch;  // in which the first call after a restart of the platform has returned -1
};

struct EventCounts {
    std::atomic<uint32_t> next;      // written by the platform once an event has been sent
    std::atomic<int64_t> last;       // received by the registered client; -1: none since it has registered
    std::atomic<uint64_t> platform;  // that has sent it: Board::platforms
    std::atomic<uint64_t> received;
};

// A client's thread numbers its one-way messages. Only this thread writes `sent`, only the platform the others.
struct OneWayCounts {
    std::atomic<uint32_t> generation;
    std::atomic<uint32_t> sent;
    std::atomic<uint64_t> sentEpoch;
    std::atomic<uint32_t> takenGeneration;
    std::atomic<uint32_t> taken;
    std::atomic<uint64_t> takenPlatform;
};

// All zero at the beginning.
struct Board {
    std::atomic<bool> pause;              // all threads of clients and platform rest
    std::atomic<int> busy[kClients + 1];  // threads of a process that do not
    std::atomic<uint64_t> epoch;        // of the platform: odd while it runs, incremented when it is killed or started
    std::atomic<uint64_t> platforms;    // started so far
    std::atomic<uint64_t> disturbance;  // odd while a process is stopped, or is down
    CallCounts calls[kFamilies];
    EventCounts events[kEventFamilies];
    OneWayCounts oneWay[kClients * kThreads];
    Histogram undisturbed;
    Histogram all;
    std::atomic<bool> failed;
    char failure[400];  // of the first promise that was broken; complete once `failureWritten` is set
    std::atomic<bool> failureWritten;

    void Fail(const std::string& sentence);

    // Called by a thread of the process between its messages: returns at once unless all threads rest.
    void RestWhilePaused(int process);
};

// Maps the file in TMPDIR, which is created if it does not exist.
Board& OpenBoard();

}  // namespace hbbtv::soak
