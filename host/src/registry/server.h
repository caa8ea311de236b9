// The services of this process in one directory: the socket that it listens on and the objects by name. Created by the
// first registration and never destroyed. A normal exit of the process removes its files.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hwbinder/IBinder.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "connection/session.h"
#include "registry/service_directory.h"

namespace android::hardware::host {

class Server : public ServiceSource {
  public:
    // Returns the server for the directory that the environment specifies. On failure, logs the reason and returns
    // null.
    static Server* GetOrCreate();
    // Returns the server for a directory, or null if this process has not registered anything there.
    static Server* Get(const ServiceDirectory& directory);

    Server(const std::shared_ptr<ServiceDirectory>& directory, const std::string& socketName)
        : mDirectory(directory), mSocketName(socketName) {}

    const std::string& SocketName() const { return mSocketName; }

    // Registers an object under the names, replacing earlier ones. On failure, logs the reason and returns false.
    bool Register(const std::vector<std::string>& names, const sp<::android::hidl::base::V1_0::IBase>& object,
                  const sp<BHwBinder>& stub);

    // Return null if the name is not registered.
    sp<::android::hidl::base::V1_0::IBase> FindObject(const std::string& name);
    sp<BHwBinder> FindStub(const std::string& name) override;

    // Called at process exit.
    void RemoveFromDisk();

  private:
    struct Entry {
        sp<::android::hidl::base::V1_0::IBase> object;
        sp<BHwBinder> stub;
    };

    bool Listen();
    void Accept();
    void Refuse();

    const std::shared_ptr<ServiceDirectory> mDirectory;
    const std::string mSocketName;
    int mListener = -1;
    int mSpareFd = -1;  // closed temporarily to refuse a connection when descriptors have run out
    bool mRefusing = false;

    std::mutex mMutex;
    std::map<std::string, Entry> mEntries;
};

}  // namespace android::hardware::host
