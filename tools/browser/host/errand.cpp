#include "errand.h"

#include <cstdio>

#include "chromium/keys.h"
#include "common/failure.h"
#include "common/text/json.h"

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
    if (!mOnDone) return;
    if (mOptions.until.empty()) return Print();
    mPages.Evaluate(mPage, "Promise.resolve(" + mOptions.until + ").then(Boolean)", [this](const Json::Value& value) {
        if (value.isBool() && value.asBool()) return Settle([this] { Print(); });
        mLoop.After(kBetweenQuestions, [this] { WaitForCondition(); });
    });
}

void Errand::Print() {
    if (mOptions.print.empty()) return Depict();
    mPages.Evaluate(mPage, mOptions.print, [this](const Json::Value& value) {
        std::printf("%s\n", WriteJson(value).c_str());
        std::fflush(stdout);
        Depict();
    });
}

void Errand::Depict() {
    if (mOptions.screenshot.empty()) return Finish(kDone, "");
    mTakePicture([this](const std::string& problem) { Finish(problem.empty() ? kDone : kUsage, problem); });
}

void Errand::Finish(int code, const std::string& message) {
    if (!mOnDone) return;
    const OnDone onDone = std::move(mOnDone);
    mOnDone = nullptr;
    onDone(code, message);
}

}  // namespace hbbtv::browser
