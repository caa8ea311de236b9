// The capabilities of the television.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

class TolmCapabilitiesAdaptorIpc : public tolm::TolmAdaptorClient,
                                   public tolm::TolmAdaptorInstance<TolmCapabilitiesAdaptorIpc> {
  public:
    // Return -1 for any failure, whatever the platform's status.
    int GetXmlCapabilities(std::string& xml);
    int GetTerminalCapability(std::string& cap);

    int GetExtraSDVideoDecodes(unsigned& n);
    int GetExtraHDVideoDecodes(unsigned& n);

    // The platform defines the numbers of the capabilities.
    int HasCapability(int type, bool& available);

  private:
    friend class tolm::TolmAdaptorInstance<TolmCapabilitiesAdaptorIpc>;
    TolmCapabilitiesAdaptorIpc();
    ~TolmCapabilitiesAdaptorIpc() = default;
};
