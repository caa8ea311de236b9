// Time shift of one video/broadcast object: a buffer that starts when play first leaves the live picture and holds the
// last 30 minutes. All times in the interface are milliseconds.
#pragma once

#include <chrono>
#include <vector>

#include "core/changes.h"
#include "core/event_loop.h"

namespace hbbtv::sim {

// Values of OIPF DAE volume 5.
enum class TimeShiftMode { Off = 0, Local = 1, Network = 2, LocalThenNetwork = 3 };
enum class SeekReference { Start = 0, Current = 1, End = 2 };

class TimeShift {
  public:
    static const std::vector<double>& Speeds();

    explicit TimeShift(EventLoop& loop);

    Changes<> endReached;  // of the buffer; play continues at speed 1

    // The mode is a preference: it applies to the next time shift.
    TimeShiftMode mode = TimeShiftMode::Local;

    bool Active() const { return mActive; }
    TimeShiftMode CurrentMode() const;

    double Speed() const { return mSpeed; }
    void SetSpeed(double speed);  // starts the time shift; `mode` is not Off

    // Returns false and does not move if the position is outside the buffer.
    bool Seek(int offset, SeekReference reference);

    void Stop();

    unsigned Position() const;   // from the start of the buffer
    unsigned Offset() const;     // behind the live picture
    unsigned MaxOffset() const;  // the largest possible Offset

  private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point Begin(Clock::time_point now) const;
    Clock::time_point Place(Clock::time_point now) const;
    void WatchEnds();

    bool mActive = false;
    TimeShiftMode mCurrent = TimeShiftMode::Off;
    double mSpeed = 1.0;
    Clock::time_point mBegin;   // the start of the buffer
    Clock::time_point mAnchor;  // the time at which play was at mPlace
    Clock::time_point mPlace;
    Timer mEnd;
};

}  // namespace hbbtv::sim
