#include "ipc/src/plugin/tolm_local_system_adaptor_ipc.h"

using namespace tolm;

TolmLocalSystemAdaptorIpc::TolmLocalSystemAdaptorIpc() : TolmAdaptorClient(families::kLocalSystem) {}

int TolmLocalSystemAdaptorIpc::GetDeviceID(std::string& deviceID) {
    return Call(0, {}, {ToText("deviceID", deviceID)});
}

int TolmLocalSystemAdaptorIpc::GetVendorName(std::string& vendorName) {
    return Call(2, {}, {ToText("vendorName", vendorName)});
}

int TolmLocalSystemAdaptorIpc::GetModelName(std::string& modelName) {
    return Call(4, {}, {ToText("modelName", modelName)});
}

int TolmLocalSystemAdaptorIpc::GetFamilyName(std::string& familyName) {
    return Call(6, {}, {ToText("familyName", familyName)});
}

int TolmLocalSystemAdaptorIpc::GetSoftwareVersion(std::string& softwareVersion) {
    return Call(8, {}, {ToText("softwareVersion", softwareVersion)});
}

int TolmLocalSystemAdaptorIpc::GetHardwareVersion(std::string& hardwareVersion) {
    return Call(10, {}, {ToText("hardwareVersion", hardwareVersion)});
}

int TolmLocalSystemAdaptorIpc::GetSerialNumber(std::string& serialNumber) {
    return Call(12, {}, {ToText("serialNumber", serialNumber)});
}

int TolmLocalSystemAdaptorIpc::GetPvrEnabled(int& pvrEnabled) {
    return Call(14, {}, {ToInt("pvrEnabled", pvrEnabled)});
}

int TolmLocalSystemAdaptorIpc::GetCiplusEnabled(int& ciplusEnabled) {
    return Call(16, {}, {ToInt("ciplusEnabled", ciplusEnabled)});
}
