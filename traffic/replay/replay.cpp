#include "traffic/replay/replay.h"

#include <array>

#include "traffic/replay/session.h"

namespace hbbtv::traffic {

std::string NameOf(ReplayFinding::Kind kind) {
    constexpr std::array kNames{"miss", "difference", "clock", "missing", "undelivered"};
    return kNames[static_cast<size_t>(kind)];
}

Json::Value ToJson(const ReplayFinding& finding) {
    Json::Value line(Json::objectValue);
    line["finding"] = NameOf(finding.kind);
    line["record"] = static_cast<Json::UInt64>(finding.record);
    line["message"] = finding.message;
    line["text"] = finding.text;
    return line;
}

Json::Value ToJson(const ReplaySummary& summary) {
    Json::Value line(Json::objectValue);
    const auto set = [&line](const char* key, uint64_t count) { line[key] = static_cast<Json::UInt64>(count); };
    set("requests", summary.requests);
    set("requests_replayed", summary.requestsReplayed);
    set("events", summary.events);
    set("events_replayed", summary.eventsReplayed);
    set("misses", summary.misses);
    set("differences", summary.differences);
    set("clocks", summary.clocks);
    set("missing", summary.missing);
    set("undelivered", summary.undelivered);
    line["interrupted"] = summary.interrupted;
    return line;
}

Replay::Replay(const Conversation& conversation, const ReplaySettings& settings,
               std::function<void(const ReplayFinding&)> onFinding)
    : mSession(std::make_unique<ReplaySession>(conversation, settings, std::move(onFinding))) {}

Replay::~Replay() = default;

ReplaySummary Replay::Run() {
    return mSession->Run();
}

}  // namespace hbbtv::traffic
