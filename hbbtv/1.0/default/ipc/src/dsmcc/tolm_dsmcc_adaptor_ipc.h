// The platform's broadcast file system (DSM-CC object carousel): requests for files, and their events.
#pragma once

#include <cstdint>
#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

// The events of a file, as the browser receives them. The platform defines the numbers.
enum TolmDSMCCFileEventType : int32_t {
    TOLM_DSMCC_FILE_EVENT_0 = 0,
    TOLM_DSMCC_FILE_EVENT_1 = 1,
    TOLM_DSMCC_FILE_EVENT_2 = 2,
    TOLM_DSMCC_FILE_EVENT_4 = 4,
};

// Called for one event at a time, on the endpoint's server thread. The path is valid only during the call.
using TolmDsmccBrowserCallback = void (*)(TolmDSMCCFileEventType type, const char* filePath, const void* context);

class TolmDsmccAdaptorIpc : public tolm::TolmAdaptorClient,
                            public TolmBaseServer,
                            public tolm::TolmAdaptorInstance<TolmDsmccAdaptorIpc> {
  public:
    // Requests a file, one-way. The file's events, which carry `context`, report the result.
    int RequestFile(const std::string& url, const void* context);

    // Ends the use of a file.
    int ReleaseFile(const std::string& url, const void* context);

    // Replaces the receiver of the events; null removes it. Sends nothing and returns 0.
    int BrowserRegisterCallback(const TolmDsmccBrowserCallback& cb);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& out) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmDsmccAdaptorIpc>;
    TolmDsmccAdaptorIpc();
    ~TolmDsmccAdaptorIpc() override;

    void DsmccFileCallback(const std::string& filePath, int event, const void* context);

    tolm::TolmCallbackSlot<TolmDsmccBrowserCallback> mBrowserCb;  // without a context: events carry their own
};
