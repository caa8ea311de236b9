// The AV control object: the platform is notified of its components, and selects the one to present.
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

// The platform sends 1 to select a component.
using TolmPluginIPCAvContrl = int32_t;

// The interface package names the values of both.
using TolmHbbtvAVComponentType = int32_t;
using TolmHbbtvAVCtrlEvent = int32_t;

struct TolmAVCtrlEventInfo {
    TolmHbbtvAVComponentType componentType;
};

// A string allocated by strdup().
struct TolmFree {
    void operator()(char* text) const { free(text); }
};
using TolmHeapText = std::unique_ptr<char, TolmFree>;

struct TolmAVCtrlComponentData {
    bool actived;
    int32_t componentTag;
    TolmHbbtvAVComponentType componentType;
    TolmHeapText encoding;  // null is the empty string, here and below
    TolmHeapText language;
    uint32_t audioChannels;
    bool hearingImpaired;
    bool audioDescription;
};

// Called for one event at a time, on the endpoint's server thread. Its result is ignored.
using TolmAVControlCallback = TOLM_ERR (*)(TolmPluginIPCAvContrl event, TolmHbbtvAVComponentType type, int index);

class TolmAVControlAdaptorIpc : public tolm::TolmAdaptorClient,
                                public TolmBaseServer,
                                public tolm::TolmAdaptorInstance<TolmAVControlAdaptorIpc> {
  public:
    // Replaces the receiver of the events. Sends nothing and returns 0.
    int RegisterCallback(TolmAVControlCallback callback);
    int UnregisterCallback();

    // Sends all components of the kind in `info`, one-way. Empties `components` in any case. The event is not sent.
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
