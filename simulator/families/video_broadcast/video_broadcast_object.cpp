#include "families/video_broadcast/video_broadcast_object.h"

#include <algorithm>

#include "core/error.h"

namespace hbbtv::sim {

namespace {

// Values of OIPF DAE volume 5.
constexpr int kRecordingNone = 0;
constexpr int kRecordingStarted = 4;
constexpr int kRecordingCompleted = 6;
constexpr int kTimeShiftStarted = 11;

const char* const kRecordingId = "rec-1";

}  // namespace

VideoBroadcastObject::VideoBroadcastObject(Tv& tv, EventLoop& loop, EventSink& sink, const Settings& settings)
    : mTv(tv),
      mSettings(settings),
      mEvents(sink),
      mComponents(tv.preferences),
      mNoComponents(tv.preferences),
      mShift(loop),
      mTuning(loop) {
    mShift.endReached.Watch([this] { mEvents.PlaySpeed(1.0); });
    mShift.mode = static_cast<TimeShiftMode>(tv.preferences.Get(Preference::TimeShiftMode).asInt());
}

VideoBroadcastObject::~VideoBroadcastObject() {
    if (mRecording) mTv.tuner.recorded = false;
    mTv.tuner.Forget(this);
}

// Applies the effects of a state, then sends its event.
void VideoBroadcastObject::Enter(PlayState state, int error) {
    mState = state;
    if (state != PlayState::Presenting) mShift.Stop();
    if (state == PlayState::Presenting && mComponents.All().empty()) mComponents.Start(mChannel->service);
    mEvents.PlayState(static_cast<int>(state), error);
}

// Changes to a state that does not use the tuner.
void VideoBroadcastObject::Leave(PlayState state, int error) {
    mTuning.Cancel();
    mProblem = false;
    mTv.tuner.Leave(this);
    mComponents.Clear();
    if (state == PlayState::Unrealized) mChannel.reset();
    Enter(state, error);
    if (state == PlayState::Unrealized && mTv.tuner.LatestUser() == this) serviceLeft.Notify();
}

void VideoBroadcastObject::SayChannelError(const std::shared_ptr<Channel>& channel, ChannelError error) {
    mEvents.ChannelError(mTv.channels.HandleOf(channel), static_cast<int>(error));
}

void VideoBroadcastObject::SayChannelChanged() {
    const Handle channel = mTv.channels.HandleOf(mChannel);
    mEvents.ChannelChanged(channel, channel, mQuiet);
}

std::optional<ChannelError> VideoBroadcastObject::WhyNot(const Channel& channel) const {
    if (const auto refusal = mTv.Refusal(channel)) return refusal;
    if (!mTv.tuner.FreeFor(this)) return ChannelError::TunerLocked;
    if (mTv.tuner.recorded && &channel != mTv.tuner.On().get()) return ChannelError::BeingRecorded;
    return std::nullopt;
}

void VideoBroadcastObject::SetChannel(const std::shared_ptr<Channel>& channel, int quiet) {
    if (!channel) return Release();
    if (const auto error = WhyNot(*channel)) return SayChannelError(channel, *error);
    Tune(channel, quiet);
}

void VideoBroadcastObject::Tune(const std::shared_ptr<Channel>& channel, int quiet) {
    mProblem = false;
    mComponents.Clear();
    mChannel = channel;
    mQuiet = quiet;
    mTv.tuner.Use(this, channel);
    Enter(PlayState::Connecting);
    serviceLeft.Notify();
    mTuning.Start(mSettings.tuneTime, [this] { MediaStarts(); });
}

void VideoBroadcastObject::MediaStarts() {
    const auto obstacle = Tv::Obstacle(*mChannel);
    if (obstacle && *obstacle != ChannelError::ParentalLock) {
        PermanentProblem(*obstacle);
        return;
    }
    SayChannelChanged();
    mProblem = obstacle.has_value();
    if (mProblem) return Enter(PlayState::Connecting, static_cast<int>(*obstacle));
    Enter(PlayState::Presenting);
}

void VideoBroadcastObject::Step(int steps) {
    if (mState == PlayState::Unrealized) return SayChannelError(nullptr, ChannelError::NoNextOrPrevious);
    const auto channel = mTv.channelList.Neighbour(*mChannel, steps);
    if (!channel) {
        SayChannelError(nullptr, ChannelError::NoNextOrPrevious);
        const bool connecting = mState == PlayState::Connecting;
        if (connecting) Leave(PlayState::Unrealized, static_cast<int>(ChannelError::NoNextOrPrevious));
        return;
    }
    SetChannel(channel, 0);
}

std::shared_ptr<Channel> VideoBroadcastObject::Bind() {
    if (mState == PlayState::Connecting || mState == PlayState::Presenting) return mChannel;
    const std::shared_ptr<Channel> on = mTv.tuner.On();
    const bool free = mTv.tuner.FreeFor(this);
    if (!free) {
        Enter(mState, static_cast<int>(ChannelError::NotEnoughResources));
        return nullptr;
    }
    if (mState == PlayState::Stopped) {
        Tune(on, 0);
        return on;
    }
    if (const auto obstacle = Tv::Obstacle(*on)) {
        Enter(PlayState::Unrealized, static_cast<int>(*obstacle));
        return nullptr;
    }
    mChannel = on;
    mTv.tuner.Use(this, on);
    Enter(PlayState::Presenting);
    return on;
}

void VideoBroadcastObject::Stop() {
    if (mState == PlayState::Connecting || mState == PlayState::Presenting) Leave(PlayState::Stopped, 0);
}

void VideoBroadcastObject::Release() {
    if (mState != PlayState::Unrealized) Leave(PlayState::Unrealized, 0);
}

bool VideoBroadcastObject::TransientProblem(ChannelError error) {
    if (mState != PlayState::Presenting) return false;
    mProblem = true;
    Enter(PlayState::Connecting, static_cast<int>(error));
    return true;
}

bool VideoBroadcastObject::ProblemEnded() {
    if (!mProblem) return false;
    mProblem = false;
    Enter(PlayState::Presenting);
    return true;
}

bool VideoBroadcastObject::PermanentProblem(ChannelError error) {
    if (mState == PlayState::Unrealized) return false;
    if (mState == PlayState::Connecting) {
        const bool changed = mSettings.permanentErrorEvent == PermanentErrorEvent::ChannelChanged;
        changed ? SayChannelChanged() : SayChannelError(mChannel, error);
    }
    Leave(PlayState::Unrealized, static_cast<int>(error));
    return true;
}

bool VideoBroadcastObject::StartRecording() {
    if (mState != PlayState::Presenting || mTv.tuner.recorded) return false;
    mRecording = true;
    mTv.tuner.recorded = true;
    mEvents.Recording(kRecordingStarted, 0, kRecordingId);
    return true;
}

bool VideoBroadcastObject::StopRecording() {
    if (!mRecording) return false;
    mRecording = false;
    mTv.tuner.recorded = false;
    mEvents.Recording(kRecordingCompleted, 0, kRecordingId);
    return true;
}

int VideoBroadcastObject::RecordingState() const {
    if (mRecording) return kRecordingStarted;
    return mShift.Active() ? kTimeShiftStarted : kRecordingNone;
}

void VideoBroadcastObject::RequirePresenting() const {
    if (mState != PlayState::Presenting) throw Refused("the object is not presenting");
}

void VideoBroadcastObject::SetSpeed(double speed) {
    RequirePresenting();
    const auto& speeds = TimeShift::Speeds();
    if (std::find(speeds.begin(), speeds.end(), speed) == speeds.end()) throw Refused("unsupported play speed");
    const bool begins = !mShift.Active();
    if (begins && speed == 1.0) return;
    if (begins && mShift.mode == TimeShiftMode::Off) throw Refused("the time-shift mode is 0, off");
    const bool changes = speed != mShift.Speed();
    mShift.SetSpeed(speed);
    if (begins) mEvents.Recording(kTimeShiftStarted, 0, "");
    if (changes) mEvents.PlaySpeed(speed);
}

void VideoBroadcastObject::Resume() {
    if (!mShift.Active()) throw Refused("time shift is not active");
    SetSpeed(1.0);
}

void VideoBroadcastObject::Seek(int offset, SeekReference reference) {
    if (!mShift.Active()) throw Refused("time shift is not active");
    if (!mShift.Seek(offset, reference)) throw Refused("the position is outside the time-shift buffer");
    mEvents.PlayPosition(static_cast<int>(mShift.Position()));
}

void VideoBroadcastObject::StopTimeShift() {
    if (!mShift.Active()) throw Refused("time shift is not active");
    const bool changes = mShift.Speed() != 1.0;
    mShift.Stop();
    if (changes) mEvents.PlaySpeed(1.0);
}

double VideoBroadcastObject::Speed() const {
    return mState == PlayState::Presenting ? mShift.Speed() : 0.0;
}

}  // namespace hbbtv::sim
