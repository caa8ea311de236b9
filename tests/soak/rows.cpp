#include "rows.h"

namespace hbbtv::soak {

namespace {

constexpr uint32_t kCharacters = 40;  // that an @ may become, from '0' to 'W'

uint32_t Number(const Json::Value& value) {
    return value.isString() ? static_cast<uint32_t>(std::stoul(value.asString())) : value.asUInt();
}

}  // namespace

const CallRow kCalls[kFamilies] = {
    {"application_manager", "IApplicationManager.GetOwnerApp", "[$, 19]", "appid",
     R"({"ret": 0, "appid": $, "orgid": 1})", 1},
    {"application_private_data", "IApplicationPrivatedata.GetFreeMem", "[]", "", R"({"ret": 0, "memSize": $})", 1},
    {"av_component", "IAVComponent.GetPid", "[$]", "handle", R"({"ret": 0, "pid": $})", 1},
    // The thread and its number are those of Board::oneWay.
    {"av_control", "IAVControl.ComponentUpdate", "[0, %, [], $]", "", "", 0},
    {"capabilities", "ICapabilities.HasCapability", "[$]", "capability_type", R"({"ret": $})", 0},
    {"channel", "IChannel.GetOnid", "[$]", "c_handle", R"({"ret": 0, "onid": $})", 1},
    {"channel_config", "IChannelConfig.CreateFilteredList", R"([true, false, false, "$"])", "favouriteListID",
     R"({"ret": 0, "handle": "0x#"})", 1},
    {"channel_list", "IChannelList.Item", "[1, $]", "index", R"({"ret": 0, "channel": "0x#"})", 1},
    {"configuration", "IConfiguration.SetRegionId", "[$]", "reg_id", R"({"ret": $})", 0},
    {"dsmcc", "IDsmcc.OnReleaseFile", R"(["dvb://1.2.3/file", $])", "context", R"({"ret": $})", 0},
    {"favourite_list", "IFavouriteList.Item", "[1, $]", "index", R"({"ret": 0, "channel": "0x#"})", 1},
    {"favourite_list_collection", "IFavouriteListCollection.Item", "[1, $]", "index", R"({"ret": 0, "list": "0x#"})",
     1},
    {"local_system", "ILocalSystem.GetDeviceID", "[]", "", R"({"ret": 0, "deviceID": "$"})", 1},
    {"mtm", "IMtm.OnTabFocus", "[$]", "tabid", R"({"ret": $})", 0},
    {"parental_control_manager", "IParentalControlManager.GetParentalRatingSchemeNum", "[$]", "in_handle",
     R"({"ret": 0, "num": $})", 1},
    {"programme", "IProgramme.GetDuration", "[$]", "handle", R"({"ret": 0, "out_duration": $})", 1},
    {"search_manager", "ISearchManager.SearchManager_CreateSearch", "[$, 1]", "in_handle",
     R"({"ret": 0, "out_handle": "0x#"})", 1},
    {"video_broadcast", "IVideoBroadcast.GetPlayState", "[$]", "vb_handle", R"({"ret": 0, "state": $})", 1},
};

const EventRow kEvents[kEventFamilies] = {
    {"application_manager", "IApplicationManager.RegisterCallback", R"([1, "@listen", 2748])", "onApplicationEvent",
     false, R"({"t": 237, "appid": $, "orgid": 19})", 0,
     [](const Json::Value& arguments) { return Number(arguments[1]["appId"]); }},
    {"av_control", "IAVControl.RegisterCallback", R"(["@listen", 2748])", "onComponentSelect", false,
     R"({"method": 1, "component_type": 1, "component_index": $})", 0,
     [](const Json::Value& arguments) { return Number(arguments[2]); }},
    {"channel_config", "IChannelConfig.RegisterCallback", R"(["@listen", 2748])", "OnChannelConfigEvent", false,
     R"({"event": 0, "reserved": "@"})", kCharacters,
     [](const Json::Value& arguments) { return Number(arguments[1]["reserved"]) - '0'; }},
    {"configuration", "IConfiguration.RegisterCallback", R"(["@listen"])", "onConfigurationEvent", false,
     R"({"event": 8, "age": $})", 0, [](const Json::Value& arguments) { return Number(arguments[1]["ratingAge"]); }},
    {"dsmcc", "IDsmcc.RegisterCallback", R"(["@listen"])", "OnDsmccFileEvent", false,
     R"({"method": 4, "event": 3, "context": "0xabc", "url": "dvb://1", "filePath": "$"})", 0,
     [](const Json::Value& arguments) { return Number(arguments[2]); }},
    {"mtm", "IMtm.RegisterCallback", R"(["@listen"])", "GetRenderProcessId", true,
     R"({"type": 0, "method": 32, "tabid": $})", 0, [](const Json::Value& arguments) { return Number(arguments[0]); }},
    {"search_manager", "ISearchManager.SearchManager_RegisterCallback", R"([1, "@listen", 2748])",
     "OnSearchManagerEvent", false, R"({"event": 0, "state": $, "searchHandle": "0x9d20"})", 0,
     [](const Json::Value& arguments) { return Number(arguments[1]["state"]); }},
    {"video_broadcast", "IVideoBroadcast.RegisterCallback", R"([4096, "@listen", 2748])", "onPlayStateChange", false,
     R"({"type": "videobroadcast", "event": 1, "context": "0xabc", "state": 2, "error": $})", 0,
     [](const Json::Value& arguments) { return Number(arguments[1]); }},
};

std::string Replace(const std::string& text, char mark, const std::string& replacement) {
    std::string replaced;
    for (const char character : text) replaced += character == mark ? replacement : std::string(1, character);
    return replaced;
}

}  // namespace hbbtv::soak
