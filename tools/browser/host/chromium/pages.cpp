#include "chromium/pages.h"

#include <utility>

#include "chromium/keys.h"
#include "chromium/parameters.h"
#include "common/text/base64.h"
#include "common/text/json.h"

namespace hbbtv::browser {

using devtools::Answer;
using devtools::kBrowserSession;

namespace {

using Kind = PageChange::Kind;

constexpr Milliseconds kTimeToAnswer{2000};
constexpr int kUnknownScheme = -302;
constexpr int kInvalidUrl = -300;  // as Chromium's net::ERR_INVALID_URL

const char* const kAbortedText = "net::ERR_ABORTED";

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

}  // namespace hbbtv::browser
