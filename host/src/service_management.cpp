// Registering and finding services.
#define LOG_TAG "hidl_host"
#include <hidl/ServiceManagement.h>

#include <android/hidl/base/1.0/BpHwBase.h>
#include <hwbinder/ProcessState.h>
#include <log/log.h>

#include <chrono>
#include <thread>

#include "passthrough.h"
#include "peers.h"
#include "server.h"

namespace android {
namespace hardware {

using ::android::hidl::base::V1_0::BpHwBase;
using ::android::hidl::base::V1_0::IBase;

sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager() {
    return nullptr;
}

namespace details {

namespace {

// How often a service that is not there is looked for.
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
    ALOGE("%s is registered as %s but does not have the interface", name.c_str(), descriptor.c_str());
    return nullptr;
}

// What is registered now, or null.
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

sp<IBase> getRawServiceInternal(const std::string& descriptor, const std::string& instance, bool retry, bool getStub) {
    if (getStub) return host::LoadPassthrough(descriptor, instance);
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
        ALOGE("an object of another process cannot be registered as %s", instance.c_str());
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
        ALOGE("cannot register %s: it has no interface of its own", instance.c_str());
        return UNKNOWN_ERROR;
    }
    const sp<IBinder> stub = getOrCreateCachedBinder(service.get());
    host::Server* const server = stub == nullptr ? nullptr : host::Server::GetOrMake();
    if (server == nullptr || !server->Register(names, service, stub->localBinder())) return UNKNOWN_ERROR;
    ProcessState::self()->startThreadPool();
    return OK;
}

}  // namespace details
}  // namespace hardware
}  // namespace android
