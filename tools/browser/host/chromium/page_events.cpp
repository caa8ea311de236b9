// What Chromium reports about pages: the second part of Pages.
#include <utility>

#include "chromium/pages.h"
#include "chromium/parameters.h"
#include "common/text/json.h"

namespace hbbtv::browser {

using devtools::Answer;

namespace {

using Kind = PageChange::Kind;

constexpr double kDocumentLoaded = 0.5;
constexpr Milliseconds kNoLimit = std::chrono::hours(24 * 365);

const char* const kNextTitle =
    "async last => {"
    " while (document.title === last) await new Promise(changed => {"
    "  const observer = new MutationObserver(() => { observer.disconnect(); changed(); });"
    "  observer.observe(document.head || document.documentElement,"
    "                   {subtree: true, childList: true, characterData: true});"
    " });"
    " return document.title;"
    "}";

// Only to be notified when a page is painted.
Json::Value SmallestPictures() {
    Json::Value params;
    params["format"] = "jpeg";
    params["quality"] = 0;
    params["maxWidth"] = 16;
    params["maxHeight"] = 9;
    return params;
}

PageChange Text(Kind kind, const std::string& text) {
    return {kind, text, 0, 0, ""};
}

PageChange Progress(double progress) {
    return {Kind::Progress, "", progress, 0, ""};
}

}  // namespace

void Pages::Take(const std::string& name, const std::string& method, const Json::Value& params) {
    if (method == "Target.attachedToTarget") return Attached(name, params);
    if (method == "Target.detachedFromTarget") return Detached(params["sessionId"].asString());
    if (method == "Target.targetCrashed") return Crashed(params);
    if (mProcesses.Take(method, params)) return;
    const auto found = mSessions.find(name);
    if (found == mSessions.end()) return;
    Session& session = found->second;
    if (method == "Fetch.requestPaused") return mRequests.Paused(name, params);
    if (method == "Runtime.executionContextCreated") return ContextCreated(session, params["context"]);
    if (method == "Runtime.executionContextDestroyed")
        return ContextsGone(session, params["executionContextId"].asInt());
    if (method == "Runtime.executionContextsCleared") return ContextsGone(session, 0);
    if (method == "Page.screencastFrame") {
        mChromium.Send(name, "Page.screencastFrameAck", Object("sessionId", params["sessionId"]));
        return mHandlers.onPainted();
    }
    if (mConsole.Take(method, params)) return;
    if (session.main) TakePageEvent(name, session, method, params);
}

void Pages::Attached(const std::string& parent, const Json::Value& params) {
    const std::string name = params["sessionId"].asString();
    const Json::Value& info = params["targetInfo"];
    Session session;
    session.target = info["targetId"].asString();
    const auto within = mSessions.find(parent);
    session.main = within == mSessions.end();
    session.mainFrame = session.target;
    session.page = session.main ? session.target : within->second.page;
    mSessions[name] = session;
    Prepare(name, session);
}

// The commands are sent without waiting for answers: Chromium carries them out in this order, and no script runs before
// the last one.
void Pages::Prepare(const std::string& name, const Session& session) {
    mChromium.Send(name, "Page.enable");
    mChromium.Send(name, "Runtime.enable");
    mChromium.Send(name, "Log.enable");
    mRequests.Enable(name);
    mChromium.Send(name, "Page.setBypassCSP", Object("enabled", true));
    mChromium.Send(name, "Page.addScriptToEvaluateOnNewDocument", Object("source", mSettings.script));
    mChromium.Send(name, "Target.setAutoAttach", AutoAttach());
    if (session.main) {
        Json::Value size = Object("width", mSettings.size.width);
        size["height"] = mSettings.size.height;
        size["deviceScaleFactor"] = 1;
        size["mobile"] = false;
        mChromium.Send(name, "Emulation.setDeviceMetricsOverride", size);
        // Transparent, so that the picture is seen below an application.
        Json::Value colour(Json::objectValue);
        for (const char* part : {"r", "g", "b", "a"}) colour[part] = 0;
        mChromium.Send(name, "Emulation.setDefaultBackgroundColorOverride", Object("color", colour));
        if (mHandlers.onPainted) mChromium.Send(name, "Page.startScreencast", SmallestPictures());
        mChromium.Send(name, "Emulation.setFocusEmulationEnabled", Object("enabled", true));
    }
    mChromium.Send(name, "Runtime.runIfWaitingForDebugger", Json::Value(Json::objectValue),
                   [this, name](const Answer&) { Prepared(name); });
}

void Pages::Prepared(const std::string& name) {
    const auto session = mSessions.find(name);
    if (session == mSessions.end()) return;
    session->second.prepared = true;
    const std::string page = session->second.target;
    const auto awaited = mAwaited.find(mAwaited.count(page) != 0 ? page : kFirst);
    if (awaited == mAwaited.end()) return;
    const auto onCreated = std::move(awaited->second);
    mAwaited.erase(awaited);
    onCreated(page);
}

void Pages::Detached(const std::string& name) {
    const auto found = mSessions.find(name);
    if (found == mSessions.end()) return;
    ContextsGone(found->second, 0);
    const Session session = found->second;
    mSessions.erase(found);
    if (session.page == mHelper) mHelper.clear();
    if (!session.main) return;
    mProcesses.Gone(session.page);
    Report(session, Text(Kind::Gone, ""));
}

void Pages::TakePageEvent(const std::string& name, Session& session, const std::string& method,
                          const Json::Value& params) {
    const bool mainFrame = params["frameId"].asString() == session.mainFrame;
    if (method == "Page.frameNavigated") return Navigated(session, params["frame"]);
    if (method == "Page.navigatedWithinDocument" && mainFrame) {
        session.url = params["url"].asString();
        return Report(session, Text(Kind::Url, session.url));
    }
    if (method == "Page.frameStartedLoading" && mainFrame) {
        session.failure = {0, ""};
        Report(session, Text(Kind::Loading, ""));
        return Report(session, Progress(0));
    }
    if (method == "Page.domContentEventFired") {
        Report(session, Progress(kDocumentLoaded));
        Report(session, Text(Kind::DocumentLoaded, ""));
        return WatchTitle(name, "");
    }
    if (method == "Page.frameStoppedLoading" && mainFrame) return Loaded(session);
}

void Pages::Navigated(Session& session, const Json::Value& frame) {
    if (frame.isMember("parentId")) return;
    session.mainFrame = frame["id"].asString();
    const bool unreachable = frame.isMember("unreachableUrl");
    session.url = (unreachable ? frame["unreachableUrl"] : frame["url"]).asString();
    if (session.url != kBlank) Report(session, Text(Kind::Url, session.url));
}

void Pages::Loaded(Session& session) {
    Report(session, Text(Kind::Stopped, ""));
    if (session.url == kBlank || session.url.empty()) return;
    Report(session, Progress(1));
    const LoadFailure failure = std::exchange(session.failure, {0, ""});
    if (failure.code == 0) return Report(session, Text(Kind::Finished, session.url));
    Report(session, {Kind::Failed, failure.text, 0, failure.code, session.url});
}

// Chromium reports changes of titles late or not at all, so the page is asked for the next title, again and again,
// until it is left.
void Pages::WatchTitle(const std::string& name, const std::string& last) {
    Json::Value params = Object("expression", "(" + std::string(kNextTitle) + ")(" + WriteJson(last) + ")");
    params["awaitPromise"] = true;
    mChromium.Send(
        name, "Runtime.evaluate", params,
        [this, name](const Answer& answer) {
            const Json::Value& title = answer.result["result"]["value"];
            const auto session = mSessions.find(name);
            if (!title.isString() || session == mSessions.end()) return;
            Report(session->second, Text(Kind::Title, title.asString()));
            WatchTitle(name, title.asString());
        },
        kNoLimit);
}

void Pages::ContextCreated(Session& session, const Json::Value& context) {
    const Json::Value& data = context["auxData"];
    if (!data["isDefault"].asBool()) return;
    session.contexts.push_back({context["id"].asInt(), data["frameId"].asString(), context["uniqueId"].asString()});
}

// 0: all of them.
void Pages::ContextsGone(Session& session, int id) {
    std::vector<Context> left;
    std::vector<Context> gone;
    for (const Context& context : session.contexts) (id == 0 || context.id == id ? gone : left).push_back(context);
    session.contexts = left;
    for (const Context& context : gone) mHandlers.onDocumentGone(context.name);
}

void Pages::Crashed(const Json::Value& params) {
    const auto found = mSessions.find(SessionOf(params["targetId"].asString()));
    if (found == mSessions.end()) return;
    ContextsGone(found->second, 0);
    const std::string status = ReportedNoMemory() ? kOutOfMemory : params["status"].asString();
    Report(found->second, {Kind::Crashed, status, 0, params["errorCode"].asInt(), found->second.url});
}

// A process whose memory has run out says so before it ends as one that crashes.
bool Pages::ReportedNoMemory() {
    const std::string messages = mChromium.Messages(mReadMessages);
    mReadMessages += messages.size();
    return messages.find(" OOM ") != std::string::npos || messages.find("Out of memory") != std::string::npos;
}

void Pages::Called(const Request& request) {
    const Session& session = mSessions[request.session];
    for (const Context& context : session.contexts) {
        if (context.frame == request.frame) return mHandlers.onCall({context.name, session.page}, request);
    }
    mRequests.Fulfill(request, {404, "text/plain", "the document has gone", ""});
}

void Pages::LoadFailed(const std::string& name, const std::string& frame, const LoadFailure& failure) {
    const auto found = mSessions.find(name);
    if (found == mSessions.end() || !found->second.main || frame != found->second.mainFrame) return;
    if (failure.code != kAborted) found->second.failure = failure;
}

void Pages::Report(const Session& session, const PageChange& change) {
    mHandlers.onChange(session.page, change);
}

}  // namespace hbbtv::browser
