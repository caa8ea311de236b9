#include "opened_page.h"

#include <cstdio>
#include <filesystem>
#include <thread>
#include <utility>

#include "common/failure.h"
#include "common/text/quote.h"

namespace hbbtv::browser {

namespace fs = std::filesystem;

namespace {

constexpr Milliseconds kTimeToCommandATab{3000};

// An application that the current service announces: the platform knows its URL.
const char* const kAnnounced = "dvb://current.ait/";

std::string UrlOf(const Options& options, Files& files) {
    const std::string& page = options.page;
    if (page.empty() || page.find("://") != std::string::npos || page.rfind("data:", 0) == 0) return page;
    const bool served = !options.serve.empty() && options.serve[0].first == kFilesOrigin;
    if (served) return kFilesOrigin + page.substr(page[0] == '/' ? 1 : 0);
    if (!fs::is_regular_file(page)) throw Failure(kUsage, Quoted(page) + " is neither a URL nor a file");
    const fs::path file = fs::absolute(page);
    files.Serve(kFilesOrigin, file.parent_path().string());
    return kFilesOrigin + Escaped(file.filename().string());
}

}  // namespace

OpenedPage::OpenedPage(const Options& options, devtools::Loop& loop, Platform& platform, Carousel& carousel,
                       Files& files)
    : mOptions(options), mLoop(loop), mPlatform(platform), mCarousel(carousel), mUrl(UrlOf(options, files)) {}

void OpenedPage::Open(Tabs& tabs, Pages& pages, const Errand::TakePicture& takePicture, const Errand::OnDone& onDone) {
    if (mUrl.empty()) return;
    mTabs = &tabs;
    mOnDone = onDone;
    if (mOptions.EndsByItself()) mErrand.emplace(mOptions, mLoop, pages, takePicture, onDone);
    if (mOptions.alone) return OpenAlone();
    mPlatform.AfterRegistration([this] { Start(); });
    mLoop.After(kTimeToCommandATab, [this] { OpenAlone(); });
}

void OpenedPage::Stop() {
    if (mErrand) mErrand->Stop();
    mTabs = nullptr;
}

// As an application of the platform.
void OpenedPage::Start() {
    if (mCommanded) return;
    mStarting = true;
    Json::Value arguments;
    arguments["appId"] = -1;
    arguments["orgId"] = -1;
    arguments["url"] = mUrl;
    arguments["child"] = false;
    arguments["opapp"] = false;
    // May run longer than this object, but not than platform and loop, which are not destroyed.
    std::thread([this, arguments, &platform = mPlatform, &loop = mLoop] {
        const CallResult result = platform.Call("IApplicationManager.CreateApplication", arguments);
        loop.Post([this, result] { Started(result); });
    }).detach();
}

// The platform has created the application, or not.
void OpenedPage::Started(const CallResult& application) {
    mStarting = application.Ok();
    if (!application.Ok()) return OpenAlone();
    mCarousel.StartApplication(mUrl);
    Json::Value arguments;
    arguments["appId"] = application.results["newAppId"];
    arguments["orgId"] = application.results["newOrgId"];
    mPlatform.CallLater("IApplicationManager.Show", arguments);
}

// As if the platform had commanded it.
void OpenedPage::OpenAlone() {
    if (mCommanded || mTabs == nullptr) return;
    mCommanded = true;
    if (!mOptions.alone)
        std::fprintf(stderr,
                     "hbbtv-browser: the platform does not start the page; it is opened without an application\n");
    Json::Value arguments;
    arguments["url"] = mUrl;
    arguments["autoShow"] = true;
    arguments["isBroadcastRelated"] = true;
    mTabs->Take("CreateApp", arguments, [this, arguments](const Json::Value& created) {
        if (mTabs == nullptr) return;
        if (!created.isMember("tabId")) return mOnDone(kPeerLost, "Chromium does not create a page");
        Json::Value load = arguments;
        load["tabId"] = created["tabId"];
        mTabs->Take("LoadURLInTab", load, [](const Json::Value&) {});
    });
}

// Of an announced application, the platform commands the URL that it is announced with.
bool OpenedPage::Is(const std::string& url) const {
    if (mUrl.empty()) return false;
    return mCarousel.PageUrl(url) == mCarousel.PageUrl(mUrl) || (mStarting && mUrl.rfind(kAnnounced, 0) == 0);
}

void OpenedPage::Commanded(const std::string& command, const Json::Value& arguments) {
    if (command == "CreateApp" && Is(arguments["url"].asString())) mCommanded = true;
}

void OpenedPage::Changed(const std::string& page, const PageChange& change) {
    if (mErrand) mErrand->Changed(page, change);
}

void OpenedPage::TabCreated(int id, const Tab& tab) {
    if (mTab != 0 || !Is(tab.url)) return;
    mTab = id;
    mStarting = false;
    if (mErrand) mErrand->Start(tab.page);
}

// The platform starts it as one that is not.
bool OpenedPage::BecomesRelated(int id) {
    if (id != mTab || mOptions.alone) return false;
    Json::Value arguments;
    arguments["tabId"] = id;
    mPlatform.CallLater("IApplicationManager.SetBIAppToBR", arguments);
    return true;
}

void OpenedPage::TabGone(int id) {
    if (id == mTab && mErrand) mOnDone(kUnavailable, "the platform has ended the application");
}

}  // namespace hbbtv::browser
