#include "demo_browser.h"

#include <algorithm>

namespace hbbtv::demo {

namespace {

std::string TabText(int32_t tab) {
    return "tab " + std::to_string(tab);
}

}  // namespace

bool DemoBrowser::WaitFor(const std::string& command, std::chrono::milliseconds patience) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mCame.wait_for(lock, patience,
                          [&] { return std::find(mSeen.begin(), mSeen.end(), command) != mSeen.end(); });
}

int32_t DemoBrowser::Note(const std::string& command, const std::string& values) {
    mTranscript.Event(command, values);
    std::lock_guard<std::mutex> lock(mMutex);
    mSeen.push_back(command);
    mCame.notify_all();
    return 0;
}

DemoBrowser::Return<int32_t> DemoBrowser::SetAppConfig(int32_t tabId, bool isBroadcastRelated) {
    return Note("SetAppConfig", TabText(tabId) + (isBroadcastRelated ? ": broadcast-related" : ": independent"));
}

DemoBrowser::Return<int32_t> DemoBrowser::SetDvbOrigin(int32_t tabId, const Text& origin) {
    return Note("SetDvbOrigin", TabText(tabId) + ": " + std::string(origin));
}

DemoBrowser::Return<void> DemoBrowser::CreateApp(const Text& url, bool, bool, const Text&, const Texts&,
                                                 CreateApp_cb _hidl_cb) {
    _hidl_cb(Note("CreateApp", std::string(url) + ": " + TabText(kTab)), kTab);
    return {};
}

DemoBrowser::Return<int32_t> DemoBrowser::DestroyApp(int32_t tabId) {
    return Note("DestroyApp", TabText(tabId));
}

DemoBrowser::Return<int32_t> DemoBrowser::DestroyAllApps() {
    return Note("DestroyAllApps", "");
}

DemoBrowser::Return<int32_t> DemoBrowser::ShowHideTab(int32_t tabId, bool show, bool) {
    return Note("ShowHideTab", TabText(tabId) + (show ? ": show" : ": hide"));
}

DemoBrowser::Return<void> DemoBrowser::GetXmlFile(const Text& url, const Text&, GetXmlFile_cb _hidl_cb) {
    Note("GetXmlFile", url);
    _hidl_cb(-1, "");
    return {};
}

DemoBrowser::Return<int32_t> DemoBrowser::LoadURLInTab(int32_t tabId, const Text& url, bool, bool, const Text&,
                                                       const Texts&) {
    return Note("LoadURLInTab", TabText(tabId) + ": " + std::string(url));
}

DemoBrowser::Return<void> DemoBrowser::GetRenderProcessId(int32_t tabId, GetRenderProcessId_cb _hidl_cb) {
    _hidl_cb(Note("GetRenderProcessId", TabText(tabId) + ": process " + std::to_string(kRenderProcess)),
             kRenderProcess);
    return {};
}

DemoBrowser::Return<int32_t> DemoBrowser::SendKey(int32_t key, int32_t, int32_t) {
    return Note("SendKey", std::to_string(key));
}

// Not worth a line: it comes whenever the platform's clock says so.
DemoBrowser::Return<void> DemoBrowser::Ping(Ping_cb _hidl_cb) {
    _hidl_cb(0, 0);
    return {};
}

}  // namespace hbbtv::demo
