#include "chromium/render_processes.h"

namespace hbbtv::browser {

using devtools::Answer;

RenderProcesses::~RenderProcesses() {
    for (const auto& wanted : std::exchange(mWanted, {})) wanted.second(0);
}

void RenderProcesses::Get(const std::string& page, OnProcess onProcess) {
    mWanted.emplace_back(page, std::move(onProcess));
    if (mWanted.size() == 1) Begin();
}

void RenderProcesses::Begin() {
    const std::string page = mWanted.front().first;
    mProcess = 0;
    Json::Value params;
    params["transferMode"] = "ReportEvents";
    params["traceConfig"]["includedCategories"].append("disabled-by-default-devtools.timeline");
    mSend(page, "Tracing.start", params, [this, page](const Answer& started) {
        if (!started.Ok()) return End();
        mSend(page, "Tracing.end", Json::Value(Json::objectValue), [this](const Answer& ended) {
            if (!ended.Ok()) End();
        });
    });
}

bool RenderProcesses::Take(const std::string& method, const Json::Value& params) {
    if (method == "Tracing.dataCollected") {
        TakeEvents(params["value"]);
    } else if (method == "Tracing.tracingComplete") {
        End();
    } else {
        return false;
    }
    return true;
}

void RenderProcesses::TakeEvents(const Json::Value& events) {
    if (mWanted.empty()) return;
    for (const Json::Value& event : events) {
        if (event["name"] != "TracingStartedInBrowser") continue;
        for (const Json::Value& frame : event["args"]["data"]["frames"]) {
            if (frame["frame"] == mWanted.front().first) mProcess = frame["processId"].asInt();
        }
    }
}

void RenderProcesses::End() {
    if (mWanted.empty()) return;
    const OnProcess onProcess = std::move(mWanted.front().second);
    mWanted.pop_front();
    onProcess(mProcess);
    if (!mWanted.empty()) Begin();
}

}  // namespace hbbtv::browser
