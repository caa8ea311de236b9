#include "child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern char** environ;

namespace hbbtv::test {

namespace {

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> EnvironmentWith(const std::vector<std::string>& additions) {
    std::vector<std::string> all = additions;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string name(*entry, strcspn(*entry, "=") + 1);
        bool replaced = false;
        for (const std::string& addition : additions) replaced = replaced || addition.rfind(name, 0) == 0;
        if (!replaced) all.emplace_back(*entry);
    }
    return all;
}

// A child that has exited fails its test and must not end the process that runs all tests: the signal that a write to
// its input raises in this thread is consumed, unless one was pending before.
class SigpipeBlocked {
  public:
    SigpipeBlocked() {
        sigset_t pending;
        sigpending(&pending);
        mPendingBefore = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&mSigpipe);
        sigaddset(&mSigpipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &mSigpipe, &mBefore);
    }
    ~SigpipeBlocked() {
        const timespec atOnce{};
        while (!mPendingBefore && sigtimedwait(&mSigpipe, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
    }
    SigpipeBlocked(const SigpipeBlocked&) = delete;
    SigpipeBlocked& operator=(const SigpipeBlocked&) = delete;

  private:
    sigset_t mSigpipe;
    sigset_t mBefore;
    bool mPendingBefore = false;
};

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& argv, const std::vector<std::string>& environment) {
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) {
        std::perror("pipe2");
        std::abort();
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDERR_FILENO);
    std::vector<std::string> arguments = argv;
    std::vector<std::string> variables = EnvironmentWith(environment);
    const int error =
        posix_spawnp(&mPid, argv[0].c_str(), &actions, nullptr, Pointers(arguments).data(), Pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        std::fprintf(stderr, "cannot start %s: %s\n", argv[0].c_str(), strerror(error));
        std::abort();
    }
    close(input[0]);
    close(output[1]);
    mInput = input[1];
    mOutput = output[0];
    mReader = std::thread([this] { ReadOutput(); });
}

ChildProcess::~ChildProcess() {
    Kill();
    mStop = true;
    mReader.join();
    CloseInput();
    close(mOutput);
}

// Returns when the output's last writer, which may be a child of the child, closes it, or in the destructor.
void ChildProcess::ReadOutput() {
    constexpr int kLookAtStopMs = 20;
    char buffer[4096];
    while (!mStop) {
        pollfd ready{mOutput, POLLIN, 0};
        if (poll(&ready, 1, kLookAtStopMs) <= 0) continue;
        const ssize_t n = read(mOutput, buffer, sizeof(buffer));
        if (n <= 0) break;
        std::lock_guard<std::mutex> lock(mMutex);
        mText.append(buffer, static_cast<size_t>(n));
    }
    mAllRead = true;
}

std::string ChildProcess::Output() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mText;
}

bool ChildProcess::WaitForOutput(const std::string& text, std::chrono::milliseconds patience) const {
    return WaitFor([&] { return Output().find(text) != std::string::npos; }, patience);
}

bool ChildProcess::Write(const std::string& text) {
    const SigpipeBlocked blocked;
    for (size_t written = 0; written < text.size();) {
        const ssize_t n = write(mInput, text.data() + written, text.size() - written);
        if (n >= 0) {
            written += static_cast<size_t>(n);
        } else if (errno != EINTR) {
            std::perror("write to child");
            return false;
        }
    }
    return true;
}

void ChildProcess::CloseInput() {
    if (mInput >= 0) close(mInput);
    mInput = -1;
}

void ChildProcess::Signal(int signal) {
    if (!mExit) kill(mPid, signal);
}

std::optional<int> ChildProcess::WaitForExit(std::chrono::milliseconds patience) {
    WaitFor(
        [this] {
            int status = 0;
            if (!mExit && waitpid(mPid, &status, WNOHANG) == mPid) {
                mExit = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
            }
            return mExit.has_value();
        },
        patience);
    if (mExit) WaitFor([this] { return mAllRead.load(); }, patience);
    return mExit;
}

void ChildProcess::Kill() {
    Signal(SIGKILL);
    WaitForExit(std::chrono::seconds(1));
}

}  // namespace hbbtv::test
