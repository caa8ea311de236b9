// hbbtvctl bench: measures the latency of a method under load.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <mutex>
#include <optional>
#include <thread>

#include "cli/arguments.h"
#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "common/text/json.h"
#include "common/text/quote.h"
#include "package/caller.h"
#include "terminal/style.h"

namespace hbbtv::ctl {

namespace {

constexpr uint64_t kMostAtOnce = 64;

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::nanoseconds;

struct BenchOptions {
    std::string method;
    ArgumentOptions arguments;
    unsigned concurrency = 1;
    TimeOption duration{"5s"};
    TimeOption timeout{"10s"};
    double rate = 0;
};

struct Measured {
    std::vector<Nanoseconds> times;
    uint64_t failed = 0;  // calls with a status other than 0
    CallOutcome last;
};

// Schedules the calls of all threads: at a rate if there is one, otherwise as fast as possible. The first call is
// always made, even if its thread starts late on a busy machine.
class Pace {
  public:
    Pace(Clock::time_point begin, Clock::time_point end, double rate) : mBegin(begin), mEnd(end), mRate(rate) {}

    // Waits until the next call is due and returns that time, or returns nothing at the end. With a rate, the latency
    // of a call that starts late counts from when it was due, because a client would have waited, too.
    std::optional<Clock::time_point> Next() {
        const uint64_t number = mNumber++;
        const Clock::time_point due = mRate > 0 ? Due(number) : Clock::now();
        if (WaitUntil(std::min(due, mEnd))) return std::nullopt;
        return number == 0 || due < mEnd ? std::optional(due) : std::nullopt;
    }

    // Makes this the end.
    void Stop() {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mStopped = true;
        }
        mStop.notify_all();
    }

  private:
    // Returns at most the end.
    Clock::time_point Due(uint64_t number) const {
        const std::chrono::duration<double> after(static_cast<double>(number) / mRate);
        return after < mEnd - mBegin ? mBegin + std::chrono::duration_cast<Nanoseconds>(after) : mEnd;
    }

    // Returns whether it was stopped.
    bool WaitUntil(Clock::time_point time) {
        std::unique_lock<std::mutex> lock(mMutex);
        return mStop.wait_until(lock, time, [this] { return mStopped; });
    }

    const Clock::time_point mBegin;
    const Clock::time_point mEnd;
    const double mRate;
    std::atomic<uint64_t> mNumber{0};
    std::mutex mMutex;
    std::condition_variable mStop;
    bool mStopped = false;  // guarded by mMutex
};

// Nearest rank.
Nanoseconds Percentile(const std::vector<Nanoseconds>& sorted, double percent) {
    const size_t rank = static_cast<size_t>(std::ceil(percent / 100 * static_cast<double>(sorted.size())));
    return sorted[std::max<size_t>(rank, 1) - 1];
}

// All data of the threads, which outlive the command if the service hangs.
struct Job {
    Job(const Interface& interface, const Method& theMethod, Json::Value theArguments, const BenchOptions& options)
        : service(interface, options.timeout.Value()),
          method(theMethod),
          arguments(std::move(theArguments)),
          begin(Clock::now()),
          pace(begin, begin + options.duration.Value(), options.rate) {
        measured.last.answered = true;
    }

    const ServiceCaller service;
    const Method& method;
    const Json::Value arguments;
    const Clock::time_point begin;
    Pace pace;
    NoEvents noEvents;
    std::mutex mutex;
    Measured measured;  // guarded by mutex while the threads run
    std::promise<void> ended;
};

void Work(Job& job) {
    Measured mine;
    mine.last.answered = true;
    while (mine.last.answered) {
        const std::optional<Clock::time_point> begin = job.pace.Next();
        if (!begin) break;
        mine.last = job.service.CallNow(job.method, job.arguments, job.noEvents);
        mine.times.push_back(Clock::now() - *begin);
        if (mine.last.answered && StatusOf(job.method, mine.last.results) != 0) ++mine.failed;
    }
    const std::lock_guard<std::mutex> lock(job.mutex);
    Measured& all = job.measured;
    all.times.insert(all.times.end(), mine.times.begin(), mine.times.end());
    all.failed += mine.failed;
    if (!mine.last.answered) all.last = mine.last;
}

void WorkAtOnce(Job& job, unsigned concurrency) {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < concurrency; ++i) threads.emplace_back([&job] { Work(job); });
    for (std::thread& thread : threads) thread.join();
    job.ended.set_value();
}

