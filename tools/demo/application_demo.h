// The part of the demo that is about applications: it is the browser that the platform gives an application to.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IApplicationManager.h>
#include <vantorel/hardware/hbbtv/1.0/IMtm.h>

#include <functional>

#include "application_log.h"
#include "caller.h"
#include "demo_browser.h"

namespace hbbtv::demo {

class ApplicationDemo {
  public:
    ApplicationDemo(Transcript& transcript, Caller& caller);

    // `tuneThere` tunes to a service with an application that starts with it, `tuneAway` to one without.
    bool Run(const std::function<bool()>& tuneThere, const std::function<bool()>& tuneAway);

  private:
    bool Listen();
    bool Follow();
    bool Ask();
    bool SeeItGo();
    bool StopListening();

    Transcript& mTranscript;
    Caller& mCaller;
    const android::sp<vantorel::hardware::hbbtv::V1_0::IMtm> mMtm;
    const android::sp<vantorel::hardware::hbbtv::V1_0::IApplicationManager> mManager;
    const android::sp<DemoBrowser> mBrowser;
    const android::sp<ApplicationLog> mLog;
};

}  // namespace hbbtv::demo
