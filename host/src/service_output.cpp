// Standard output and standard error of a service. Linked into the program of a service, this file replaces both
// streams by ones that never wait: a reader that has stopped, such as a terminal after Ctrl-S, must not block the
// service's clients. Lines that do not fit are dropped and counted, and the count is written when there is room again.

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <mutex>
#include <string>

namespace android::hardware::host {

namespace {

// Returns a descriptor of the same pipe or terminal that does not block. Setting O_NONBLOCK on the given one would
// affect the other processes that use it. Returns the given one if it cannot be opened again.
int WithoutWaiting(int fd) {
    struct stat file = {};
    if (fstat(fd, &file) != 0 || !(S_ISFIFO(file.st_mode) || S_ISCHR(file.st_mode))) return fd;
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    const int own = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    return own < 0 ? fd : own;
}

class Output {
  public:
    explicit Output(int fd) : mFd(WithoutWaiting(fd)), mMayWait(mFd == fd) {}

    void Write(const char* text, size_t size) {
        std::lock_guard<std::mutex> lock(mMutex);
        if (ReportLocked() && WriteLocked(text, size)) return;
        const bool first = mDropped == 0;
        mDropped += std::max<size_t>(1, static_cast<size_t>(std::count(text, text + size, '\n')));
        if (first) StartReporterLocked();
    }

  private:
    bool HasRoom() const {
        pollfd room = {mFd, POLLOUT, 0};
        return poll(&room, 1, 0) > 0;
    }

    // Returns whether everything was written. A pipe takes up to PIPE_BUF bytes entirely or not at all.
    bool WriteLocked(const char* text, size_t size) {
        while (size > 0) {
            if (mMayWait && !HasRoom()) return false;
            const ssize_t written = write(mFd, text, std::min<size_t>(size, PIPE_BUF));
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            mInLine = text[written - 1] != '\n';
            text += written;
            size -= static_cast<size_t>(written);
        }
        return true;
    }

    // Writes the count, if there is one. Returns whether none is left.
    bool ReportLocked() {
        if (mDropped == 0) return true;
        const std::string line =
            std::string(mInLine ? "\n" : "") +
            "hidl_host: lines of output dropped, as they were not read in time: " + std::to_string(mDropped) + "\n";
        if (!WriteLocked(line.data(), line.size())) return false;
        mDropped = 0;
        return true;
    }

    // Without this thread, the count is written before the next line.
    void StartReporterLocked() {
        if (mReporting) return;
        pthread_t thread;
        mReporting = pthread_create(&thread, nullptr, Report, this) == 0;
        if (mReporting) pthread_detach(thread);
    }

    static void* Report(void* output) {
        static_cast<Output*>(output)->ReportWhenThereIsRoom();
        return nullptr;
    }

    // Ends also when there is no reader: it might never return.
    void ReportWhenThereIsRoom() {
        constexpr int kPauseMs = 10;
        for (;;) {
            pollfd room = {mFd, POLLOUT, 0};
            const int ready = poll(&room, 1, -1);
            if (ready < 0 && errno == EINTR) continue;
            {
                std::lock_guard<std::mutex> lock(mMutex);
                const bool broken = ready < 0 || (room.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
                mReporting = !broken && !ReportLocked();
                if (!mReporting) return;
            }
            poll(nullptr, 0, kPauseMs);  // another process was faster
        }
    }

    const int mFd;
    const bool mMayWait;  // a write may block, so there must be room before it
    std::mutex mMutex;
    size_t mDropped = 0;      // lines; guarded by mMutex
    bool mInLine = false;     // whether the last write ended within a line; guarded by mMutex
    bool mReporting = false;  // whether the thread exists; guarded by mMutex
};

ssize_t WriteTo(void* output, const char* text, size_t size) {
    static_cast<Output*>(output)->Write(text, size);
    return static_cast<ssize_t>(size);
}

// The streams are never closed and these never deleted: threads write during exit.
Output* gOut = nullptr;
Output* gError = nullptr;

FILE* StreamTo(Output* output) {
    cookie_io_functions_t functions = {};
    functions.write = WriteTo;
    FILE* const stream = fopencookie(output, "w", functions);
    if (stream != nullptr) setvbuf(stream, nullptr, _IOLBF, BUFSIZ);
    return stream;
}

__attribute__((constructor)) void ReplaceStreams() {
    gOut = new Output(STDOUT_FILENO);
    gError = new Output(STDERR_FILENO);
    FILE* const out = StreamTo(gOut);
    FILE* const error = StreamTo(gError);
    if (out != nullptr) stdout = out;
    if (error != nullptr) stderr = error;  // also where liblog writes to on a host
}

}  // namespace

}  // namespace android::hardware::host
