// Writes HIDL data and objects to parcels and reads them. Used by generated stubs and proxies.
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>

namespace android::hardware {

// The death recipient that a proxy keeps for each recipient of its user. Holds that recipient and the proxy weakly.
class hidl_binder_death_recipient : public IBinder::DeathRecipient {
  public:
    hidl_binder_death_recipient(const sp<hidl_death_recipient>& recipient, uint64_t cookie,
                                const sp<::android::hidl::base::V1_0::IBase>& base);

    void binderDied(const wp<IBinder>& who) override;
    wp<hidl_death_recipient> getRecipient() { return mRecipient; }

  private:
    const wp<hidl_death_recipient> mRecipient;
    const uint64_t mCookie;
    const wp<::android::hidl::base::V1_0::IBase> mBase;
};

status_t readEmbeddedFromParcel(const hidl_string& string, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset);
status_t writeEmbeddedToParcel(const hidl_string& string, Parcel* parcel, size_t parentHandle, size_t parentOffset);

template <typename T>
status_t readEmbeddedFromParcel(const hidl_vec<T>& vec, const Parcel& parcel, size_t parentHandle, size_t parentOffset,
                                size_t* handle) {
    const void* elements = nullptr;
    return parcel.readEmbeddedBuffer(vec.size() * sizeof(T), handle, parentHandle,
                                     parentOffset + hidl_vec<T>::kOffsetOfBuffer, &elements);
}

template <typename T>
status_t writeEmbeddedToParcel(const hidl_vec<T>& vec, Parcel* parcel, size_t parentHandle, size_t parentOffset,
                               size_t* handle) {
    return parcel->writeEmbeddedBuffer(vec.data(), vec.size() * sizeof(T), handle, parentHandle,
                                       parentOffset + hidl_vec<T>::kOffsetOfBuffer);
}

status_t readFromParcel(Status* status, const Parcel& parcel);
status_t writeToParcel(const Status& status, Parcel* parcel);

// Returns the node of a proxy, or the stub of an object of this process, which is created if necessary. If the object's
// interface is unknown in this process, logs an error and returns null.
sp<IBinder> getOrCreateCachedBinder(::android::hidl::base::V1_0::IBase* object);

}  // namespace android::hardware
