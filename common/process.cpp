#include "common/process.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "common/text/printable.h"

namespace hbbtv {

std::string ProgramOf(pid_t pid) {
    std::error_code unknown;
    return std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/exe", unknown).filename().string();
}

std::string DescribeProcess(pid_t pid) {
    const std::string program = ProgramOf(pid);
    return (program.empty() ? "process" : Printable(program)) + " (" + std::to_string(pid) + ")";
}

// The state follows the name, which is in parentheses and may contain any character.
bool IsStopped(pid_t pid) {
    std::string stat;
    std::getline(std::ifstream("/proc/" + std::to_string(pid) + "/stat"), stat);
    const size_t end = stat.rfind(") ");
    return end != std::string::npos && end + 2 < stat.size() && (stat[end + 2] == 'T' || stat[end + 2] == 't');
}

}  // namespace hbbtv
