#include "browser.h"

#include <cstdio>
#include <filesystem>
#include <thread>

#include "common/failure.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "files.h"
#include "page_script.h"

namespace hbbtv::browser {

namespace fs = std::filesystem;

namespace {

constexpr Milliseconds kTimeToRelease{1000};
constexpr Milliseconds kTimeToGetATab{3000};

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
      mCarousel(loop, platform),
      mTabs(loop, platform, [this](const std::string& url, const Platform::Reply& reply) { GetXmlFile(url, reply); },
            {[this](int id, const Tab& tab) { TabCreated(id, tab); },
             [this](int id, const Tab&) { return BecomesRelated(id); }, [this](int id, const Tab&) { TabGone(id); },
             [this](const std::string& url) { return mCarousel.PageUrl(url); }}) {
    for (const auto& [url, directory] : options.serve) mFiles.Serve(url, directory);
    const std::string& page = options.page;
    const bool served = !options.serve.empty() && options.serve[0].first == kFilesOrigin;
    if (page.empty() || page.find("://") != std::string::npos || page.rfind("data:", 0) == 0) {
        mUrl = page;
    } else if (served) {
        mUrl = kFilesOrigin + page.substr(page[0] == '/' ? 1 : 0);
    } else if (fs::is_regular_file(page)) {
        const fs::path file = fs::absolute(page);
        mFiles.Serve(kFilesOrigin, file.parent_path().string());
        mUrl = kFilesOrigin + Escaped(file.filename().string());
    } else {
        throw Failure(kUsage, Quoted(page) + " is neither a URL nor a file");
    }
}

int Browser::Run() {
    mPlatform.Start({[this](const Json::Value& event) { TakeEvent(event); },
                     [this](const std::string& command, const Json::Value& arguments, const Platform::Reply& reply) {
                         mTabs.Take(command, arguments, reply);
                     },
                     [this] { mHoldings.Clear(); }, [] {}});
    mLoop.OnSignals([this] { End(kDone, ""); });
    StartChromium();
    if (!mUrl.empty()) OpenPage();
    mLoop.RunUntil([this] { return mExit.has_value(); });
    ReleaseAll();
    mTabs.Use(nullptr);
    mPlatform.Flush(kTimeToRelease);
    mChromium.reset();
    if (*mExit != kDone) throw Failure(static_cast<ExitCode>(*mExit), mMessage);
    return kDone;
}

void Browser::StartChromium() {
    mChromium = std::make_unique<devtools::DevTools>(mLoop, ChromiumFor(mOptions));
    Pages::Handlers handlers{[this](const std::string& page, const PageChange& change) { Changed(page, change); },
                             [this](const Document& document, const Request& request) { Called(document, request); },
                             [this](const Request& request) { FileWanted(request); },
                             [this](const std::string& document) { DocumentGone(document); }};
    mPages = std::make_unique<Pages>(*mChromium, mConsole,
                                     Pages::Settings{kPageScript, mOptions.size, mFiles.Prefixes(), kBroadcastHosts},
                                     handlers);
    mChromium->SetHandlers([this](const std::string& session, const std::string& method,
                                  const Json::Value& params) { mPages->Take(session, method, params); },
                           [this] { ChromiumEnded(); });
    mTabs.Use(mPages.get());
}

// One that has not even started is not started again. Called by Chromium's own object, so the next one is started
// later.
void Browser::ChromiumEnded() {
    const std::string message = "Chromium has ended: " + mChromium->LastMessage();
    mTabs.Use(nullptr);
    ReleaseAll();
    if (mErrand || !mPages->Started()) return End(kPeerLost, message);
    std::fprintf(stderr, "hbbtv-browser: %s; it is started again\n", Printable(message).c_str());
    mLoop.Post([this] {
        mPages.reset();
        mChromium.reset();
        StartChromium();
    });
}

void Browser::OpenPage() {
    if (mOptions.EndsByItself())
        mErrand.emplace(mOptions, mLoop, *mPages, [this](int code, const std::string& text) { End(code, text); });
    if (mOptions.alone) return OpenAlone();
    Json::Value arguments;
    arguments["appId"] = -1;
    arguments["orgId"] = -1;
    arguments["url"] = mUrl;
    arguments["child"] = false;
    arguments["opapp"] = false;
    std::thread([this, arguments] {
        const CallResult result = mPlatform.Call("IApplicationManager.CreateApplication", arguments);
        mLoop.Post([this, result] { Started(result); });
    }).detach();
    mLoop.After(kTimeToGetATab, [this] {
        if (mTab == 0 && !mExit) OpenAlone();
    });
}

// The platform has started the page as an application, or not.
void Browser::Started(const CallResult& application) {
    if (!application.Ok()) return OpenAlone();
    mCarousel.StartApplication(mUrl);
    Json::Value arguments;
    arguments["appId"] = application.results["newAppId"];
    arguments["orgId"] = application.results["newOrgId"];
    mPlatform.CallLater("IApplicationManager.Show", arguments);
}

// As if the platform had commanded it.
void Browser::OpenAlone() {
    if (!mOptions.alone)
        std::fprintf(stderr,
                     "hbbtv-browser: the platform does not start the page; it is opened without an application\n");
    Json::Value arguments;
    arguments["url"] = mUrl;
    arguments["autoShow"] = true;
    arguments["isBroadcastRelated"] = true;
    mTabs.Take("CreateApp", arguments, [this, arguments](const Json::Value& created) {
        if (!created.isMember("tabId")) return End(kPeerLost, "Chromium does not create a page");
        Json::Value load = arguments;
        load["tabId"] = created["tabId"];
        mTabs.Take("LoadURLInTab", load, [](const Json::Value&) {});
    });
}

void Browser::TabCreated(int id, const Tab& tab) {
    if (mTab != 0 || mUrl.empty() || mCarousel.PageUrl(tab.url) != mCarousel.PageUrl(mUrl)) return;
    mTab = id;
    if (mErrand) mErrand->Start(tab.page);
}

// The platform starts it as one that is not.
bool Browser::BecomesRelated(int id) {
    if (id != mTab || mOptions.alone) return false;
    Json::Value arguments;
    arguments["tabId"] = id;
    mPlatform.CallLater("IApplicationManager.SetBIAppToBR", arguments);
    return true;
}

void Browser::TabGone(int id) {
    if (id == mTab && mErrand) End(kUnavailable, "the platform has ended the application");
}

void Browser::Changed(const std::string& page, const PageChange& change) {
    if (mErrand) mErrand->Changed(page, change);
    mTabs.Changed(page, change);
}

void Browser::GetXmlFile(const std::string& url, const Platform::Reply& reply) {
    const auto answer = [reply](const std::string& text) {
        Json::Value results;
        results["status"] = text.empty() ? -1 : 0;
        results["xmlFile"] = text;
        reply(results);
    };
    if (!PageUrlOf(url).empty()) {
        return mCarousel.Request(
            url, [answer](const std::string& path) { answer(path.empty() ? "" : BytesResponse(path, path, "").body); });
    }
    const std::optional<Response> file = mFiles.Answer(url, "");
    if (!file) return mPages->GetFile(url, answer);
    answer(file->status == 200 ? file->body : "");
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
            for (const MadeCall& call : calls) Made(document, call);
        },
        [this, request](const std::string& answer) {
            if (answer.empty()) return mPages->Fulfill(request, {400, "text/plain", "not a list of calls", ""});
            mPages->Fulfill(request, {200, "application/json", answer, ""});
        });
}

