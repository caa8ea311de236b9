// Understands on a thread of its own what a relay passes on, so that the relay does not wait. What waits for the thread
// is bounded: beyond that, bytes are counted instead of recorded.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "traffic/understanding/understanding.h"

namespace hbbtv::traffic {

class Recorder {
  public:
    // `onRecord` is called by the recorder's thread.
    explicit Recorder(std::function<void(const Record&)> onRecord);

    ~Recorder() { Finish(); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // For one thread, that of the relay.
    void Connected(const RelayedConnection& connection);
    void Closed(uint64_t connection, const std::string& how);
    void Note(const std::string& note, const std::string& socket);

    // `begin` is the place of the first message that begins in these bytes, or npos; `time` is that before they were
    // passed on: the receiver may answer before the call that passes them on returns.
    void Bytes(uint64_t connection, Direction direction, std::string bytes, size_t begin, const TimeStamp& time,
               const std::string& rule);

    // Passes all that waits, and the exchanges that are still open, to the function, and ends the thread.
    void Finish();

    // Thread-safe.
    std::vector<Record> Open() const { return mUnderstanding.Open(); }

  private:
    using Step = std::function<void(Understanding&)>;

    void Push(Step step, size_t bytes = 0);
    bool Full();
    void Carry(const Step& step);
    void Run();

    Understanding mUnderstanding;
    std::map<std::pair<uint64_t, Direction>, uint64_t> mLost;  // bytes, of the relay's thread
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<Step> mSteps;  // guarded by mMutex
    size_t mBytes = 0;         // guarded by mMutex; those of mSteps
    bool mIdle = false;        // guarded by mMutex; the thread waits to be notified
    bool mStop = false;        // guarded by mMutex
    std::thread mThread;
};

}  // namespace hbbtv::traffic
