// The memory of tabs: looked at regularly, and reported when a tab uses more than one of a television should.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "chromium/pages.h"
#include "devtools/loop.h"
#include "platform/platform.h"

namespace hbbtv::browser {

class Memory {
  public:
    using OnLow = std::function<void(int tab)>;

    // `onLow` is called when a tab uses too much.
    Memory(devtools::Loop& loop, Platform& platform, OnLow onLow);

    // Sets the pages of a Chromium that has started; null when it has ended.
    void Use(Pages* pages) { mPages = pages; }

    void Add(int tab, const std::string& page) { mTabs[tab] = page; }
    void Remove(int tab);

  private:
    void Watch();
    void Measured(int tab, double bytes);
    void ReportWarnings();

    devtools::Loop& mLoop;
    Platform& mPlatform;
    const OnLow mOnLow;
    Pages* mPages = nullptr;
    std::map<int, std::string> mTabs;  // their pages
    std::set<int> mLow;                // that use too much
};

}  // namespace hbbtv::browser
