// hbbtv-bench: measures the library relative to a floor in the same run, and prints a table.

#include <hidl/HidlTransportSupport.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "VideoBroadcast.h"
#include "child_process.h"
#include "floor.h"
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "platform.h"
#include "scratch_directory.h"

namespace hbbtv::bench {

namespace {

using Clock = std::chrono::steady_clock;
using test::ChildProcess;
using test::ScratchDirectory;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int kRounds = 9;
constexpr size_t kSmall = 8000;
constexpr size_t kBulk = 400;
constexpr size_t kEvents = 30000;
constexpr int64_t kVb = 0x1000;
constexpr int64_t kChannel = 0x2000;

// Both ends run on one processor, with the floor and with the library, to compare the work per message rather than the
// time that an idle processor takes to wake up.
constexpr int kCpu = 0;

void Pin() {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(kCpu, &set);
    sched_setaffinity(0, sizeof(set), &set);
}

double MicrosecondsEach(size_t count, const std::function<void()>& once) {
    const auto start = Clock::now();
    for (size_t i = 0; i < count; ++i) once();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / static_cast<double>(count);
}

// A measurement with one value per round.
struct Measurement {
    std::string name;
    std::string against;  // name of the floor
    bool rate;            // in events per second, else in microseconds per call
    double target;        // ratio to the floor: a maximum, or a minimum for a rate; 0 for none
    std::function<double()> round;
    std::vector<double> rounds = {};

