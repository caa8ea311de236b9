// A program that a test starts, talks to and ends. Its standard output and standard error are read as they come; it is
// killed and reaped by the destructor at the latest.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "wait_for.h"

namespace hbbtv::test {

class ChildProcess {
  public:
    // Starts argv[0] (found through PATH) with this process's environment plus `environment` ("NAME=value").
    explicit ChildProcess(const std::vector<std::string>& argv, const std::vector<std::string>& environment = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t Pid() const { return mPid; }

    // Returns everything that it has written so far.
    std::string Output() const;

    // Waits until its output holds the text; false when it does not in time.
    bool WaitForOutput(const std::string& text, std::chrono::milliseconds patience = kPatience) const;

    // Writes to its standard input; returns false if no process reads it.
    bool Write(const std::string& text);
    void CloseInput();

    void Signal(int signal);

    // Waits for its end and for the rest of its output. Returns the exit code, minus the signal that ended it, or
    // nothing when it still runs.
    std::optional<int> WaitForExit(std::chrono::milliseconds patience = kPatience);

    // Sends SIGKILL and waits for its end.
    void Kill();

  private:
    void ReadOutput();

    pid_t mPid = -1;
    int mInput = -1;
    int mOutput = -1;
    std::optional<int> mExit;
    mutable std::mutex mMutex;
    std::string mText;  // guarded by mMutex
    std::atomic<bool> mStop{false};
    std::atomic<bool> mAllRead{false};
    std::thread mReader;
};

}  // namespace hbbtv::test
