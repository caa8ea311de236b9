// hbbtv-demo: a client like the HbbTV browser, in a process of its own. It drives a video/broadcast object through the
// service, walks through the channel list, searches programmes, is given an application's tab, and shows what was
// asked, what came back and which events arrived. Meant for the simulated platform's default line-up, by whose services
// it tunes.

#include <hidl/HidlTransportSupport.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "application_demo.h"
#include "caller.h"
#include "channel_walk.h"
#include "event_log.h"
#include "programme_guide.h"
#include "programme_search.h"
#include "transcript.h"

namespace hbbtv::demo {

namespace {

using android::sp;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::TolmHbbtvAVComponentType;
using vantorel::hardware::hbbtv::V1_0::TolmVBPlayState;

constexpr int64_t kContext = 0xbeef;
constexpr int64_t kPresenting = static_cast<int64_t>(TolmVBPlayState::PRESENTING);

struct Service {
    const char* name;
    int32_t onid, tsid, sid;
};

// Free-to-air services of 19.2 degrees east, and a scrambled one of 13 degrees east.
constexpr Service kDasErste{"Das Erste HD", 1, 1019, 10301};
constexpr Service kZdf{"ZDF HD", 1, 1011, 11110};
constexpr Service kArte{"arte HD", 1, 1019, 10302};
constexpr Service kTagesschau{"tagesschau24 HD", 1, 1039, 10375};
constexpr Service kRai{"Rai 1 HD", 318, 5200, 3401};
constexpr int32_t kDvbS = 11;
constexpr int32_t kEncrypted = 4;

std::string Hex(int64_t handle) {
    char text[32];
    std::snprintf(text, sizeof(text), "0x%llx", static_cast<unsigned long long>(handle));
    return text;
}

class Demo {
  public:
    explicit Demo(const sp<IVideoBroadcast>& service)
        : mCaller(mTranscript), mService(service), mEvents(new EventLog(mTranscript)) {}

    // Whether everything went as it should.
    bool Run() {
        const bool done = Walk() && Search() && Create() && Bind() && Tune(kDasErste) && Tune(kZdf) && Zap() && Ask() &&
                          Volume() && Components() && Programmes() && TuneToScrambled() && Applications();
        return Leave() && done;
    }

  private:
    bool Walk() {
        return WalkChannels(mTranscript, mCaller,
                            [this](int64_t channel, const std::string& name) { mEvents->Name(channel, name); });
    }

    bool Search() { return SearchProgrammes(mTranscript, mCaller, "news"); }

    bool Create() {
        mTranscript.Step("Create a video/broadcast object and listen to its events");
        return mCaller.Get(
                   "Create(context " + Hex(kContext) + ")", [&](auto cb) { return mService->Create(kContext, cb); },
                   [](int64_t vb) { return "object " + Hex(vb); }, mVb) &&
               mCaller.Call("RegisterCallback", [&] { return mService->RegisterCallback(mVb, mEvents, kContext); });
    }

    bool Bind() {
        mTranscript.Step("Bind to the channel that is on");
        int64_t channel = 0;
        return mCaller.Get(
                   "BindToCurrentChannel", [&](auto cb) { return mService->BindToCurrentChannel(mVb, cb); },
                   [&](int64_t handle) { return mEvents->NameOf(handle); }, channel) &&
               mCaller.Expect(mEvents->WaitFor("onPlayStateChange", kPresenting, kPatience), "presenting");
    }

    bool CreateChannel(const Service& service, int64_t& channel) {
        const std::string triplet =
            std::to_string(service.onid) + ", " + std::to_string(service.tsid) + ", " + std::to_string(service.sid);
        const bool ok = mCaller.Get(
            "CreateChannel_2(DVB-S, " + triplet + ")",
            [&](auto cb) {
                return mService->CreateChannel_2(mVb, kDvbS, service.onid, service.tsid, service.sid, 0, "", cb);
            },
            [](int64_t handle) { return "channel " + Hex(handle); }, channel);
        if (ok) mEvents->Name(channel, service.name);
        return ok;
    }

    bool SetChannel(const Service& service, int64_t channel) {
        mEvents->Forget();
        return mCaller.Call("SetChannel(" + std::string(service.name) + ")",
                            [&] { return mService->SetChannel(mVb, channel, false, ""); });
    }

    bool Tune(const Service& service) {
        mTranscript.Step("Tune to " + std::string(service.name));
        int64_t channel = 0;
        return CreateChannel(service, channel) && SetChannel(service, channel) &&
               mCaller.Expect(mEvents->WaitFor("onChannelChangeSucceeded", channel, kPatience), "the channel change") &&
               mCaller.Expect(mEvents->WaitFor("onPlayStateChange", kPresenting, kPatience), "presenting");
    }

