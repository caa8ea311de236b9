#include <hidl/ServiceManagement.h>

#include <android/hidl/base/1.0/BpHwBase.h>
#include <hwbinder/ProcessState.h>

#include <chrono>
#include <thread>

#include "log/host_log.h"
#include "registry/passthrough.h"
#include "registry/peers.h"
#include "registry/server.h"

namespace android::hardware {

using ::android::hidl::base::V1_0::BpHwBase;
using ::android::hidl::base::V1_0::IBase;

sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager() {
    return nullptr;
}

namespace details {

namespace {

// The interval between attempts to find a service that is not registered.
constexpr std::chrono::milliseconds kLookAgain{20};
constexpr int kTurnsPerWarning = 50;

sp<IBase> FindRemote(const host::ServiceDirectory& directory, const std::string& socketName, const std::string& name,
                     const std::string& descriptor) {
    const std::shared_ptr<host::Session> session = host::SessionTo(directory, socketName);
    if (session == nullptr) return nullptr;
    const sp<IBinder> node = session->Lookup(name);
    if (node == nullptr) return nullptr;
    const sp<IBase> base = new BpHwBase(node);
    const Return<bool> canCast = canCastInterface(base.get(), descriptor.c_str(), true);
    if (!canCast.isOk()) return nullptr;
    if (canCast) return base;
    ALOGE("%s is registered but does not implement %s", name.c_str(), descriptor.c_str());
    return nullptr;
}

// Returns the service that is registered now, or null.
sp<IBase> FindService(const std::string& descriptor, const std::string& instance) {
    const std::shared_ptr<host::ServiceDirectory> directory = host::ServiceDirectory::Open(false);
    if (directory == nullptr) return nullptr;
    const std::string name = host::ServiceDirectory::LinkName(descriptor, instance);
    const std::string socketName = directory->SocketOf(name);
    if (socketName.empty()) return nullptr;
    host::Server* const own = host::Server::Get(*directory);
    if (own != nullptr && own->SocketName() == socketName) return own->FindObject(name);
    return FindRemote(*directory, socketName, name, descriptor);
}

}  // namespace

sp<IBase> getRawServiceInternal(const std::string& descriptor, const std::string& instance, bool retry,
                                CallFetch callFetch) {
    if (callFetch != nullptr) return host::LoadPassthrough(descriptor, instance, callFetch);
    for (int turn = 1;; ++turn) {
        const sp<IBase> service = FindService(descriptor, instance);
        if (service != nullptr || !retry) return service;
        if (turn % kTurnsPerWarning == 0) ALOGW("waiting for service %s/%s", descriptor.c_str(), instance.c_str());
        std::this_thread::sleep_for(kLookAgain);
    }
}

status_t registerAsServiceInternal(const sp<IBase>& service, const std::string& instance) {
    if (service == nullptr) return UNEXPECTED_NULL;
    if (service->isRemote()) {
        ALOGE("cannot register %s: it is an object of another process", instance.c_str());
        return UNKNOWN_ERROR;
    }
    std::vector<std::string> names;
    const Return<void> chain = service->interfaceChain([&](const hidl_vec<hidl_string>& descriptors) {
        for (const hidl_string& descriptor : descriptors) {
            if (descriptor != IBase::descriptor) {
                names.push_back(host::ServiceDirectory::LinkName(descriptor, instance));
            }
        }
    });
    if (!chain.isOk() || names.empty()) {
        ALOGE("cannot register %s: it does not implement an interface", instance.c_str());
        return UNKNOWN_ERROR;
    }
    const sp<IBinder> stub = getOrCreateCachedBinder(service.get());
    host::Server* const server = stub == nullptr ? nullptr : host::Server::GetOrCreate();
    if (server == nullptr || !server->Register(names, service, stub->localBinder())) return UNKNOWN_ERROR;
    ProcessState::self()->startThreadPool();
    return OK;
}

}  // namespace details
}  // namespace android::hardware
