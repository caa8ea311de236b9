// The tags of the services' log lines.
#pragma once

namespace tolm {

inline constexpr char kHidlBaseTag[] = "[hidl_base]";  // what all services share

inline constexpr char kApplicationManagerTag[] = "[hidl_application_manager_wrapper_client]";
inline constexpr char kAVControlTag[] = "[hidl_av_control_wrapper_client]";
inline constexpr char kConfigurationTag[] = "[hidl_configuration_wrapper_server]";
inline constexpr char kDsmccTag[] = "[hidl_dsmcc_wrapper_client]";  // of its events
inline constexpr char kMtmTag[] = "[hidl_mtm_wrapper_client]";
inline constexpr char kSearchManagerTag[] = "[hidl_search_manager_wrapper_client]";

// Also the tag of ChannelConfig, and of Dsmcc for the lines about its client.
inline constexpr char kVideoBroadcastTag[] = "[hidl_video_broadcast_wrapper_client]";

}  // namespace tolm
