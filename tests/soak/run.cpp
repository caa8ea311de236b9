#include "run.h"

#include <csignal>
#include <thread>

#include "roles.h"
#include "rows.h"
#include "wait_for.h"

namespace hbbtv::soak {

namespace {

using std::chrono::milliseconds;
using test::ChildProcess;
using test::ProcessUsage;
using test::WaitFor;

constexpr std::chrono::seconds kPatience{60};

// Its log goes to a file: a pipe without a reader would stop it.
std::vector<std::string> ServiceCommand() {
    return {"/bin/sh", "-c", "exec \"$0\" >\"$TMPDIR/service.log\" 2>&1", HBBTV_SERVICE_PROGRAM};
}

// Whether the client has received the platform's last event; or, if the platform may have been killed before it could
// note it, one more.
bool ReceivedAll(const EventCounts& counts, const EventRow& row, bool platformKilled) {
    const auto last = static_cast<uint32_t>(counts.last);
    const auto modulo = [&row](uint32_t number) { return row.modulus == 0 ? number : number % row.modulus; };
    return counts.last < 0 || last == modulo(counts.next - 1) || (platformKilled && last == modulo(counts.next));
}

volatile sig_atomic_t gInterrupted = 0;

void RaiseTo(ProcessUsage& most, const ProcessUsage& usage) {
    most.residentKiB = std::max(most.residentKiB, usage.residentKiB);
    most.addressSpaceKiB = std::max(most.addressSpaceKiB, usage.addressSpaceKiB);
    most.descriptors = std::max(most.descriptors, usage.descriptors);
    most.threads = std::max(most.threads, usage.threads);
}

}  // namespace

bool Interrupted() {
    return gInterrupted != 0;
}

Run::Run(Board& board, unsigned seed)
    : mBoard(board),
      mRandom(seed),
      mService(ServiceCommand(), {std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES}) {
    for (const int number : {SIGINT, SIGTERM}) signal(number, [](int) { gInterrupted = 1; });
}

bool Run::Goes() const {
    return !mBoard.failed && !Interrupted();
}

void Run::SleepBetween(int least, int most) {
    std::this_thread::sleep_for(milliseconds(std::uniform_int_distribution<int>(least, most)(mRandom)));
}

void Run::StartPlatform() {
    ++mBoard.platforms;
    mPlatform = std::make_unique<ChildProcess>(std::vector<std::string>{"/proc/self/exe", kPlatformRole});
    if (!mPlatform->WaitForOutput("ready")) mBoard.Fail("the platform does not start: " + mPlatform->Output());
    ++mBoard.epoch;
}

void Run::KillPlatform() {
    ++mBoard.epoch;
    mPlatform->Kill();
    mBoard.busy[kPlatform] = 0;
}

void Run::StartClient(int client) {
    auto& process = mClients[static_cast<size_t>(client)];
    process =
        std::make_unique<ChildProcess>(std::vector<std::string>{"/proc/self/exe", kClientRole, std::to_string(client)});
    if (!process->WaitForOutput("ready", kPatience)) mBoard.Fail("client does not start: " + process->Output());
}

void Run::KillClient(int client) {
    mClients[static_cast<size_t>(client)]->Kill();
    mBoard.busy[client] = 0;
}

void Run::WarmUp() {
    StartPlatform();
    for (int client = 0; client < kClients && Goes(); ++client) StartClient(client);
    for (int turn = 0; turn < 2; ++turn) {
        for (int kind = 0; kind < static_cast<int>(Kind::Count) && Goes(); ++kind) Round(static_cast<Kind>(kind));
    }
    mBegin = mMost = mEnd;
    mDisturbances.clear();
}

void Run::Until(std::chrono::steady_clock::time_point end) {
    std::uniform_int_distribution<int> kinds(0, static_cast<int>(Kind::Count) - 1);
    while (Goes() && std::chrono::steady_clock::now() < end) Round(static_cast<Kind>(kinds(mRandom)));
}

void Run::Round(Kind kind) {
    ++mBoard.disturbance;
    Disturb(kind);
    if (!Goes()) return;
    if (!WaitFor([&] { return EventsReachAll() || !Goes(); }, kPatience)) {
        mBoard.Fail("the events of a family do not reach its client after a disturbance");
    }
    ++mBoard.disturbance;
    ++mDisturbances[kind];
    SleepBetween(500, 1500);
    Settle();
    RaiseTo(mMost, mEnd);
}

void Run::Disturb(Kind kind) {
    const int client = std::uniform_int_distribution<int>(0, kClients - 1)(mRandom);
    const auto& process = mClients[static_cast<size_t>(client)];
    switch (kind) {
        case Kind::KillClient:
            KillClient(client);
            SleepBetween(0, 300);
            StartClient(client);
            break;
        case Kind::StopClient:
            process->Signal(SIGSTOP);
            SleepBetween(100, 2000);
            process->Signal(SIGCONT);
            break;
        case Kind::KillPlatform:
            KillPlatform();
            ExpectNoEventLost(true);
            SleepBetween(0, 500);
            StartPlatform();
            break;
        case Kind::StopPlatform:
            mPlatform->Signal(SIGSTOP);
            SleepBetween(100, 2000);
            mPlatform->Signal(SIGCONT);
            break;
        case Kind::StopClientAndKillPlatform:
            process->Signal(SIGSTOP);
            SleepBetween(100, 1000);
            KillPlatform();
            SleepBetween(0, 300);
            process->Signal(SIGCONT);
            ExpectNoEventLost(true);
            StartPlatform();
            break;
        case Kind::Count:
            break;
    }
}

// Whether each registered client has received an event of this platform.
bool Run::EventsReachAll() {
    for (const EventCounts& counts : mBoard.events) {
        if (counts.last < 0 || counts.platform != mBoard.platforms) return false;
    }
    return true;
}

// Those to a platform that was killed may be lost.
bool Run::OneWayMessagesArrived() {
    for (const OneWayCounts& counts : mBoard.oneWay) {
        if (counts.sent == 0 || counts.sentEpoch != mBoard.epoch) continue;
        if (counts.takenGeneration != counts.generation || counts.taken != counts.sent) return false;
    }
    return true;
}

void Run::ExpectNoEventLost(bool platformKilled) {
    for (int event = 0; event < kEventFamilies; ++event) {
        const EventRow& row = kEvents[event];
        const EventCounts& counts = mBoard.events[event];
        if (WaitFor([&] { return ReceivedAll(counts, row, platformKilled) || !Goes(); }, kPatience)) continue;
        mBoard.Fail(std::string("event ") + std::to_string(counts.next - 1) + " of " + row.family +
                    " was lost, the last one received is " + std::to_string(counts.last));
    }
}

void Run::Settle() {
    mBoard.pause = true;
    for (int process = 0; process <= kClients; ++process) {
        if (WaitFor([&] { return mBoard.busy[process] == 0 || !Goes(); }, kPatience)) continue;
        mBoard.Fail(process == kPlatform ? "a thread of the platform hangs in an event"
                                         : "a thread of client " + std::to_string(process) + " hangs in a call");
    }
    ExpectNoEventLost(false);
    if (!WaitFor([&] { return OneWayMessagesArrived() || !Goes(); }, kPatience)) {
        mBoard.Fail("a one-way message was lost");
    }
    if (const auto exit = mService.WaitForExit(milliseconds(0))) {
        mBoard.Fail("the service ended with " + std::to_string(*exit));
    }
    if (!mBoard.failed) mEnd = SteadyUsage();
    mBoard.pause = false;
}

// The service may not have noticed yet that a client or a connection has ended.
ProcessUsage Run::SteadyUsage() const {
    ProcessUsage usage = test::UsageOf(mService.Pid());
    int same = 0;
    WaitFor(
        [&] {
            std::this_thread::sleep_for(milliseconds(10));
            const ProcessUsage next = test::UsageOf(mService.Pid());
            same = next.descriptors == usage.descriptors && next.threads == usage.threads ? same + 1 : 0;
            usage = next;
            return same == 5;
        },
        std::chrono::seconds(5));
    return usage;
}

}  // namespace hbbtv::soak
