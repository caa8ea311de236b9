// A client process for the tests: registers a callback with the family that it is told, says "registered", writes a
// line for each event and lives until it is killed or told "unregister" on standard input.

#include <vantorel/hardware/hbbtv/1.0/IAVControl.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationManager.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IConfiguration.h>
#include <vantorel/hardware/hbbtv/1.0/IDsmcc.h>
#include <vantorel/hardware/hbbtv/1.0/IMtm.h>
#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <cstdio>
#include <functional>
#include <iostream>
#include <string>

#include "recording_aip_event_callback.h"
#include "recording_av_control_callback.h"
#include "recording_channel_config_callback.h"
#include "recording_configuration_callback.h"
#include "recording_dsmcc_callback.h"
#include "recording_mtm_callback.h"
#include "recording_search_manager_callback.h"
#include "recording_video_broadcast_callback.h"

namespace {

using android::sp;
using android::hardware::Return;
using vantorel::hardware::hbbtv::V1_0::IApplicationManager;
using vantorel::hardware::hbbtv::V1_0::IAVControl;
using vantorel::hardware::hbbtv::V1_0::IChannelConfig;
using vantorel::hardware::hbbtv::V1_0::IConfiguration;
using vantorel::hardware::hbbtv::V1_0::IDsmcc;
using vantorel::hardware::hbbtv::V1_0::IMtm;
using vantorel::hardware::hbbtv::V1_0::ISearchManager;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::TolmAIPEvent;

constexpr int64_t kVb = 0x1000;
constexpr int64_t kContext = 0xabc;

class PrintingCallback : public hbbtv::test::RecordingVideoBroadcastCallback {
  public:
    Return<void> onPlayPositionChanged(int32_t position) override {
        printf("position %d\n", position);
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

class PrintingAVControlCallback : public hbbtv::test::RecordingAVControlCallback {
  public:
    Return<void> onComponentSelect(int32_t event, Type type, int32_t index) override {
        printf("component %d %d %d\n", event, static_cast<int32_t>(type), index);
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

class PrintingConfigCallback : public hbbtv::test::RecordingChannelConfigCallback {
  public:
    Return<void> OnChannelConfigEvent(int32_t event, const Info& info, int64_t context) override {
        printf("channel configuration %d %d %lld\n", event, info.reserved, static_cast<long long>(context));
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

class PrintingConfigurationCallback : public hbbtv::test::RecordingConfigurationCallback {
  public:
    Return<void> onConfigurationEvent(int32_t event, const Info& info) override {
        printf("configuration %d '%s' %d\n", event, info.audioLanguage.c_str(), info.ratingAge);
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

class PrintingDsmccCallback : public hbbtv::test::RecordingDsmccCallback {
  public:
    Return<void> OnDsmccFileEvent(int32_t type, const Text& url, const Text& filePath, int64_t context) override {
        printf("file %d '%s' %s %lld\n", type, url.c_str(), filePath.c_str(), static_cast<long long>(context));
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

class PrintingAIPCallback : public hbbtv::test::RecordingAIPEventCallback {
  public:
    Return<void> onApplicationEvent(Event event, const Info& info, int64_t context) override {
        printf("application event %d %d %d %lld\n", static_cast<int>(event), info.appId, info.orgId,
               static_cast<long long>(context));
        fflush(stdout);
        return ::android::hardware::Void();
    }

    Return<void> onGetLocalParantalRating(const Text& countryCode, int32_t rating) override {
        printf("rating asked %s %d\n", countryCode.c_str(), rating);
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

class PrintingMtmCallback : public hbbtv::test::RecordingMtmCallback {
  public:
    Return<void> Ping(Ping_cb _hidl_cb) override {
        printf("ping\n");
        fflush(stdout);
        return RecordingMtmCallback::Ping(_hidl_cb);
    }
};

class PrintingSearchCallback : public hbbtv::test::RecordingSearchManagerCallback {
  public:
    Return<void> OnSearchManagerEvent(int32_t event, const Info& info, int64_t context) override {
        printf("search %d %d %lld %lld\n", event, info.state, static_cast<long long>(info.searchHandle),
               static_cast<long long>(context));
        fflush(stdout);
        return ::android::hardware::Void();
    }
};

struct Registration {
    std::function<Return<int32_t>()> begin;
    std::function<Return<int32_t>()> end;
    int32_t begins = 0;  // the status of one that succeeds
};

// A browser that is well, one that does not return ("mtm_hanging") or one that does not answer ("mtm_silent").
Registration RegistrationOfABrowser(const std::string& kind) {
    const sp<IMtm> service = IMtm::getService();
    const sp<PrintingMtmCallback> browser = new PrintingMtmCallback;
    if (kind == "mtm_hanging") browser->Hang();
    browser->silent = kind == "mtm_silent";
    return {[=] { return Return<int32_t>(service->RegisterCallback(browser).isOk() ? 0 : -1); },
            [=] { return Return<int32_t>(service->UnregisterCallback().isOk() ? 0 : -1); }};
}

// One object for several events.
Registration RegistrationOfAnApplication() {
    const sp<IApplicationManager> service = IApplicationManager::getService();
    const sp<PrintingAIPCallback> client = new PrintingAIPCallback;
    return {[=]() -> Return<int32_t> {
                for (const TolmAIPEvent event : {TolmAIPEvent::GET_LOCAL_PARENTAL_RATING, TolmAIPEvent::KEY_PRESS}) {
                    Return<int32_t> status = service->RegisterCallback(event, client, kContext);
                    if (!status.isOk() || static_cast<int32_t>(status) != 0) return status;
                }
                return service->RegisterCallback(TolmAIPEvent::APPLICATION_EVENT_1, client, kContext);
            },
            [=] { return service->UnregisterCallback(TolmAIPEvent::KEY_PRESS, kContext); }};
}

Registration RegistrationOf(const std::string& family) {
    if (family.rfind("mtm", 0) == 0) return RegistrationOfABrowser(family);
    if (family == "application_manager") return RegistrationOfAnApplication();
    if (family == "av_control") {
        const sp<IAVControl> service = IAVControl::getService();
        return {[=] { return service->RegisterCallback(new PrintingAVControlCallback, kContext); },
                [=] { return service->UnregisterCallback(); }};
    }
    if (family == "channel_config") {
        const sp<IChannelConfig> service = IChannelConfig::getService();
        return {[=] { return service->RegisterCallback(new PrintingConfigCallback, kContext); },
                [=] { return service->UnregisterCallback(); }};
    }
    if (family == "configuration" || family == "further_configuration") {
        const sp<IConfiguration> service = IConfiguration::getService();
        const sp<PrintingConfigurationCallback> callback = new PrintingConfigurationCallback;
        return {[=] { return service->RegisterCallback(callback); },
                [=] { return service->UnregisterCallback(callback); }, family == "configuration" ? 0 : -1};
    }
    if (family == "dsmcc") {
        const sp<IDsmcc> service = IDsmcc::getService();
        return {[=] { return service->RegisterCallback(new PrintingDsmccCallback); },
                [=] { return service->UnregisterCallback(); }};
    }
    if (family == "search_manager") {
        const sp<ISearchManager> service = ISearchManager::getService();
        return {[=] { return service->SearchManager_RegisterCallback(1, new PrintingSearchCallback, kContext); },
                [=] { return service->SearchManager_Destroy(1); }};
    }
    const sp<IVideoBroadcast> service = IVideoBroadcast::getService();
    return {[=] { return service->RegisterCallback(kVb, new PrintingCallback, kContext); },
            [=] { return service->UnregisterCallback(kVb); }};
}

}  // namespace

int main(int argc, char** argv) {
    const Registration registration = RegistrationOf(argc > 1 ? argv[1] : "video_broadcast");
    const auto status = registration.begin();
    if (!status.isOk() || static_cast<int32_t>(status) != registration.begins) {
        printf("not registered\n");
        return 1;
    }
    printf("registered\n");
    fflush(stdout);
    std::string command;
    while (std::getline(std::cin, command)) {
        if (command != "unregister") continue;
        printf(registration.end().isOk() ? "unregistered\n" : "not unregistered\n");
        fflush(stdout);
    }
    return 0;
}
