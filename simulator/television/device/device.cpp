#include "television/device/device.h"

#include "core/error.h"

#include <cstdio>
#include <random>

namespace hbbtv::sim {

namespace {

const char* const kDocument = "device";

struct TextMember {
    const char* name;
    std::string DeviceDescription::*member;
};

struct BoolMember {
    const char* name;
    bool DeviceDescription::*member;
};

const TextMember kTexts[] = {{"vendorName", &DeviceDescription::vendorName},
                             {"modelName", &DeviceDescription::modelName},
                             {"familyName", &DeviceDescription::familyName},
                             {"softwareVersion", &DeviceDescription::softwareVersion},
                             {"hardwareVersion", &DeviceDescription::hardwareVersion},
                             {"serialNumber", &DeviceDescription::serialNumber},
                             {"deviceId", &DeviceDescription::deviceId}};

const BoolMember kBools[] = {{"pvr", &DeviceDescription::pvr}, {"ciPlus", &DeviceDescription::ciPlus}};

}  // namespace

Device::Device(const StateStore& store, std::optional<uint32_t> seed) : mStore(store), mSeed(seed) {
    mStore.Load(kDocument, [this](const Json::Value& document) { Take(document); });
}

// Throws before anything is changed. Missing members keep their values, so a hand-written document may be short.
void Device::Take(const Json::Value& document) {
    if (!document.isObject()) throw Refused("not an object");
    DeviceDescription description;
    for (const TextMember& text : kTexts) {
        if (!document.isMember(text.name)) continue;
        if (!document[text.name].isString()) throw Refused(std::string(text.name) + " is not a string");
        description.*text.member = document[text.name].asString();
    }
    for (const BoolMember& flag : kBools) {
        if (!document.isMember(flag.name)) continue;
        if (!document[flag.name].isBool()) throw Refused(std::string(flag.name) + " is not true or false");
        description.*flag.member = document[flag.name].asBool();
    }
    mDescription = std::move(description);
}

void Device::Change(const std::function<void(DeviceDescription&)>& change) {
    DeviceDescription description = mDescription;
    change(description);
    Json::Value document;
    for (const TextMember& text : kTexts) document[text.name] = description.*text.member;
    for (const BoolMember& flag : kBools) document[flag.name] = description.*flag.member;
    mStore.Save(kDocument, document);
    mDescription = std::move(description);
}

void Device::DrawNumbers() {
    if (!mDescription.serialNumber.empty() && !mDescription.deviceId.empty()) return;
    std::mt19937 random(mSeed ? *mSeed : std::random_device()());
    char serial[16];
    std::snprintf(serial, sizeof(serial), "SN%08x", static_cast<unsigned>(random()));
    std::string id;
    for (int i = 0; i < 4; ++i) {
        char word[9];
        std::snprintf(word, sizeof(word), "%08x", static_cast<unsigned>(random()));
        id += word;
    }
    Change([&](DeviceDescription& description) {
        if (description.serialNumber.empty()) description.serialNumber = serial;
        if (description.deviceId.empty()) description.deviceId = id;
    });
}

std::string Device::SerialNumber() {
    DrawNumbers();
    return mDescription.serialNumber;
}

std::string Device::Id() {
    DrawNumbers();
    return mDescription.deviceId;
}

}  // namespace hbbtv::sim
