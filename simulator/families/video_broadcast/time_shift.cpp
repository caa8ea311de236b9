#include "families/video_broadcast/time_shift.h"

#include <algorithm>

namespace hbbtv::sim {

namespace {

constexpr std::chrono::minutes kCapacity{30};

using Milliseconds = std::chrono::milliseconds;

template <typename Duration>
long long Count(Duration duration) {
    return std::chrono::duration_cast<Milliseconds>(duration).count();
}

}  // namespace

const std::vector<double>& TimeShift::Speeds() {
    static const std::vector<double> speeds{-8.0, -4.0, -2.0, 0.0, 0.5, 1.0, 2.0, 4.0, 8.0};
    return speeds;
}

TimeShift::TimeShift(EventLoop& loop) : mEnd(loop) {}

TimeShiftMode TimeShift::CurrentMode() const {
    return mActive ? mCurrent : TimeShiftMode::Off;
}

TimeShift::Clock::time_point TimeShift::Begin(Clock::time_point now) const {
    return std::max(mBegin, now - kCapacity);
}

TimeShift::Clock::time_point TimeShift::Place(Clock::time_point now) const {
    if (!mActive) return now;
    const std::chrono::duration<double, std::milli> passed = now - mAnchor;
    const auto place = mPlace + std::chrono::duration_cast<Clock::duration>(passed * mSpeed);
    return std::clamp(place, Begin(now), now);
}

void TimeShift::SetSpeed(double speed) {
    const auto now = Clock::now();
    if (!mActive) mBegin = now;
    mPlace = Place(now);
    mAnchor = now;
    if (!mActive) mCurrent = mode == TimeShiftMode::Network ? TimeShiftMode::Network : TimeShiftMode::Local;
    mActive = true;
    mSpeed = speed;
    WatchEnds();
}

// Fast play reaches the live picture, reverse play the start of the buffer.
void TimeShift::WatchEnds() {
    mEnd.Cancel();
    double wait = 0;
    if (mSpeed > 1) {
        wait = static_cast<double>(Count(mAnchor - mPlace)) / (mSpeed - 1);
    } else if (mSpeed < 0) {
        wait = static_cast<double>(Count(mPlace - Begin(mAnchor))) / -mSpeed;
    } else {
        return;
    }
    mEnd.Start(Milliseconds(static_cast<long long>(wait)), [this] {
        SetSpeed(1.0);
        endReached.Notify();
    });
}

bool TimeShift::Seek(int offset, SeekReference reference) {
    const auto now = Clock::now();
    auto place = now;
    if (reference == SeekReference::Start) place = Begin(now);
    if (reference == SeekReference::Current) place = Place(now);
    place += Milliseconds(offset);
    if (place < Begin(now) || place > now) return false;
    mPlace = place;
    mAnchor = now;
    WatchEnds();
    return true;
}

void TimeShift::Stop() {
    mEnd.Cancel();
    mActive = false;
    mSpeed = 1.0;
}

unsigned TimeShift::Position() const {
    const auto now = Clock::now();
    return mActive ? static_cast<unsigned>(Count(Place(now) - Begin(now))) : 0;
}

unsigned TimeShift::Offset() const {
    const auto now = Clock::now();
    return static_cast<unsigned>(Count(now - Place(now)));
}

unsigned TimeShift::MaxOffset() const {
    return mode == TimeShiftMode::Off && !mActive ? 0 : static_cast<unsigned>(Count(kCapacity));
}

}  // namespace hbbtv::sim
