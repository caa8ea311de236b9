#include "service/service.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "package/caller.h"
#include "service/activity.h"

namespace hbbtv::ctl {

namespace {

// Returns the name that the build and the device use.
std::string ServiceProgram() {
    return Package::Get().name + "-service";
}

Check CheckHostDirectory(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {"interfaces", Check::Level::Problem, path + ": " + std::strerror(errno),
                "no process has registered an interface; start " + ServiceProgram() +
                    " with the same TMPDIR (or HIDL_HOST_DIR)"};
    }
    if (status.st_uid != geteuid()) {
        return {"interfaces", Check::Level::Problem, path + " is owned by user " + std::to_string(status.st_uid),
                "run as that user, or set HIDL_HOST_DIR for service and clients"};
    }
    return Good("interfaces", "registered in " + path);
}

Check CheckInterfaces(Milliseconds limit) {
    std::vector<std::string> missing;
    size_t all = 0;
    for (const auto& [name, binding] : AllBindings()) {
        const auto there = std::make_shared<bool>(false);
        try {
            InTime(limit, name, [there, find = binding->find] {
                const auto service = find();
                *there = service != nullptr && service->ping().isOk();
            });
        } catch (const Failure&) {
            return {"service", Check::Level::Problem, name + " does not reply within " + FormatDuration(limit),
                    "the service hangs; attach gdb to see where, or restart it", kTimeout};
        }
        ++all;
        if (!*there) missing.push_back(name);
    }
    const std::string count =
        std::to_string(all - missing.size()) + " of " + std::to_string(all) + " interfaces respond";
    if (missing.empty()) return Good("service", count);
    return {"service", Check::Level::Problem, count + (missing.size() == all ? "" : "; missing: " + Joined(missing)),
            missing.size() == all ? "start " + ServiceProgram()
                                  : "the service is older than this tool, or failed to register them"};
}

// Looks for interfaces of another version of the package: client and service would not find each other.
Check CheckVersions(const std::string& path) {
    const std::string ours = Package::Get().name + "::";
    const std::string package = ours.substr(0, ours.find('@') + 1);
    std::vector<std::string> others;
    DIR* names = opendir(path.c_str());
    while (const dirent* entry = names == nullptr ? nullptr : readdir(names)) {
        const std::string name = entry->d_name;
        if (name.rfind(package, 0) != 0 || name.rfind(ours, 0) == 0) continue;
        others.push_back(name.substr(0, name.find(',')));
    }
    if (names != nullptr) closedir(names);
    if (others.empty()) return Good("version", "only " + Package::Get().name + " is registered");
    return {"version", Check::Level::Problem, "also registered: " + Joined(others),
            "build service, clients and this tool from the same package", kInvalidReply};
}

}  // namespace

std::optional<std::vector<std::pair<std::string, bool>>> RegisteredInterfaces(Milliseconds limit) {
    std::vector<std::pair<std::string, bool>> interfaces;
    for (const auto& [name, binding] : AllBindings()) {
        const auto found = std::make_shared<bool>(false);
        InTime(limit, "looking up " + name, [found, find = binding->find] { *found = find() != nullptr; });
        interfaces.emplace_back(name, *found);
    }
    return interfaces;
}

Checks CheckService(Milliseconds limit) {
    const std::string directory = HostDirectory();
    Checks checks{CheckHostDirectory(directory)};
    if (checks.back().level == Check::Level::Good) {
        checks.push_back(CheckInterfaces(limit));
        checks.push_back(CheckVersions(directory));
        for (const Check& trouble : FindTrouble(limit)) checks.push_back(trouble);
    }
    return checks;
}

}  // namespace hbbtv::ctl
