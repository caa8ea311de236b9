#include "screen.h"

#include <utility>

#include "common/text/base64.h"
#include "common/text/json.h"

namespace hbbtv::browser {

const char* const kTelevisionUrl = "http://television.localhost/";
const char* const kPictureUrl = "http://picture.localhost/";

Screen::Screen(Pages& television, std::function<Pages*()> applications, Shown shown)
    : mTelevision(television), mApplications(std::move(applications)), mShown(std::move(shown)) {}

void Screen::Start(bool window, std::function<void()> onReady) {
    if (mReady) return onReady();
    mOnReady.push_back(std::move(onReady));
    if (mOnReady.size() > 1) return;
    const auto load = [this](const std::string& page) {
        if (page.empty()) return;
        mPage = page;
        mTelevision.Load(page, kTelevisionUrl);
    };
    if (window) return mTelevision.AwaitFirst(load);
    mTelevision.Create(load);
}

void Screen::Changed(const std::string& page, const PageChange& change) {
    // The window's first page may still be loading when it is replaced.
    if (page != mPage || change.kind != PageChange::Kind::Finished || change.text != kTelevisionUrl) return;
    mReady = true;
    for (const auto& onReady : std::exchange(mOnReady, {})) onReady();
}

void Screen::Made(const MadeCall& call) {
    const int64_t vb = call.arguments["vb"].asInt64();
    if (call.method == "IVideoBroadcast.SetWindow") {
        mWindows[vb] = call.arguments["rect"];
        mLast = vb;
    } else if (call.method == "IVideoBroadcast.SetFullScreen") {
        if (call.arguments["fullScreen"].asBool()) mWindows[vb] = Json::Value();
        mLast = vb;
    } else if (call.method == "IVideoBroadcast.Destroy") {
        Released(vb);
    }
}

void Screen::Take(const Json::Value& event) {
    if (event["event"] == "onPlayStateChange") mState = event["arguments"]["state"].asInt();
}

void Screen::Released(int64_t vb) {
    mWindows.erase(vb);
    if (mWindows.empty()) mState = -1;
}

void Screen::Refresh(std::function<void()> onDone) {
    if (onDone) mNext.push_back(std::move(onDone));
    if (!mReady) return;
    mAgain = mRunning;
    if (mRunning) return;
    mRunning = true;
    std::swap(mWaiting, mNext);
    CaptureLayers(mShown(), {});
}

// One after the other, the lowest first.
void Screen::CaptureLayers(std::vector<std::string> pages, std::vector<std::string> urls) {
    Pages* applications = mApplications();
    if (pages.empty() || applications == nullptr) return Compose(urls);
    const std::string page = pages.front();
    pages.erase(pages.begin());
    Json::Value params;
    params["optimizeForSpeed"] = true;
    applications->Send(page, "Page.captureScreenshot", params, [=](const devtools::Answer& answer) {
        std::vector<std::string> more = urls;
        // A page that hangs cannot be painted.
        if (answer.Ok()) more.push_back("data:image/png;base64," + answer.result["data"].asString());
        CaptureLayers(pages, more);
    });
}

void Screen::Compose(const std::vector<std::string>& urls) {
    Json::Value list(Json::arrayValue);
    for (const std::string& url : urls) list.append(url);
    const auto window = mWindows.find(mLast);
    const std::string rectangle = window == mWindows.end() ? "null" : WriteJson(window->second);
    const std::string expression = "(television.setPicture(" + rectangle + "," + std::to_string(mState) +
                                   "), television.setLayers(" + WriteJson(list) + "))";
    mTelevision.Evaluate(mPage, expression, [this](const Json::Value&) { Composed(); });
}

void Screen::Composed() {
    mRunning = false;
    for (const auto& onDone : std::exchange(mWaiting, {})) onDone();
    if (std::exchange(mAgain, false)) Refresh();
}

void Screen::Capture(const OnPicture& onPicture) {
    Refresh([this, onPicture] {
        mTelevision.Evaluate(mPage, "television.update()", [this, onPicture](const Json::Value&) {
            mTelevision.Send(mPage, "Page.captureScreenshot", Json::Value(Json::objectValue),
                             [onPicture](const devtools::Answer& answer) {
                                 onPicture(FromBase64(answer.result["data"].asString()));
                             });
        });
    });
}

}  // namespace hbbtv::browser
