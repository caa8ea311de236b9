// An interface whose objects do not begin with their IBase, unlike those of generated interfaces: only a function that
// is called by its own type returns a usable one.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/ServiceManagement.h>

#include <cstdint>

namespace hbbtv::test {

struct Ballast {
    virtual ~Ballast() = default;
    uint64_t weight = UINT64_MAX;
};

class IDetour : public Ballast, public ::android::hidl::base::V1_0::IBase {
  public:
    static constexpr const char* descriptor = "vantorel.test@1.0::IDetour";

    static ::android::hardware::Return<::android::sp<IDetour>> castFrom(const ::android::sp<IBase>& base) {
        return ::android::sp<IDetour>(static_cast<IDetour*>(base.get()));
    }

    bool isRemote() const override { return false; }
};

// The library does not have remote objects of this interface.
class BpDetour : public IDetour {
  public:
    using Pure = IDetour;

    explicit BpDetour(const ::android::sp<::android::hardware::IBinder>&) {}
};

}  // namespace hbbtv::test
