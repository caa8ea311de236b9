// What the platform says the television can do.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success.
class TolmCapabilitiesAdaptorIpc : public tolm::TolmAdaptorClient,
                                   public tolm::TolmAdaptorInstance<TolmCapabilitiesAdaptorIpc> {
  public:
    // The texts: any failure is -1, whatever the platform's status.
    int GetXmlCapabilities(std::string& xml);
    int GetTerminalCapability(std::string& cap);

    int GetExtraSDVideoDecodes(unsigned& n);
    int GetExtraHDVideoDecodes(unsigned& n);

    // Which capability has which number is the platform's business.
    int HasCapability(int type, bool& available);

  private:
    friend class tolm::TolmAdaptorInstance<TolmCapabilitiesAdaptorIpc>;
    TolmCapabilitiesAdaptorIpc();
    ~TolmCapabilitiesAdaptorIpc() = default;
};
