// The device's properties, and which of its features are enabled.
#include "family/family_setup.h"

#include "family/members.h"

namespace hbbtv::sim {

namespace {

class LocalSystemFamily : public Family {
  public:
    explicit LocalSystemFamily(const FamilySetup& setup);

  private:
    void GetDeviceID(In, Out out) { out["deviceID"] = mDevice.Id(); }
    void GetVendorName(In, Out out) { out["vendorName"] = mDevice.Description().vendorName; }
    void GetModelName(In, Out out) { out["modelName"] = mDevice.Description().modelName; }
    void GetFamilyName(In, Out out) { out["familyName"] = mDevice.Description().familyName; }
    void GetSoftwareVersion(In, Out out) { out["softwareVersion"] = mDevice.Description().softwareVersion; }
    void GetHardwareVersion(In, Out out) { out["hardwareVersion"] = mDevice.Description().hardwareVersion; }
    void GetSerialNumber(In, Out out) { out["serialNumber"] = mDevice.SerialNumber(); }
    void GetPvrEnabled(In, Out out) { out["pvrEnabled"] = mDevice.Description().pvr ? 1 : 0; }
    void GetCiplusEnabled(In, Out out) { out["ciplusEnabled"] = mDevice.Description().ciPlus ? 1 : 0; }

    // At the television.
    std::string Switch(const Words& words, bool DeviceDescription::*what);
    std::string UpdateSoftware(const Words& words);

    Device& mDevice;
};

LocalSystemFamily::LocalSystemFamily(const FamilySetup& setup) : Family("local_system"), mDevice(setup.tv.device) {
    using F = LocalSystemFamily;
    Row("GetDeviceID", &F::GetDeviceID);
    Row("GetVendorName", &F::GetVendorName);
    Row("GetModelName", &F::GetModelName);
    Row("GetFamilyName", &F::GetFamilyName);
    Row("GetSoftwareVersion", &F::GetSoftwareVersion);
    Row("GetHardwareVersion", &F::GetHardwareVersion);
    Row("GetSerialNumber", &F::GetSerialNumber);
    Row("GetPvrEnabled", &F::GetPvrEnabled);
    Row("GetCiplusEnabled", &F::GetCiplusEnabled);
    AddCommand("pvr on|off", "plug the disk for recordings in, or pull it out",
               [this](const Words& words) { return Switch(words, &DeviceDescription::pvr); });
    AddCommand("ci-plus on|off", "plug a CI Plus module in, or pull it out",
               [this](const Words& words) { return Switch(words, &DeviceDescription::ciPlus); });
    AddCommand("software-update VERSION", "set the version of the television's software", &F::UpdateSoftware);
}

std::string LocalSystemFamily::Switch(const Words& words, bool DeviceDescription::*what) {
    const bool on = IsFirst(words, "on", "off");
    mDevice.Change([&](DeviceDescription& description) { description.*what = on; });
    return "";
}

std::string LocalSystemFamily::UpdateSoftware(const Words& words) {
    const std::string& version = Word(words);
    mDevice.Change([&](DeviceDescription& description) { description.softwareVersion = version; });
    return "";
}

}  // namespace

std::unique_ptr<Family> MakeLocalSystemFamily(const FamilySetup& setup) {
    return std::make_unique<LocalSystemFamily>(setup);
}

}  // namespace hbbtv::sim
