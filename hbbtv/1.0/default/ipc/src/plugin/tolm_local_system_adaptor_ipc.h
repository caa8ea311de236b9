// What the platform says of this television, and of what is enabled on it.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success.
class TolmLocalSystemAdaptorIpc : public tolm::TolmAdaptorClient,
                                  public tolm::TolmAdaptorInstance<TolmLocalSystemAdaptorIpc> {
  public:
    int GetDeviceID(std::string& deviceID);
    int GetVendorName(std::string& vendorName);
    int GetModelName(std::string& modelName);
    int GetFamilyName(std::string& familyName);
    int GetSoftwareVersion(std::string& softwareVersion);
    int GetHardwareVersion(std::string& hardwareVersion);
    int GetSerialNumber(std::string& serialNumber);

    // 0 for no; what other numbers there are is the platform's business.
    int GetPvrEnabled(int& pvrEnabled);
    int GetCiplusEnabled(int& ciplusEnabled);

  private:
    friend class tolm::TolmAdaptorInstance<TolmLocalSystemAdaptorIpc>;
    TolmLocalSystemAdaptorIpc();
    ~TolmLocalSystemAdaptorIpc() = default;
};
