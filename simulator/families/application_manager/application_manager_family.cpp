// Requests and commands of the application manager. application_starter.h decides which applications start when.
#include "family/family_setup.h"

#include <algorithm>
#include <cstdio>

#include "core/error.h"
#include "core/journal.h"
#include "families/application_manager/application_events.h"
#include "families/application_manager/application_starter.h"
#include "family/members.h"
#include "television/device/remote_control.h"

namespace hbbtv::sim {

namespace {

constexpr int kMostOtherKeys = 256;

// The names of numbered members are cut to three characters, so that 100 to 109 are k10, and so on.
std::string Numbered(int index) {
    return ("k" + std::to_string(index)).substr(0, 3);
}

// Ids in one string, 16 characters each.
std::string Field(int number) {
    char text[17];
    std::snprintf(text, sizeof(text), "%16d", number);
    return text;
}

void PutKeys(Json::Value& out, const std::vector<int>& keys) {
    out["num"] = static_cast<int>(keys.size());
    for (size_t i = 0; i < keys.size(); ++i) out[Numbered(static_cast<int>(i))] = keys[i];
}

void PutId(Json::Value& out, const ApplicationId& id) {
    out["appid"] = id.application;
    out["orgid"] = id.organisation;
}

bool Flag(const Arguments& in, const char* member) {
    const int value = in.Int(member);
    if (value != 0 && value != 1) throw Refused(std::string("member \"") + member + "\" is neither 0 nor 1");
    return value == 1;
}

ApplicationId IdIn(const Words& words) {
    const auto id = ReadApplicationId(Word(words));
    if (!id) throw WrongWords();
    return *id;
}

std::string Described(const Application& application) {
    static const char* const kTypes[] = {"broadcast-related", "broadcast-independent", "operator"};
    char keys[16];
    std::snprintf(keys, sizeof(keys), "0x%x", static_cast<unsigned>(application.keySets));
    std::string text = IdText(application.id) + " " + Excerpt(application.name) + ", " +
                       kTypes[static_cast<int>(application.Type())] + ", " + (application.shown ? "shown" : "hidden") +
                       ", keys " + keys;
    for (const int key : application.otherKeys) text += " " + FindKey(key)->name;
    if (!(application.parent == kNoApplication)) text += ", child of " + IdText(application.parent);
    if (!application.admitted) text += ", waits for the parental rating";
    if (application.admitted && application.document.empty()) text += ", waits for its file";
    return text;
}

class ApplicationManagerFamily : public Family {
  public:
    explicit ApplicationManagerFamily(const FamilySetup& setup);

  private:
    void AddRows();
    void AddCommands();

    // Applications.
    void GetOwnerApp(In in, Out out);
    void GetCurrentApp(In in, Out out);
    void GetChildApps(In in, Out out);
    void CreateApp(In in, Out out);
    void DestroyApp(In in, Out) { mTv.applications.End(Named(in)); }
    void ShowApp(In in, Out) { mTv.applications.SetShown(Named(in), true); }
    void HideApp(In in, Out) { mTv.applications.SetShown(Named(in), false); }

    // Keys.
    void GetValue(In in, Out out) { out["value"] = Named(in)->keySets; }
    void GetOtherKeys(In in, Out out) { PutKeys(out, Named(in)->otherKeys); }
    void GetMaxiMumValue(In in, Out out);
    void GetMaxiMumOtherKeys(In in, Out out);
    void SetValue(In in, Out);
    void GetKeyIcon(In in, Out out);
    void GetKeyLabel(In in, Out out);

    // For the browser and its tabs.
    void GetVBResouceAllowed(In in, Out out);
    void SetBRAppToBI(In in, Out) { mTv.applications.Bind(OfTab(in), nullptr); }
    void SetBIAppToBR(In in, Out) { mTv.applications.Bind(OfTab(in), mTv.tuner.On()->service); }
    void GetAppType(In in, Out out) { out["appType"] = static_cast<int>(OfTab(in)->Type()); }
    void KeyConsumedByBrowser(In in, Out out);
    void NotifyDSMCCResponseToAPM(In in, Out);
    void SetDeviceResolution(In in, Out);

    // At the television.
    std::string ApplicationTable(const Words& words);
    std::string Start(const Words& words);
    std::string Stop(const Words& words);

    void SayFullScreen(bool destroyed);

    ApplicationPointer Named(In in) const;
    ApplicationPointer OfTab(In in) const;
    const RemoteKey& NamedKey(In in) const;

