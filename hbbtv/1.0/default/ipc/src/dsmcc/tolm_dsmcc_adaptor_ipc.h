// The platform's broadcast file system (DSM-CC object carousel): asking for files, and the events that tell of them.
#pragma once

#include <cstdint>
#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

// What the browser is told of a file. What the numbers mean is the platform's business.
enum TolmDSMCCFileEventType : int32_t {
    TOLM_DSMCC_FILE_EVENT_0 = 0,
    TOLM_DSMCC_FILE_EVENT_1 = 1,
    TOLM_DSMCC_FILE_EVENT_2 = 2,
    TOLM_DSMCC_FILE_EVENT_4 = 4,
};

// Told of an event on the endpoint's server thread, one at a time. The path is valid during the call only.
using TolmDsmccBrowserCallback = void (*)(TolmDSMCCFileEventType type, const char* filePath, const void* context);

// All operations may be called from any thread.
class TolmDsmccAdaptorIpc : public tolm::TolmAdaptorClient,
                            public TolmBaseServer,
                            public tolm::TolmAdaptorInstance<TolmDsmccAdaptorIpc> {
  public:
    // Asks for a file: 0 when the platform was told, else -1. What comes of it is told by events, which have `context`.
    int RequestFile(const std::string& url, const void* context);

    // Ends the use of a file. Gives the platform's status (0 for success) or -1 when it did not answer properly.
    int ReleaseFile(const std::string& url, const void* context);

    // Makes `cb` the receiver of the events, in place of an earlier one; null for none. The platform is not told. 0.
    int BrowserRegisterCallback(const TolmDsmccBrowserCallback& cb);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& out) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmDsmccAdaptorIpc>;
    TolmDsmccAdaptorIpc();
    ~TolmDsmccAdaptorIpc() override;

    void DsmccFileCallback(const std::string& filePath, int event, const void* context);

    tolm::TolmCallbackSlot<TolmDsmccBrowserCallback> mBrowserCb;  // without a context: events bring their own
};
