// A client process for the tests: registers a callback with the family that it is told, says "registered", writes a
// line for each event and lives until it is killed or told "unregister" on standard input.

#include <IAIPEventCallbackListener.h>
#include <IAVControlCallbackListener.h>
#include <IChannelConfigCallbackListener.h>
#include <IConfigurationCallbackListener.h>
#include <IDsmccCallbackListener.h>
#include <ISearchManagerCallbackListener.h>
#include <IVideoBroadcastCallbackListener.h>
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

#include "recording_browser.h"
#include "recording_client.h"

namespace {

using android::sp;
using android::hardware::Return;
using vantorel::hardware::hbbtv::V1_0::IAIPEventCallback;
using vantorel::hardware::hbbtv::V1_0::IApplicationManager;
using vantorel::hardware::hbbtv::V1_0::IAVControl;
using vantorel::hardware::hbbtv::V1_0::IAVControlCallback;
using vantorel::hardware::hbbtv::V1_0::IChannelConfig;
using vantorel::hardware::hbbtv::V1_0::IChannelConfigCallback;
using vantorel::hardware::hbbtv::V1_0::IConfiguration;
using vantorel::hardware::hbbtv::V1_0::IConfigurationCallback;
using vantorel::hardware::hbbtv::V1_0::IDsmcc;
using vantorel::hardware::hbbtv::V1_0::IDsmccCallback;
using vantorel::hardware::hbbtv::V1_0::IMtm;
using vantorel::hardware::hbbtv::V1_0::ISearchManager;
using vantorel::hardware::hbbtv::V1_0::ISearchManagerCallback;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcastCallback;
using vantorel::hardware::hbbtv::V1_0::TolmAIPEvent;

constexpr int64_t kVb = 0x1000;
constexpr int64_t kContext = 0xabc;

// What the tests wait for: a word for the event, and those of its values that count.
std::string LineOf(const std::string& method, const Json::Value& values) {
    const Json::Value& info = values[1];
    std::string line;
    const auto add = [&](const std::string& text) { line += (line.empty() ? "" : " ") + text; };
    const auto number = [&](const Json::Value& value) { add(std::to_string(value.asInt64())); };
    if (method == "onPlayPositionChanged") {
        add("position");
        number(values[0]);
    } else if (method == "onComponentSelect") {
        add("component");
        for (const Json::Value& value : values) number(value);
    } else if (method == "OnChannelConfigEvent") {
        add("channel configuration");
        for (const Json::Value& value : {values[0], info["reserved"], values[2]}) number(value);
    } else if (method == "onConfigurationEvent") {
        add("configuration");
        number(values[0]);
        add("'" + info["audioLanguage"].asString() + "'");
        number(info["ratingAge"]);
    } else if (method == "OnDsmccFileEvent") {
        add("file");
        number(values[0]);
        add("'" + values[1].asString() + "'");
        add(values[2].asString());
        number(values[3]);
    } else if (method == "onApplicationEvent") {
        add("application event");
        for (const Json::Value& value : {values[0], info["appId"], info["orgId"], values[2]}) number(value);
    } else if (method == "onGetLocalParantalRating") {
        add("rating asked " + values[0].asString());
        number(values[1]);
    } else if (method == "OnSearchManagerEvent") {
        add("search");
        for (const Json::Value& value : {values[0], info["state"], info["searchHandle"], values[2]}) number(value);
    } else if (method == "Ping") {
        add("ping");
    }
    return line;
}

// Prints a line for each event; what it returns is up to the base.
template <typename Base>
class Printing : public Base {
  public:
    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override {
        if (const std::string line = LineOf(method, arguments); !line.empty()) {
            printf("%s\n", line.c_str());
            fflush(stdout);
        }
        return Base::Take(interface, method, std::move(arguments));
    }
};

template <typename Callback>
using PrintingClient = Printing<hbbtv::test::RecordingClient<Callback>>;

struct Registration {
    std::function<Return<int32_t>()> begin;
    std::function<Return<int32_t>()> end;
    int32_t begins = 0;  // the status of one that succeeds
};

// A browser that is well, one that does not return ("mtm_hanging") or one that does not answer ("mtm_silent").
Registration RegistrationOfABrowser(const std::string& kind) {
    const sp<IMtm> service = IMtm::getService();
    const sp<Printing<hbbtv::test::RecordingBrowser>> browser = new Printing<hbbtv::test::RecordingBrowser>;
    if (kind == "mtm_hanging") browser->Hang();
    browser->silent = kind == "mtm_silent";
    return {[=] { return Return<int32_t>(service->RegisterCallback(browser).isOk() ? 0 : -1); },
            [=] { return Return<int32_t>(service->UnregisterCallback().isOk() ? 0 : -1); }};
}

// One object for several events.
Registration RegistrationOfAnApplication() {
    const sp<IApplicationManager> service = IApplicationManager::getService();
    const sp<PrintingClient<IAIPEventCallback>> client = new PrintingClient<IAIPEventCallback>;
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
        return {[=] { return service->RegisterCallback(new PrintingClient<IAVControlCallback>, kContext); },
                [=] { return service->UnregisterCallback(); }};
    }
    if (family == "channel_config") {
        const sp<IChannelConfig> service = IChannelConfig::getService();
        return {[=] { return service->RegisterCallback(new PrintingClient<IChannelConfigCallback>, kContext); },
                [=] { return service->UnregisterCallback(); }};
    }
    if (family == "configuration" || family == "further_configuration") {
        const sp<IConfiguration> service = IConfiguration::getService();
        const sp<PrintingClient<IConfigurationCallback>> callback = new PrintingClient<IConfigurationCallback>;
        return {[=] { return service->RegisterCallback(callback); },
                [=] { return service->UnregisterCallback(callback); }, family == "configuration" ? 0 : -1};
    }
    if (family == "dsmcc") {
        const sp<IDsmcc> service = IDsmcc::getService();
        return {[=] { return service->RegisterCallback(new PrintingClient<IDsmccCallback>); },
                [=] { return service->UnregisterCallback(); }};
    }
    if (family == "search_manager") {
        const sp<ISearchManager> service = ISearchManager::getService();
        return {[=] {
                    return service->SearchManager_RegisterCallback(1, new PrintingClient<ISearchManagerCallback>,
                                                                   kContext);
                },
                [=] { return service->SearchManager_Destroy(1); }};
    }
    const sp<IVideoBroadcast> service = IVideoBroadcast::getService();
    return {[=] { return service->RegisterCallback(kVb, new PrintingClient<IVideoBroadcastCallback>, kContext); },
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
