#include "chromium/render_processes.h"

#include <vector>

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
    const int trace = ++mTrace;
    mProcess = 0;
    Json::Value params;
    params["transferMode"] = "ReportEvents";
    params["traceConfig"]["includedCategories"].append("disabled-by-default-devtools.timeline");
    mSend(page, "Tracing.start", params, [this, page, trace](const Answer& started) {
        if (trace != mTrace) return;
        if (!started.Ok()) return End();
        mSend(page, "Tracing.end", Json::Value(Json::objectValue), [this, trace](const Answer& ended) {
            if (trace == mTrace && !ended.Ok()) End();
        });
    });
}

void RenderProcesses::Gone(const std::string& page) {
    std::deque<std::pair<std::string, OnProcess>> left;
    std::vector<OnProcess> ended;
    for (auto& wanted : mWanted) {
        const bool first = &wanted == &mWanted.front();
        if (wanted.first == page && !first) {
            ended.push_back(wanted.second);
        } else {
            left.push_back(std::move(wanted));
        }
    }
    mWanted = std::move(left);
    for (const OnProcess& onProcess : ended) onProcess(0);
    if (!mWanted.empty() && mWanted.front().first == page) End();
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
    ++mTrace;
    onProcess(mProcess);
    if (!mWanted.empty()) Begin();
}

}  // namespace hbbtv::browser
