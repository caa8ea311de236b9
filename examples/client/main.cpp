// A client of the HbbTV service library: tunes to a service, prints the events of its video/broadcast object, and is
// the browser of one tab. Ends when the service is presented and its application is loaded. docs/client.md explains it.
//
// usage: hbbtv-example-client [ONID TSID SID]

#include <vantorel/hardware/hbbtv/1.0/IMtm.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcastCallback.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>

#include "tab.h"
#include "tasks.h"

using android::sp;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;
using android::hardware::Void;
using vantorel::hardware::hbbtv::V1_0::IMtm;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcastCallback;
using vantorel::hardware::hbbtv::V1_0::TolmVBPlayState;

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;
constexpr int kNoService = 3;
constexpr auto kPatience = std::chrono::seconds(20);

// A value of this client that names its object; the library does not interpret it.
constexpr int64_t kContext = 0xc11e;

// Prints what happens to the video/broadcast object. The other events are ignored.
class Events : public IVideoBroadcastCallback {
  public:
    Events(std::shared_ptr<Tasks> tasks, std::function<void()> presenting)
        : mTasks(std::move(tasks)), mPresenting(std::move(presenting)) {}

    Return<void> onPlayStateChange(int32_t state, int32_t error) override {
        std::printf("event: play state %d, error %d\n", state, error);
        if (state == static_cast<int32_t>(TolmVBPlayState::PRESENTING)) mTasks->Add(mPresenting);
        return Void();
    }
    Return<void> onChannelChangeSucceeded(int64_t channel, int64_t, int32_t) override {
        std::printf("event: tuned to channel 0x%08llx\n", static_cast<unsigned long long>(channel));
        return Void();
    }
    Return<void> onChannelChangeError(int64_t, int32_t reason) override {
        std::printf("event: cannot tune, reason %d\n", reason);
        return Void();
    }
    Return<void> onVideoBroadcastEvent(int32_t) override { return Void(); }
    Return<void> onFullScreenChange(int32_t) override { return Void(); }
    Return<void> onParentalRatingBlocked(const hidl_string&, int64_t, const hidl_string&, bool) override {
        return Void();
    }
    Return<void> onParentalRating(const hidl_string&, int64_t, const hidl_string&) override { return Void(); }
    Return<void> onPlaySpeedChanged(double) override { return Void(); }
    Return<void> onPlayPositionChanged(int32_t) override { return Void(); }
    Return<void> onRecordingEvent(int32_t, int32_t, const hidl_string&) override { return Void(); }
    Return<void> onDrmRightsError(int32_t, const hidl_string&, const hidl_string&, const hidl_string&) override {
        return Void();
    }
    Return<void> onComponentType11(int32_t) override { return Void(); }
    Return<void> onComponentType15(int32_t) override { return Void(); }
    Return<void> onStreamEvent(const hidl_string&, const hidl_string&, const hidl_string&, const hidl_vec<uint8_t>&,
                               const hidl_string&) override {
        return Void();
    }

  private:
    const std::shared_ptr<Tasks> mTasks;
    const std::function<void()> mPresenting;
};

// Prints the call and returns whether it has succeeded. -1 means that the platform has not answered.
bool Succeeded(const char* call, const Return<int32_t>& returned) {
    const int32_t status = returned.isOk() ? static_cast<int32_t>(returned) : -1;
    std::printf("%s: status %d\n", call, status);
    return status == 0;
}

// Creates a channel of the object from the three ids of a DVB service. Returns its handle, 0 on failure.
int64_t CreateChannel(IVideoBroadcast& broadcast, int64_t vb, int onid, int tsid, int sid) {
    constexpr int32_t kDvbS = 11;
    int64_t channel = 0;
    const Return<void> returned = broadcast.CreateChannel_2(
        vb, kDvbS, onid, tsid, sid, 0, "", [&](int32_t status, int64_t handle) { channel = status == 0 ? handle : 0; });
    return returned.isOk() ? channel : 0;
}

int64_t CreateObject(IVideoBroadcast& broadcast) {
    int64_t vb = 0;
    const Return<void> returned =
        broadcast.Create(kContext, [&](int32_t status, int64_t handle) { vb = status == 0 ? handle : 0; });
    return returned.isOk() ? vb : 0;
}

int Run(const sp<IVideoBroadcast>& broadcast, const sp<IMtm>& tabs, int onid, int tsid, int sid) {
    const auto tasks = std::make_shared<Tasks>();
    bool presenting = false;
    bool loaded = false;
    const sp<Events> events = new Events(tasks, [&] { presenting = true; });
    const sp<Tab> tab = new Tab(tabs, tasks, [&] { loaded = true; });

    const int64_t vb = CreateObject(*broadcast);
    if (!Succeeded("register for events", broadcast->RegisterCallback(vb, events, kContext))) return kFailed;
    const bool registered = tabs->RegisterCallback(tab).isOk();
    const int64_t channel = CreateChannel(*broadcast, vb, onid, tsid, sid);
    const bool tuning = registered && Succeeded("tune", broadcast->SetChannel(vb, channel, false, ""));

    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (tuning && !(presenting && loaded) && tasks->RunOne(deadline)) {
    }

    // A callback that has begun may still add a task, which does not run.
    const bool unregistered = tabs->UnregisterCallback().isOk();
    Succeeded("unregister", broadcast->UnregisterCallback(vb));
    Succeeded("destroy", broadcast->Destroy(vb));
    return presenting && loaded && unregistered ? EXIT_SUCCESS : kFailed;
}

}  // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    if (argc != 1 && argc != 4) {
        std::fprintf(stderr, "usage: %s [ONID TSID SID]\n", argv[0]);
        return kUsage;
    }
    // By default, a service of the simulator's built-in line-up that has an application.
    const int onid = argc == 4 ? std::atoi(argv[1]) : 1;
    const int tsid = argc == 4 ? std::atoi(argv[2]) : 1019;
    const int sid = argc == 4 ? std::atoi(argv[3]) : 10302;
    const sp<IVideoBroadcast> broadcast = IVideoBroadcast::tryGetService();
    const sp<IMtm> tabs = IMtm::tryGetService();
    if (broadcast == nullptr || tabs == nullptr) {
        std::fprintf(stderr, "the service is not running\n");
        return kNoService;
    }
    return Run(broadcast, tabs, onid, tsid, sid);
}