    bool Zap() {
        mTranscript.Step("Zap: one up, one down");
        mEvents->Forget();
        const bool up = mCaller.Call("NextChannel", [&] { return mService->NextChannel(mVb); }) &&
                        mCaller.Expect(mEvents->WaitFor("onPlayStateChange", kPresenting, kPatience), "presenting");
        mEvents->Forget();
        return up && mCaller.Call("PrevChannel", [&] { return mService->PrevChannel(mVb); }) &&
               mCaller.Expect(mEvents->WaitFor("onPlayStateChange", kPresenting, kPatience), "presenting");
    }

    bool Ask() {
        mTranscript.Step("Ask how things stand");
        int64_t channel = 0;
        TolmVBPlayState state = TolmVBPlayState::UNREALIZED;
        return mCaller.Get(
                   "GetCurrentChannel", [&](auto cb) { return mService->GetCurrentChannel(mVb, cb); },
                   [&](int64_t handle) { return mEvents->NameOf(handle); }, channel) &&
               mCaller.Get(
                   "GetPlayState", [&](auto cb) { return mService->GetPlayState(mVb, cb); },
                   [](TolmVBPlayState s) { return PlayStateName(static_cast<int32_t>(s)); }, state) &&
               state == TolmVBPlayState::PRESENTING;
    }

    bool Volume() {
        constexpr uint32_t kVolume = 35;
        uint32_t volume = 0;
        return mCaller.Call("SetVolume(35)", [&] { return mService->SetVolume(mVb, kVolume); }) &&
               mCaller.Get(
                   "GetVolume", [&](auto cb) { return mService->GetVolume(mVb, cb); },
                   [](uint32_t v) { return std::to_string(v); }, volume) &&
               mCaller.Expect(volume == kVolume, "volume 35");
    }

    bool CountComponents(const char* kind, TolmHbbtvAVComponentType type) {
        uint32_t count = 0;
        return mCaller.Get(
            "GetAVComponentNumByType(" + std::string(kind) + ")",
            [&](auto cb) { return mService->GetAVComponentNumByType(mVb, type, cb); },
            [](uint32_t n) { return std::to_string(n); }, count);
    }

    bool Components() {
        return CountComponents("video", TolmHbbtvAVComponentType::VIDEO) &&
               CountComponents("audio", TolmHbbtvAVComponentType::AUDIO) &&
               CountComponents("subtitle", TolmHbbtvAVComponentType::SUBTITLE);
    }

    bool Programmes() { return ShowNowAndNext(mTranscript, mCaller, mService, mVb); }

    bool TuneToScrambled() {
        mTranscript.Step("Tune to a service that cannot be shown: " + std::string(kRai.name));
        int64_t channel = 0;
        return CreateChannel(kRai, channel) && SetChannel(kRai, channel) &&
               mCaller.Expect(mEvents->WaitFor("onChannelChangeError", kEncrypted, kPatience),
                              "the error \"encrypted\"");
    }

    bool Applications() {
        return ApplicationDemo(mTranscript, mCaller)
            .Run([&] { return Tune(kArte); }, [&] { return Tune(kTagesschau); });
    }

    // Also after a failure, so that the platform is left as it was.
    bool Leave() {
        if (mVb == 0) return false;
        mTranscript.Step("Leave");
        const bool unregistered = mCaller.Call("UnregisterCallback", [&] { return mService->UnregisterCallback(mVb); });
        return mCaller.Call("Destroy", [&] { return mService->Destroy(mVb); }) && unregistered;
    }

    Transcript mTranscript;
    Caller mCaller;
    const sp<IVideoBroadcast> mService;
    const sp<EventLog> mEvents;
    int64_t mVb = 0;
};

// The service may still be starting.
sp<IVideoBroadcast> FindService() {
    const auto deadline = Transcript::Clock::now() + kPatience;
    while (Transcript::Clock::now() < deadline) {
        if (sp<IVideoBroadcast> service = IVideoBroadcast::tryGetService()) return service;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return nullptr;
}

}  // namespace

}  // namespace hbbtv::demo

int main() {
    using namespace hbbtv::demo;
    const auto service = FindService();
    if (service == nullptr) {
        std::fprintf(stderr,
                     "hbbtv-demo: no service has registered IVideoBroadcast/default within 10 s.\n"
                     "Start it with scripts/demo, or set HIDL_HOST_DIR to the directory of the one that runs.\n");
        return 3;
    }
    const bool ok = Demo(service).Run();
    std::printf("\n%s\n", ok ? "All went as it should." : "Something did not go as it should: see above.");
    return ok ? 0 : 1;
}
