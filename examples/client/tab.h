// A browser with one tab, as the platform sees it: takes the commands for the tab and reports what became of them. It
// renders nothing.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtm.h>
#include <vantorel/hardware/hbbtv/1.0/IMtmCallback.h>

#include <functional>
#include <memory>
#include <string>

#include "tasks.h"

class Tab : public vantorel::hardware::hbbtv::V1_0::IMtmCallback {
  public:
    // `loaded` runs on the main thread when a page has been reported as loaded.
    Tab(android::sp<vantorel::hardware::hbbtv::V1_0::IMtm> platform, std::shared_ptr<Tasks> tasks,
        std::function<void()> loaded);

    template <typename T>
    using Return = android::hardware::Return<T>;
    using String = android::hardware::hidl_string;
    using Strings = android::hardware::hidl_vec<String>;

    Return<int32_t> SetAppConfig(int32_t tab, bool broadcastRelated) override;
    Return<int32_t> SetDvbOrigin(int32_t tab, const String& origin) override;
    Return<void> CreateApp(const String& url, bool autoShow, bool broadcastRelated, const String& mode,
                           const Strings& boundaries, CreateApp_cb answer) override;
    Return<int32_t> DestroyApp(int32_t tab) override;
    Return<int32_t> DestroyAllApps() override;
    Return<int32_t> ShowHideTab(int32_t tab, bool show, bool isMulti) override;
    Return<void> GetXmlFile(const String& url, const String& appId, GetXmlFile_cb answer) override;
    Return<int32_t> LoadURLInTab(int32_t tab, const String& url, bool autoShow, bool broadcastRelated,
                                 const String& mode, const Strings& boundaries) override;
    Return<void> GetRenderProcessId(int32_t tab, GetRenderProcessId_cb answer) override;
    Return<int32_t> SendKey(int32_t key, int32_t keyType, int32_t keyEventId) override;
    Return<void> Ping(Ping_cb answer) override;

  private:
    using Notification = std::function<Return<int32_t>(vantorel::hardware::hbbtv::V1_0::IMtm&)>;

    // Prints the command and leaves the notification about it to the main thread.
    void Report(const std::string& command, Notification notification);

    const android::sp<vantorel::hardware::hbbtv::V1_0::IMtm> mPlatform;
    const std::shared_ptr<Tasks> mTasks;
    const std::function<void()> mLoaded;
};