    double Median() const {
        std::vector<double> sorted = rounds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

// Measurements alternate, so that other load of the machine affects all of them.
void Run(std::vector<Measurement>& measurements) {
    for (int round = 0; round < kRounds; ++round) {
        for (Measurement& measurement : measurements) measurement.rounds.push_back(measurement.round());
    }
}

// Prints the table. Returns whether all targets are met.
bool Print(const std::vector<Measurement>& measurements) {
    bool met = true;
    std::printf("%-44s %14s %10s %10s\n", "", "median", "to floor", "target");
    for (const Measurement& measurement : measurements) {
        const auto floor = std::find_if(measurements.begin(), measurements.end(),
                                        [&](const Measurement& m) { return m.name == measurement.against; });
        char value[32];
        std::snprintf(value, sizeof(value), measurement.rate ? "%.0f /s" : "%.1f us", measurement.Median());
        std::printf("%-44s %14s", measurement.name.c_str(), value);
        if (floor != measurements.end()) {
            const double ratio = measurement.Median() / floor->Median();
            std::printf(" %10.2f", ratio);
            if (measurement.target > 0) {
                const bool reached = measurement.rate ? ratio >= measurement.target : ratio <= measurement.target;
                std::printf("  %s %.2f %s", measurement.rate ? ">=" : "<=", measurement.target,
                            reached ? "" : " MISSED");
                met = met && reached;
            }
        }
        std::printf("\n");
    }
    return met;
}

// Events without the library: this process listens, the platform connects and sends.
double FloorEventsPerSecond(ChildProcess& platform, int listenFd) {
    const auto start = Clock::now();
    platform.Write(std::to_string(kEvents) + "\n");
    const int fd = accept(listenFd, nullptr, nullptr);
    size_t states = 0;
    FloorReceiveEvents(
        fd,
        [&states](const Json::Value& event) {
            if (event["type"].asString() == "videobroadcast" && event["event"].asInt() == 1) {
                states += static_cast<size_t>(event["state"].asInt() + event["error"].asInt());
            }
        },
        kEvents);
    close(fd);
    if (states == 0) std::abort();
    return static_cast<double>(kEvents) / std::chrono::duration<double>(Clock::now() - start).count();
}

std::atomic<size_t> gEvents{0};

void CountEvent(const TolmVideoBroadcastEvent&, const TolmVideoBroadcastEventInfo&, const void*) {
    ++gEvents;
}

double LibraryEventsPerSecond(ChildProcess& platform) {
    gEvents = 0;
    const auto start = Clock::now();
    platform.Write(std::to_string(kEvents) + "\n");
    while (gEvents < kEvents) std::this_thread::sleep_for(std::chrono::microseconds(200));
    return static_cast<double>(kEvents) / std::chrono::duration<double>(Clock::now() - start).count();
}

void Expect(bool ok, const char* what) {
    if (ok) return;
    std::fprintf(stderr, "hbbtv-bench: %s failed\n", what);
    std::exit(1);
}

// Returns the command line that runs this program in another role.
std::vector<std::string> Role(const char* role) {
    return {"/proc/self/exe", role};
}

Json::Value SetChannelRequest() {
    Json::Value request(Json::objectValue);
    request["type"] = 3;
    request["method"] = 11;
    request["vb_handle"] = "0x1000";
    request["channel"] = "0x2000";
    request["trickPlay"] = false;
    request["url"] = "";
    return request;
}

Json::Value PlayStateRequest() {
    Json::Value request(Json::objectValue);
    request["type"] = 3;
    request["method"] = 7;
    request["vb_handle"] = "0x1000";
    return request;
}

int Main(const std::string& directory) {
    Pin();

    // A service process with its own platform and directory.
    ScratchDirectory hop;
    ChildProcess hopPlatform(Role(kLibraryPlatform));
    ChildProcess service({directory + "/vantorel.hardware.hbbtv@1.0-service"},
                         {"HIDL_HOST_PASSTHROUGH_PATH=" + directory + "/../lib"});
    const android::sp<IVideoBroadcast> remote = IVideoBroadcast::getService();
    Expect(remote != nullptr && remote->isRemote(), "finding the service");

    ScratchDirectory here;
    ChildProcess floorPlatform(Role(kFloorPlatform));
    ChildProcess platform(Role(kLibraryPlatform));
    const int floorFd = ConnectTo(tolm::GetSocketFilePath(kFloorRequests));
    const int eventsFd = ListenOn(tolm::GetSocketFilePath(kFloorEvents));

    TolmVideoBroadcastAdaptorIpc* adaptor = TolmVideoBroadcastAdaptorIpc::GetInstance();
    const void* vb = reinterpret_cast<const void*>(kVb);
    const void* channel = reinterpret_cast<const void*>(kChannel);
    Expect(test::WaitFor([&] { return adaptor->RegisterCallback(vb, CountEvent, vb) == 0; }), "RegisterCallback");
    const android::sp<IVideoBroadcast> local = HIDL_FETCH_IVideoBroadcast("default");
    Expect(test::WaitFor([&] { return remote->SetChannel(kVb, kChannel, false, "") == 0; }), "SetChannel over HIDL");

    int state = 0;
    const std::string noUrl;
    std::vector<Measurement> measurements = {
        {"small request, floor", "", false, 0,
         [&] { return MicrosecondsEach(kSmall, [&] { FloorExchange(floorFd, SetChannelRequest()); }); }},
        {"SetChannel at the adaptor", "small request, floor", false, 0.90,
         [&] { return MicrosecondsEach(kSmall, [&] { adaptor->SetChannel(vb, channel, false, noUrl); }); }},
        {"SetChannel through the service, in process", "small request, floor", false, 0,
         [&] { return MicrosecondsEach(kSmall, [&] { (void)local->SetChannel(kVb, kChannel, false, "").isOk(); }); }},
        {"SetChannel over HIDL from another process", "small request, floor", false, 0,
         [&] { return MicrosecondsEach(kSmall, [&] { (void)remote->SetChannel(kVb, kChannel, false, "").isOk(); }); }},
        {"64 KiB reply, floor", "", false, 0,
         [&] { return MicrosecondsEach(kBulk, [&] { FloorExchange(floorFd, PlayStateRequest()); }); }},
        {"64 KiB reply at the adaptor", "64 KiB reply, floor", false, 1.15,
         [&] { return MicrosecondsEach(kBulk, [&] { adaptor->GetPlayState(vb, state); }); }},
        {"events, floor", "", true, 0, [&] { return FloorEventsPerSecond(floorPlatform, eventsFd); }},
        {"events to the plain callback", "events, floor", true, 1.30, [&] { return LibraryEventsPerSecond(platform); }},
    };
    Run(measurements);
    Expect(state == 2, "GetPlayState");
    const bool met = Print(measurements);
    close(floorFd);
    close(eventsFd);
    return met ? 0 : 3;
}

}  // namespace

}  // namespace hbbtv::bench

int main(int argc, char** argv) {
    using namespace hbbtv::bench;
    if (argc == 2 && strcmp(argv[1], kFloorPlatform) == 0) {
        Pin();
        return RunFloorPlatform();
    }
    if (argc == 2 && strcmp(argv[1], kLibraryPlatform) == 0) {
        Pin();
        return RunLibraryPlatform();
    }
    if (argc == 2 && strcmp(argv[1], "--version") == 0) {
        std::printf("hbbtv-bench %s\n", HBBTV_VERSION);
        return 0;
    }
    if (argc > 1) {
        std::printf(
            "usage: hbbtv-bench [--help | --version]\n\n"
            "Measures the library against a floor (plain jsoncpp over the same framing) in one run and prints a "
            "table.\n"
            "Exit codes: 0 all targets met, 1 measurement failed, 3 target missed.\n");
        return strcmp(argv[1], "--help") == 0 ? 0 : 2;
    }
    const std::string self(argv[0]);
    return Main(self.find('/') == std::string::npos ? "." : self.substr(0, self.rfind('/')));
}
