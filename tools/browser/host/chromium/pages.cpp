#include "chromium/pages.h"

#include <algorithm>
#include <utility>

#include "common/text/json.h"

namespace hbbtv::browser {

using devtools::Answer;
using devtools::kBrowserSession;

namespace {

using Kind = PageChange::Kind;

constexpr double kDocumentLoaded = 0.5;
constexpr int kUnknownScheme = -302;
constexpr int kInvalidUrl = -300;  // as Chromium's net::ERR_INVALID_URL

const char* const kBlank = "about:blank";

Json::Value Object(const char* name, const Json::Value& value) {
    Json::Value object;
    object[name] = value;
    return object;
}

Json::Value AutoAttach() {
    Json::Value params;
    params["autoAttach"] = true;
    params["waitForDebuggerOnStart"] = true;
    params["flatten"] = true;
    for (const char* type : {"page", "iframe"}) params["filter"].append(Object("type", type));
    params["filter"].append(Object("exclude", true));
    return params;
}

PageChange Text(Kind kind, const std::string& text) {
    return {kind, text, 0, 0, ""};
}

PageChange Progress(double progress) {
    return {Kind::Progress, "", progress, 0, ""};
}

}  // namespace

Pages::Pages(devtools::DevTools& chromium, Console& console, const std::string& script, ScreenSize size,
             Handlers handlers)
    : mChromium(chromium),
      mConsole(console),
      mScript(script),
      mSize(size),
      mHandlers(std::move(handlers)),
      mRequests(chromium, {[this](const Request& request) { Called(request); }, mHandlers.onFile,
                           [this](const std::string& session, const std::string& frame, const LoadFailure& failure) {
                               LoadFailed(session, frame, failure);
                           }}) {
    mChromium.Send(kBrowserSession, "Target.setDiscoverTargets", Object("discover", true));
    mChromium.Send(kBrowserSession, "Target.setAutoAttach", AutoAttach());
}

void Pages::Create(const std::function<void(const std::string&)>& onCreated) {
    Json::Value params = Object("url", kBlank);
    params["newWindow"] = true;  // pages that are not in front are not painted
    mChromium.Send(kBrowserSession, "Target.createTarget", params, [this, onCreated](const Answer& answer) {
        if (!answer.Ok()) return onCreated("");
        const std::string page = answer.result["targetId"].asString();
        const std::string name = SessionOf(page);
        if (!name.empty() && mSessions[name].prepared) return onCreated(page);
        mAwaited[page] = [onCreated, page] { onCreated(page); };
    });
}

void Pages::Load(const std::string& page, const std::string& url) {
    const std::string name = SessionOf(page);
    if (name.empty()) return;
    // Chromium would offer other schemes to other programs.
    if (url.rfind("http://", 0) != 0 && url.rfind("https://", 0) != 0 && url.rfind("data:", 0) != 0)
        return Report(mSessions[name], {Kind::Failed, "net::ERR_UNKNOWN_URL_SCHEME", 0, kUnknownScheme, url});
    mChromium.Send(name, "Page.navigate", Object("url", url), [this, name, url](const Answer& answer) {
        const auto session = mSessions.find(name);
        if (session == mSessions.end()) return;
        if (!answer.Ok()) return Report(session->second, {Kind::Failed, answer.error, 0, kInvalidUrl, url});
        const std::string error = answer.result["errorText"].asString();
        if (!error.empty()) session->second.failure = FailureOf(error);
    });
}

void Pages::Close(const std::string& page) {
    mChromium.Send(kBrowserSession, "Target.closeTarget", Object("targetId", page));
}

void Pages::Send(const std::string& page, const std::string& method, const Json::Value& params,
                 devtools::DevTools::OnAnswer onAnswer) {
    mChromium.Send(SessionOf(page), method, params, std::move(onAnswer));
}

void Pages::Evaluate(const std::string& page, const std::string& expression,
                     const std::function<void(const Json::Value&)>& onValue) {
    Json::Value params = Object("expression", expression);
    params["awaitPromise"] = true;
    params["returnByValue"] = true;
    Send(page, "Runtime.evaluate", params,
         [onValue](const Answer& answer) { onValue(answer.result["result"]["value"]); });
}

void Pages::Deliver(const Json::Value& event, const std::string& page) {
    const std::string expression = "globalThis.__hbbtv && __hbbtv.event(" + WriteJson(event) + ")";
    for (const auto& [name, session] : mSessions) {
        if (!page.empty() && session.page != page) continue;
        for (const Context& context : session.contexts) {
            Json::Value params = Object("expression", expression);
            params["contextId"] = context.id;
            mChromium.Send(name, "Runtime.evaluate", params);
        }
    }
}

std::string Pages::SessionOf(const std::string& page) const {
    for (const auto& [name, session] : mSessions) {
        if (session.main && session.page == page) return name;
    }
    return "";
}

void Pages::Take(const std::string& name, const std::string& method, const Json::Value& params) {
    if (method == "Target.attachedToTarget") return Attached(name, params);
    if (method == "Target.detachedFromTarget") return Detached(params["sessionId"].asString());
    if (method == "Target.targetInfoChanged") return InfoChanged(params["targetInfo"]);
    if (method == "Target.targetCrashed") return Crashed(params);
    const auto found = mSessions.find(name);
    if (found == mSessions.end()) return;
    Session& session = found->second;
    if (method == "Fetch.requestPaused") return mRequests.Paused(name, params);
    if (method == "Runtime.executionContextCreated") return ContextCreated(session, params["context"]);
    if (method == "Runtime.executionContextDestroyed")
        return ContextsGone(session, params["executionContextId"].asInt());
    if (method == "Runtime.executionContextsCleared") return ContextsGone(session, 0);
    if (mConsole.Take(method, params)) return;
    if (session.main) TakePageEvent(session, method, params);
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
    mChromium.Send(name, "Page.addScriptToEvaluateOnNewDocument", Object("source", mScript));
    mChromium.Send(name, "Target.setAutoAttach", AutoAttach());
    if (session.main) {
        Json::Value size = Object("width", mSize.width);
        size["height"] = mSize.height;
        size["deviceScaleFactor"] = 1;
        size["mobile"] = false;
        mChromium.Send(name, "Emulation.setDeviceMetricsOverride", size);
        mChromium.Send(name, "Emulation.setFocusEmulationEnabled", Object("enabled", true));
    }
    mChromium.Send(name, "Runtime.runIfWaitingForDebugger", Json::Value(Json::objectValue),
                   [this, name](const Answer&) { Prepared(name); });
}

void Pages::Prepared(const std::string& name) {
    const auto session = mSessions.find(name);
    if (session == mSessions.end()) return;
    session->second.prepared = true;
    const auto awaited = mAwaited.find(session->second.target);
    if (awaited == mAwaited.end()) return;
    const std::function<void()> onCreated = std::move(awaited->second);
    mAwaited.erase(awaited);
    onCreated();
}

void Pages::Detached(const std::string& name) {
    const auto found = mSessions.find(name);
    if (found == mSessions.end()) return;
    ContextsGone(found->second, 0);
    const Session session = found->second;
    mSessions.erase(found);
    if (session.main) Report(session, Text(Kind::Gone, ""));
}

void Pages::TakePageEvent(Session& session, const std::string& method, const Json::Value& params) {
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
        return Report(session, Text(Kind::DocumentLoaded, ""));
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

void Pages::InfoChanged(const Json::Value& info) {
    const std::string name = SessionOf(info["targetId"].asString());
    const auto found = mSessions.find(name);
    if (found == mSessions.end()) return;
    const std::string title = info["title"].asString();
    // Chromium's title of a page without one is its address.
    if (title == found->second.title || info["url"].asString().find(title) != std::string::npos) return;
    found->second.title = title;
    Report(found->second, Text(Kind::Title, title));
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
    Report(found->second,
           {Kind::Crashed, params["status"].asString(), 0, params["errorCode"].asInt(), found->second.url});
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
    found->second.failure = failure;
}

void Pages::Report(const Session& session, const PageChange& change) {
    mHandlers.onChange(session.page, change);
}

}  // namespace hbbtv::browser
