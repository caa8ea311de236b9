// The platform's audio, video and subtitle components.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// `component` is a component's handle.
class TolmAVComponentAdaptorIpc : public tolm::TolmAdaptorClient,
                                  public tolm::TolmAdaptorInstance<TolmAVComponentAdaptorIpc> {
  public:
    // One-way.
    int Release(const void* component);

    int GetComponentTag(const void* component, int& tag);
    int GetPid(const void* component, int& pid);
    int GetType(const void* component, int& type);
    int GetEncoding(const void* component, std::string& encoding);
    int GetEncrypted(const void* component, bool& encrypted);
    int GetAspectRatio(const void* component, double& aspectRatio);
    int GetLanguage(const void* component, std::string& language);
    int GetAudioDescription(const void* component, bool& audioDescription);
    int GetAudioChannelNum(const void* component, unsigned& num);
    int GetHearingImpaired(const void* component, bool& hearingImpaired);
    int GetLabel(const void* component, std::string& label);

  private:
    friend class tolm::TolmAdaptorInstance<TolmAVComponentAdaptorIpc>;
    TolmAVComponentAdaptorIpc();
    ~TolmAVComponentAdaptorIpc() = default;
};
