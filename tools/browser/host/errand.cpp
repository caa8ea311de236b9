#include "errand.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "chromium/base64.h"
#include "chromium/keys.h"
#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/quote.h"

namespace hbbtv::browser {

namespace {

constexpr Milliseconds kBetweenQuestions{20};

// True when what the page has begun has been painted.
const char* const kPainted =
    "new Promise(done => requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(() => done(true)))))";

}  // namespace

void Errand::Start(const std::string& page) {
    mPage = page;
    mLoop.After(mOptions.limit, [this] {
        const std::string limit = FormatDuration(mOptions.limit);
        Finish(kTimeout, mLoaded ? "the condition of --until has not come true within " + limit
                                 : "the page has not loaded within " + limit);
    });
}

void Errand::Changed(const std::string& page, const PageChange& change) {
    if (page != mPage || mLoaded) return;
    if (change.kind == PageChange::Kind::Failed)
        return Finish(kUnavailable, "cannot load " + change.url + ": " + change.text);
    if (change.kind != PageChange::Kind::Finished) return;
    mLoaded = true;
    Settle([this] { PressNext(); });
}

void Errand::Settle(const std::function<void()>& then) {
    mPages.Evaluate(mPage, kPainted, [then](const Json::Value&) { then(); });
}

void Errand::PressNext() {
    if (mPressed == mOptions.keys.size()) return WaitForCondition();
    const int code = KeyCode(mOptions.keys[mPressed++]);
    mPages.PressKey(mPage, code, [this] { Settle([this] { PressNext(); }); });
}

void Errand::WaitForCondition() {
    if (mOptions.until.empty()) return Print();
    mPages.Evaluate(mPage, "Promise.resolve(" + mOptions.until + ").then(Boolean)", [this](const Json::Value& value) {
        if (value.isBool() && value.asBool()) return Settle([this] { Print(); });
        mLoop.After(kBetweenQuestions, [this] { WaitForCondition(); });
    });
}

void Errand::Print() {
    if (mOptions.print.empty()) return TakePicture();
    mPages.Evaluate(mPage, mOptions.print, [this](const Json::Value& value) {
        std::printf("%s\n", WriteJson(value).c_str());
        std::fflush(stdout);
        TakePicture();
    });
}

void Errand::TakePicture() {
    if (mOptions.screenshot.empty()) return Finish(kDone, "");
    mPages.Send(
        mPage, "Page.captureScreenshot", Json::Value(Json::objectValue), [this](const devtools::Answer& answer) {
            if (!answer.Ok()) return Finish(kPeerLost, "cannot take a picture: " + answer.error);
            std::ofstream file(mOptions.screenshot, std::ios::binary);
            file << FromBase64(answer.result["data"].asString());
            file.close();
            if (!file)
                return Finish(kUsage, "cannot write " + Quoted(mOptions.screenshot) + ": " + std::strerror(errno));
            Finish(kDone, "");
        });
}

void Errand::Finish(int code, const std::string& message) {
    if (!mOnDone) return;
    const OnDone onDone = std::move(mOnDone);
    mOnDone = nullptr;
    onDone(code, message);
}

}  // namespace hbbtv::browser
