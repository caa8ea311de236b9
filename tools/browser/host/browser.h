// The browser: Chromium's pages on one side, the platform on the other.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "chromium/console.h"
#include "chromium/pages.h"
#include "devtools/devtools.h"
#include "devtools/loop.h"
#include "files.h"
#include "opened_page.h"
#include "options.h"
#include "platform/carousel.h"
#include "platform/holdings.h"
#include "platform/page_calls.h"
#include "platform/platform.h"
#include "screen.h"
#include "tabs/tabs.h"

namespace hbbtv::browser {

class Browser {
  public:
    Browser(const Options& options, devtools::Loop& loop, Platform& platform);

    // Runs until a signal, or until the page of the command line is done with. Returns the exit code. Throws Failure.
    int Run();

  private:
    // A Chromium: that of the applications, and that of the window, if there is one.
    struct Side {
        std::unique_ptr<devtools::DevTools> chromium;
        std::unique_ptr<Pages> pages;
    };

    void Start(Side& side, const devtools::ChromiumOptions& options, bool window);
    void StartApplications();
    void MakeScreen(Side& side);
    void OpenWindow();
    void ApplicationsEnded();
    void End(int code, const std::string& message);
    void Stop();

    // What pages and the platform want.
    void Changed(const Side& side, const std::string& page, const PageChange& change);
    void Called(Side& side, const Document& document, const Request& request);
    void Made(const Document& document, const MadeCall& call);
    Json::Value HostCall(const Document& document, const std::string& name, const Json::Value& arguments);
    void FileWanted(Side& side, const Request& request);
    void GetXmlFile(const std::string& url, const Platform::Reply& reply);
    void TakeEvent(const Json::Value& event);
    void DocumentGone(const std::string& document);
    void MakeReleases(const std::vector<Release>& releases);
    void ObjectsLost(const char* ended);
    void ReleaseAll();

    // What the viewer sees and presses.
    void Painted();
    void WritePicture(const std::function<void(const std::string& problem)>& onWritten);
    void Press(const std::string& key);

    const Options& mOptions;
    devtools::Loop& mLoop;
    Platform& mPlatform;
    PageCalls mCalls;
    Holdings mHoldings;
    Console mConsole;
    Carousel mCarousel;
    Files mFiles;
    Side mApplications;
    Side mWindow;
    std::unique_ptr<Screen> mScreen;
    Tabs mTabs;
    OpenedPage mOpened;
    std::optional<int> mExit;
    std::string mMessage;  // if mExit is not 0
};

}  // namespace hbbtv::browser
