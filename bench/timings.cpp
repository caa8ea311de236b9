#include "timings.h"

#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "VideoBroadcast.h"
#include "child_process.h"
#include "floor.h"
#include "ipc/src/plugin/tolm_channel_adaptor_ipc.h"
#include "ipc/src/plugin/tolm_channel_list_adaptor_ipc.h"
#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "platform.h"
#include "report/measurement.h"
#include "roles.h"
#include "scratch_directory.h"

namespace hbbtv::bench {

namespace {

using Clock = std::chrono::steady_clock;
using test::ChildProcess;
using test::ScratchDirectory;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int kRounds = 9;
constexpr size_t kSmall = 5000;
constexpr size_t kBulk = 400;
constexpr size_t kEvents = 30000;
constexpr int kListed = 500;
constexpr size_t kLists = 8;
constexpr int64_t kVb = 0x1000;
constexpr int64_t kChannel = 0x2000;

const void* const kVbHandle = reinterpret_cast<const void*>(kVb);
const void* const kChannelHandle = reinterpret_cast<const void*>(kChannel);

Json::Value Request(int type, int method) {
    Json::Value request(Json::objectValue);
    request["type"] = type;
    request["method"] = method;
    return request;
}

Json::Value SetChannelRequest() {
    Json::Value request = Request(3, 11);
    request["vb_handle"] = "0x1000";
    request["channel"] = "0x2000";
    request["trickPlay"] = false;
    request["url"] = "";
    return request;
}

Json::Value PlayStateRequest() {
    Json::Value request = Request(3, 7);
    request["vb_handle"] = "0x1000";
    return request;
}

Json::Value NameRequest() {
    Json::Value request = Request(12, 13);
    request["c_handle"] = "0x2000";
    return request;
}

Json::Value ItemRequest(int index) {
    Json::Value request = Request(14, 2);
    request["cl_handle"] = "0x1000";
    request["index"] = index;
    return request;
}

double PerSecond(size_t count, Clock::time_point start) {
    return static_cast<double>(count) / std::chrono::duration<double>(Clock::now() - start).count();
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
    return PerSecond(kEvents, start);
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
    return PerSecond(kEvents, start);
}

// Returns microseconds per channel.
double ReadList(const std::function<void(int index)>& readChannel) {
    return MicrosecondsEach(kLists,
                            [&] {
                                for (int i = 0; i < kListed; ++i) readChannel(i);
                            }) /
           kListed;
}

// The service with its own platform, and what is measured in this process.
class Processes {
  public:
    Processes() : mPinned((Pin(), true)) {
        Expect(mRemote != nullptr && mRemote->isRemote(), "finding the service");
        Expect(test::WaitFor([&] { return mVideo->RegisterCallback(kVbHandle, CountEvent, kVbHandle) == 0; }),
               "RegisterCallback");
        Expect(test::WaitFor([&] { return mRemote->SetChannel(kVb, kChannel, false, "") == 0; }),
               "SetChannel over HIDL");
    }
    ~Processes() {
        close(mFloorFd);
        close(mEventsFd);
        Unpin();
    }

    std::vector<Measurement> SmallRequests();
    std::vector<Measurement> Lists();
    std::vector<Measurement> Bulk();

  private:
    double Floor(size_t count, const std::function<Json::Value()>& request) {
        return MicrosecondsEach(count, [&] { FloorExchange(mFloorFd, request()); });
    }

    const bool mPinned;
    const ScratchDirectory mHop;
    ChildProcess mHopPlatform{RoleCommand(kLibraryPlatform)};
    ChildProcess mService{ServiceCommand(), {ServiceEnvironment()}};
    const android::sp<IVideoBroadcast> mRemote = IVideoBroadcast::getService();

