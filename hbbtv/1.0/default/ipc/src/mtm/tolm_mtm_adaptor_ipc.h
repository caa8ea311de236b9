// The platform's tab manager: it is notified of the browser's tabs, and sends commands to the browser.
#pragma once

#include <atomic>
#include <string>

#include "ipc/src/mtm/tolm_mtm_callback.h"
#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"

class TolmMtmAdaptorIpc : public tolm::TolmAdaptorClient,
                          public TolmBaseServer,
                          public tolm::TolmAdaptorInstance<TolmMtmAdaptorIpc> {
  public:
    // Replaces the receiver of the platform's commands, which is not owned. It must exist as long as the adaptor: a
    // command may still reach it after it was replaced or UnRegisterCallback() was called.
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

    // Returns the receiver of a message. Without one, logs the reason and returns null.
    TolmMtmCallback* ReceiverOf(const Json::Value& msg) const;

    std::atomic<TolmMtmCallback*> mCallback{nullptr};
};
