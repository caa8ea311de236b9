// One call of a system function that fails in another process: the test names the function and which of its next calls,
// the library that failing_calls.cpp becomes is preloaded into the process and obeys. A shared file connects the two.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>

namespace hbbtv::test {

constexpr char kFailingCallsFile[] = "failing_calls";  // in TMPDIR

enum class Function { None, Connect, Accept, Socket, Bind, Send, Recv, Poll, Clone, Mmap, Open, Write };

struct FailingCall {
    std::atomic<Function> function;
    std::atomic<int> left;  // calls of the function until one fails, which is 1 for the next; 0: it has failed

    // Makes the nth next call fail.
    void Arm(Function which, int nth) {
        function = Function::None;
        left = nth;
        function = which;
    }
    void Disarm() { function = Function::None; }
};

// Maps the file; returns null if that fails.
inline FailingCall* MapFailingCall(const char* path) {
    const int fd = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0 || ftruncate(fd, sizeof(FailingCall)) != 0) return nullptr;
    void* const memory = mmap(nullptr, sizeof(FailingCall), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    return memory == MAP_FAILED ? nullptr : static_cast<FailingCall*>(memory);
}

}  // namespace hbbtv::test
