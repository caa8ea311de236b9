#include "application_demo.h"

#include <cstdio>

namespace hbbtv::demo {

using vantorel::hardware::hbbtv::V1_0::IApplicationManager;
using vantorel::hardware::hbbtv::V1_0::IMtm;
using vantorel::hardware::hbbtv::V1_0::TolmAIPEvent;

namespace {

constexpr int64_t kContext = 0xcafe;
constexpr int32_t kRedKey = 403;
const char* const kUrl = "http://arte.example/hbbtv/";

}  // namespace

ApplicationDemo::ApplicationDemo(Transcript& transcript, Caller& caller)
    : mTranscript(transcript),
      mCaller(caller),
      mMtm(IMtm::getService()),
      mManager(IApplicationManager::getService()),
      mBrowser(new DemoBrowser(transcript)),
      mLog(new ApplicationLog(transcript)) {}

bool ApplicationDemo::Run(const std::function<bool()>& tuneThere, const std::function<bool()>& tuneAway) {
    if (!mCaller.Expect(mMtm != nullptr && mManager != nullptr, "the interfaces for applications")) return false;
    const bool done = Listen() && tuneThere() && Follow() && Ask() && tuneAway() && SeeItGo();
    return StopListening() && done;
}

bool ApplicationDemo::Listen() {
    mTranscript.Step("Be the browser: take the platform's commands for tabs");
    return mCaller.CallVoid("IMtm::RegisterCallback", [&] { return mMtm->RegisterCallback(mBrowser); }) &&
           mCaller.Call("IApplicationManager::RegisterCallback(1)",
                        [&] { return mManager->RegisterCallback(TolmAIPEvent::APPLICATION_EVENT_1, mLog, kContext); });
}

bool ApplicationDemo::Follow() {
    mTranscript.Step("Its application has a tab: load it");
    return mCaller.Expect(mBrowser->WaitFor("GetRenderProcessId", kPatience), "the application's tab") &&
           mCaller.Call("OnTabCreated(1)", [&] { return mMtm->OnTabCreated(kTab); }) &&
           mCaller.Call("OnTabShow(1)", [&] { return mMtm->OnTabShow(kTab); }) &&
           mCaller.Call("OnTabTitleChanged(1, \"arte\")", [&] { return mMtm->OnTabTitleChanged(kTab, "arte"); }) &&
           mCaller.Call("OnTabLoadFinished(1)", [&] { return mMtm->OnTabLoadFinished(kTab, kUrl); }) &&
           mCaller.Expect(mLog->WaitForEvent(kPatience), "the event of the application");
}

bool ApplicationDemo::Ask() {
    mTranscript.Step("Ask about the application");
    int32_t application = 0;
    int32_t organisation = 0;
    int32_t keys = 0;
    bool consumed = false;
    return mCaller.Get(
               "GetCurrentApp", [&](auto cb) { return mManager->GetCurrentApp(cb); },
               [](int32_t app, int32_t org) {
                   return "application " + std::to_string(app) + " of organisation " + std::to_string(org);
               },
               application, organisation) &&
           mCaller.Get(
               "GetValue", [&](auto cb) { return mManager->GetValue(application, organisation, cb); },
               [](int32_t mask) {
                   char text[24];
                   std::snprintf(text, sizeof(text), "key sets 0x%x", static_cast<unsigned>(mask));
                   return std::string(text);
               },
               keys) &&
           mCaller.Get(
               "KeyConsumedByBrowser(1, red)",
               [&](auto cb) { return mManager->KeyConsumedByBrowser(kTab, kRedKey, cb); },
               [](bool yes) { return std::string(yes ? "yes" : "no"); }, consumed) &&
           mCaller.Expect(consumed, "the red key to be the application's");
}

bool ApplicationDemo::SeeItGo() {
    mTranscript.Step("Its application goes with it");
    return mCaller.Expect(mBrowser->WaitFor("DestroyApp", kPatience), "the end of the tab") &&
           mCaller.Call("OnTabDestroyed(1)", [&] { return mMtm->OnTabDestroyed(kTab); });
}

// Also after a failure.
bool ApplicationDemo::StopListening() {
    mTranscript.Step("Be the browser no more");
    const bool manager = mCaller.Call("IApplicationManager::UnregisterCallback(1)", [&] {
        return mManager->UnregisterCallback(TolmAIPEvent::APPLICATION_EVENT_1, kContext);
    });
    return mCaller.CallVoid("IMtm::UnregisterCallback", [&] { return mMtm->UnregisterCallback(); }) && manager;
}

}  // namespace hbbtv::demo
