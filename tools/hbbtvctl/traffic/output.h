// Standard output for a command that must not wait for its reader: lines are written by a thread, and what the reader
// does not take in time is counted instead.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace hbbtv::ctl {

class Output {
  public:
    Output();

    // Waits at most a second for the reader to take the rest. The thread may continue to wait for it.
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Adds a line break. Thread-safe.
    void Print(const std::string& line);

    // Returns why lines could not be written: an error number, or 0. EPIPE: the reader has gone.
    int Error() const;

    // Returns the number of lines that the reader has not taken in time.
    uint64_t Lost() const;

  private:
    struct Shared {
        std::mutex mutex;
        std::condition_variable changed;
        std::string waiting;  // guarded by the mutex, as the others
        bool writing = false;
        uint64_t lost = 0;
        int error = 0;
    };
    static int WriteAll(const std::string& text);
    static void Write(const std::shared_ptr<Shared>& shared);

    const std::shared_ptr<Shared> mShared = std::make_shared<Shared>();
};

}  // namespace hbbtv::ctl
