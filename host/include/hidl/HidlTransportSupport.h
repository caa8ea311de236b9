// What services, clients and generated code use of the transport: the thread pool, comparing and casting interfaces.
#pragma once

#include <android/hidl/base/1.0/BnHwBase.h>
#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlSupport.h>
#include <hidl/HidlTransportUtils.h>

#include <mutex>
#include <vector>

namespace android {
namespace hardware {

// Calls from other processes are served by `maxThreads` threads, the one that calls joinRpcThreadpool() included when
// `callerWillJoin`. Without this there is one thread. Ends the process for (0, true).
void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin);

// Serves calls and never returns. Ends the process when configureRpcThreadpool() was not called before.
[[noreturn]] void joinRpcThreadpool();

// Whether both are the same object. Proxies are compared by what they stand for: each arrival of a remote object has a
// proxy of its own.
bool interfacesEqual(const sp<::android::hidl::base::V1_0::IBase>& left,
                     const sp<::android::hidl::base::V1_0::IBase>& right);

// The interface behind a node: a new proxy, or the object itself when it is one of this process. Null when an object of
// this process does not have the interface.
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
}  // namespace hardware
}  // namespace android
