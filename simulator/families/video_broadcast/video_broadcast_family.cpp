// Requests of the video/broadcast family to objects: see video_broadcast_family.h. The objects' behaviour is in
// video_broadcast_object.cpp; here are only names, members and refusals.
#include "families/video_broadcast/video_broadcast_family.h"

#include <algorithm>
#include <ctime>

#include "families/members.h"
#include "families/video_broadcast/stream_event_listeners.h"
#include "families/video_broadcast/video_broadcast_object.h"

namespace hbbtv::sim {

namespace {

constexpr unsigned kLoudest = 100;

class VideoBroadcastFamily : public Family {
  public:
    explicit VideoBroadcastFamily(const FamilySetup& setup);

  private:
    using Object = VideoBroadcastObject;
    void AddRows();
    void AddCommands();

    // Lifecycle and registration.
    void Create(In in, Out out);
    void Release(In in, Out) { Named(in).Release(); }
    void Destroy(In in, Out out);
    void RegisterCallback(In in, Out) { Named(in).Events().Register(in.Pointer("context")); }
    void UnregisterCallback(In in, Out) { Named(in).Events().Unregister(); }

    // Channels.
    void BindToCurrentChannel(In in, Out out) { out["channel"] = Text(mTv.channels, Named(in).Bind()); }
    void CreateChannel_1(In in, Out out);
    void CreateChannel_2(In in, Out out);
    void SetChannel(In in, Out out);
    void SetChannel_Quiet(In in, Out out);
    void PrevChannel(In in, Out) { Named(in).Step(-1); }
    void NextChannel(In in, Out) { Named(in).Step(1); }
    void GetCurrentChannel(In in, Out out) { out["channel"] = Text(mTv.channels, Named(in).Current()); }
    void GetPlayState(In in, Out out) { out["state"] = static_cast<int>(Named(in).State()); }
    void Stop(In in, Out) { Named(in).Stop(); }

    // Presentation.
    void SetWindow(In in, Out out);
    void GetFullScreen(In in, Out out) { out["fullscreen"] = Named(in).fullScreen; }
    void SetFullScreen(In in, Out out);
    void SetVolume(In in, Out out);
    void GetVolume(In in, Out out) { out["volume"] = Named(in).volume; }
    void ChangeDisplaySource(In in, Out) { mTv.displaySource = in.Int("source"); }

    // Play speed, time shift, recording.
    void GetPlaybackOffset(In in, Out out) { out["offset"] = Named(in).Shift().Offset(); }
    void GetMaxOffset(In in, Out out) { out["offset"] = Named(in).Shift().MaxOffset(); }
    void GetRecordingState(In in, Out out) { out["state"] = Named(in).RecordingState(); }
    void GetPlayPosition(In in, Out out) { out["position"] = Named(in).Shift().Position(); }
    void GetPlaySpeed(In in, Out out) { out["speed"] = Named(in).Speed(); }
    void GetPlaySpeedNum(In in, Out out);
    void GetPlaySpeedByIndex(In in, Out out);
    void SetTimeShiftMode(In in, Out out);
    void GetTimeShiftMode(In in, Out out) { out["mode"] = static_cast<int>(Named(in).Shift().mode); }
    void GetCurrentTimeShiftMode(In in, Out out) { out["mode"] = static_cast<int>(Named(in).Shift().CurrentMode()); }
    void StopRecording(In in, Out out);
    void Pause(In in, Out) { Named(in).SetSpeed(0.0); }
    void Resume(In in, Out) { Named(in).Resume(); }
    void SetSpeed(In in, Out) { Named(in).SetSpeed(in.Real("speed")); }
    void Seek(In in, Out out);
    void StopTimeShift(In in, Out) { Named(in).StopTimeShift(); }

    // Programmes.
    void GetProgrammeNum(In in, Out out);
    void GetProgrammeByIndex(In in, Out out);
    void CreateProgrammeList(In in, Out out);

    // Components.
    void GetAVComponentNumByType(In in, Out out);
    void GetSpecificTypeAVComponentByIndex(In in, Out out);
    void GetCurrentActiveAVComponentNumByType(In in, Out out);
    void GetSpecificTypeCurrentActiveAVComponentByIndex(In in, Out out);
    void SelectComponent(In in, Out out);
    void UnselectComponent(In in, Out out);
    void SelectComponentByType(In in, Out out);
    void UnselectComponentByType(In in, Out out);
    void CreateAudioComponent(In in, Out out);
    void CreateVideoComponent(In in, Out out);
    void CreateAVComponentList(In in, Out out);

