// The platform's side of the browser's tabs: it is told what happens to them, and has the browser do things with them.
#pragma once

#include <atomic>
#include <string>

#include "ipc/src/mtm/tolm_mtm_callback.h"
#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly.
class TolmMtmAdaptorIpc : public tolm::TolmAdaptorClient,
                          public TolmBaseServer,
                          public tolm::TolmAdaptorInstance<TolmMtmAdaptorIpc> {
  public:
    // Makes `callback` the receiver of the platform's commands, in place of any earlier one. It is not owned, and a
    // command under way may still reach it after another one has taken its place or UnRegisterCallback() was called: it
    // lives as long as the adaptor.
    void RegisterCallback(TolmMtmCallback* callback);
    void UnRegisterCallback();

    int OnTabCreated(int tabId);
    int OnTabDestroyed(int tabId);
    int OnRenderRequestCloseTab(int tabId);
    int OnAllTabsDestroyed();
    int OnTabFocus(int tabId);
    int OnTabHide(int tabId);
    int OnTabShow(int tabId);
    int OnLoadingStateChanged(bool isLoading, bool canBack, bool canForward);
    int OnAddressBarChanged(int tabId, const std::string& url);
    int OnLoadProgressChanged(int tabId, double progress);
    int OnTabTitleChanged(int tabId, const std::string& title);
    int OnTabURLChanged(int tabId, const std::string& url);
    int OnTabLoadFinished(int tabId, const std::string& url);
    int OnTabLoadFailed(int tabId, const std::string& url, int errorCode, const std::string& description);
    int OnMemoryWarningDetected(int memStatus);
    int OnMemoryReduced(int level, int tabId);
    int OnBlinkOutOfMemory(int tabId);
    int OnTabDocumentLoadedInFrame(int tabId);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmMtmAdaptorIpc>;
    TolmMtmAdaptorIpc();
    ~TolmMtmAdaptorIpc() override;

    // Who is to get a message; null, with a line that says why, when nobody is.
    TolmMtmCallback* ReceiverOf(const Json::Value& msg) const;

    std::atomic<TolmMtmCallback*> mCallback{nullptr};
};
