// A soak run: starts the processes, disturbs them in an order that a seed selects, and checks the promises in between.
#pragma once

#include <array>
#include <chrono>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "board.h"
#include "child_process.h"
#include "process_usage.h"

namespace hbbtv::soak {

// Returns whether Ctrl-C or SIGTERM has ended the run, which then still ends its processes.
bool Interrupted();

class Run {
  public:
    Run(Board& board, unsigned seed);

    // Starts all processes, and disturbs them once in each way. What the service uses then is what it may keep using.
    void WarmUp();

    void Until(std::chrono::steady_clock::time_point end);

    // Prints the table. Returns whether all promises were kept.
    bool Report(std::chrono::seconds duration, unsigned seed);

  private:
    enum class Kind { KillClient, StopClient, KillPlatform, StopPlatform, StopClientAndKillPlatform, Count };

    void StartPlatform();
    void StartClient(int client);
    void KillPlatform();
    void KillClient(int client);

    // One disturbance, the recovery, a while without one, and the checks.
    void Round(Kind kind);
    void Disturb(Kind kind);
    void Settle();

    bool EventsReachAll();
    bool OneWayMessagesArrived();
    void ExpectNoEventLost(bool platformKilled);
    test::ProcessUsage SteadyUsage() const;
    bool Goes() const;
    void SleepBetween(int least, int most);  // milliseconds

    Board& mBoard;
    std::mt19937 mRandom;
    test::ChildProcess mService;
    std::unique_ptr<test::ChildProcess> mPlatform;
    std::array<std::unique_ptr<test::ChildProcess>, kClients> mClients;
    std::map<Kind, int> mDisturbances;
    test::ProcessUsage mBegin{};
    test::ProcessUsage mMost{};
    test::ProcessUsage mEnd{};
};

}  // namespace hbbtv::soak
