#include "chromium/pages.h"

#include <algorithm>
#include <utility>

#include "chromium/keys.h"
#include "common/text/base64.h"
#include "common/text/json.h"

namespace hbbtv::browser {

using devtools::Answer;
using devtools::kBrowserSession;

namespace {

using Kind = PageChange::Kind;

constexpr double kDocumentLoaded = 0.5;
constexpr Milliseconds kTimeToAnswer{2000};
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
constexpr int kUnknownScheme = -302;
constexpr int kAborted = -3;
constexpr int kInvalidUrl = -300;  // as Chromium's net::ERR_INVALID_URL

const char* const kAbortedText = "net::ERR_ABORTED";
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

Pages::Pages(devtools::DevTools& chromium, Console& console, Settings settings, Handlers handlers)
    : mChromium(chromium),
      mConsole(console),
      mSettings(std::move(settings)),
      mHandlers(std::move(handlers)),
      mRequests(chromium, mSettings.own, mSettings.ownHosts,
                {[this](const Request& request) { Called(request); }, mHandlers.onFile,
                 [this](const std::string& session, const std::string& frame, const LoadFailure& failure) {
                     LoadFailed(session, frame, failure);
                 }}),
      mProcesses([this](const std::string& page, const std::string& method, const Json::Value& params,
                        devtools::DevTools::OnAnswer onAnswer) { Send(page, method, params, std::move(onAnswer)); }) {
    mChromium.Send(kBrowserSession, "Target.setDiscoverTargets", Object("discover", true),
                   [this](const Answer& answer) { mStarted = answer.Ok(); });
    mChromium.Send(kBrowserSession, "Target.setAutoAttach", AutoAttach());
}

Pages::~Pages() {
    for (const auto& awaited : std::exchange(mAwaited, {})) awaited.second("");
}

void Pages::Create(const std::function<void(const std::string&)>& onCreated) {
    Json::Value params = Object("url", kBlank);
    params["newWindow"] = true;  // pages that are not in front are not painted
    mChromium.Send(kBrowserSession, "Target.createTarget", params, [this, onCreated](const Answer& answer) {
        if (!answer.Ok()) return onCreated("");
        const std::string page = answer.result["targetId"].asString();
        const std::string name = SessionOf(page);
        if (!name.empty() && mSessions[name].prepared) return onCreated(page);
        mAwaited[page] = onCreated;
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
        if (answer.result["isDownload"].asBool())
            return Report(session->second, {Kind::Failed, "it is not a page", 0, kAborted, url});
        // A load that another one has replaced is aborted.
        if (!error.empty() && error != kAbortedText) session->second.failure = FailureOf(error);
    });
}

void Pages::Close(const std::string& page) {
    mChromium.Send(kBrowserSession, "Target.closeTarget", Object("targetId", page));
}

void Pages::Send(const std::string& page, const std::string& method, const Json::Value& params,
                 devtools::DevTools::OnAnswer onAnswer) {
    mChromium.Send(SessionOf(page), method, params, std::move(onAnswer));
}

void Pages::PressKey(const std::string& page, int code, const std::function<void()>& onTaken) {
    Send(page, "Input.dispatchKeyEvent", KeyDown(code));
    Send(page, "Input.dispatchKeyEvent", KeyUp(code), [onTaken](const Answer&) {
        if (onTaken) onTaken();
    });
}

void Pages::HoldKey(const std::string& page, int code, bool repeated) {
    Json::Value params = KeyDown(code);
    params["autoRepeat"] = repeated;
    Send(page, "Input.dispatchKeyEvent", params);
}

void Pages::ReleaseKey(const std::string& page, int code) {
    Send(page, "Input.dispatchKeyEvent", KeyUp(code));
}

void Pages::GetHistory(const std::string& page, const std::function<void(bool, bool)>& onHistory) {
    Send(page, "Page.getNavigationHistory", Json::Value(Json::objectValue), [onHistory](const Answer& answer) {
        const int current = answer.result["currentIndex"].asInt();
        const Json::Value& first = answer.result["entries"][0];
        const int start = first.isObject() && first["url"] == kBlank ? 1 : 0;  // where each page begins
        onHistory(current > start, current + 1 < static_cast<int>(answer.result["entries"].size()));
    });
}

void Pages::GetHeap(const std::string& page, const std::function<void(double)>& onHeap) {
    mChromium.Send(
        SessionOf(page), "Runtime.getHeapUsage", Json::Value(Json::objectValue),
        [onHeap](const Answer& answer) {
            onHeap(answer.result["usedSize"].asDouble() + answer.result["backingStorageSize"].asDouble());
        },
        kTimeToAnswer);
}

void Pages::CheckChromium(const std::function<void(bool)>& onChecked) {
    mChromium.Send(
        kBrowserSession, "Browser.getVersion", Json::Value(Json::objectValue),
        [onChecked](const Answer& answer) { onChecked(answer.Ok()); }, kTimeToAnswer);
}

void Pages::GetFile(const std::string& url, const std::function<void(const std::string&)>& onText) {
    if (mHelper.empty()) {
        return Create([this, url, onText](const std::string& page) {
            mHelper = page;
            if (page.empty()) return onText("");
            GetFile(url, onText);
        });
    }
    Json::Value params = Object("url", url);
    params["frameId"] = mHelper;
    params["options"]["disableCache"] = true;
    params["options"]["includeCredentials"] = true;
    Send(mHelper, "Network.loadNetworkResource", params, [this, onText](const Answer& answer) {
        const Json::Value& resource = answer.result["resource"];
        if (!resource["success"].asBool()) return onText("");
        ReadStream(mHelper, resource["stream"].asString(), "", onText);
    });
}

void Pages::ReadStream(const std::string& page, const std::string& stream, const std::string& begin,
                       const std::function<void(const std::string&)>& onText) {
    Send(page, "IO.read", Object("handle", stream), [=](const Answer& answer) {
        const std::string data = answer.result["data"].asString();
        const std::string text = begin + (answer.result["base64Encoded"].asBool() ? FromBase64(data) : data);
        if (answer.Ok() && !answer.result["eof"].asBool()) return ReadStream(page, stream, text, onText);
        Send(page, "IO.close", Object("handle", stream));
        onText(answer.Ok() ? text : "");
    });
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
    if (session.main) Report(session, Text(Kind::Gone, ""));
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
