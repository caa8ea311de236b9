// Registries that generated code fills from constructors of libraries and empties from destructors. They are made when
// first used and never destroyed, so the order in which libraries come and go does not matter.
#pragma once

#include <hidl/HidlSupport.h>
#include <hwbinder/IBinder.h>

#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace android {
namespace hardware {
namespace details {

// How to make something of an object, by the name of its interface. The functions take an IBase* as void*.
template <typename R>
class ConstructorMap {
  public:
    using Constructor = std::function<sp<R>(void*)>;

    void set(const std::string& descriptor, const Constructor& constructor) {
        std::lock_guard<std::mutex> lock(mMutex);
        mMap[descriptor] = constructor;
    }
    void erase(const std::string& descriptor) {
        std::lock_guard<std::mutex> lock(mMutex);
        mMap.erase(descriptor);
    }
    // An empty function when the interface is not known in this process.
    Constructor get(const std::string& descriptor) const {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mMap.find(descriptor);
        return found == mMap.end() ? Constructor() : found->second;
    }

  private:
    mutable std::mutex mMutex;
    std::map<std::string, Constructor> mMap;
};

ConstructorMap<IBinder>& getBnConstructorMap();
ConstructorMap<::android::hidl::base::V1_0::IBase>& getBsConstructorMap();

// The stub of every object of this process that was handed out and is still referred to: an object has one stub.
class BnMap {
  public:
    // The stub, made by `make` when there is none. Null when `make` gives none.
    sp<BHwBinder> getOrMake(const ::android::hidl::base::V1_0::IBase* object, const std::function<sp<IBinder>()>& make);

    // Called by the destructor of every stub.
    void eraseIfEqual(const ::android::hidl::base::V1_0::IBase* object, BHwBinder* stub);

  private:
    struct Entry {
        BHwBinder* raw;  // to compare with only
        wp<BHwBinder> weak;
    };
    std::mutex mMutex;  // never held while a stub is released
    std::map<const ::android::hidl::base::V1_0::IBase*, Entry> mMap;
};

struct BnMapAccess {
    BnMap* operator->() const;
};
constexpr BnMapAccess gBnMap;

// Scheduling and security labels of services are not kept on the host: everybody has the default.
template <typename Value>
class DefaultMap {
  public:
    template <typename I>
    Value get(const sp<I>& /* object */, Value fallback) const {
        return fallback;
    }
    const DefaultMap* operator->() const { return this; }
};

struct SchedPrio {
    int sched_policy;
    int prio;
};

constexpr DefaultMap<SchedPrio> gServicePrioMap{};
constexpr DefaultMap<bool> gServiceSidMap{};

}  // namespace details
}  // namespace hardware
}  // namespace android
