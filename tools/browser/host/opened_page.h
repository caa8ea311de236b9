// The page of the command line: an application that the platform is asked to create, or a page without one; and what is
// to be done with it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "chromium/pages.h"
#include "devtools/loop.h"
#include "errand.h"
#include "files.h"
#include "options.h"
#include "platform/carousel.h"
#include "platform/platform.h"
#include "tabs/tabs.h"

namespace hbbtv::browser {

class OpenedPage {
  public:
    // `files` gets the folder of a file. Throws Failure for what is neither a URL nor a file.
    OpenedPage(const Options& options, devtools::Loop& loop, Platform& platform, Carousel& carousel, Files& files);

    // Opens it, if there is one. `onDone` gets the exit code, and a message unless it is 0.
    void Open(Tabs& tabs, Pages& pages, const Errand::TakePicture& takePicture, const Errand::OnDone& onDone);

    // Does nothing from now on.
    void Stop();

    // Returns whether the program ends when it has done something with the page.
    bool HasErrand() const { return mErrand.has_value(); }

    // Take a command of the platform for tabs, and what has become of pages.
    void Commanded(const std::string& command, const Json::Value& arguments);
    void Changed(const std::string& page, const PageChange& change);

    // Those of Tabs::Handlers.
    void TabCreated(int id, const Tab& tab);
    bool BecomesRelated(int id);
    void TabGone(int id);

  private:
    void Start();
    void Started(const CallResult& application);
    void OpenAlone();
    bool Is(const std::string& url) const;

    const Options& mOptions;
    devtools::Loop& mLoop;
    Platform& mPlatform;
    Carousel& mCarousel;
    std::string mUrl;  // empty: none
    Tabs* mTabs = nullptr;
    Errand::OnDone mOnDone;
    bool mStarting = false;   // the platform has been asked to create the application
    bool mCommanded = false;  // to create a tab for this page
    int mTab = 0;             // of this page
    std::optional<Errand> mErrand;
};

}  // namespace hbbtv::browser
