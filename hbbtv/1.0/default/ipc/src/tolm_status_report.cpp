#include "ipc/src/tolm_status_report.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <ctime>
#include <optional>

#include "ipc/socket/tolm_ipc_connection_limits.h"
#include "ipc/src/tolm_caller_queue.h"
#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_ipc_types.h"
#include "ipc/tolm_reply_timeout.h"

namespace tolm {

namespace {

using Clock = EndpointStatus::Clock;
using State = EndpointStatus::State;

Json::Value Number(uint64_t number) {
    return static_cast<Json::UInt64>(number);
}

Json::Value AgeMs(Clock::time_point since, Clock::time_point now) {
    return static_cast<Json::Int64>(std::chrono::duration_cast<std::chrono::milliseconds>(now - since).count());
}

Json::Value Processes(const std::vector<pid_t>& processes) {
    Json::Value list(Json::arrayValue);
    for (const pid_t process : processes) list.append(process);
    return list;
}

// "2026-11-22T08:09:18.123Z"
std::string TimeOf(std::chrono::system_clock::time_point time) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const time_t seconds = static_cast<time_t>(ms / 1000);
    tm utc{};
    gmtime_r(&seconds, &utc);
    char text[40];
    const size_t length = strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &utc);
    snprintf(text + length, sizeof(text) - length, ".%03dZ", static_cast<int>(ms % 1000));
    return text;
}

Json::Value OpenOne(const std::optional<EndpointStatus::Open>& open, Clock::time_point now) {
    if (!open) return {};
    Json::Value one(Json::objectValue);
    one["operation"] = open->operation.name;
    one["code"] = open->operation.code;
    one["age_ms"] = AgeMs(open->since, now);
    one["process"] = open->caller;
    return one;
}

Json::Value Requests(const State& state, Clock::time_point now) {
    Json::Value requests(Json::objectValue);
    requests["open"] = OpenOne(state.open, now);
    requests["waiting"] = Processes(state.waiting);
    requests["sending"] = OpenOne(state.sending, now);
    requests["waiting_to_send"] = Processes(state.waitingToSend);
    requests["answered"] = Number(state.answered);
    requests["failed"] = Number(state.failed);
    requests["one_way"] = Number(state.oneWay);
    requests["connected_to"] = state.connections > 0 ? Json::Value(state.peer) : Json::Value();
    requests["reconnects"] = Number(state.connected > 0 ? state.connected - 1 : 0);
    return requests;
}

Json::Value Events(const State& state, Clock::time_point now) {
    Json::Value events(Json::objectValue);
    events["open_ms"] = state.open ? AgeMs(state.open->since, now) : Json::Value();
    events["waiting"] = Number(state.events);
    events["received"] = Number(state.received);
    events["sent"] = Number(state.sent);
    events["dropped"] = Number(state.dropped);
    events["refused"] = Number(state.refused);
    events["connections"] = Number(state.connections);
    events["connections_total"] = Number(state.connected);
    return events;
}

Json::Value LastError(const std::optional<EndpointStatus::Error>& one,
                      const std::optional<EndpointStatus::Error>& other) {
    const auto& last = !other || (one && one->time > other->time) ? one : other;
    if (!last) return {};
    Json::Value error(Json::objectValue);
    error["time"] = TimeOf(last->time);
    error["error"] = last->text;
    return error;
}

Json::Value ReportOf(const Family& family, Clock::time_point now) {
    const State requests = EndpointStatus::Of(family.requests).Get();
    const State events = family.events ? EndpointStatus::Of(*family.events).Get() : State();
    Json::Value report(Json::objectValue);
    report["family"] = family.interface;
    report["requests"] = Requests(requests, now);
    report["events"] = family.events ? Events(events, now) : Json::Value();
    report["clients"] = Processes(events.clients);
    report["last_error"] = LastError(requests.error, events.error);
    return report;
}

Json::Value Limits() {
    Json::Value limits(Json::objectValue);
    limits["reply_timeout_ms"] = static_cast<Json::Int64>(ReplyTimeout().count());
    limits["patience_ms"] = static_cast<Json::Int64>(CallerQueue::kPatience.count());
    limits["waiting_callers"] = Number(CallerQueue::kMostWaiting);
    limits["message_bytes"] = kMaxPayloadBytes;
    limits["connections_of_process"] = Number(kMaxConnectionsOfPeer);
    return limits;
}

