// The connection between interfaces and nodes: the registries of generated classes, the stubs of objects, strings and
// statuses in parcels, death recipients of proxies, and comparing and casting interfaces.
#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/Static.h>

#include "log/host_log.h"

namespace android::hardware {

using ::android::hidl::base::V1_0::IBase;

// ---- Registries ----

namespace details {

ConstructorMap<IBinder>& getBnConstructorMap() {
    static ConstructorMap<IBinder>* const map = new ConstructorMap<IBinder>;
    return *map;
}

ConstructorMap<IBase>& getBsConstructorMap() {
    static ConstructorMap<IBase>* const map = new ConstructorMap<IBase>;
    return *map;
}

BnMap* BnMapAccess::operator->() const {
    static BnMap* const map = new BnMap;
    return map;
}

sp<BHwBinder> BnMap::getOrMake(const IBase* object, const std::function<sp<IBinder>()>& make) {
    sp<BHwBinder> known;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mMap.find(object);
        if (found != mMap.end()) known = found->second.weak.promote();
    }
    if (known != nullptr) return known;
    const sp<IBinder> created = make();
    if (created == nullptr) return nullptr;
    BHwBinder* const stub = created->localBinder();
    // Another thread may have created one in the meantime: then that is the stub, and this one is released after the
    // lock.
    std::lock_guard<std::mutex> lock(mMutex);
    Entry& entry = mMap[object];
    known = entry.weak.promote();
    if (known == nullptr) {
        entry = {stub, wp<BHwBinder>(stub)};
        known = stub;
    }
    return known;
}

void BnMap::eraseIfEqual(const IBase* object, BHwBinder* stub) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mMap.find(object);
    if (found != mMap.end() && found->second.raw == stub) mMap.erase(found);
}

std::string getDescriptor(IBase* object) {
    std::string descriptor;
    const Return<void> returned = object->interfaceDescriptor([&](const hidl_string& answer) { descriptor = answer; });
    if (!returned.isOk()) ALOGE("cannot get the interface of an object: %s", returned.description().c_str());
    return descriptor;
}

Return<bool> canCastInterface(IBase* object, const char* castTo, bool emitError) {
    if (object == nullptr) return false;
    // Every object is an IBase.
    if (strcmp(castTo, IBase::descriptor) == 0) return true;
    bool canCast = false;
    const Return<void> chain = object->interfaceChain([&](const hidl_vec<hidl_string>& descriptors) {
        for (const hidl_string& descriptor : descriptors) canCast = canCast || descriptor == castTo;
    });
    if (!chain.isOk() && emitError) return StatusOf<void, bool>(chain);
    return canCast;
}

}  // namespace details

sp<IBinder> getOrCreateCachedBinder(IBase* object) {
    if (object == nullptr) return nullptr;
    if (object->isRemote()) return IInterface::asBinder(dynamic_cast<IInterface*>(object));
    return details::gBnMap->getOrMake(object, [object]() -> sp<IBinder> {
        const std::string descriptor = details::getDescriptor(object);
        const auto construct = details::getBnConstructorMap().get(descriptor);
        if (construct) return construct(object);
        ALOGE("interface %s is unknown in this process", descriptor.c_str());
        return nullptr;
    });
}

bool interfacesEqual(const sp<IBase>& left, const sp<IBase>& right) {
    if (left == nullptr || right == nullptr || !left->isRemote() || !right->isRemote()) return left == right;
    return getOrCreateCachedBinder(left.get()) == getOrCreateCachedBinder(right.get());
}

// ---- Death ----

hidl_binder_death_recipient::hidl_binder_death_recipient(const sp<hidl_death_recipient>& recipient, uint64_t cookie,
                                                         const sp<IBase>& base)
    : mRecipient(recipient), mCookie(cookie), mBase(base) {}

void hidl_binder_death_recipient::binderDied(const wp<IBinder>& /* who */) {
    const sp<hidl_death_recipient> recipient = mRecipient.promote();
    if (recipient != nullptr) recipient->serviceDied(mCookie, mBase);
}

// ---- Parcels ----

status_t readEmbeddedFromParcel(const hidl_string& string, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset) {
    const void* text = nullptr;
    size_t handle = 0;
    const status_t status = parcel.readEmbeddedBuffer(string.size() + 1, &handle, parentHandle,
                                                      parentOffset + hidl_string::kOffsetOfBuffer, &text);
    if (status != OK) return status;
    if (static_cast<const char*>(text)[string.size()] == '\0') return OK;
    return parcel.damaged();
}

status_t writeEmbeddedToParcel(const hidl_string& string, Parcel* parcel, size_t parentHandle, size_t parentOffset) {
    size_t handle = 0;
    return parcel->writeEmbeddedBuffer(string.c_str(), string.size() + 1, &handle, parentHandle,
                                       parentOffset + hidl_string::kOffsetOfBuffer);
}

// The number of the exception, then a message if there is an exception.
status_t readFromParcel(Status* status, const Parcel& parcel) {
    int32_t exception = 0;
    status_t error = parcel.readInt32(&exception);
    const char* message = nullptr;
    size_t length = 0;
    if (error == OK && exception != Status::EX_NONE) error = parcel.readText(&message, &length);
    if (error != OK) {
        status->setFromStatusT(error);
    } else if (exception == Status::EX_NONE) {
        *status = Status::ok();
    } else {
        status->setException(exception, std::string(message, length).c_str());
    }
    return error;
}

status_t writeToParcel(const Status& status, Parcel* parcel) {
    // A failed transaction does not have results: the transport reports it.
    if (status.exceptionCode() == Status::EX_TRANSACTION_FAILED) return status.transactionError();
    const status_t error = parcel->writeInt32(status.exceptionCode());
    if (error != OK || status.isOk()) return error;
    return parcel->writeText(status.exceptionMessage(), strlen(status.exceptionMessage()));
}

}  // namespace android::hardware
