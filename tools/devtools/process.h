// Chromium as a child process with a pipe for the DevTools protocol. It opens no port, so no other process can command
// it.
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

#include "common/duration.h"
#include "common/local_socket.h"

namespace hbbtv::devtools {

struct ChromiumOptions {
    std::string profile;                 // directory that is kept; empty: one of its own, which is removed
    bool window = false;                 // false: headless
    std::vector<std::string> arguments;  // of Chromium's command line, besides those for the pipe and the profile
};

// A shell that waits for Chromium removes its files, so that nothing is left behind even if this process is killed:
// Chromium ends when the other end of its pipe is closed.
class ChromiumProcess {
  public:
    // Throws Failure(kUnavailable) if it is not installed or cannot be started.
    explicit ChromiumProcess(const ChromiumOptions& options);

    // Kills it if it is still running, and waits until its files are removed.
    ~ChromiumProcess();
    ChromiumProcess(const ChromiumProcess&) = delete;
    ChromiumProcess& operator=(const ChromiumProcess&) = delete;

    // Return the ends of the pipes, once; the caller closes them. They are non-blocking. Commands are written to one,
    // and answers and events are read from the other.
    int TakeCommands() { return mCommands.writer.Release(); }
    int TakeAnswers() { return mAnswers.reader.Release(); }

    pid_t Pid() const { return mPid; }

    // Waits until it has ended and its files are removed. Returns false at the limit.
    bool WaitForEnd(Milliseconds limit);

    // Returns what it has written to its standard error after this many bytes.
    std::string Messages(size_t begin) const;

    // Returns the last line that it has written to its standard error.
    std::string LastMessage() const;

  private:
    struct Pipe {
        Pipe() : Pipe(Open()) {}
        explicit Pipe(std::pair<int, int> ends) : reader(ends.first), writer(ends.second) {}
        static std::pair<int, int> Open();

        Descriptor reader;
        Descriptor writer;
    };

    void Start(const ChromiumOptions& options);

    Pipe mCommands;
    Pipe mAnswers;
    const std::string mDirectory;
    const Descriptor mMessages;  // of Chromium; can be read after the file is removed
    pid_t mKeeper = -1;          // -1: it has been reaped
    pid_t mPid = -1;
};

}  // namespace hbbtv::devtools
