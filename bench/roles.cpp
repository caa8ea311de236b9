#include "roles.h"

#include <filesystem>

namespace hbbtv::bench {

std::string ProgramPath() {
    // Not /proc/self/exe: under valgrind, that is another program in a process that is started.
    static const std::string path = std::filesystem::read_symlink("/proc/self/exe");
    return path;
}

std::string ProgramDirectory() {
    return std::filesystem::path(ProgramPath()).parent_path();
}

std::vector<std::string> Shielded(const std::vector<std::string>& command) {
    std::vector<std::string> shielded = {"/bin/sh", "-c", "trap '' INT TERM; exec \"$@\"", "sh"};
    shielded.insert(shielded.end(), command.begin(), command.end());
    return shielded;
}

std::vector<std::string> RoleCommand(const std::string& role) {
    return Shielded({ProgramPath(), role});
}

std::vector<std::string> ServiceCommand() {
    return Shielded({ProgramDirectory() + "/vantorel.hardware.hbbtv@1.0-service"});
}

std::vector<std::string> MonitorCommand(const std::string& file) {
    return Shielded({ProgramDirectory() + "/hbbtvctl", "monitor", "--stats", "--record", file});
}

std::string ServiceEnvironment() {
    return "HIDL_HOST_PASSTHROUGH_PATH=" + ProgramDirectory() + "/../lib";
}

}  // namespace hbbtv::bench
