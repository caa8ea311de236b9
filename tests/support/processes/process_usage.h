// What a process uses, as the kernel counts it.
#pragma once

#include <sys/types.h>

#include <string>

namespace hbbtv::test {

struct ProcessUsage {
    long residentKiB;
    long addressSpaceKiB;
    int descriptors;
    int threads;
};

ProcessUsage UsageOf(pid_t pid);

// Returns the most memory that has been resident since ForgetPeak(), or since the process started.
long PeakResidentKiB(pid_t pid);
void ForgetPeak(pid_t pid);

ProcessUsage UsageOfThisProcess();

// For the message of a failed assertion.
std::string ToText(const ProcessUsage& usage);

}  // namespace hbbtv::test
