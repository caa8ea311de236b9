// The AV control object: the platform is told of its components, and tells which one is to be presented.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

using TOLM_ERR = int32_t;  // 0 or -1

// The platform sends 1 when a component is to be presented.
using TolmPluginIPCAvContrl = int32_t;

// The numbers of both are named by the interface package.
using TolmHbbtvAVComponentType = int32_t;
using TolmHbbtvAVCtrlEvent = int32_t;

struct TolmAVCtrlEventInfo {
    TolmHbbtvAVComponentType componentType;
};

// A text of strdup().
struct TolmFree {
    void operator()(char* text) const { free(text); }
};
using TolmHeapText = std::unique_ptr<char, TolmFree>;

struct TolmAVCtrlComponentData {
    bool actived;
    int32_t componentTag;
    TolmHbbtvAVComponentType componentType;
    TolmHeapText encoding;  // null is the empty text, here and below
    TolmHeapText language;
    uint32_t audioChannels;
    bool hearingImpaired;
    bool audioDescription;
};

// Told of an event on the endpoint's server thread, one at a time. What it gives is not looked at.
using TolmAVControlCallback = TOLM_ERR (*)(TolmPluginIPCAvContrl event, TolmHbbtvAVComponentType type, int index);

// All operations may be called from any thread.
class TolmAVControlAdaptorIpc : public tolm::TolmAdaptorClient,
                                public TolmBaseServer,
                                public tolm::TolmAdaptorInstance<TolmAVControlAdaptorIpc> {
  public:
    // Makes `callback` the receiver of the events, in place of any earlier one. The platform is not told; 0.
    int RegisterCallback(TolmAVControlCallback callback);
    int UnregisterCallback();

    // Tells all components of the kind in `info`: 0 when it was written, else -1. Consumes the components, whatever
    // becomes of them. The platform does not ask for the event.
    int ComponentUpdate(TolmHbbtvAVCtrlEvent event, const TolmAVCtrlEventInfo& info,
                        std::vector<TolmAVCtrlComponentData>& components, int currentIndex);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmAVControlAdaptorIpc>;
    TolmAVControlAdaptorIpc();
    ~TolmAVControlAdaptorIpc() override;

    tolm::TolmCallbackSlot<TolmAVControlCallback> mCallback;
};
