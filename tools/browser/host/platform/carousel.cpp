#include "platform/carousel.h"

#include <utility>

namespace hbbtv::browser {

const char* const kBroadcastHosts = ".dvb.localhost";

namespace {

constexpr Milliseconds kTimeToArrive{10000};

const char* const kHttp = "http://";
const char* const kDvb = "dvb://";

// Types of OnDsmccFileEvent.
constexpr int kArrived = 0;
constexpr int kNewVersion = 2;

bool BeginsWith(const std::string& text, const std::string& begin) {
    return text.rfind(begin, 0) == 0;
}

// The host of a URL with this scheme ends here.
size_t HostEnd(const std::string& url, const std::string& scheme) {
    return std::min(url.find_first_of("/?#", scheme.size()), url.size());
}

}  // namespace

std::string BroadcastUrl(const std::string& pageUrl) {
    const std::string hosts = kBroadcastHosts;
    const size_t end = HostEnd(pageUrl, kHttp);
    const size_t begin = std::string(kHttp).size();
    if (!BeginsWith(pageUrl, kHttp) || end < begin + hosts.size() ||
        pageUrl.compare(end - hosts.size(), hosts.size(), hosts) != 0)
        return "";
    return kDvb + pageUrl.substr(begin, end - hosts.size() - begin) + pageUrl.substr(end);
}

std::string PageUrlOf(const std::string& broadcastUrl) {
    if (!BeginsWith(broadcastUrl, kDvb)) return "";
    const size_t begin = std::string(kDvb).size();
    const size_t end = HostEnd(broadcastUrl, kDvb);
    return kHttp + broadcastUrl.substr(begin, end - begin) + kBroadcastHosts + broadcastUrl.substr(end);
}

void Carousel::Request(const std::string& url, OnFile onFile) {
    const int64_t context = ++mLast;
    mWanted[context] = {url, std::move(onFile)};
    Json::Value arguments;
    arguments["url"] = url;
    arguments["context"] = static_cast<Json::Int64>(context);
    mPlatform.CallLater("IDsmcc.OnRequestFile", arguments);
    mLoop.After(kTimeToArrive, [this, context] { Finish(context, ""); });
}

void Carousel::Take(const Json::Value& arguments) {
    const int type = arguments["type"].asInt();
    const bool there = type == kArrived || type == kNewVersion;
    Finish(arguments["context"].asInt64(), there ? arguments["filePath"].asString() : "");
}

void Carousel::Finish(int64_t context, const std::string& path) {
    const auto found = mWanted.find(context);
    if (found == mWanted.end()) return;
    const Wanted wanted = std::move(found->second);
    mWanted.erase(found);
    wanted.onFile(path);
    Json::Value arguments;
    arguments["url"] = wanted.url;
    arguments["context"] = static_cast<Json::Int64>(context);
    mPlatform.CallLater("IDsmcc.OnReleaseFile", arguments);
}

void Carousel::StartApplication(const std::string& url) {
    if (!BeginsWith(url, kDvb)) return;
    Request(url, [this, url](const std::string& path) {
        if (path.empty()) return;
        mStarted["file://" + path] = url;
        Json::Value arguments;
        arguments["url"] = url;
        arguments["path"] = path;
        mPlatform.CallLater("IApplicationManager.NotifyDSMCCResponseToAPM", arguments);
    });
}

std::string Carousel::PageUrl(const std::string& url) const {
    const auto started = mStarted.find(url);
    const std::string page = PageUrlOf(started == mStarted.end() ? url : started->second);
    return page.empty() ? url : page;
}

}  // namespace hbbtv::browser
