// The browser: Chromium's pages on one side, the platform on the other.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "chromium/console.h"
#include "chromium/pages.h"
#include "devtools/devtools.h"
#include "devtools/loop.h"
#include "errand.h"
#include "files.h"
#include "options.h"
#include "platform/carousel.h"
#include "platform/holdings.h"
#include "platform/page_calls.h"
#include "platform/platform.h"
#include "tabs.h"

namespace hbbtv::browser {

class Browser {
  public:
    Browser(const Options& options, devtools::Loop& loop, Platform& platform);

    // Runs until a signal, or until the page of the command line is done with. Returns the exit code. Throws Failure.
    int Run();

  private:
    void StartChromium();
    void ChromiumEnded();
    void OpenPage();
    void OpenAlone();
    void Started(const CallResult& application);
    void TabCreated(int id, const Tab& tab);
    void TabGone(int id);
    bool BecomesRelated(int id);
    void GetXmlFile(const std::string& url, const Platform::Reply& reply);
    void End(int code, const std::string& message);

    void TakeEvent(const Json::Value& event);
    void Called(const Document& document, const Request& request);
    void Made(const Document& document, const MadeCall& call);
    Json::Value HostCall(const Document& document, const std::string& name);
    void Changed(const std::string& page, const PageChange& change);
    void FileWanted(const Request& request);
    void DocumentGone(const std::string& document);
    void ReleaseAll();

    const Options& mOptions;
    devtools::Loop& mLoop;
    Platform& mPlatform;
    PageCalls mCalls;
    Holdings mHoldings;
    Console mConsole;
    Carousel mCarousel;
    Files mFiles;
    std::string mUrl;  // page of the command line
    int mTab = 0;      // of this page
    std::unique_ptr<devtools::DevTools> mChromium;
    std::unique_ptr<Pages> mPages;
    Tabs mTabs;
    std::optional<Errand> mErrand;
    std::optional<int> mExit;
    std::string mMessage;  // if mExit is not 0
};

}  // namespace hbbtv::browser
