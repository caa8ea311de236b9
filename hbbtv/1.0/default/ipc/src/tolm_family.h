// The families of the wire, one per kind of platform object: what all requests and events of a family have in common.
#pragma once

#include <optional>

#include "ipc/tolm_ipc_types.h"

namespace tolm {

struct Family {
    const char* interface;               // of the HIDL package
    const char* tag;                     // of its log lines
    std::optional<int> type;             // the member "type" of each request, if any
    int port;                            // in the header of each message, in both directions
    TolmIpcKeyId requests;               // the endpoint that the platform serves
    std::optional<TolmIpcKeyId> events;  // the endpoint that this library serves, if any
    const char* codeKey = "method";      // the member that holds the operation's code
};

namespace families {

// Some families share a tag: those around channels, and the configuration with the local system.
inline constexpr char kTagOfChannels[] = "[ipc_videobroadcast]";
inline constexpr char kTagOfConfiguration[] = "[ipc_configure]";

inline constexpr Family kApplicationManager{"IApplicationManager",
                                            "[ipc_apm]",
                                            std::nullopt,
                                            1,
                                            TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_APM,
                                            TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_APM,
                                            "t"};
inline constexpr Family kApplicationPrivateData{
    "IApplicationPrivatedata", "[ipc_app_priv]", 8, 17, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_APP_PRIV, std::nullopt};
inline constexpr Family kAVComponent{
    "IAVComponent", "[ipc_avcomponent]", 11, 14, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_AV_COM, std::nullopt};
inline constexpr Family kAVControl{"IAVControl",
                                   "[ipc_avcontrol]",
                                   2,
                                   19,
                                   TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_AV_CTRL,
                                   TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_AV_CTRL};
inline constexpr Family kCapabilities{
    "ICapabilities", "[ipc_capabilities]", 10, 10, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_CAP, std::nullopt};
inline constexpr Family kChannel{"IChannel",  kTagOfChannels, 12, 2, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_CHN,
                                 std::nullopt};
inline constexpr Family kChannelConfig{"IChannelConfig",
                                       kTagOfChannels,
                                       19,
                                       3,
                                       TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_CHN_CONFIG,
                                       TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB_CHN_CONFIG};
inline constexpr Family kChannelList{
    "IChannelList", kTagOfChannels, 14, 4, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_CHN_LIST, std::nullopt};
inline constexpr Family kConfiguration{"IConfiguration",
                                       kTagOfConfiguration,
                                       9,
                                       12,
                                       TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_CONF,
                                       TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_CONF};
inline constexpr Family kDsmcc{
    "IDsmcc", "[ipc_dsmcc]", 20, 2, TOLM_IPC_KEY_SERVICE_DSMCC_TO_HBBTV, TOLM_IPC_KEY_SERVICE_HBBTV_TO_DSMCC};

// Both favourite families have type 15: lists have the codes up to 11, their collection those from 12 on.
inline constexpr Family kFavouriteList{
    "IFavouriteList", kTagOfChannels, 15, 5, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_FAV_LIST, std::nullopt};
inline constexpr Family kFavouriteListCollection{"IFavouriteListCollection",
                                                 kTagOfChannels,
                                                 kFavouriteList.type,
                                                 6,
                                                 TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_FAV_LIST_COLLECT,
                                                 std::nullopt};

inline constexpr Family kLocalSystem{
    "ILocalSystem", kTagOfConfiguration, 6, 11, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_LOCAL_SYSTEM, std::nullopt};
inline constexpr Family kMtm{
    "IMtm", "[ipc_mtm]", 0, 1, TOLM_IPC_KEY_SERVICE_MTM_TO_HBBTV, TOLM_IPC_KEY_SERVICE_HBBTV_TO_MTM};
inline constexpr Family kParentalControlManager{"IParentalControlManager",
                                                "[ipc_parental_control]",
                                                13,
                                                16,
                                                TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_PCM,
                                                std::nullopt};
inline constexpr Family kProgramme{"IProgramme", "[ipc_programme]", 5, 13, TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_PROGRAM,
                                   std::nullopt};
inline constexpr Family kSearchManager{"ISearchManager",
                                       "[ipc_search_manager]",
                                       0,
                                       8,
                                       TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_SM,
                                       TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_SM};
inline constexpr Family kVideoBroadcast{"IVideoBroadcast",
                                        "[ipc_vb]",
                                        3,
                                        7,
                                        TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB,
                                        TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB};

inline constexpr const Family* kAll[] = {&kApplicationManager,
                                         &kApplicationPrivateData,
                                         &kAVComponent,
                                         &kAVControl,
                                         &kCapabilities,
                                         &kChannel,
                                         &kChannelConfig,
                                         &kChannelList,
                                         &kConfiguration,
                                         &kDsmcc,
                                         &kFavouriteList,
                                         &kFavouriteListCollection,
                                         &kLocalSystem,
                                         &kMtm,
                                         &kParentalControlManager,
                                         &kProgramme,
                                         &kSearchManager,
                                         &kVideoBroadcast};

}  // namespace families

}  // namespace tolm
