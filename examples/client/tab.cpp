#include "tab.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

using vantorel::hardware::hbbtv::V1_0::IMtm;

namespace {

constexpr int32_t kDone = 0;
constexpr int32_t kUnsupported = 1;  // any number but 0
constexpr int32_t kTab = 1;

}  // namespace

Tab::Tab(android::sp<IMtm> platform, std::shared_ptr<Tasks> tasks, std::function<void()> loaded)
    : mPlatform(std::move(platform)), mTasks(std::move(tasks)), mLoaded(std::move(loaded)) {}

void Tab::Report(const std::string& command, Notification notification) {
    std::printf("tab: %s\n", command.c_str());
    mTasks->Add([platform = mPlatform, notification = std::move(notification)] {
        const Return<int32_t> status = notification(*platform);
        // A Return that carries an error ends the process unless it is looked at.
        if (!status.isOk()) std::printf("the service is gone: %s\n", status.description().c_str());
    });
}

android::hardware::Return<void> Tab::CreateApp(const String& url, bool, bool, const String&, const Strings&,
                                               CreateApp_cb answer) {
    Report("create it for " + std::string(url), [](IMtm& mtm) { return mtm.OnTabCreated(kTab); });
    answer(kDone, kTab);
    return {};
}

android::hardware::Return<int32_t> Tab::SetAppConfig(int32_t, bool broadcastRelated) {
    std::printf("tab: its application is %sbroadcast-related\n", broadcastRelated ? "" : "not ");
    return kDone;
}

android::hardware::Return<int32_t> Tab::SetDvbOrigin(int32_t, const String& origin) {
    std::printf("tab: its origin is %s\n", origin.c_str());
    return kDone;
}

android::hardware::Return<int32_t> Tab::LoadURLInTab(int32_t, const String& url, bool, bool, const String&,
                                                     const Strings&) {
    // The string belongs to the call, and is gone when this returns.
    Report("load " + std::string(url), [this, page = std::string(url)](IMtm& mtm) {
        Return<int32_t> status = mtm.OnTabLoadFinished(kTab, page);
        mLoaded();
        return status;
    });
    return kDone;
}

android::hardware::Return<int32_t> Tab::ShowHideTab(int32_t, bool show, bool) {
    Report(show ? "show" : "hide", [show](IMtm& mtm) { return show ? mtm.OnTabShow(kTab) : mtm.OnTabHide(kTab); });
    return kDone;
}

android::hardware::Return<int32_t> Tab::DestroyApp(int32_t) {
    Report("destroy", [](IMtm& mtm) { return mtm.OnTabDestroyed(kTab); });
    return kDone;
}

android::hardware::Return<int32_t> Tab::DestroyAllApps() {
    Report("destroy all", [](IMtm& mtm) { return mtm.OnAllTabsDestroyed(); });
    return kDone;
}

android::hardware::Return<void> Tab::GetRenderProcessId(int32_t, GetRenderProcessId_cb answer) {
    answer(kDone, getpid());
    return {};
}

android::hardware::Return<void> Tab::GetXmlFile(const String&, const String&, GetXmlFile_cb answer) {
    answer(kUnsupported, "");
    return {};
}

android::hardware::Return<int32_t> Tab::SendKey(int32_t key, int32_t, int32_t) {
    std::printf("tab: key %d\n", key);
    return kDone;
}

android::hardware::Return<void> Tab::Ping(Ping_cb answer) {
    answer(kDone, 0);
    return {};
}
