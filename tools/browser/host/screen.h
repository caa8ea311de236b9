// What a viewer sees: the picture of the channel, and the applications that are shown, one above the other. A page of
// its own composes them; applications are pictures with transparent backgrounds there.
#pragma once

#include <json/value.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "chromium/pages.h"
#include "platform/page_calls.h"

namespace hbbtv::browser {

// The URL of the page, and where it looks for videos of channels.
extern const char* const kTelevisionUrl;
extern const char* const kPictureUrl;

class Screen {
  public:
    using OnPicture = std::function<void(const std::string& png)>;
    using Shown = std::function<std::vector<std::string>()>;

    // `television` has the composing page; `applications` those that `shown` names, the lowest first. The latter two
    // are asked at each refresh, since there may be another Chromium by then; null if there is none.
    Screen(Pages& television, std::function<Pages*()> applications, Shown shown);

    // Creates the page, or takes the one of the window, the first time. `onReady` is called when it has loaded.
    void Start(bool window, std::function<void()> onReady);

    // Returns whether the page has loaded.
    bool Ready() const { return mReady; }

    // Takes what has become of a page of `television`.
    void Changed(const std::string& page, const PageChange& change);

    // Take what moves the picture: a call of a page, an event, and the release of objects.
    void Made(const MadeCall& call);
    void Take(const Json::Value& event);
    void Released(int64_t vb);

    // Shows what the pages show at present. A refresh that is running is repeated instead.
    void Refresh(std::function<void()> onDone = nullptr);

    // Refreshes, and takes a picture as PNG; empty if that failed.
    void Capture(const OnPicture& onPicture);

    const std::string& Page() const { return mPage; }

  private:
    void CaptureLayers(std::vector<std::string> pages, std::vector<std::string> urls);
    void Compose(const std::vector<std::string>& urls);
    void Composed();

    Pages& mTelevision;
    const std::function<Pages*()> mApplications;
    const Shown mShown;
    std::string mPage;
    bool mReady = false;
    std::vector<std::function<void()>> mOnReady;
    std::vector<std::function<void()>> mWaiting;  // for the refresh that is running
    std::vector<std::function<void()>> mNext;     // for the one after it
    bool mRunning = false;
    bool mAgain = false;
    std::map<int64_t, Json::Value> mWindows;  // rectangles by video/broadcast object, null: the whole screen
    int64_t mLast = 0;                        // the object whose picture was placed last
    int mState = -1;
};

}  // namespace hbbtv::browser
