// What the command line asks to do with a page: press keys, wait, print and take a picture.
#pragma once

#include <functional>
#include <string>

#include "chromium/pages.h"
#include "devtools/loop.h"
#include "options.h"

namespace hbbtv::browser {

class Errand {
  public:
    // `onDone` gets the exit code, and a message unless it is 0.
    using OnDone = std::function<void(int code, const std::string& message)>;

    // Writes a picture of the screen to the file of the command line, and calls the function with what failed, or "".
    using TakePicture = std::function<void(const std::function<void(const std::string& problem)>& onTaken)>;

    Errand(const Options& options, devtools::Loop& loop, Pages& pages, TakePicture takePicture, OnDone onDone)
        : mOptions(options),
          mLoop(loop),
          mPages(pages),
          mTakePicture(std::move(takePicture)),
          mOnDone(std::move(onDone)) {}

    // Must be called before the page is loaded.
    void Start(const std::string& page);

    void Changed(const std::string& page, const PageChange& change);

    // Does nothing from now on.
    void Stop() { mOnDone = nullptr; }

  private:
    void PressNext();
    void Settle(const std::function<void()>& then);
    void WaitForCondition();
    void Print();
    void Depict();
    void Finish(int code, const std::string& message);

    const Options& mOptions;
    devtools::Loop& mLoop;
    Pages& mPages;
    const TakePicture mTakePicture;
    OnDone mOnDone;
    std::string mPage;
    bool mLoaded = false;
    size_t mPressed = 0;
};

}  // namespace hbbtv::browser
