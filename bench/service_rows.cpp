#include "service_rows.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <thread>

#include "child_process.h"
#include "common/text/json.h"
#include "ipc/socket/tolm_ipc_internal_socket.h"
#include "ipc/src/tolm_family.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "package/caller.h"
#include "process_usage.h"
#include "report/measurement.h"
#include "roles.h"
#include "scratch_directory.h"

namespace hbbtv::bench {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using test::ChildProcess;
using test::ScratchDirectory;

constexpr int kRounds = 5;
constexpr int kFamilies = 18;
constexpr milliseconds kPeriod{300};

struct FamilyCall {
    const char* method;
    const char* arguments;
};

constexpr FamilyCall kCalls[kFamilies] = {
    {"IVideoBroadcast.SetChannel", R"([4096, 8192, false, ""])"},
    {"IApplicationManager.GetOwnerApp", "[1, 19]"},
    {"IApplicationPrivatedata.GetFreeMem", "[]"},
    {"IAVComponent.GetPid", "[1]"},
    {"IAVControl.ComponentUpdate", "[0, 1, [], 1]"},
    {"ICapabilities.HasCapability", "[1]"},
    {"IChannel.GetName", "[1]"},
    {"IChannelConfig.CreateFilteredList", R"([true, false, false, "1"])"},
    {"IChannelList.Item", "[1, 1]"},
    {"IConfiguration.SetRegionId", "[1]"},
    {"IDsmcc.OnReleaseFile", R"(["dvb://1.2.3/file", 1])"},
    {"IFavouriteList.Item", "[1, 1]"},
    {"IFavouriteListCollection.Item", "[1, 1]"},
    {"ILocalSystem.GetDeviceID", "[]"},
    {"IMtm.OnTabFocus", "[1]"},
    {"IParentalControlManager.GetParentalRatingSchemeNum", "[1]"},
    {"IProgramme.GetDuration", "[1]"},
    {"ISearchManager.SearchManager_CreateSearch", "[1, 1]"},
};

class NoEvents : public EventSink {
  public:
    Json::Value Take(const char*, const char*, Json::Value) override { return Json::Value(Json::arrayValue); }
};

// Returns whether all names are registered in this directory.
bool AllServed(const ScratchDirectory& directory) {
    std::error_code error;
    std::filesystem::directory_iterator entries(directory / "hidl", error);
    return std::count_if(begin(entries), end(entries), [](const auto& entry) { return entry.is_symlink(); }) >=
           kFamilies;
}

enum class Between { Nothing, Monitor };

// Returns whether a monitor has the place of the platform's sockets in this directory.
bool AllTaken(const ScratchDirectory& directory) {
    std::filesystem::directory_iterator entries(directory.Path());
    return std::count_if(begin(entries), end(entries),
                         [](const auto& entry) { return entry.path().extension() == ".relay"; }) >= kFamilies;
}

// A service with its platform, a client for each family, and between service and platform a monitor that records, or
// nothing.
class Scene {
  public:
    explicit Scene(Between between = Between::Nothing) {
        if (between == Between::Monitor) {
            mMonitor = std::make_unique<ChildProcess>(MonitorCommand(mDirectory / kRecording));
            Expect(test::WaitFor([this] { return AllTaken(mDirectory); }), "starting the monitor");
        }
        Expect(test::WaitFor([this] { return AllServed(mDirectory); }), "starting the service");
        for (int family = 0; family < kFamilies; ++family) {
            std::vector<std::string> command = RoleCommand(kClient);
            command.push_back(std::to_string(family));
            mClients.push_back(std::make_unique<ChildProcess>(command));
        }
        for (const auto& client : mClients) Expect(client->WaitForOutput("ready\n"), "a client");
    }

    // Returns the calls per second of all these clients together.
    double CallsPerSecond(size_t clients) {
        std::vector<size_t> before;
        for (size_t i = 0; i < clients; ++i) before.push_back(mClients[i]->Output().size());
        for (size_t i = 0; i < clients; ++i) mClients[i]->Write(std::to_string(kPeriod.count()) + "\n");
        double sum = 0;
        for (size_t i = 0; i < clients; ++i) {
            const auto answer = [&] { return mClients[i]->Output().substr(before[i]); };
            Expect(test::WaitFor([&] { return answer().find('\n') != std::string::npos; }), "a client");
            sum += std::stod(answer());
        }
        LetMonitorFinish();
        return sum;
    }

    // Returns whether the monitor has seen the calls.
    bool Recorded() const { return std::filesystem::file_size(mDirectory / kRecording) > (1u << 20); }

    double ResidentKiB() const { return static_cast<double>(test::UsageOf(mService.Pid()).residentKiB); }

    // Returns the resident memory for each connection of a platform that has sent an event.
    double KiBPerConnection() const;

  private:
    // What it has not written yet must not take time of the next measurement.
    void LetMonitorFinish() const {
        if (mMonitor == nullptr) return;
        for (uintmax_t last = 0, size = 1; size != last;) {
            last = size;
            std::this_thread::sleep_for(milliseconds(20));
            size = std::filesystem::file_size(mDirectory / kRecording);
        }
    }

    static constexpr char kRecording[] = "traffic.ndjson";
    const ScratchDirectory mDirectory;
    ChildProcess mPlatform{RoleCommand(kLibraryPlatform)};
    ChildProcess mService{ServiceCommand(), {ServiceEnvironment()}};
    std::unique_ptr<ChildProcess> mMonitor;
    std::vector<std::unique_ptr<ChildProcess>> mClients;
};

double Scene::KiBPerConnection() const {
    constexpr int kConnections = 100;
    const TolmIpcKeyId key = *tolm::families::kVideoBroadcast.events;
    const std::string name = tolm::TolmIpcKeyConverter::GetInstance()->GetSocketName(key);
    const sockaddr_un address = tolm::SocketAddress(mDirectory / name);
    const std::string text = R"({"type": "videobroadcast", "event": 1, "context": "0x1000", "state": 1, "error": 0})";
    const std::vector<unsigned char> event(text.begin(), text.end());
    const int threads = test::UsageOf(mService.Pid()).threads;
    const double before = ResidentKiB();
    std::vector<int> connections;
    for (int i = 0; i < kConnections; ++i) {
        connections.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        bool alive = true;
        const bool sent =
            connect(connections.back(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
            tolm::SendInternalSocket(connections.back(), 7, TOLM_IPC_MSG_ASYNC, event, alive);
        Expect(sent, "an event of a further connection");
    }
    const auto served = [&] { return test::UsageOf(mService.Pid()).threads >= threads + kConnections; };
    Expect(test::WaitFor(served), "serving further connections");
    const double each = (ResidentKiB() - before) / kConnections;
    for (const int connection : connections) close(connection);
    return each;
}

// Returns the milliseconds until a service that is started has registered all names.
double StartMilliseconds() {
    const ScratchDirectory directory;
    const auto start = Clock::now();
    ChildProcess service(ServiceCommand(), {ServiceEnvironment()});
    while (!AllServed(directory)) std::this_thread::sleep_for(std::chrono::microseconds(200));
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

}  // namespace

std::vector<Row> ServiceRows() {
    std::vector<Measurement> measurements;
    Scene scene;
    Scene monitored(Between::Monitor);
    const char* const kOne = "calls over HIDL, 1 client, all processors";
    const char* const kAll = "18 clients, each of its own family";
    measurements = {
        {kOne, Unit::kPerSecond, "", {}, [&] { return scene.CallsPerSecond(1); }},
        {kAll, Unit::kPerSecond, kOne, Target{true, 1.25}, [&] { return scene.CallsPerSecond(kFamilies); }},
        {"the 1 client, while a monitor records", Unit::kPerSecond, kOne, Target{true, 1 / 1.9},
         [&] { return monitored.CallsPerSecond(1); }},
        {"the 18 clients, while a monitor records", Unit::kPerSecond, kAll, Target{true, 1 / 1.5},
         [&] { return monitored.CallsPerSecond(kFamilies); }},
        {"service, resident, all families used", Unit::kKiB, "", Target{false, 10496},
         [&] { return scene.ResidentKiB(); }},
        {"service, until all names are served", Unit::kMilliseconds, "", Target{false, 60}, StartMilliseconds},
    };
    Run(measurements, kRounds);
    Expect(monitored.Recorded(), "the monitor's recording");
    // At the end, since it keeps some of the memory.
    std::vector<Measurement> last = {{"service, resident per further connection", Unit::kKiB, "", Target{false, 24},
                                      [&] { return scene.KiBPerConnection(); }}};
    Run(last, 1);
    std::vector<Row> rows = RowsOf(measurements);
    for (const Row& row : RowsOf(last)) rows.push_back(row);
    return rows;
}

int RunClient(int family) {
    const Package::QualifiedMethod found = Package::Get().FindMethod(kCalls[family].method);
    const Method& method = *found.method;
    const Json::Value arguments = ParseJson(kCalls[family].arguments);
    const ServiceCaller caller(*found.interface, Milliseconds(10000));
    NoEvents sink;
    Expect(test::WaitFor([&] { return StatusOf(method, caller.CallNow(method, arguments, sink).results) == 0; }),
           kCalls[family].method);
    std::cout << "ready" << std::endl;
    long period;
    while (std::cin >> period) {
        const auto start = Clock::now();
        const auto end = start + milliseconds(period);
        size_t calls = 0;
        for (; Clock::now() < end; ++calls) caller.CallNow(method, arguments, sink);
        std::cout << static_cast<double>(calls) / std::chrono::duration<double>(Clock::now() - start).count()
                  << std::endl;
    }
    return 0;
}

}  // namespace hbbtv::bench
