#include "instructions.h"

#include <hidl/HidlTransportSupport.h>

#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <mutex>
#include <string>

#include "VideoBroadcast.h"
#include "child_process.h"
#include "ipc/src/plugin/tolm_channel_adaptor_ipc.h"
#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "report/measurement.h"
#include "roles.h"
#include "scratch_directory.h"

// valgrind begins to count at the first one and writes the count at the second one. It knows them by these names.
extern "C" __attribute__((noinline)) void hbbtv_bench_count_begins() {
    asm volatile("");
}
extern "C" __attribute__((noinline)) void hbbtv_bench_count_ends() {
    asm volatile("");
}

namespace hbbtv::bench {

namespace {

using test::ChildProcess;
using test::ScratchDirectory;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int kWarm = 20;
constexpr int kCounted = 100;

const void* const kVb = reinterpret_cast<const void*>(0x12b1d002);
const void* const kChannel = reinterpret_cast<const void*>(0x82357757);

// The events that have arrived.
struct Arrived {
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;

    void Add() {
        std::lock_guard<std::mutex> lock(mutex);
        if (++count % kCounted == 0) changed.notify_one();
    }
    void WaitForAll() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return count == kCounted; });
        count = 0;
    }
};

Arrived& TheEvents() {
    static Arrived arrived;
    return arrived;
}

void TakeEvent(const TolmVideoBroadcastEvent&, const TolmVideoBroadcastEventInfo&, const void*) {
    TheEvents().Add();
}

// What is counted in a client. `repeat` does it kCounted times.
struct Count {
    const char* name;
    double most;  // instructions of one
    std::function<void()> once;
    std::function<void()> repeat = {};
};

// The platform must outlive what is returned, which uses it only while it counts.
std::vector<Count> CountsOf(ChildProcess* platform, IVideoBroadcast* remote) {
    auto* const video = TolmVideoBroadcastAdaptorIpc::GetInstance();
    static std::string text;
    static void* pointer;
    static double real;
    static int number;
    static std::vector<void*> pointers(10, const_cast<void*>(kChannel));
    static std::vector<int> numbers;
    return {
        {"request of a handle: Stop", 10500, [=] { video->Stop(kVb); }},
        {"request of 2 handles, a bool, a string: SetChannel", 12600,
         [=] { video->SetChannel(kVb, kChannel, false, ""); }},
        {"request of 5 numbers, a string: CreateChannel_2", 16700,
         [=] { video->CreateChannel_2(kVb, 11, 1, 1019, 10302, 0, "", pointer); }},
        {"request of a real: SetSpeed", 14500, [=] { video->SetSpeed(kVb, 16.0 / 9); }},
        {"request of a string with umlauts: SetChannel", 16700,
         [=] { video->SetChannel(kVb, kChannel, false, "http://a.example/\xc3\xbc"); }},
        {"request of 10 numbered handles: CreateChannelList", 29400,
         [=] { TolmChannelConfigAdaptorIpc::GetInstance()->CreateChannelList(pointers, pointer); }},
        {"reply with a handle: GetCurrentChannel", 16000, [=] { video->GetCurrentChannel(kVb, pointer); }},
        {"reply with a real: GetPlaySpeed", 18200, [=] { video->GetPlaySpeed(kVb, real); }},
        {"reply with 64 bytes: GetName", 17400, [=] { TolmChannelAdaptorIpc::GetInstance()->GetName(kChannel, text); }},
        {"reply with 10 numbers: GetDttNetworkIds", 55000,
         [=] {
             numbers.clear();
             TolmConfigurationAdaptorIpc::GetInstance()->GetDttNetworkIds(numbers);
         }},
        {"reply with 64 KiB: GetPlayState", 3000000, [=] { video->GetPlayState(kVb, number); }},
        {"event to the plain callback",
         22500,
         {},
         [=] {
             platform->Write(std::to_string(kCounted) + "\n");
             TheEvents().WaitForAll();
         }},
        {"SetChannel over HIDL, in the client", 6900,
         [=] { (void)remote->SetChannel(0x12b1d002, 0x82357757, false, "").isOk(); }},
    };
}

