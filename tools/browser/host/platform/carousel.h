// Files of the broadcast: requested from the platform, which copies them to paths that it names in events. Their pages
// have an origin of ours, so that their relative links work: dvb://1.3fb.283d.17/app/ is
// http://1.3fb.283d.17.dvb.localhost/app/.
#pragma once

#include <json/value.h>

#include <functional>
#include <map>
#include <string>

#include "devtools/loop.h"
#include "platform/platform.h"

namespace hbbtv::browser {

class Carousel {
  public:
    // Gets the path of a copy, which exists until the function returns; empty if there is no such file.
    using OnFile = std::function<void(const std::string& path)>;

    Carousel(devtools::Loop& loop, Platform& platform) : mLoop(loop), mPlatform(platform) {}

    void Request(const std::string& url, OnFile onFile);

    // Takes the arguments of IDsmccCallback.OnDsmccFileEvent.
    void Take(const Json::Value& arguments);

    // The platform creates the application of a dvb:// URL when it knows the path of its file. Requests the file, and
    // tells the path.
    void StartApplication(const std::string& url);

    // Returns the URL of a page for Chromium, of what the platform wants to be loaded: that of a file of the broadcast,
    // or the URL itself.
    std::string PageUrl(const std::string& url) const;

  private:
    struct Wanted {
        std::string url;
        OnFile onFile;
    };

    void Finish(int64_t context, const std::string& path);

    devtools::Loop& mLoop;
    Platform& mPlatform;
    std::map<int64_t, Wanted> mWanted;            // by context
    std::map<std::string, std::string> mStarted;  // URL of applications, by that of their file's copy
    int64_t mLast = 0;
};

// Return the URL of the broadcast of a page's URL, and a page's URL of one of the broadcast; else empty strings.
std::string BroadcastUrl(const std::string& pageUrl);
std::string PageUrlOf(const std::string& broadcastUrl);

// The beginning and the end of the host names of such pages' URLs.
extern const char* const kBroadcastHosts;

}  // namespace hbbtv::browser
