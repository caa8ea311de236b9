#include "registry/passthrough.h"

#include <dirent.h>
#include <dlfcn.h>
#include <hidl/HidlPassthroughSupport.h>
#include <hidl/HidlTransportUtils.h>
#include <hidl/Static.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <vector>

#include "log/host_log.h"

namespace android::hardware {

using ::android::hidl::base::V1_0::IBase;

namespace host {

namespace {

// Returns the matching libraries of one directory, sorted by name.
std::vector<std::string> LibrariesIn(const std::string& directory, const std::string& prefix) {
    std::vector<std::string> libraries;
    const std::string suffix = ".so";
    DIR* const entries = opendir(directory.c_str());
    if (entries == nullptr) return libraries;
    while (const dirent* entry = readdir(entries)) {
        const std::string name = entry->d_name;
        const bool matches = name.size() >= prefix.size() + suffix.size() &&
                             name.compare(0, prefix.size(), prefix) == 0 &&
                             name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
        if (matches) libraries.push_back(directory + "/" + name);
    }
    closedir(entries);
    std::sort(libraries.begin(), libraries.end());
    return libraries;
}

// Returns null if the library does not implement the interface or this instance of it. A library that has returned an
// object stays loaded.
sp<IBase> FetchFrom(const std::string& library, const std::string& function, const std::string& instance,
                    details::CallFetch callFetch) {
    void* const handle = dlopen(library.c_str(), RTLD_LAZY);
    if (handle == nullptr) {
        ALOGE("cannot load %s: %s", library.c_str(), dlerror());
        return nullptr;
    }
    void* const fetch = dlsym(handle, function.c_str());
    const sp<IBase> object = fetch == nullptr ? nullptr : callFetch(fetch, instance.c_str());
    if (object == nullptr) dlclose(handle);
    return object;
}

// Returns the directories to search.
std::string SearchPath() {
    const char* const path = getenv("HIDL_HOST_PASSTHROUGH_PATH");
    if (path != nullptr) return path;
    Dl_info runtime = {};
    if (dladdr(reinterpret_cast<const void*>(&LoadPassthrough), &runtime) == 0) return "";
    const std::string file = runtime.dli_fname;
    return file.substr(0, file.rfind('/') + 1) + "hidl-host";
}

}  // namespace

sp<IBase> LoadPassthrough(const std::string& descriptor, const std::string& instance, details::CallFetch callFetch) {
    const size_t colons = descriptor.find("::");
    const std::string path = SearchPath();
    if (colons != std::string::npos) {
        const std::string prefix = descriptor.substr(0, colons) + "-impl";
        const std::string function = "HIDL_FETCH_" + descriptor.substr(colons + 2);
        std::istringstream directories(path);
        for (std::string directory; std::getline(directories, directory, ':');) {
            for (const std::string& library : LibrariesIn(directory, prefix)) {
                const sp<IBase> object = FetchFrom(library, function, instance, callFetch);
                if (object != nullptr) return object;
            }
        }
    }
    ALOGE("no passthrough implementation of %s/%s in %s", descriptor.c_str(), instance.c_str(), path.c_str());
    return nullptr;
}

}  // namespace host

namespace details {

sp<IBase> wrapPassthroughInternal(const sp<IBase>& object) {
    const std::string descriptor = getDescriptor(object.get());
    const auto construct = getBsConstructorMap().get(descriptor);
    if (construct) return construct(object.get());
    ALOGE("interface %s is unknown in this process", descriptor.c_str());
    return nullptr;
}

}  // namespace details
}  // namespace android::hardware
