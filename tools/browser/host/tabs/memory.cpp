#include "tabs/memory.h"

#include <cmath>
#include <utility>

namespace hbbtv::browser {

namespace {

constexpr Milliseconds kBetweenLooks{1000};
constexpr double kMebibyte = 1024 * 1024;
constexpr double kMostOfATab = 256 * kMebibyte;

}  // namespace

Memory::Memory(devtools::Loop& loop, Platform& platform, OnLow onLow)
    : mLoop(loop), mPlatform(platform), mOnLow(std::move(onLow)) {
    Watch();
}

void Memory::Watch() {
    mLoop.After(kBetweenLooks, [this] {
        if (mPages != nullptr) {
            for (const auto& [tab, page] : mTabs)
                mPages->GetHeap(page, [this, id = tab](double bytes) { Measured(id, bytes); });
        }
        Watch();
    });
}

// Of a page that does not answer nothing is known.
void Memory::Measured(int tab, double bytes) {
    if (bytes == 0 || mTabs.count(tab) == 0) return;
    if (bytes > kMostOfATab) {
        if (!mLow.insert(tab).second) return;
        mOnLow(tab);
    } else {
        if (mLow.erase(tab) == 0) return;
        Json::Value arguments;
        arguments["level"] = static_cast<int>(std::ceil(bytes / kMebibyte));
        arguments["tabId"] = tab;
        mPlatform.CallLater("IMtm.OnMemoryReduced", arguments);
    }
    ReportWarnings();
}

void Memory::Remove(int tab) {
    mTabs.erase(tab);
    if (mLow.erase(tab) != 0) ReportWarnings();
}

// The status is the number of tabs that use too much.
void Memory::ReportWarnings() {
    Json::Value arguments;
    arguments["memStatus"] = static_cast<int>(mLow.size());
    mPlatform.CallLater("IMtm.OnMemoryWarningDetected", arguments);
}

}  // namespace hbbtv::browser
