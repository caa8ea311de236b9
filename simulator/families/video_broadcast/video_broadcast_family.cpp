// The operations of video/broadcast objects, each a call of the object.
#include "family/family_setup.h"

#include <algorithm>
#include <ctime>

#include "core/error.h"
#include "families/video_broadcast/stream_event_listeners.h"
#include "families/video_broadcast/video_broadcast_object.h"
#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

constexpr unsigned kLoudest = 100;

using Object = VideoBroadcastObject;

void SetWindow(Object& object, int x, int y, int width, int height) {
    if (width < 0 || height < 0) throw Refused("the window has a negative size");
    object.window = {x, y, width, height};
}

void SetFullScreen(Object& object, bool full) {
    if (full == object.fullScreen) return;
    object.fullScreen = full;
    object.Events().FullScreen(full);
}

void SetVolume(Object& object, unsigned volume) {
    if (volume > kLoudest) throw Refused("the volume is above " + std::to_string(kLoudest));
    object.volume = volume;
}

void StopRecording(Object& object) {
    if (!object.StopRecording()) throw Refused("nothing is being recorded");
}

ComponentType TypeIn(const Arguments& in) {
    return ReadComponentType(in.Int("comType"));
}

void SelectByType(Object& object, ComponentType type) {
    if (!object.Components().Active(type).empty()) return;
    const auto component = object.Components().Usual(type);
    if (!component) throw Refused("the service has no component of this type");
    object.Components().Select(component);
    object.Events().SelectedComponent(static_cast<int>(type));
}

void UnselectByType(Object& object, ComponentType type) {
    const bool changed = object.Components().Unselect(type);
    if (changed) object.Events().SelectedComponent(static_cast<int>(type));
}

class VideoBroadcastFamily : public ObjectFamily<Object> {
  public:
    explicit VideoBroadcastFamily(const FamilySetup& setup);

  private:
    void AddLifecycle();
    void AddChannels();
    void AddPresentation();
    void AddTime();
    void AddProgrammes();
    void AddComponents();
    void AddStreamEvents();
    void AddCommands();

