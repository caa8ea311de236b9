// What this process offers by name in one directory: the socket that it listens on and the objects behind the names.
// Made with the first registration and never destroyed; a normal exit of the process removes its entries on disk.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hwbinder/IBinder.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "service_directory.h"
#include "session.h"

namespace android {
namespace hardware {
namespace host {

class Server : public ServiceSource {
  public:
    // The one for the directory that the environment names now. Null, with a log line, when it cannot be made.
    static Server* GetOrMake();
    // Null when this process has registered nothing in that directory.
    static Server* Get(const ServiceDirectory& directory);

    Server(const std::shared_ptr<ServiceDirectory>& directory, const std::string& socketName)
        : mDirectory(directory), mSocketName(socketName) {}

    const std::string& SocketName() const { return mSocketName; }

    // Puts the object behind the names, replacing what was there. False with a log line.
    bool Register(const std::vector<std::string>& names, const sp<::android::hidl::base::V1_0::IBase>& object,
                  const sp<BHwBinder>& stub);

    // Null when there is none.
    sp<::android::hidl::base::V1_0::IBase> FindObject(const std::string& name);
    sp<BHwBinder> FindStub(const std::string& name) override;

    // At the exit of the process.
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
    int mSpareFd = -1;  // given up for a moment to refuse a connection when descriptors have run out
    bool mRefusing = false;

    std::mutex mMutex;
    std::map<std::string, Entry> mEntries;
};

}  // namespace host
}  // namespace hardware
}  // namespace android
