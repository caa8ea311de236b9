// Registries that generated code fills in the constructors of libraries and empties in their destructors. They are
// created on first use and never destroyed, so the order in which libraries are loaded and unloaded does not matter.
#pragma once

#include <hidl/HidlSupport.h>
#include <hwbinder/IBinder.h>

#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace android::hardware::details {

// Functions that create a stub or a wrapper of an object, by the name of its interface. They take an IBase* as void*.
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
    // Returns an empty function if the interface is unknown in this process.
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

// The stubs that other processes or threads refer to: an object of this process has at most one stub.
class BnMap {
  public:
    // Returns the stub, which `make` creates if necessary. Returns null if `make` does.
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

// Scheduling and security labels of services are ignored on the host: every service has the default.
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

}  // namespace android::hardware::details