    const ScratchDirectory mHere;
    ChildProcess mFloorPlatform{RoleCommand(kFloorPlatform)};
    ChildProcess mPlatform{RoleCommand(kLibraryPlatform)};
    const int mFloorFd = ConnectTo(tolm::GetSocketFilePath(kFloorRequests));
    const int mEventsFd = ListenOn(tolm::GetSocketFilePath(kFloorEvents));
    TolmVideoBroadcastAdaptorIpc* const mVideo = TolmVideoBroadcastAdaptorIpc::GetInstance();
    const android::sp<IVideoBroadcast> mLocal = HIDL_FETCH_IVideoBroadcast("default");

    const std::string mNoUrl;
    std::string mName;
    void* mListed = nullptr;
    int mState = 0;
};

std::vector<Measurement> Processes::SmallRequests() {
    const Unit us = Unit::kMicroseconds;
    const char* const kFloor = "small request, floor";
    return {
        {kFloor, us, "", {}, [this] { return Floor(kSmall, SetChannelRequest); }},
        {"SetChannel at the adaptor", us, kFloor, Target{false, 0.75},
         [this] {
             return MicrosecondsEach(kSmall, [this] { mVideo->SetChannel(kVbHandle, kChannelHandle, false, mNoUrl); });
         }},
        {"SetChannel through the service, in process",
         us,
         kFloor,
         {},
         [this] {
             return MicrosecondsEach(kSmall, [this] { (void)mLocal->SetChannel(kVb, kChannel, false, "").isOk(); });
         }},
        {"SetChannel over HIDL from another process", us, kFloor, Target{false, 1.75},
         [this] {
             return MicrosecondsEach(kSmall, [this] { (void)mRemote->SetChannel(kVb, kChannel, false, "").isOk(); });
         }},
    };
}

std::vector<Measurement> Processes::Lists() {
    const Unit us = Unit::kMicroseconds;
    const char* const kNameFloor = "name of 64 bytes, floor";
    const char* const kListFloor = "channel of a list of 500, floor";
    return {
        {kNameFloor, us, "", {}, [this] { return Floor(kSmall, NameRequest); }},
        {"GetName of 64 bytes at the adaptor", us, kNameFloor, Target{false, 0.75},
         [this] {
             return MicrosecondsEach(kSmall,
                                     [this] { TolmChannelAdaptorIpc::GetInstance()->GetName(kChannelHandle, mName); });
         }},
        {kListFloor,
         us,
         "",
         {},
         [this] { return ReadList([this](int index) { FloorExchange(mFloorFd, ItemRequest(index)); }); }},
        {"channel of a list of 500 at the adaptor", us, kListFloor, Target{false, 0.75},
         [this] {
             return ReadList(
                 [this](int index) { TolmChannelListAdaptorIpc::GetInstance()->Item(kVbHandle, index, mListed); });
         }},
    };
}

std::vector<Measurement> Processes::Bulk() {
    const char* const kBulkFloor = "64 KiB reply, floor";
    const char* const kEventsFloor = "events, floor";
    return {
        {kBulkFloor, Unit::kMicroseconds, "", {}, [this] { return Floor(kBulk, PlayStateRequest); }},
        {"64 KiB reply at the adaptor", Unit::kMicroseconds, kBulkFloor, Target{false, 1.00},
         [this] {
             const double each = MicrosecondsEach(kBulk, [this] { mVideo->GetPlayState(kVbHandle, mState); });
             Expect(mState == 2, "GetPlayState");
             return each;
         }},
        {kEventsFloor, Unit::kPerSecond, "", {}, [this] { return FloorEventsPerSecond(mFloorPlatform, mEventsFd); }},
        {"events to the plain callback", Unit::kPerSecond, kEventsFloor, Target{true, 1.50},
         [this] { return LibraryEventsPerSecond(mPlatform); }},
    };
}

}  // namespace

std::vector<Row> Timings() {
    Processes processes;
    std::vector<Measurement> all;
    for (std::vector<Measurement>& part : std::vector{processes.SmallRequests(), processes.Lists(), processes.Bulk()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    Run(all, kRounds);
    return RowsOf(all);
}

}  // namespace hbbtv::bench