    void Create(In in, Out out);
    void Destroy(In in, Out);
    void CreateChannel_1(In in, Out out);
    void CreateChannel_2(In in, Out out);
    void SetChannel(Object& object, In in, int quiet);
    void CreateProgrammeList(In, Out out);
    void SelectComponent(Object& object, In in);
    void UnselectComponent(Object& object, In in);
    void CreateAudioComponent(In in, Out out);
    void CreateVideoComponent(In in, Out out);
    void CreateAVComponentList(In in, Out out);

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
    Object* Viewed() const;
    Object& InFront() const;
    std::shared_ptr<Component> ComponentOf(const Object& object, In in) const;
    ProgrammeList Programmes(const Object* object) const;
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
    : ObjectFamily("video_broadcast", mObjects, "video/broadcast object", "vb_handle"),
      mLoop(setup.loop),
      mTv(setup.tv),
      mSettings(setup.settings),
      mSink(Sends(setup.makeSink,
                  {"TOLM_VB_EVENT_CHANNEL_ERROR", "TOLM_VB_EVENT_PLAY_STATE", "TOLM_VB_EVENT_CHANNEL_CHANGED",
                   "TOLM_VB_EVENT_FULL_SCREEN", "TOLM_VB_EVENT_PLAY_SPEED", "TOLM_VB_EVENT_PLAY_POSITION",
                   "TOLM_VB_EVENT_RECORDING", "TOLM_VB_EVENT_COMPONENT_TYPE_11",
                   "TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED", "TOLM_VB_EVENT_STREAM_EVENT"})),
      mObjects(setup.tv.handleSource),
      mListeners(setup.loop, setup.settings, [this] { return Viewed(); }) {
    AddLifecycle();
    AddChannels();
    AddPresentation();
    AddTime();
    AddProgrammes();
    AddComponents();
    AddStreamEvents();
    AddCommands();
    mTv.broadcastSupervisor = [this] { return Supervisor(); };
}

void VideoBroadcastFamily::AddLifecycle() {
    Row("Create", &VideoBroadcastFamily::Create);
    Set("Release", [](Object& o, In) { o.Release(); });
    Row("Destroy", &VideoBroadcastFamily::Destroy);
    Set("RegisterCallback", [](Object& o, In in) { o.Events().Register(in.Pointer("context")); });
    Set("UnregisterCallback", [](Object& o, In) { o.Events().Unregister(); });
}

void VideoBroadcastFamily::AddChannels() {
    using F = VideoBroadcastFamily;
    Get("GetPlayState", "state", [](const Object& o) { return static_cast<int>(o.State()); });
    Look("BindToCurrentChannel", "channel", mTv.channels, [](Object& o, In) { return o.Bind(); });
    Row("CreateChannel_1", &F::CreateChannel_1);
    Row("CreateChannel_2", &F::CreateChannel_2);
    Set("SetChannel", [this](Object& o, In in) { SetChannel(o, in, 0); });
    Set("PrevChannel", [](Object& o, In) { o.Step(-1); });
    Set("NextChannel", [](Object& o, In) { o.Step(1); });
    Set("Stop", [](Object& o, In) { o.Stop(); });
    Set("SetChannel_Quiet", [this](Object& o, In in) { SetChannel(o, in, in.Int("quiet")); });
    Look("GetCurrentChannel", "channel", mTv.channels, [](const Object& o, In) { return o.Current(); });
}

void VideoBroadcastFamily::AddPresentation() {
    Set("SetWindow",
        [](Object& o, In in) { SetWindow(o, in.Int("rect_x"), in.Int("rect_y"), in.Int("rect_w"), in.Int("rect_h")); });
    Get("GetFullScreen", "fullscreen", [](const Object& o) { return o.fullScreen; });
    Set("SetFullScreen", [](Object& o, In in) { SetFullScreen(o, in.Bool("fullscreen")); });
    Set("SetVolume", [](Object& o, In in) { SetVolume(o, in.UInt("volume")); });
    Get("GetVolume", "volume", [](const Object& o) { return o.volume; });
    Row("ChangeDisplaySource", [this](In in, Out) { mTv.displaySource = in.Int("source"); });
}

// Play speed, time shift and recording.
void VideoBroadcastFamily::AddTime() {
    Get("GetPlaybackOffset", "offset", [](const Object& o) { return o.Shift().Offset(); });
    Get("GetMaxOffset", "offset", [](const Object& o) { return o.Shift().MaxOffset(); });
    Get("GetRecordingState", "state", [](const Object& o) { return o.RecordingState(); });
    Get("GetPlayPosition", "position", [](const Object& o) { return o.Shift().Position(); });
    Get("GetPlaySpeed", "speed", [](const Object& o) { return o.Speed(); });
    Get("GetPlaySpeedNum", "num", [](const Object&) { return static_cast<unsigned>(TimeShift::Speeds().size()); });
    Get("GetPlaySpeedByIndex", "speed", [](const Object&, In in) { return At(TimeShift::Speeds(), in.UInt("index")); });
    Set("SetTimeShiftMode", [](Object& o, In in) {
        o.Shift().mode = Choice(in.Int("mode"), TimeShiftMode::LocalThenNetwork, "time-shift mode");
    });
    Get("GetTimeShiftMode", "mode", [](const Object& o) { return static_cast<int>(o.Shift().mode); });
    Get("GetCurrentTimeShiftMode", "mode", [](const Object& o) { return static_cast<int>(o.Shift().CurrentMode()); });
    Set("StopRecording", [](Object& o, In) { StopRecording(o); });
    Set("Pause", [](Object& o, In) { o.SetSpeed(0.0); });
    Set("Resume", [](Object& o, In) { o.Resume(); });
    Set("SetSpeed", [](Object& o, In in) { o.SetSpeed(in.Real("speed")); });
    Set("Seek", [](Object& o, In in) {
        o.Seek(in.Int("offset"), Choice(in.Int("reference"), SeekReference::End, "reference"));
    });
    Set("StopTimeShift", [](Object& o, In) { o.StopTimeShift(); });
}

void VideoBroadcastFamily::AddProgrammes() {
    Get("GetProgrammeNum", "num", [this](const Object& o) { return static_cast<unsigned>(Programmes(&o).size()); });
    Look("GetProgrammeByIndex", "programme", mTv.programmes,
         [this](const Object& o, In in) { return At(Programmes(&o), in.UInt("index")); });
    Row("CreateProgrammeList", &VideoBroadcastFamily::CreateProgrammeList);
}

// Operation 42 does not have a type, so its index counts the active components of all types.
void VideoBroadcastFamily::AddComponents() {
    using F = VideoBroadcastFamily;
    Get("GetAVComponentNumByType", "num",
        [](const Object& o, In in) { return static_cast<unsigned>(o.Components().All(TypeIn(in)).size()); });
    Look("GetSpecificTypeAVComponentByIndex", "component", mTv.components,
         [](const Object& o, In in) { return At(o.Components().All(TypeIn(in)), in.UInt("index")); });
    Get("GetCurrentActiveAVComponentNumByType", "num",
        [](const Object& o, In in) { return static_cast<unsigned>(o.Components().Active(TypeIn(in)).size()); });
    Look("GetSpecificTypeCurrentActiveAVComponentByIndex", "component", mTv.components,
         [](const Object& o, In in) { return At(o.Components().Active(), in.UInt("index")); });
    Set("SelectComponent", [this](Object& o, In in) { SelectComponent(o, in); });
    Set("UnselectComponent", [this](Object& o, In in) { UnselectComponent(o, in); });
    Set("SelectComponentByType", [](Object& o, In in) { SelectByType(o, TypeIn(in)); });
    Set("UnselectComponentByType", [](Object& o, In in) { UnselectByType(o, TypeIn(in)); });
    Row("CreateAudioComponent", &F::CreateAudioComponent);
    Row("CreateVideoComponent", &F::CreateVideoComponent);
    Row("CreateAVComponentList", &F::CreateAVComponentList);
}

void VideoBroadcastFamily::AddStreamEvents() {
    Row("AddStreamEventListener", [this](In in, Out) {
        mListeners.Add(in.ShortText("strurl"), in.ShortText("dvburl"), in.ShortText("event_name"));
    });
    Row("RemoveStreamEventListener",
        [this](In in, Out) { mListeners.Remove(in.Text("strurl"), in.Text("dvburl"), in.Text("event_name")); });
}

void VideoBroadcastFamily::AddCommands() {
    using F = VideoBroadcastFamily;
    AddCommand("zap next|previous|NUMBER", "change the channel", &F::Zap);
    AddCommand("signal lost|back", "lose the signal for a while, or get it back", &F::Signal);
    AddCommand("parental-lock on|pin", "block what is presented, or enter the PIN", &F::ParentalLock);
    AddCommand("parental-rating SCHEME RATING", "change the rating of what is presented", &F::Rate);
    AddCommand("fail [ERROR]", "fail permanently with this error (default: 100)", &F::Fail);
    AddCommand("tuner taken|free", "take the tuner away, or free it", &F::TakeTuner);
    AddCommand("record", "start to record what is presented", &F::Record);
}

// Returns the object that used the tuner last or, if it is gone, the newest one.
Object* VideoBroadcastFamily::Viewed() const {
    for (Object* object : mInOrder) {
        if (object == mTv.tuner.LatestUser()) return object;
    }
    return mInOrder.empty() ? nullptr : mInOrder.back();
}

Object& VideoBroadcastFamily::InFront() const {
    Object* object = Viewed();
    if (object == nullptr) throw Refused("there is no video/broadcast object");
    return *object;
}

std::shared_ptr<Component> VideoBroadcastFamily::ComponentOf(const Object& object, In in) const {
    const auto component = object.Components().Resolve(Find(mTv.components, in, "component", "component"));
    if (!component) throw Refused("the service has no such component");
    return component;
}

std::shared_ptr<Object> VideoBroadcastFamily::NewObject() {
    const auto object = std::make_shared<Object>(mTv, mLoop, mSink, mSettings);
    object->serviceLeft.Watch([this] { mListeners.ServiceLeft(InFront()); });
    return object;
}

void VideoBroadcastFamily::Create(In in, Out out) {
    in.Pointer("context");  // checked only: events have the context of the registration
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
    Object& object = *Named(in);
    if (&object == mSupervisor.get()) throw Refused("the broadcast supervisor belongs to the television");
    object.Events().Unregister();  // a destroyed object does not send events
    object.Release();
    mInOrder.erase(std::remove(mInOrder.begin(), mInOrder.end(), &object), mInOrder.end());
    mObjects.Remove(in.Pointer("vb_handle"));
}

void VideoBroadcastFamily::CreateChannel_1(In in, Out out) {
    Named(in);
    Channel channel;
    channel.idType = in.Int("idType");
    channel.dsd = in.ShortText("dsd");
    channel.sid = in.Int("sid");
    // The descriptor names the transponder; here the service id alone finds the service.
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
    channel.ipBroadcastId = in.ShortText("ipBroadcastId");
    out["channel"] = Text(mTv.channels, mTv.MakeChannel(channel));
}

// The null handle releases the object.
void VideoBroadcastFamily::SetChannel(Object& object, In in, int quiet) {
    in.Bool("trickPlay");
    in.Text("url");
    const bool none = in.Pointer("channel") == 0;
    object.SetChannel(none ? nullptr : Find(mTv.channels, in, "channel", "channel"), quiet);
}

ProgrammeList VideoBroadcastFamily::Programmes(const Object* object) const {
    if (object == nullptr || object->State() != PlayState::Presenting) return {};
    return mTv.guide->NowAndNext(object->Current()->service, std::time(nullptr));
}

void VideoBroadcastFamily::CreateProgrammeList(In, Out out) {
    out["prog_coll"] = Text(mTv.programmeLists, std::make_shared<ProgrammeList>(Programmes(Viewed())));
}

void VideoBroadcastFamily::SelectComponent(Object& object, In in) {
    const auto component = ComponentOf(object, in);
    const bool changed = object.Components().Select(component);
    if (changed) object.Events().SelectedComponent(static_cast<int>(component->type));
}

void VideoBroadcastFamily::UnselectComponent(Object& object, In in) {
    const auto component = ComponentOf(object, in);
    const ComponentList active = object.Components().Active(component->type);
    if (active.empty() || active.front() != component) throw Refused("the component is not selected");
    UnselectByType(object, component->type);
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
    component.language = in.ShortText("language");
    component.audioDescription = in.Bool("audioDescription");
    component.audioChannels = in.Int("channels");
    component.encoding = in.ShortText("encoding");
    out["component"] = AddDescription(component);
}

void VideoBroadcastFamily::CreateVideoComponent(In in, Out out) {
    Named(in);
    Component component;
    component.type = ComponentType::Video;
    component.tag = in.Int("componentTag");
    component.aspectRatio = in.Real("aspectRatio");
    component.encoding = in.ShortText("encoding");
    out["component"] = AddDescription(component);
}

void VideoBroadcastFamily::CreateAVComponentList(In in, Out out) {
    const bool active = in.Bool("is_active");
    const ComponentType type = ReadComponentType(in.Int("avcmp_type"));
    auto list = std::make_shared<ComponentList>();
    if (Object* object = Viewed()) *list = active ? object->Components().Active(type) : object->Components().All(type);
    out["avcmp_coll"] = Text(mTv.componentLists, list);
}

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
    if (!lost && !InFront().ProblemEnded()) throw Refused("there is no disturbance to end");
    return "";
}

std::string VideoBroadcastFamily::ParentalLock(const Words& words) {
    const bool on = IsFirst(words, "on", "pin");
    if (on && !InFront().TransientProblem(ChannelError::ParentalLock)) throw Refused("nothing is presented");
    if (!on && !InFront().ProblemEnded()) throw Refused("nothing is locked");
    return "";
}

// The receiver owns the event's collection and may add to it.
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
    if (!InFront().PermanentProblem(static_cast<ChannelError>(*error))) throw Refused("no channel is tuned");
    return "";
}

std::string VideoBroadcastFamily::TakeTuner(const Words& words) {
    mTv.tuner.TakeAway(IsFirst(words, "taken", "free"));
    return "";
}

std::string VideoBroadcastFamily::Record(const Words& words) {
    RequireNone(words);
    if (!mTv.device.Description().pvr) throw Refused("there is no disk for recordings");
    if (!InFront().StartRecording()) throw Refused("nothing is presented, or it is already being recorded");
    return "";
}

}  // namespace

std::unique_ptr<Family> MakeVideoBroadcastFamily(const FamilySetup& setup) {
    return std::make_unique<VideoBroadcastFamily>(setup);
}

}  // namespace hbbtv::sim