// Returns whether Ctrl-C ended it early.
bool Measure(const std::shared_ptr<Job>& job, const std::string& name, const BenchOptions& options) {
    try {
        InTime(options.duration.Value() + options.timeout.Value(), name,
               [job, concurrency = options.concurrency] { WorkAtOnce(*job, concurrency); });
        return false;
    } catch (const Interrupted&) {
        job->pace.Stop();
        InTime(options.timeout.Value(), name, [job] { job->ended.get_future().wait(); });
        return true;
    }
}

struct Rank {
    const char* name;
    double percent;
};
constexpr Rank kRanks[] = {{"p50", 50}, {"p90", 90}, {"p99", 99}, {"p99.9", 99.9}, {"max", 100}};

void Print(const std::string& name, const BenchOptions& options, const Measured& measured, double seconds) {
    const double rate = static_cast<double>(measured.times.size()) / seconds;
    if (options.arguments.json) {
        Json::Value document(Json::objectValue);
        document["method"] = name;
        document["concurrency"] = options.concurrency;
        document["duration_ms"] = static_cast<Json::Int64>(seconds * 1000);
        document["calls"] = static_cast<Json::UInt64>(measured.times.size());
        document["failed"] = static_cast<Json::UInt64>(measured.failed);
        document["calls_per_second"] = static_cast<Json::Int64>(rate);
        Json::Value& latency = document["latency_ns"] = Json::Value(Json::objectValue);
        for (const Rank& rank : kRanks) {
            latency[rank.name] = static_cast<Json::Int64>(Percentile(measured.times, rank.percent).count());
        }
        std::printf("%s\n", WriteJson(document).c_str());
        return;
    }
    std::printf("%s, concurrency %u, %.1f s: %zu calls, %.0f per second, %llu failed\n", name.c_str(),
                options.concurrency, seconds, measured.times.size(), rate,
                static_cast<unsigned long long>(measured.failed));
    std::vector<std::vector<std::string>> rows;
    for (const Rank& rank : kRanks) {
        char text[40];
        std::snprintf(text, sizeof(text), "%9.3f ms",
                      static_cast<double>(Percentile(measured.times, rank.percent).count()) / 1e6);
        rows.push_back({rank.name, text});
    }
    std::printf("%s", Columns(rows, "  ").c_str());
}

std::string AboveZero(const std::string& word) {
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    const bool good = !word.empty() && *end == '\0' && std::isfinite(number) && number > 0;
    return good ? "" : Quoted(word) + " is not a number greater than 0";
}

int Run(const BenchOptions& options) {
    static Interruption interruption;
    const auto [interface, method] = Package::Get().FindMethod(options.method);
    const std::string name = interface->name + "." + method->name;
    if (interface->callback) throw Failure(kUsage, "cannot call " + interface->name + ": clients implement it");
    const Json::Value arguments =
        InOrder(method->arguments, ReadArguments(name, method->arguments, options.arguments.given, true));
    if (Listens(arguments)) throw Failure(kUsage, "bench does not support @listen; use call or listen");
    const auto job = std::make_shared<Job>(*interface, *method, arguments, options);
    const bool interrupted = Measure(job, name, options);
    const double seconds = std::chrono::duration<double>(Clock::now() - job->begin).count();
    Measured& measured = job->measured;
    job->service.CheckAnswered(*method, measured.last);
    if (measured.times.empty()) return kInterrupted;
    std::sort(measured.times.begin(), measured.times.end());
    Print(name, options, measured, seconds);
    if (interrupted) return kInterrupted;
    return measured.failed == 0 ? kDone : kStatusNotZero;
}

}  // namespace

void AddBench(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<BenchOptions>();
    CLI::App* command = app.add_subcommand("bench", "Measure the latency of a method");
    command->add_option("METHOD", options->method, "INTERFACE.METHOD, for example IChannel.GetOnid")
        ->type_name("METHOD")
        ->required();
    AddArguments(*command, options->arguments);
    command->add_option("--concurrency", options->concurrency, "Number of concurrent calls")
        ->type_name("NUMBER")
        ->check(WholeNumber(1, kMostAtOnce))
        ->capture_default_str();
    AddTime(*command, "--duration", options->duration, "How long to measure");
    command->add_option("--rate", options->rate, "Calls per second in total (default: as fast as possible)")
        ->type_name("NUMBER")
        ->check(AboveZero);
    AddTime(*command, "--timeout", options->timeout, "Maximum time to wait for a reply");
    command->footer(
        "Examples:\n"
        "  hbbtvctl bench IChannelConfig.GetCurrentChannel --duration 1s\n"
        "  hbbtvctl bench IChannel.GetName channel=0x1000 --concurrency 4 --rate 200 --duration 1s --json");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
