// A request of each family that has one, for tests in which families are silent.
#pragma once

#include <iterator>
#include <map>
#include <string>

#include "common/text/json.h"
#include "package/bindings.h"

namespace hbbtv::test {

struct FamilyCall {
    const char* family;
    const char* interface;
    const char* method;
    const char* arguments;
};

inline constexpr FamilyCall kFamilyCalls[] = {
    {"video_broadcast", "IVideoBroadcast", "NextChannel", "[4096]"},
    {"channel", "IChannel", "GetName", "[1]"},
    {"application_manager", "IApplicationManager", "GetCurrentApp", "[]"},
    {"application_private_data", "IApplicationPrivatedata", "GetFreeMem", "[]"},
    {"av_component", "IAVComponent", "GetComponentTag", "[1]"},
    {"capabilities", "ICapabilities", "GetExtraSDVideoDecodes", "[]"},
    {"channel_config", "IChannelConfig", "GetCurrentChannel", "[]"},
    {"channel_list", "IChannelList", "GetLength", "[1]"},
    {"configuration", "IConfiguration", "GetPreferredAudioLanguage", "[]"},
    {"dsmcc", "IDsmcc", "OnReleaseFile", R"(["dvb://1", 1])"},
    {"favourite_list", "IFavouriteList", "GetLength", "[1]"},
    {"favourite_list_collection", "IFavouriteListCollection", "GetLength", "[1]"},
    {"local_system", "ILocalSystem", "GetDeviceID", "[]"},
    {"mtm", "IMtm", "OnAllTabsDestroyed", "[]"},
    {"parental_control_manager", "IParentalControlManager", "Create", "[]"},
    {"programme", "IProgramme", "GetName", "[1]"},
    {"search_manager", "ISearchManager", "SearchManager_Create", "[]"},
};

// The only family without a request: its messages are one-way.
inline constexpr FamilyCall kOneWayCall = {"av_control", "IAVControl", "ComponentUpdate", "[0, 0, [], 0]"};

inline constexpr int kNotAnswered = -1000;

// Returns the status, or kNotAnswered if the call failed. Its service must be registered.
inline int Make(const FamilyCall& call) {
    static NoEvents noEvents;
    const InterfaceBinding& binding = *AllBindings().at(call.interface);
    const android::sp<android::hidl::base::V1_0::IBase> service = binding.find();
    if (service == nullptr) return kNotAnswered;
    for (const MethodBinding& method : binding.methods) {
        if (std::string(method.name) != call.method) continue;
        const CallOutcome outcome = method.invoke(*service, ParseJson(call.arguments), noEvents);
        return outcome.answered ? outcome.results[0].asInt() : kNotAnswered;
    }
    return kNotAnswered;
}

}  // namespace hbbtv::test
