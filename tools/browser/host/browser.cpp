#include "browser.h"

#include <filesystem>

#include "common/failure.h"
#include "common/text/quote.h"
#include "files.h"
#include "page_script.h"

namespace hbbtv::browser {

namespace fs = std::filesystem;

namespace {

constexpr Milliseconds kTimeToRelease{2000};

std::string Escaped(const std::string& name) {
    std::string text;
    for (const char c : name) {
        char escape[4];
        std::snprintf(escape, sizeof(escape), "%%%02X", static_cast<unsigned char>(c));
        const bool plain = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '-' || c == '_';
        text += plain ? std::string(1, c) : escape;
    }
    return text;
}

devtools::ChromiumOptions ChromiumFor(const Options& options) {
    devtools::ChromiumOptions chromium;
    chromium.profile = options.profile;
    chromium.arguments = {"--no-startup-window",
                          "--user-agent=" + options.userAgent,
                          "--autoplay-policy=no-user-gesture-required",
                          "--disable-features=BackForwardCache,Translate,HttpsUpgrades",
                          "--disable-popup-blocking",
                          "--disable-renderer-backgrounding",
                          "--disable-background-timer-throttling",
                          "--disable-backgrounding-occluded-windows",
                          "--hide-scrollbars"};
    return chromium;
}

}  // namespace

Browser::Browser(const Options& options, devtools::Loop& loop, Platform& platform)
    : mOptions(options),
      mLoop(loop),
      mPlatform(platform),
      mCalls(loop, platform, options.callLimit),
      mConsole(options.console),
      mFiles(options.serve) {
    const std::string& page = options.page;
    if (page.empty() || page.find("://") != std::string::npos || page.rfind("data:", 0) == 0) {
        mUrl = page;
    } else if (!mFiles.empty()) {
        mUrl = kFilesOrigin + page.substr(page[0] == '/' ? 1 : 0);
    } else if (fs::is_regular_file(page)) {
        const fs::path file = fs::absolute(page);
        mFiles = file.parent_path().string();
        mUrl = kFilesOrigin + Escaped(file.filename().string());
    } else {
        throw Failure(kUsage, Quoted(page) + " is neither a URL nor a file");
    }
}

int Browser::Run() {
    mPlatform.Start({[this](const Json::Value& event) { mPages->Deliver(event); },
                     [](const std::string&, const Json::Value&, const Platform::Reply& reply) {
                         reply(Json::Value(Json::objectValue));
                     },
                     [this] { mHoldings.Clear(); }, [] {}});
    mLoop.OnSignals([this] { End(kDone, ""); });
    StartChromium();
    if (!mUrl.empty()) OpenPage();
    mLoop.RunUntil([this] { return mExit.has_value(); });
    ReleaseAll();
    mChromium.reset();
    if (*mExit != kDone) throw Failure(static_cast<ExitCode>(*mExit), mMessage);
    return kDone;
}

void Browser::StartChromium() {
    mChromium = std::make_unique<devtools::DevTools>(mLoop, ChromiumFor(mOptions));
    Pages::Handlers handlers{[this](const std::string& page, const PageChange& change) {
                                 if (mErrand) mErrand->Changed(page, change);
                             },
                             [this](const Document& document, const Request& request) { Called(document, request); },
                             [this](const Request& request) { FileWanted(request); },
                             [this](const std::string& document) { DocumentGone(document); }};
    mPages = std::make_unique<Pages>(*mChromium, mConsole, kPageScript, mOptions.size, handlers);
    mChromium->SetHandlers([this](const std::string& session, const std::string& method,
                                  const Json::Value& params) { mPages->Take(session, method, params); },
                           [this] { End(kPeerLost, "Chromium has ended: " + mChromium->LastMessage()); });
}

void Browser::OpenPage() {
    if (mOptions.EndsByItself())
        mErrand.emplace(mOptions, mLoop, *mPages, [this](int code, const std::string& text) { End(code, text); });
    mPages->Create([this](const std::string& page) {
        if (page.empty()) return End(kPeerLost, "Chromium does not create a page");
        if (mErrand) mErrand->Start(page);
        mPages->Load(page, mUrl);
    });
}

void Browser::End(int code, const std::string& message) {
    if (mExit) return;
    mExit = code;
    mMessage = message;
}

void Browser::Called(const Document& document, const Request& request) {
    mCalls.Make(
        request.body, [&](const std::string& name, const Json::Value&) { return HostCall(document, name); },
        [this, document](const std::vector<MadeCall>& calls) {
            for (const MadeCall& call : calls)
                mHoldings.Called(document.name, call.method, call.arguments, call.results);
        },
        [this, request](const std::string& answer) {
            if (answer.empty()) return mPages->Fulfill(request, {400, "text/plain", "not a list of calls", ""});
            mPages->Fulfill(request, {200, "application/json", answer, ""});
        });
}

Json::Value Browser::HostCall(const Document&, const std::string& name) {
    Json::Value results(Json::objectValue);
    if (name == "tab") {
        results["tab"] = 0;
        results["broadcastRelated"] = true;
        results["origin"] = "";
    }
    return results;
}

void Browser::FileWanted(const Request& request) {
    const bool known = !mFiles.empty() && request.url.rfind(kFilesOrigin, 0) == 0;
    mPages->Fulfill(request, known ? FileResponse(mFiles, PathOf(request.url), request.range)
                                   : Response{404, "text/plain", "no such file", ""});
}

void Browser::DocumentGone(const std::string& document) {
    for (const Release& release : mHoldings.Gone(document)) mPlatform.CallLater(release.first, release.second);
}

void Browser::ReleaseAll() {
    for (const std::string& document : mHoldings.Documents()) DocumentGone(document);
    mPlatform.Flush(kTimeToRelease);
}

}  // namespace hbbtv::browser
