// One video/broadcast object: the states and transitions of OIPF DAE volume 5, with their events in order. It is
// independent of messages; the family turns requests into calls.
#pragma once

#include <memory>
#include <optional>

#include "core/event_loop.h"
#include "families/video_broadcast/component_selection.h"
#include "families/video_broadcast/object_events.h"
#include "families/video_broadcast/time_shift.h"
#include "family/settings.h"
#include "television/tv.h"

namespace hbbtv::sim {

// Values of OIPF DAE volume 5.
enum class PlayState { Unrealized = 0, Connecting = 1, Presenting = 2, Stopped = 3 };

class VideoBroadcastObject {
  public:
    VideoBroadcastObject(Tv& tv, EventLoop& loop, EventSink& sink, const Settings& settings);
    ~VideoBroadcastObject();
    VideoBroadcastObject(const VideoBroadcastObject&) = delete;
    VideoBroadcastObject& operator=(const VideoBroadcastObject&) = delete;

    PlayState State() const { return mState; }
    const std::shared_ptr<Channel>& Current() const { return mChannel; }  // null when unrealized

    void SetChannel(const std::shared_ptr<Channel>& channel, int quiet);  // null: Release
    void Step(int steps);                                                 // 1 next, -1 previous
    std::shared_ptr<Channel> Bind();                                      // null when it cannot
    void Stop();
    void Release();

    // From outside: the signal is lost or the channel is locked, and the problem ends. Return false in other states.
    bool TransientProblem(ChannelError error);
    bool ProblemEnded();
    bool PermanentProblem(ChannelError error);

    bool StartRecording();
    bool StopRecording();
    int RecordingState() const;

    // Play speed, through time shift. Throws Refused if the object is not presenting.
    void SetSpeed(double speed);
    void Resume();
    void Seek(int offset, SeekReference reference);
    void StopTimeShift();
    double Speed() const;

    // Empty while nothing is presented.
    ComponentSelection& Components() { return mState == PlayState::Presenting ? mComponents : mNoComponents; }
    const ComponentSelection& Components() const {
        return mState == PlayState::Presenting ? mComponents : mNoComponents;
    }

    TimeShift& Shift() { return mShift; }
    const TimeShift& Shift() const { return mShift; }
    ObjectEvents& Events() { return mEvents; }

    Changes<> serviceLeft;  // the service that was tuned

    // Values that are only stored.
    struct {
        int x = 0, y = 0, width = 0, height = 0;
    } window;
    bool fullScreen = false;
    unsigned volume = 50;

  private:
    std::optional<ChannelError> WhyNot(const Channel& channel) const;
    void Tune(const std::shared_ptr<Channel>& channel, int quiet);
    void MediaStarts();
    void Enter(PlayState state, int error = 0);
    void Leave(PlayState state, int error);
    void SayChannelError(const std::shared_ptr<Channel>& channel, ChannelError error);
    void SayChannelChanged();
    void RequirePresenting() const;

    Tv& mTv;
    const Settings& mSettings;
    ObjectEvents mEvents;
    ComponentSelection mComponents;
    ComponentSelection mNoComponents;
    TimeShift mShift;
    Timer mTuning;
    PlayState mState = PlayState::Unrealized;
    std::shared_ptr<Channel> mChannel;
    int mQuiet = 0;
    bool mProblem = false;  // connecting because of a transient problem
    bool mRecording = false;
};

}  // namespace hbbtv::sim