    // Stream events.
    void AddStreamEventListener(In in, Out);
    void RemoveStreamEventListener(In in, Out);

    // At the television.
    std::string Zap(const Words& words);
    std::string Signal(const Words& words);
    std::string ParentalLock(const Words& words);
    std::string Rate(const Words& words);
    std::string Fail(const Words& words);
    std::string TakeTuner(const Words& words);
    std::string Record(const Words& words);

    std::shared_ptr<Object> NewObject();
    Handle Supervisor();
    Object& Named(In in) const;
    Object* Viewed() const;
    Object& InFront() const;
    std::shared_ptr<Channel> NamedChannel(In in) const;
    std::shared_ptr<Component> NamedComponent(In in) const;
    ProgrammeList Programmes(Object* object);
    std::string AddDescription(Component component);

    EventLoop& mLoop;
    Tv& mTv;
    const Settings& mSettings;
    EventSink& mSink;
    HandleTable<Object> mObjects;
    std::vector<Object*> mInOrder;  // of creation
    std::shared_ptr<Object> mSupervisor;
    StreamEventListeners mListeners;
};

VideoBroadcastFamily::VideoBroadcastFamily(const FamilySetup& setup)
    : Family({"video_broadcast", "service_plugin_to_hbbtv_vb", "service_hbbtv_to_plugin_vb", 7, "method", 3}),
      mLoop(setup.loop),
      mTv(setup.tv),
      mSettings(setup.settings),
      mSink(setup.sinkOf(Address())),
      mObjects(setup.tv.handleSource),
      mListeners(setup.loop, setup.settings, [this] { return Viewed(); }) {
    AddRows();
    AddCommands();
    mTv.broadcastSupervisor = [this] { return Supervisor(); };
}

void VideoBroadcastFamily::AddRows() {
    using F = VideoBroadcastFamily;
    Row(0, "Create", &F::Create);
    Row(1, "Release", &F::Release);
    Row(2, "Destroy", &F::Destroy);
    Row(3, "RegisterCallback", &F::RegisterCallback);
    Row(4, "UnregisterCallback", &F::UnregisterCallback);
    Row(5, "SetWindow", &F::SetWindow);
    Row(6, "GetFullScreen", &F::GetFullScreen);
    Row(7, "GetPlayState", &F::GetPlayState);
    Row(8, "BindToCurrentChannel", &F::BindToCurrentChannel);
    Row(9, "CreateChannel_1", &F::CreateChannel_1);
    Row(10, "CreateChannel_2", &F::CreateChannel_2);
    Row(11, "SetChannel", &F::SetChannel);
    Row(12, "PrevChannel", &F::PrevChannel);
    Row(13, "NextChannel", &F::NextChannel);
    Row(14, "SetFullScreen", &F::SetFullScreen);
    Row(15, "SetVolume", &F::SetVolume);
    Row(16, "GetVolume", &F::GetVolume);
    Row(17, "Stop", &F::Stop);
    Row(18, "GetPlaybackOffset", &F::GetPlaybackOffset);
    Row(19, "GetMaxOffset", &F::GetMaxOffset);
    Row(20, "GetRecordingState", &F::GetRecordingState);
    Row(21, "GetPlayPosition", &F::GetPlayPosition);
    Row(22, "GetPlaySpeed", &F::GetPlaySpeed);
    Row(23, "GetPlaySpeedNum", &F::GetPlaySpeedNum);
    Row(24, "GetPlaySpeedByIndex", &F::GetPlaySpeedByIndex);
    Row(25, "SetTimeShiftMode", &F::SetTimeShiftMode);
    Row(26, "GetTimeShiftMode", &F::GetTimeShiftMode);
    Row(27, "GetCurrentTimeShiftMode", &F::GetCurrentTimeShiftMode);
    Row(28, "StopRecording", &F::StopRecording);
    Row(29, "Pause", &F::Pause);
    Row(30, "Resume", &F::Resume);
    Row(31, "SetSpeed", &F::SetSpeed);
    Row(32, "Seek", &F::Seek);
    Row(33, "StopTimeShift", &F::StopTimeShift);
    Row(35, "SetChannel_Quiet", &F::SetChannel_Quiet);
    Row(36, "GetProgrammeNum", &F::GetProgrammeNum);
    Row(37, "GetProgrammeByIndex", &F::GetProgrammeByIndex);
    Row(38, "GetCurrentChannel", &F::GetCurrentChannel);
    Row(39, "GetAVComponentNumByType", &F::GetAVComponentNumByType);
    Row(40, "GetSpecificTypeAVComponentByIndex", &F::GetSpecificTypeAVComponentByIndex);
    Row(41, "GetCurrentActiveAVComponentNumByType", &F::GetCurrentActiveAVComponentNumByType);
    Row(42, "GetSpecificTypeCurrentActiveAVComponentByIndex", &F::GetSpecificTypeCurrentActiveAVComponentByIndex);
    Row(43, "SelectComponent", &F::SelectComponent);
    Row(44, "UnselectComponent", &F::UnselectComponent);
    Row(45, "SelectComponentByType", &F::SelectComponentByType);
    Row(46, "UnselectComponentByType", &F::UnselectComponentByType);
    Row(47, "CreateAudioComponent", &F::CreateAudioComponent);
    Row(48, "CreateVideoComponent", &F::CreateVideoComponent);
    Row(49, "CreateAVComponentList", &F::CreateAVComponentList);
    Row(50, "CreateProgrammeList", &F::CreateProgrammeList);
    Row(63, "ChangeDisplaySource", &F::ChangeDisplaySource);
    Row(64, "AddStreamEventListener", &F::AddStreamEventListener);
    Row(65, "RemoveStreamEventListener", &F::RemoveStreamEventListener);
}

void VideoBroadcastFamily::AddCommands() {
    using F = VideoBroadcastFamily;
    AddCommand("zap next|previous|NUMBER", "the viewer changes the channel", &F::Zap);
    AddCommand("signal lost|back", "a disturbance that passes", &F::Signal);
    AddCommand("parental-lock on|pin", "the parents' lock falls, or its PIN is entered", &F::ParentalLock);
    AddCommand("parental-rating SCHEME RATING", "what is presented is rated so from now on", &F::Rate);
    AddCommand("fail [ERROR]", "presenting fails for good, with this error (100)", &F::Fail);
    AddCommand("tuner taken|free", "something else needs the tuner", &F::TakeTuner);
    AddCommand("record", "what is presented is recorded from now on", &F::Record);
}

// --- Which one is meant

VideoBroadcastObject& VideoBroadcastFamily::Named(In in) const {
    return *Find(mObjects, in, "vb_handle", "video/broadcast object");
}

// The one that used the tuner last; when it is gone, the newest.
VideoBroadcastObject* VideoBroadcastFamily::Viewed() const {
    for (Object* object : mInOrder) {
        if (object == mTv.tuner.LatestUser()) return object;
    }
    return mInOrder.empty() ? nullptr : mInOrder.back();
}

VideoBroadcastObject& VideoBroadcastFamily::InFront() const {
    Object* object = Viewed();
    if (object == nullptr) throw Refused("there is no video/broadcast object");
    return *object;
}

std::shared_ptr<Channel> VideoBroadcastFamily::NamedChannel(In in) const {
    return in.Pointer("channel") == 0 ? nullptr : Find(mTv.channels, in, "channel", "channel");
}

std::shared_ptr<Component> VideoBroadcastFamily::NamedComponent(In in) const {
    return Find(mTv.components, in, "component", "component");
}

// --- Lifecycle

std::shared_ptr<VideoBroadcastObject> VideoBroadcastFamily::NewObject() {
    return std::make_shared<Object>(mTv, mLoop, mSink, mSettings, [this] { mListeners.ServiceLeft(InFront()); });
}

void VideoBroadcastFamily::Create(In in, Out out) {
    in.Pointer("context");  // events come with the context of the registration, so this one is only looked at
    const auto object = NewObject();
    out["vb_handle"] = Text(mObjects, object);
    mInOrder.push_back(object.get());
}

// The television's own object. It counts as the oldest, so it is the viewer's only when no client has one in use.
Handle VideoBroadcastFamily::Supervisor() {
    if (!mSupervisor) {
        const auto object = NewObject();
        mObjects.HandleOf(object);
        mInOrder.insert(mInOrder.begin(), object.get());
        mSupervisor = object;
    }
    return mObjects.HandleOf(mSupervisor);
}

void VideoBroadcastFamily::Destroy(In in, Out) {
    Object& object = Named(in);
    if (&object == mSupervisor.get()) throw Refused("the broadcast supervisor is the television's own");
    object.Events().Unregister();  // an object that is gone says nothing
    object.Release();
    mInOrder.erase(std::remove(mInOrder.begin(), mInOrder.end(), &object), mInOrder.end());
    mObjects.Remove(in.Pointer("vb_handle"));
}

// --- Channels

void VideoBroadcastFamily::CreateChannel_1(In in, Out out) {
    Named(in);
    Channel channel;
    channel.idType = in.Int("idType");
    channel.dsd = in.Text("dsd");
    channel.sid = in.Int("sid");
    // The descriptor says on which transponder; here the service id alone finds the service.
    for (const auto& service : mTv.lineUp.services) {
        if (service->sid != channel.sid) continue;
        channel.onid = service->onid;
        channel.tsid = service->tsid;
        break;
    }
    out["channel"] = Text(mTv.channels, mTv.MakeChannel(channel));
}

void VideoBroadcastFamily::CreateChannel_2(In in, Out out) {
    Named(in);
    Channel channel;
    channel.idType = in.Int("idType");
    channel.onid = in.Int("onid");
    channel.tsid = in.Int("tsid");
    channel.sid = in.Int("sid");
    channel.sourceId = in.Int("sourceId");
    channel.ipBroadcastId = in.Text("ipBroadcastId");
    out["channel"] = Text(mTv.channels, mTv.MakeChannel(channel));
}

void VideoBroadcastFamily::SetChannel(In in, Out) {
    Object& object = Named(in);
    in.Bool("trickPlay");
    in.Text("url");
    object.SetChannel(NamedChannel(in), 0);
}

void VideoBroadcastFamily::SetChannel_Quiet(In in, Out) {
    Object& object = Named(in);
    in.Bool("trickPlay");
    in.Text("url");
    object.SetChannel(NamedChannel(in), in.Int("quiet"));
}

// --- Presentation

void VideoBroadcastFamily::SetWindow(In in, Out) {
    Object& object = Named(in);
    const int x = in.Int("rect_x");
    const int y = in.Int("rect_y");
    const int width = in.Int("rect_w");
    const int height = in.Int("rect_h");
    if (width < 0 || height < 0) throw Refused("the window has a negative size");
    object.window = {x, y, width, height};
}

void VideoBroadcastFamily::SetFullScreen(In in, Out) {
    Object& object = Named(in);
    const bool full = in.Bool("fullscreen");
    if (full == object.fullScreen) return;
    object.fullScreen = full;
    object.Events().FullScreen(full);
}

void VideoBroadcastFamily::SetVolume(In in, Out) {
    Object& object = Named(in);
    const unsigned volume = in.UInt("volume");
    if (volume > kLoudest) throw Refused("the volume is above " + std::to_string(kLoudest));
    object.volume = volume;
}

// --- Play speed, time shift, recording

void VideoBroadcastFamily::GetPlaySpeedNum(In in, Out out) {
    Named(in);
    out["num"] = static_cast<unsigned>(TimeShift::Speeds().size());
}

void VideoBroadcastFamily::GetPlaySpeedByIndex(In in, Out out) {
    Named(in);
    out["speed"] = At(TimeShift::Speeds(), in.UInt("index"));
}

void VideoBroadcastFamily::SetTimeShiftMode(In in, Out) {
    Object& object = Named(in);
    object.Shift().mode = Choice(in.Int("mode"), TimeShiftMode::LocalThenNetwork, "time-shift mode");
}

void VideoBroadcastFamily::StopRecording(In in, Out) {
    if (!Named(in).StopRecording()) throw Refused("nothing is being recorded");
}

void VideoBroadcastFamily::Seek(In in, Out) {
    Object& object = Named(in);
    const SeekReference reference = Choice(in.Int("reference"), SeekReference::End, "reference");
    object.Seek(in.Int("offset"), reference);
}

// --- Programmes

ProgrammeList VideoBroadcastFamily::Programmes(Object* object) {
    if (object == nullptr || object->State() != PlayState::Presenting) return {};
    return mTv.guide->NowAndNext(object->Current()->service, std::time(nullptr));
}

void VideoBroadcastFamily::GetProgrammeNum(In in, Out out) {
    out["num"] = static_cast<unsigned>(Programmes(&Named(in)).size());
}

void VideoBroadcastFamily::GetProgrammeByIndex(In in, Out out) {
    out["programme"] = Text(mTv.programmes, At(Programmes(&Named(in)), in.UInt("index")));
}

void VideoBroadcastFamily::CreateProgrammeList(In, Out out) {
    out["prog_coll"] = Text(mTv.programmeLists, std::make_shared<ProgrammeList>(Programmes(Viewed())));
}

// --- Components

void VideoBroadcastFamily::GetAVComponentNumByType(In in, Out out) {
    out["num"] = static_cast<unsigned>(Named(in).Components().All(ReadComponentType(in.Int("comType"))).size());
}

void VideoBroadcastFamily::GetSpecificTypeAVComponentByIndex(In in, Out out) {
    const ComponentList all = Named(in).Components().All(ReadComponentType(in.Int("comType")));
    out["component"] = Text(mTv.components, At(all, in.UInt("index")));
}

void VideoBroadcastFamily::GetCurrentActiveAVComponentNumByType(In in, Out out) {
    out["num"] = static_cast<unsigned>(Named(in).Components().Active(ReadComponentType(in.Int("comType"))).size());
}

// This request comes without a type, so the index counts the active components of all types.
void VideoBroadcastFamily::GetSpecificTypeCurrentActiveAVComponentByIndex(In in, Out out) {
    out["component"] = Text(mTv.components, At(Named(in).Components().Active(), in.UInt("index")));
}

void VideoBroadcastFamily::SelectComponent(In in, Out) {
    Object& object = Named(in);
    const auto component = object.Components().Resolve(NamedComponent(in));
    if (!component) throw Refused("the service has no such component");
    const bool changed = object.Components().Select(component);
    if (changed) object.Events().SelectedComponent(static_cast<int>(component->type));
}

void VideoBroadcastFamily::UnselectComponent(In in, Out) {
    Object& object = Named(in);
    const auto component = object.Components().Resolve(NamedComponent(in));
    if (!component) throw Refused("the service has no such component");
    const ComponentList active = object.Components().Active(component->type);
    if (active.empty() || active.front() != component) throw Refused("the component is not selected");
    object.Components().Unselect(component->type);
    object.Events().SelectedComponent(static_cast<int>(component->type));
}

void VideoBroadcastFamily::SelectComponentByType(In in, Out) {
    Object& object = Named(in);
    const ComponentType type = ReadComponentType(in.Int("comType"));
    if (!object.Components().Active(type).empty()) return;
    const auto component = object.Components().Usual(type);
    if (!component) throw Refused("the service has no component of this type");
    object.Components().Select(component);
    object.Events().SelectedComponent(static_cast<int>(type));
}

void VideoBroadcastFamily::UnselectComponentByType(In in, Out) {
    Object& object = Named(in);
    const ComponentType type = ReadComponentType(in.Int("comType"));
    const bool changed = object.Components().Unselect(type);
    if (changed) object.Events().SelectedComponent(static_cast<int>(type));
}

std::string VideoBroadcastFamily::AddDescription(Component component) {
    component.description = true;
    return Text(mTv.components, std::make_shared<Component>(std::move(component)));
}

void VideoBroadcastFamily::CreateAudioComponent(In in, Out out) {
    Named(in);
    Component component;
    component.type = ComponentType::Audio;
    component.tag = in.Int("componentTag");
    component.language = in.Text("language");
    component.audioDescription = in.Bool("audioDescription");
    component.audioChannels = in.Int("channels");
    component.encoding = in.Text("encoding");
    out["component"] = AddDescription(component);
}

void VideoBroadcastFamily::CreateVideoComponent(In in, Out out) {
    Named(in);
    Component component;
    component.type = ComponentType::Video;
    component.tag = in.Int("componentTag");
    component.aspectRatio = in.Real("aspectRatio");
    component.encoding = in.Text("encoding");
    out["component"] = AddDescription(component);
}

void VideoBroadcastFamily::CreateAVComponentList(In in, Out out) {
    const bool active = in.Bool("is_active");
    const ComponentType type = ReadComponentType(in.Int("avcmp_type"));
    auto list = std::make_shared<ComponentList>();
    if (Object* object = Viewed()) *list = active ? object->Components().Active(type) : object->Components().All(type);
    out["avcmp_coll"] = Text(mTv.componentLists, list);
}

// --- Stream events

void VideoBroadcastFamily::AddStreamEventListener(In in, Out) {
    mListeners.Add(in.Text("strurl"), in.Text("dvburl"), in.Text("event_name"));
}

void VideoBroadcastFamily::RemoveStreamEventListener(In in, Out) {
    mListeners.Remove(in.Text("strurl"), in.Text("dvburl"), in.Text("event_name"));
}

// --- At the television

std::string VideoBroadcastFamily::Zap(const Words& words) {
    const std::string& word = Word(words);
    const auto number = Number(word);
    const int steps = word == "next" ? 1 : word == "previous" ? -1 : 0;
    if (!number && steps == 0) throw WrongWords();
    const ChannelLists& list = mTv.channelList;
    const auto channel = number ? list.WithNumber(*number) : list.Neighbour(*mTv.tuner.On(), steps);
    if (!channel) throw Refused("there is no such channel in the list");
    if (Object* object = Viewed()) {
        object->SetChannel(channel, 0);
    } else if (mTv.Refusal(*channel)) {
        throw Refused("the channel is not received");
    } else {
        mTv.tuner.Set(channel);
    }
    return channel->name;
}

std::string VideoBroadcastFamily::Signal(const Words& words) {
    const bool lost = IsFirst(words, "lost", "back");
    if (lost && !InFront().TransientProblem(ChannelError::CannotTune)) throw Refused("nothing is presented");
    if (!lost && !InFront().ProblemEnded()) throw Refused("there was no disturbance");
    return "";
}

std::string VideoBroadcastFamily::ParentalLock(const Words& words) {
    const bool on = IsFirst(words, "on", "pin");
    if (on && !InFront().TransientProblem(ChannelError::ParentalLock)) throw Refused("nothing is presented");
    if (!on && !InFront().ProblemEnded()) throw Refused("nothing is locked");
    return "";
}

// The event's collection is the receiver's, who may add to it.
std::string VideoBroadcastFamily::Rate(const Words& words) {
    if (words.size() != 2) throw WrongWords();
    const auto scheme = mTv.parentalControl.Find(words[0]);
    const auto rating = scheme ? scheme->RatingOf(words[1]) : nullptr;
    if (!rating) throw Refused("there is no such rating");
    Object& object = InFront();
    if (object.State() != PlayState::Presenting) throw Refused("nothing is presented");
    const bool blocked = mTv.parentalControl.Blocks(*rating);
    const auto ratings = std::make_shared<RatingCollection>(RatingCollection{rating});
    object.Events().ParentalRatingChange(mTv.ratingCollections.HandleOf(ratings), blocked);
    if (blocked) object.TransientProblem(ChannelError::ParentalLock);
    return blocked ? "blocked" : "";
}

std::string VideoBroadcastFamily::Fail(const Words& words) {
    const auto error = words.empty() ? static_cast<int>(ChannelError::Unidentified) : Number(Word(words));
    if (!error) throw WrongWords();
    if (!InFront().PermanentProblem(static_cast<ChannelError>(*error))) throw Refused("nothing is tuned");
    return "";
}

std::string VideoBroadcastFamily::TakeTuner(const Words& words) {
    mTv.tuner.TakeAway(IsFirst(words, "taken", "free"));
    return "";
}

std::string VideoBroadcastFamily::Record(const Words& words) {
    RequireNone(words);
    if (!mTv.device.Description().pvr) throw Refused("there is no disk to record on");
    if (!InFront().StartRecording()) throw Refused("nothing is presented, or it is already recorded");
    return "";
}

}  // namespace

std::unique_ptr<Family> MakeVideoBroadcastFamily(const FamilySetup& setup) {
    return std::make_unique<VideoBroadcastFamily>(setup);
}

}  // namespace hbbtv::sim
