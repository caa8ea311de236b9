// The identity of this television and its enabled features.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

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

    // 0 means disabled. The platform defines the other numbers.
    int GetPvrEnabled(int& pvrEnabled);
    int GetCiplusEnabled(int& ciplusEnabled);

  private:
    friend class tolm::TolmAdaptorInstance<TolmLocalSystemAdaptorIpc>;
    TolmLocalSystemAdaptorIpc();
    ~TolmLocalSystemAdaptorIpc() = default;
};
