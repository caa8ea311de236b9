#include "process_usage.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace hbbtv::test {

namespace {

long NumberBehind(const std::string& status, const std::string& name) {
    const size_t at = status.find("\n" + name + ":");
    return at == std::string::npos ? -1 : std::stol(status.substr(at + name.size() + 2));
}

std::string DirectoryOf(pid_t pid) {
    return "/proc/" + std::to_string(pid);
}

std::string StatusOf(pid_t pid) {
    std::ifstream file(DirectoryOf(pid) + "/status");
    return {std::istreambuf_iterator<char>(file), {}};
}

// The kernel counts a thread for a moment after it was joined.
void StartAndEndThread() {
    std::string directory;
    std::thread([&] { directory = "/proc/self/task/" + std::to_string(syscall(SYS_gettid)); }).join();
    while (access(directory.c_str(), F_OK) == 0) std::this_thread::yield();
}

}  // namespace

ProcessUsage UsageOf(pid_t pid) {
    const std::string status = StatusOf(pid);
    const std::filesystem::directory_iterator descriptors(DirectoryOf(pid) + "/fd");
    const auto open = std::distance(begin(descriptors), end(descriptors));
    return {NumberBehind(status, "VmRSS"), NumberBehind(status, "VmSize"), static_cast<int>(open),
            static_cast<int>(NumberBehind(status, "Threads"))};
}

long PeakResidentKiB(pid_t pid) {
    return NumberBehind(StatusOf(pid), "VmHWM");
}

void ForgetPeak(pid_t pid) {
    std::ofstream(DirectoryOf(pid) + "/clear_refs") << 5;
}

ProcessUsage UsageOfThisProcess() {
    // A sanitizer starts a thread of its own with the first one, which counts from then on.
    static const bool kThreadsSeen = (StartAndEndThread(), true);
    static_cast<void>(kThreadsSeen);
    ProcessUsage usage = UsageOf(getpid());
    --usage.descriptors;  // that of the directory in which they are counted
    return usage;
}

std::string ToText(const ProcessUsage& usage) {
    return std::to_string(usage.residentKiB) + " KiB resident, " + std::to_string(usage.addressSpaceKiB) +
           " KiB address space, " + std::to_string(usage.descriptors) + " descriptors, " +
           std::to_string(usage.threads) + " threads";
}

}  // namespace hbbtv::test