std::string Seconds(const Json::Value& ms) {
    char text[32];
    snprintf(text, sizeof(text), "%.3f s", static_cast<double>(ms.asInt64()) / 1000);
    return text;
}

std::string Process(const Json::Value& process) {
    return "process " + process.asString();
}

std::string List(const Json::Value& processes) {
    std::string text;
    for (const Json::Value& process : processes) text += (text.empty() ? " " : ", ") + process.asString();
    return text;
}

std::string Line(const char* name, const std::string& text) {
    char head[24];
    snprintf(head, sizeof(head), "  %-11s  ", name);
    return head + text + "\n";
}

std::string TextOfOpen(const char* name, const Json::Value& open, const Json::Value& waiting) {
    std::string text;
    if (!open.isNull()) {
        const std::string code = " (" + open["code"].asString() + ")";
        text += Line(name, open["operation"].asString() + code + " of " + Process(open["process"]) + " for " +
                               Seconds(open["age_ms"]));
    }
    if (!waiting.empty()) {
        const char* const callers = waiting.size() == 1 ? " caller, of process" : " callers, of processes";
        text += Line("waiting", std::to_string(waiting.size()) + callers + List(waiting));
    }
    return text;
}

std::string TextOfRequests(const Json::Value& requests) {
    std::string text = TextOfOpen("open", requests["open"], requests["waiting"]);
    text += TextOfOpen("sending", requests["sending"], requests["waiting_to_send"]);
    text += Line("requests", requests["answered"].asString() + " answered, " + requests["failed"].asString() +
                                 " failed, " + requests["one_way"].asString() + " one-way");
    const Json::Value& peer = requests["connected_to"];
    return text + Line("platform", (peer.isNull() ? "not connected" : "connected to " + Process(peer)) + ", " +
                                       requests["reconnects"].asString() + " reconnects");
}

std::string TextOfEvents(const Json::Value& events) {
    std::string text;
    if (!events["open_ms"].isNull()) text += Line("event", "with the client for " + Seconds(events["open_ms"]));
    return text + Line("events", events["received"].asString() + " received, " + events["sent"].asString() + " sent, " +
                                     events["dropped"].asString() + " dropped, " + events["refused"].asString() +
                                     " messages refused, " + events["waiting"].asString() + " wait; " +
                                     events["connections"].asString() + " connections, " +
                                     events["connections_total"].asString() + " in all");
}

std::string TextOf(const Json::Value& family) {
    std::string text = family["family"].asString() + "\n" + TextOfRequests(family["requests"]);
    if (!family["events"].isNull()) {
        text += TextOfEvents(family["events"]);
        text += Line("client", family["clients"].empty() ? "none" : "process" + List(family["clients"]));
    }
    const Json::Value& error = family["last_error"];
    if (!error.isNull()) text += Line("last error", error["time"].asString() + " " + error["error"].asString());
    return text;
}

}  // namespace

const Family* FindFamily(const std::string& interface) {
    const auto* const found = std::find_if(std::begin(families::kAll), std::end(families::kAll),
                                           [&](const Family* family) { return interface == family->interface; });
    return found == std::end(families::kAll) ? nullptr : *found;
}

Json::Value StatusReport(const std::vector<const Family*>& families) {
    const Clock::time_point now = Clock::now();
    Json::Value report(Json::objectValue);
    report["process"] = getpid();
    report["limits"] = Limits();
    Json::Value& list = report["families"] = Json::Value(Json::arrayValue);
    for (const Family* family : families) list.append(ReportOf(*family, now));
    return report;
}

std::string StatusText(const Json::Value& report) {
    const Json::Value& limits = report["limits"];
    const bool timeout = limits["reply_timeout_ms"].asInt64() > 0;
    std::string text = "process " + report["process"].asString() + "; limits: replies " +
                       (timeout ? "in " + Seconds(limits["reply_timeout_ms"]) : "without time limit") + ", " +
                       limits["waiting_callers"].asString() + " callers wait for a request that is open for " +
                       Seconds(limits["patience_ms"]) + ", messages of " + limits["message_bytes"].asString() +
                       " bytes, " + limits["connections_of_process"].asString() + " connections of a process\n";
    for (const Json::Value& family : report["families"]) text += "\n" + TextOf(family);
    return text;
}

}  // namespace tolm
