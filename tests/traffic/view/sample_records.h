// Records for tests of what reads them.
#pragma once

#include <string>

#include "traffic/record/record.h"

namespace hbbtv::traffic::test {

// 2026-11-22 11:47:25.458629 UTC.
constexpr uint64_t kWall = 1795348045458629;

// A request on a socket and its reply; "" is none. Sizes are those of the texts.
inline Record Exchange(const std::string& socket, const std::string& request, const std::string& reply = "",
                       uint64_t duration = 312) {
    static uint64_t number = 0;
    Record record;
    record.number = ++number;
    record.time = TimeStamp(kWall, 5000000);
    record.connection = 1;
    record.message = {reply.empty() ? kOneWay : kRequest, 2, static_cast<uint32_t>(request.size()), {}, ""};
    SetPayload(record.message, request);
    Identify(record, socket);
    if (reply.empty()) return record;
    record.reply = Message{kReply, 2, static_cast<uint32_t>(reply.size()), {}, ""};
    SetPayload(*record.reply, reply);
    record.duration = duration;
    if (record.reply->json.isObject() && record.reply->json["ret"].isInt()) {
        record.status = record.reply->json["ret"].asInt();
    }
    return record;
}

constexpr const char* kChannels = "service_plugin_to_hbbtv_vb_chn";
constexpr const char* kChannelConfig = "service_plugin_to_hbbtv_vb_chn_config";
constexpr const char* kChannelConfigEvents = "service_hbbtv_to_plugin_vb_chn_config";
constexpr const char* kVideoBroadcast = "service_plugin_to_hbbtv_vb";

inline Record GetName(const std::string& reply = R"({"name":"Das Erste HD","ret":0})") {
    return Exchange(kChannels, R"({"c_handle":"0x1388f0af","method":13,"type":12})", reply);
}

inline Record SetChannel(int status, uint64_t duration) {
    return Exchange(kVideoBroadcast,
                    R"({"channel":"0x1388f0af","method":11,"trickPlay":false,"type":3,"url":"","vb_handle":"0x1000"})",
                    R"({"ret":)" + std::to_string(status) + "}", duration);
}

inline Record ChangedEvent() {
    return Exchange(kChannelConfigEvents, R"({"event":0,"reserved":"A"})");
}

}  // namespace hbbtv::traffic::test
