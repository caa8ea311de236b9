// Now and next: see programme_guide.h.
#include "programme_guide.h"

#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>

#include <ctime>

namespace hbbtv::demo {

namespace {

using android::sp;
using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::V1_0::IProgramme;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int kMinute = 60;

std::string ClockTime(int32_t seconds) {
    const std::time_t time = seconds;
    std::tm local{};
    char text[32];
    localtime_r(&time, &local);
    std::strftime(text, sizeof(text), "%H:%M", &local);
    return text;
}

bool Show(Caller& caller, const sp<IProgramme>& programmes, int64_t programme) {
    hidl_string name;
    int32_t start = 0;
    int32_t duration = 0;
    return caller.Get(
               "GetName", [&](auto cb) { return programmes->GetName(programme, cb); },
               [](const hidl_string& text) { return std::string(text); }, name) &&
           caller.Get(
               "GetStartTime", [&](auto cb) { return programmes->GetStartTime(programme, cb); }, ClockTime, start) &&
           caller.Get(
               "GetDuration", [&](auto cb) { return programmes->GetDuration(programme, cb); },
               [](int32_t seconds) { return std::to_string(seconds / kMinute) + " minutes"; }, duration) &&
           caller.Call("Release", [&] { return programmes->Release(programme); });
}

}  // namespace

bool ShowNowAndNext(Transcript& transcript, Caller& caller, const sp<IVideoBroadcast>& service, int64_t vb) {
    transcript.Step("Ask what is on now and next");
    const sp<IProgramme> programmes = IProgramme::tryGetService();
    if (!caller.Expect(programmes != nullptr, "the service IProgramme")) return false;
    uint32_t count = 0;
    bool ok = caller.Get(
        "GetProgrammeNum", [&](auto cb) { return service->GetProgrammeNum(vb, cb); },
        [](uint32_t number) { return std::to_string(number); }, count);
    for (uint32_t i = 0; ok && i < count; ++i) {
        int64_t programme = 0;
        ok = caller.Get(
                 "GetProgrammeByIndex(" + std::to_string(i) + ")",
                 [&](auto cb) { return service->GetProgrammeByIndex(vb, i, cb); },
                 [](int64_t) { return std::string("a programme"); }, programme) &&
             Show(caller, programmes, programme);
    }
    return ok && caller.Expect(count == 2, "two programmes");
}

}  // namespace hbbtv::demo
