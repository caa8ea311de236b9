// A client process of a soak run: its threads call all families, and it is registered for the events of some.

#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "board.h"
#include "common/failure.h"
#include "common/text/json.h"
#include "package/caller.h"
#include "roles.h"
#include "rows.h"
#include "wait_for.h"

namespace hbbtv::soak {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kBetweenCalls{4};
constexpr std::chrono::seconds kLongestCall{30};

// Checks that each event is the one after the last. The same event may come twice if the platform was killed before it
// could note that it had sent it.
class Receiver : public EventSink {
  public:
    explicit Receiver(Board& board) : mBoard(board) {}

    Json::Value Take(const char*, const char* method, Json::Value arguments) override {
        for (int event = 0; event < kEventFamilies; ++event) {
            if (std::string(kEvents[event].callback) == method) Check(event, kEvents[event].read(arguments));
        }
        Json::Value results(Json::arrayValue);
        results.append(0);
        results.append(arguments[0]);
        return results;
    }

  private:
    void Check(int event, uint32_t number) {
        EventCounts& counts = mBoard.events[event];
        const EventRow& row = kEvents[event];
        const uint64_t platform = mBoard.platforms;
        if (counts.last >= 0) {
            const auto last = static_cast<uint32_t>(counts.last);
            const uint32_t expected = row.modulus == 0 ? last + 1 : (last + 1) % row.modulus;
            const bool again = number == last && counts.platform != platform;
            if (number != expected && !again) {
                mBoard.Fail(std::string("event ") + std::to_string(number) + " of " + row.family + " arrived after " +
                            std::to_string(last));
            }
        }
        counts.platform = platform;
        counts.last = number;
        ++counts.received;
    }

    Board& mBoard;
};

class Caller {
  public:
    Caller(Board& board, int client, int thread, EventSink& sink)
        : mBoard(board), mClient(client), mSender(client * kThreads + thread), mSink(sink) {
        for (int family = 0; family < kFamilies; ++family) {
            const auto [interface, method] = Package::Get().FindMethod(kCalls[family].method);
            mServices.push_back(std::make_unique<ServiceCaller>(*interface, kLongestCall));
            mMethods.push_back(method);
        }
        mGeneration = ++mBoard.oneWay[mSender].generation;
        mBoard.oneWay[mSender].sent = 0;
    }

    [[noreturn]] void Run() {
        for (int family = mSender % kFamilies;; family = (family + 1) % kFamilies) {
            mBoard.RestWhilePaused(mClient);
            Call(family);
            std::this_thread::sleep_for(kBetweenCalls);
        }
    }

  private:
    void Call(int family) {
        const CallRow& row = kCalls[family];
        const bool oneWay = family == kOneWayFamily;
        const uint32_t number = oneWay ? mBoard.oneWay[mSender].sent + 1 : Next();
        std::string arguments = Replace(row.arguments, '$', std::to_string(number));
        arguments = Replace(arguments, '%', std::to_string(mGeneration * 1000 + static_cast<uint32_t>(mSender)));

        const uint64_t epoch = mBoard.epoch;
        const uint64_t disturbance = mBoard.disturbance;
        const auto start = Clock::now();
        const CallOutcome outcome = mServices[static_cast<size_t>(family)]->CallNow(
            *mMethods[static_cast<size_t>(family)], ParseJson(arguments), mSink);
        const auto duration = Clock::now() - start;

        mBoard.all.Add(duration);
        if (disturbance % 2 == 0 && disturbance == mBoard.disturbance) mBoard.undisturbed.Add(duration);
        if (duration > kLongestCall) Fail(row, "took more than 30 s");
        if (!outcome.answered) return Fail(row, "failed: " + outcome.error);
        if (outcome.results[0] == -1 && Excused(family, epoch)) {
            ++mBoard.calls[family].excused;
            return;
        }
        ++mBoard.calls[family].answered;
        if (!oneWay) return Check(family, number, outcome.results);
        if (outcome.results[0] != 0) Fail(row, "returned " + WriteJson(outcome.results));
        mBoard.oneWay[mSender].sentEpoch = epoch;
        mBoard.oneWay[mSender].sent = number;
    }

    // Checks that the result is the number of this request; or, if the platform chose it, that it is a later one.
    void Check(int family, uint32_t number, const Json::Value& results) {
        const CallRow& row = kCalls[family];
        const Json::Value& value = results[static_cast<Json::ArrayIndex>(row.result)];
        if (row.result > 0 && results[0] != 0) return Fail(row, "returned " + WriteJson(results));
        if (*row.key != '\0') {
            if (value.asInt64() != number)
                Fail(row, "returned " + WriteJson(results) + " for " + std::to_string(number));
            return;
        }
        const uint64_t chosen = value.isString() ? std::stoull(value.asString()) : value.asUInt64();
        const uint64_t epoch = mBoard.epoch;
        if (mLastEpoch[family] == epoch && chosen <= mLast[family]) Fail(row, "returned the reply of another call");
        mLast[family] = chosen;
        mLastEpoch[family] = epoch;
    }

    // Returns whether the platform was away during the call, or has been since the family's last one.
    bool Excused(int family, uint64_t epoch) {
        const uint64_t now = mBoard.epoch;
        return epoch % 2 == 0 || epoch != now || mBoard.calls[family].lastEpoch.exchange(now) != now;
    }

    // Numbers of different threads differ, and are never small.
    uint32_t Next() {
        mNumber = (mNumber + 1) % (1u << 22);
        return 0x10000000u + (static_cast<uint32_t>(mSender) << 22) + mNumber;
    }

    void Fail(const CallRow& row, const std::string& what) { mBoard.Fail(std::string(row.method) + " " + what); }

    Board& mBoard;
    const int mClient;
    const int mSender;
    EventSink& mSink;
    uint32_t mGeneration = 0;
    uint32_t mNumber = 0;
    uint64_t mLast[kFamilies] = {};
    uint64_t mLastEpoch[kFamilies] = {};
    std::vector<std::unique_ptr<ServiceCaller>> mServices;
    std::vector<const Method*> mMethods;
};

// The service may still be starting, or may not have noticed the end of the client that was registered before.
bool Register(Board& board, int event, EventSink& sink) {
    const EventRow& row = kEvents[event];
    const auto [interface, method] = Package::Get().FindMethod(row.registration);
    return test::WaitFor([&, interface = interface, method = method] {
        try {
            board.events[event].last = -1;
            ServiceCaller caller(*interface, kLongestCall);
            const CallOutcome outcome = caller.CallNow(*method, ParseJson(row.arguments), sink);
            return outcome.answered && StatusOf(*method, outcome.results) == 0;
        } catch (const Failure&) {
            return false;
        }
    });
}

}  // namespace

int RunClient(int client) {
    Board& board = OpenBoard();
    static Receiver receiver(board);
    for (int event = 0; event < kEventFamilies; ++event) {
        if (ReceiverOf(event) == client && !Register(board, event, receiver)) {
            board.Fail(std::string(kEvents[event].registration) + " failed");
        }
    }
    board.busy[client] = kThreads;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&board, client, thread] { Caller(board, client, thread, receiver).Run(); });
    }
    printf("ready\n");
    fflush(stdout);
    for (std::thread& thread : threads) thread.join();
    return 0;
}

}  // namespace hbbtv::soak