constexpr char kInService[] = "SetChannel over HIDL, in the service";
constexpr double kMostInService = 17600;

// A program under valgrind, and the counts that it writes.
class Counted {
  public:
    Counted(const char* role, const std::vector<std::string>& environment)
        : mProcess(Shielded({"valgrind", "--tool=callgrind", "--callgrind-out-file=" + mDirectory.string() + "/counts",
                             "--zero-before=hbbtv_bench_count_begins", "--dump-before=hbbtv_bench_count_ends",
                             ProgramPath(), role}),
                   environment) {}

    ChildProcess& Process() { return mProcess; }

    // Returns the count with this number, from 1.
    double Count(size_t number) const {
        std::ifstream lines(mDirectory / ("counts." + std::to_string(number)));
        const std::string key = "totals: ";
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind(key, 0) == 0) return std::stod(line.substr(key.size()));
        }
        Expect(false, "valgrind");
        return 0;
    }

  private:
    const ScratchDirectory mScratch;
    const std::filesystem::path mDirectory = mScratch.Path();
    ChildProcess mProcess;
};

}  // namespace

std::vector<Row> Instructions() {
    // The service whose calls are counted has its own directory, as has the one that the counted client calls.
    Counted service(kCountedService, {});
    Expect(service.Process().WaitForOutput("ready\n", std::chrono::seconds(60)), "the counted service");
    const std::string hidl = std::string("HIDL_HOST_DIR=") + std::getenv("HIDL_HOST_DIR");
    const android::sp<IVideoBroadcast> remote = IVideoBroadcast::getService();
    const auto call = [&] { (void)remote->SetChannel(0x12b1d002, 0x82357757, false, "").isOk(); };
    Expect(test::WaitFor([&] { return remote->SetChannel(1, 2, false, "") == 0; }),
           "SetChannel of the counted service");
    for (int i = 0; i < kWarm; ++i) call();
    service.Process().Write("begin\n");
    Expect(service.Process().WaitForOutput("begun\n"), "counting in the service");
    for (int i = 0; i < kCounted; ++i) call();
    service.Process().Write("end\n");
    Expect(service.Process().WaitForOutput("ended\n"), "counting in the service");

    Counted client(kCountedClient, {hidl});
    Expect(client.Process().WaitForOutput("ended\n", std::chrono::seconds(120)), "the counted client");
    std::vector<Row> rows;
    for (const struct Count& count : CountsOf(nullptr, nullptr)) {
        rows.push_back(
            {count.name, Unit::kInstructions, client.Count(rows.size() + 1) / kCounted, {}, Target{false, count.most}});
    }
    rows.push_back({kInService, Unit::kInstructions, service.Count(1) / kCounted, {}, Target{false, kMostInService}});
    return rows;
}

int RunCountedClient() {
    ChildProcess platform(RoleCommand(kLibraryPlatform));
    auto* const video = TolmVideoBroadcastAdaptorIpc::GetInstance();
    Expect(test::WaitFor([&] { return video->RegisterCallback(kVb, TakeEvent, kVb) == 0; }), "RegisterCallback");
    const android::sp<IVideoBroadcast> remote = IVideoBroadcast::getService();
    for (const Count& count : CountsOf(&platform, remote.get())) {
        const auto repeat = [&](int times) {
            if (count.repeat) return count.repeat();
            for (int i = 0; i < times; ++i) count.once();
        };
        repeat(kWarm);
        hbbtv_bench_count_begins();
        repeat(kCounted);
        hbbtv_bench_count_ends();
    }
    std::cout << "ended" << std::endl;
    return 0;
}

int RunCountedService() {
    ChildProcess platform(RoleCommand(kLibraryPlatform));
    android::hardware::configureRpcThreadpool(4, false);
    const android::sp<IVideoBroadcast> service = HIDL_FETCH_IVideoBroadcast("default");
    Expect(service->registerAsService() == android::OK, "registering the counted service");
    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        if (line == "begin") {
            hbbtv_bench_count_begins();
            std::cout << "begun" << std::endl;
        } else {
            hbbtv_bench_count_ends();
            std::cout << "ended" << std::endl;
        }
    }
    return 0;
}

}  // namespace hbbtv::bench