void Browser::Made(const Document& document, const MadeCall& call) {
    mHoldings.Called(document.name, call.method, call.arguments, call.results);
    if (call.method == "IApplicationManager.CreateApplication")
        mCarousel.StartApplication(call.arguments["url"].asString());
}

void Browser::TakeEvent(const Json::Value& event) {
    if (event["interface"] == "IDsmcc") return mCarousel.Take(event["arguments"]);
    if (event["event"] == "onRequestDsmccFile") mCarousel.StartApplication(event["arguments"]["fileName"].asString());
    if (mPages) mPages->Deliver(event);
}

Json::Value Browser::HostCall(const Document& document, const std::string& name) {
    const int tab = mTabs.Of(document.page);
    if (name == "tab") return mTabs.Described(tab);
    if (name == "close" && tab != 0) mTabs.CloseRequested(tab);
    return Json::objectValue;
}

void Browser::FileWanted(const Request& request) {
    const Response missing{404, "text/plain", "no such file", ""};
    const std::string url = BroadcastUrl(request.url);
    if (url.empty()) return mPages->Fulfill(request, mFiles.Answer(request.url, request.range).value_or(missing));
    mCarousel.Request(url, [this, request, missing](const std::string& path) {
        if (!mPages) return;
        const std::string name = PathOf(request.url);
        mPages->Fulfill(request, path.empty() ? missing : BytesResponse(path, name, request.range));
    });
}

void Browser::DocumentGone(const std::string& document) {
    for (const Release& release : mHoldings.Gone(document)) mPlatform.CallLater(release.first, release.second);
}

void Browser::ReleaseAll() {
    for (const std::string& document : mHoldings.Documents()) DocumentGone(document);
}

}  // namespace hbbtv::browser
