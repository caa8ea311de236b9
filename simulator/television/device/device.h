// The device: its names and numbers, which are saved, and the hardware plugged into it.
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
    std::string serialNumber;  // generated on first use
    std::string deviceId;      // likewise
    bool pvr = true;           // a disk for recordings is present
    bool ciPlus = false;       // a CI Plus module is in its slot
};

class Device {
  public:
    // The same seed gives the same numbers.
    Device(const StateStore& store, std::optional<uint32_t> seed);

    const DeviceDescription& Description() const { return mDescription; }

    // Throw Refused if they cannot be saved.
    std::string SerialNumber();
    std::string Id();

    // Throws Refused if it cannot be saved; then nothing has changed.
    void Change(const std::function<void(DeviceDescription&)>& change);

    // For applications, in bytes; nothing if unknown. Not saved.
    std::optional<int> freeMemory = 64 << 20;

  private:
    void Take(const Json::Value& document);
    void DrawNumbers();

    const StateStore& mStore;
    std::optional<uint32_t> mSeed;
    DeviceDescription mDescription;
};

}  // namespace hbbtv::sim
