// The transport for services, clients and generated code: the thread pool, and comparing and casting interfaces.
#pragma once

#include <android/hidl/base/1.0/BnHwBase.h>
#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlSupport.h>
#include <hidl/HidlTransportUtils.h>

#include <mutex>
#include <vector>

namespace android::hardware {

// Sets the number of threads that serve calls of other processes (default: 1). If `callerWillJoin`, it includes the
// thread that calls joinRpcThreadpool(). Ends the process for (0, true).
void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin);

// Serves calls and never returns. Ends the process unless configureRpcThreadpool() was called before.
[[noreturn]] void joinRpcThreadpool();

// Returns whether both are the same object. Proxies are compared by their remote objects: each time a remote object is
// received, it gets a new proxy.
bool interfacesEqual(const sp<::android::hidl::base::V1_0::IBase>& left,
                     const sp<::android::hidl::base::V1_0::IBase>& right);

// Returns the interface of a node: a new proxy, or the object itself if it is in this process. Returns null if an
// object of this process does not implement the interface.
template <typename IType, typename ProxyType, typename StubType>
sp<IType> fromBinder(const sp<IBinder>& binder) {
    using ::android::hidl::base::V1_0::BnHwBase;
    using ::android::hidl::base::V1_0::IBase;
    if (binder == nullptr) return nullptr;
    if (binder->localBinder() == nullptr) return new ProxyType(binder);
    const sp<IBase> object = static_cast<BnHwBase*>(binder->localBinder())->getImpl();
    if (!details::canCastInterface(object.get(), IType::descriptor).withDefault(false)) return nullptr;
    return static_cast<IType*>(object.get());
}

namespace details {

template <typename IChild, typename IParent, typename BpChild>
Return<sp<IChild>> castInterface(sp<IParent> parent, const char* childIndicator, bool emitError) {
    if (parent == nullptr) return sp<IChild>();
    const Return<bool> canCast = canCastInterface(parent.get(), childIndicator, emitError);
    if (!canCast.isOk()) return StatusOf<bool, sp<IChild>>(canCast);
    if (!canCast) return sp<IChild>();
    if (parent->isRemote()) return sp<IChild>(new BpChild(getOrCreateCachedBinder(parent.get())));
    return sp<IChild>(static_cast<IChild*>(parent.get()));
}

}  // namespace details
}  // namespace android::hardware
