// What this television is: its names and numbers, which last, and what is plugged into it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "television/device/state_store.h"

namespace hbbtv::sim {

struct DeviceDescription {
    std::string vendorName = "Example";
    std::string modelName = "Simulated 40";
    std::string familyName = "Simulated";
    std::string softwareVersion = "1.0";
    std::string hardwareVersion = "1.0";
    std::string serialNumber;  // drawn when somebody asks for it
    std::string deviceId;      // as the serial number
    bool pvr = true;           // there is a disk to record on
    bool ciPlus = false;       // a CI Plus module is in its slot
};

class Device {
  public:
    // The same numbers are drawn for the same seed.
    Device(const StateStore& store, std::optional<uint32_t> seed);

    const DeviceDescription& Description() const { return mDescription; }

    // Throw Refused when they cannot be kept.
    std::string SerialNumber();
    std::string Id();

    // Throws Refused when it cannot be kept; then nothing has changed.
    void Change(const std::function<void(DeviceDescription&)>& change);

    // For applications, in bytes; nothing when it is not known. It is not remembered.
    std::optional<int> freeMemory = 64 << 20;

  private:
    void Take(const Json::Value& document);
    void DrawNumbers();

    const StateStore& mStore;
    std::optional<uint32_t> mSeed;
    DeviceDescription mDescription;
};

}  // namespace hbbtv::sim