    Tv& mTv;
    ApplicationEvents mEvents;
    bool mPictureAlone = true;
    ApplicationStarter mStarter;
};

ApplicationManagerFamily::ApplicationManagerFamily(const FamilySetup& setup)
    : Family("application_manager"),
      mTv(setup.tv),
      mEvents(Sends(setup.makeSink, {"application loaded", "set broadcast full screen", "local parental rating"})),
      mStarter(setup.loop, setup.tv, setup.settings, mEvents) {
    mTv.applications.shown.Watch([this](const ApplicationPointer&) { SayFullScreen(false); });
    mTv.applications.loaded.Watch([this](const ApplicationPointer& loaded) { mEvents.ApplicationLoaded(loaded->id); });
    mTv.applications.ended.Watch([this](const ApplicationPointer&) { SayFullScreen(true); });
    AddRows();
    AddCommands();
}

void ApplicationManagerFamily::AddRows() {
    using F = ApplicationManagerFamily;
    Row("GetOwnerApp", &F::GetOwnerApp);
    Row("GetCurrentApp", &F::GetCurrentApp);
    Row("GetChildApps", &F::GetChildApps);
    Row("CreateApp", &F::CreateApp);
    Row("DestroyApp", &F::DestroyApp);
    Row("ShowApp", &F::ShowApp);
    Row("HideApp", &F::HideApp);
    Row("GetValue", &F::GetValue);
    Row("GetOtherKeys", &F::GetOtherKeys);
    Row("GetMaxiMumValue", &F::GetMaxiMumValue);
    Row("GetMaxiMumOtherKeys", &F::GetMaxiMumOtherKeys);
    Row("SetValue", &F::SetValue);
    Row("GetKeyIcon", &F::GetKeyIcon);
    Row("GetKeyLabel", &F::GetKeyLabel);
    Row("SetDeviceResolution", &F::SetDeviceResolution);
    Row("GetVBResouceAllowed", &F::GetVBResouceAllowed);
    Row("SetBRAppToBI", &F::SetBRAppToBI);
    Row("GetAppType", &F::GetAppType);
    Row("SetBIAppToBR", &F::SetBIAppToBR);
    Row("KeyConsumedByBrowser", &F::KeyConsumedByBrowser);
    Row("NotifyDSMCCResponseToAPM", &F::NotifyDSMCCResponseToAPM);
}

void ApplicationManagerFamily::AddCommands() {
    using F = ApplicationManagerFamily;
    AddCommand("apps", "show the table of applications", &F::ApplicationTable);
    AddCommand("start ORGANISATION.APPLICATION", "start an application of the service", &F::Start);
    AddCommand("stop ORGANISATION.APPLICATION", "end an application", &F::Stop);
}

ApplicationPointer ApplicationManagerFamily::Named(In in) const {
    const ApplicationId id{in.Int("appid"), in.Int("orgid")};
    const ApplicationPointer application = mTv.applications.Find(id);
    if (!application) throw Refused("no application " + IdText(id) + " is running");
    return application;
}

ApplicationPointer ApplicationManagerFamily::OfTab(In in) const {
    const int id = in.Int("tabid");
    const ApplicationPointer application = mTv.tabs.Named(id).application.lock();
    if (!application || !application->running) throw Refused("tab " + std::to_string(id) + " has no application");
    return application;
}

const RemoteKey& ApplicationManagerFamily::NamedKey(In in) const {
    Named(in);
    const int code = in.Int("code");
    const RemoteKey* key = FindKey(code);
    if (key == nullptr) throw Refused("the remote control has no key " + std::to_string(code));
    return *key;
}

// A child is owned by the application that created it, any other application by itself.
void ApplicationManagerFamily::GetOwnerApp(In in, Out out) {
    const int number = in.Int("appid");
    const ApplicationPointer application = mTv.applications.FindNumber(number);
    if (!application) throw Refused("no application with the number " + std::to_string(number) + " is running");
    const bool child = !(application->parent == kNoApplication);
    PutId(out, child ? application->parent : application->id);
}

void ApplicationManagerFamily::GetCurrentApp(In, Out out) {
    const ApplicationPointer current = mTv.applications.Current();
    if (!current) throw Refused("no application is running");
    PutId(out, current->id);
}

void ApplicationManagerFamily::GetChildApps(In in, Out out) {
    const auto children = mTv.applications.ChildrenOf(Named(in)->id);
    std::string numbers;
    std::string organisations;
    for (const auto& child : children) {
        numbers += Field(child->id.application);
        organisations += Field(child->id.organisation);
    }
    out["appNum"] = static_cast<int>(children.size());
    out["appidArray"] = numbers;
    out["orgidArray"] = organisations;
}

void ApplicationManagerFamily::CreateApp(In in, Out out) {
    const bool nobody = ApplicationId{in.Int("appid"), in.Int("orgid")} == kNoApplication;
    const ApplicationPointer creator = nobody ? nullptr : Named(in);
    const std::string url = in.Text("url");
    const bool child = Flag(in, "child");
    PutId(out, mStarter.Create(creator, url, child, Flag(in, "opapp"))->id);
}

void ApplicationManagerFamily::GetMaxiMumValue(In in, Out out) {
    Named(in);
    out["maxvalue"] = AllKeySets();
}

void ApplicationManagerFamily::GetMaxiMumOtherKeys(In in, Out out) {
    Named(in);
    PutKeys(out, AllOtherKeys());
}

void ApplicationManagerFamily::SetValue(In in, Out) {
    const ApplicationPointer application = Named(in);
    const int sets = in.Int("value");
    const int count = in.Int("keynum");
    if (count < 0 || count > kMostOtherKeys) throw Refused(std::to_string(count) + " keys");
    std::vector<int> keys;
    for (int i = 0; i < count; ++i) keys.push_back(in.Int(Numbered(i).c_str()));
    application->AskForKeys(sets, keys);
}

void ApplicationManagerFamily::GetKeyIcon(In in, Out out) {
    out["pointer"] = "file:///usr/share/tv/keys/" + NamedKey(in).name + ".png";
}

void ApplicationManagerFamily::GetKeyLabel(In in, Out out) {
    out["label"] = NamedKey(in).label;
}

// Applications that are not bound to the current service may not use its picture, and none may without a tuner.
void ApplicationManagerFamily::GetVBResouceAllowed(In in, Out out) {
    const bool belongs = OfTab(in)->Type() != ApplicationType::BroadcastIndependent;
    out["allowed"] = belongs && !mTv.tuner.TakenAway() ? 1 : 0;
}

void ApplicationManagerFamily::KeyConsumedByBrowser(In in, Out out) {
    const ApplicationPointer application = OfTab(in);
    const RemoteKey* key = FindKey(in.Int("keyCode"));
    out["consumed"] = key != nullptr && application->shown && application->Takes(*key) ? 1 : 0;
}

void ApplicationManagerFamily::NotifyDSMCCResponseToAPM(In in, Out) {
    const std::string url = in.Text("url");
    if (!mTv.applications.FileArrived(url, in.ShortText("path"))) {
        throw Refused("no application waits for \"" + Excerpt(url) + "\"");
    }
}

void ApplicationManagerFamily::SetDeviceResolution(In in, Out) {
    const unsigned width = in.UInt("width");
    const unsigned height = in.UInt("heigth");
    if (width == 0 || height == 0) throw Refused("the width or height of the screen is 0");
    mTv.resolution = {width, height};
}

void ApplicationManagerFamily::SayFullScreen(bool destroyed) {
    const bool alone = !mTv.applications.AnyShown();
    if (alone == mPictureAlone) return;
    mPictureAlone = alone;
    mEvents.BroadcastFullScreen(alone, alone && destroyed);
}

std::string ApplicationManagerFamily::ApplicationTable(const Words& words) {
    RequireNone(words);
    std::string text = "screen " + std::to_string(mTv.resolution.width) + "x" + std::to_string(mTv.resolution.height);
    for (const auto& application : mTv.applications.Running()) text += "; " + Described(*application);
    return text;
}

std::string ApplicationManagerFamily::Start(const Words& words) {
    return mStarter.StartAnnounced(IdIn(words), "", true)->name;
}

std::string ApplicationManagerFamily::Stop(const Words& words) {
    const ApplicationId id = IdIn(words);
    const ApplicationPointer application = mTv.applications.Find(id);
    if (!application) throw Refused("no application " + IdText(id) + " is running");
    mTv.applications.End(application);
    return application->name;
}

}  // namespace

std::unique_ptr<Family> MakeApplicationManagerFamily(const FamilySetup& setup) {
    return std::make_unique<ApplicationManagerFamily>(setup);
}

}  // namespace hbbtv::sim
