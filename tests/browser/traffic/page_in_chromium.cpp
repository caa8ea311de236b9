#include "page_in_chromium.h"

#include <fstream>

#include "common/failure.h"
#include "common/text/base64.h"
#include "common/text/json.h"

namespace hbbtv::test {

namespace {

constexpr Milliseconds kPatience{90000};

Json::Value Object(std::initializer_list<std::pair<const char*, Json::Value>> members) {
    Json::Value object(Json::objectValue);
    for (const auto& [name, value] : members) object[name] = value;
    return object;
}

}  // namespace

// Letters without colored edges make small pictures.
PageInChromium::PageInChromium(int width, int height)
    : mChromium(mLoop, {"", false, {"--disable-gpu", "--disable-lcd-text"}}) {
    using devtools::kBrowserSession;
    const Json::Value target =
        mChromium.Command(kBrowserSession, "Target.createTarget", Object({{"url", "about:blank"}}));
    const Json::Value attach = Object({{"targetId", target["targetId"]}, {"flatten", true}});
    mSession = mChromium.Command(kBrowserSession, "Target.attachToTarget", attach)["sessionId"].asString();
    mChromium.SetHandlers(
        [this](const std::string&, const std::string& method, const Json::Value& params) { Heard(method, params); },
        nullptr);
    for (const char* domain : {"Runtime", "Log", "Network", "Page"}) Command(std::string(domain) + ".enable");
    Command("Emulation.setDeviceMetricsOverride",
            Object({{"width", width}, {"height", height}, {"deviceScaleFactor", 1}, {"mobile", false}}));
    PreferTheme("light");
}

Json::Value PageInChromium::Command(const std::string& method, const Json::Value& params) {
    return mChromium.Command(mSession, method, params, kPatience);
}

void PageInChromium::Heard(const std::string& method, const Json::Value& params) {
    if (method == "Network.requestWillBeSent") mRequests.push_back(params["request"]["url"].asString());
    if (method == "Runtime.consoleAPICalled" || method == "Runtime.exceptionThrown" || method == "Log.entryAdded") {
        mComplaints.push_back(WriteJson(params));
    }
}

void PageInChromium::Open(const std::string& url, bool ours) {
    Command("Page.navigate", Object({{"url", url}}));
    Await("location.href === " + WriteJson(url) +
          (ours ? " && typeof page !== 'undefined'" : " && document.readyState === 'complete'"));
}

Json::Value PageInChromium::Evaluate(const std::string& expression) {
    const Json::Value answer = Command(
        "Runtime.evaluate",
        Object({{"expression", expression}, {"awaitPromise", true}, {"returnByValue", true}, {"userGesture", true}}));
    if (answer.isMember("exceptionDetails")) {
        throw Failure(kUnexpected, expression + ": " + WriteJson(answer["exceptionDetails"]));
    }
    return answer["result"]["value"];
}

void PageInChromium::Await(const std::string& expression) {
    const Json::Value done = Evaluate(
        "new Promise((resolve) => { const end = Date.now() + 60000; const look = () => { let done = false; try { done "
        "= " +
        expression +
        "; } catch {} if (done || Date.now() > end) resolve(Boolean(done)); else setTimeout(look, 10); }; "
        "look(); })");
    if (done.asBool()) return;
    throw Failure(kTimeout, "has not become true: " + expression + "; the page is " + Text("document.readyState") +
                                ": " + Text("document.body?.innerText.slice(0, 500)"));
}

void PageInChromium::Press(const std::string& key, const std::string& text) {
    Json::Value event = Object({{"type", "keyDown"}, {"key", key}});
    if (!text.empty()) event["text"] = text;
    if (key == "Escape") event["windowsVirtualKeyCode"] = 27;  // closes a dialog
    Command("Input.dispatchKeyEvent", event);
    Command("Input.dispatchKeyEvent", Object({{"type", "keyUp"}, {"key", key}}));
}

void PageInChromium::PreferTheme(const std::string& theme) {
    Json::Value features(Json::arrayValue);
    features.append(Object({{"name", "prefers-color-scheme"}, {"value", theme}}));
    Command("Emulation.setEmulatedMedia", Object({{"features", features}}));
}

void PageInChromium::AllowClipboard() {
    Json::Value permissions(Json::arrayValue);
    permissions.append("clipboardReadWrite");
    permissions.append("clipboardSanitizedWrite");
    mChromium.Command(devtools::kBrowserSession, "Browser.grantPermissions", Object({{"permissions", permissions}}));
    Command("Page.bringToFront");
}

void PageInChromium::Screenshot(const std::string& file) {
    const Json::Value picture = Command("Page.captureScreenshot", Object({{"format", "png"}}));
    std::ofstream(file, std::ios::binary) << FromBase64(picture["data"].asString());
}

}  // namespace hbbtv::test
