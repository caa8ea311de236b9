// The browser's reports about its tabs, and the viewer's commands for them. browser.h has the other direction.
#include "family/family_setup.h"

#include "common/nearest_name.h"
#include "core/error.h"
#include "core/journal.h"
#include "families/mtm/browser.h"
#include "family/members.h"
#include "television/device/remote_control.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLongestKept = 4096;  // of a string from the browser

const char* NameOf(TabState state) {
    switch (state) {
        case TabState::Empty:
            return "empty";
        case TabState::Loading:
            return "loading";
        case TabState::Loaded:
            return "loaded";
        case TabState::Failed:
            return "failed";
        case TabState::Crashed:
            return "crashed";
        case TabState::Closing:
            return "closing";
    }
    return "";
}

std::string Described(const Tab& tab) {
    std::string text = "tab " + std::to_string(tab.id) + ": ";
    text += tab.madeFor.empty() ? "no application" : tab.madeFor;
    text += std::string(", ") + NameOf(tab.state);
    if (tab.state == TabState::Failed) text += " (" + Excerpt(tab.failure) + ")";
    if (tab.state == TabState::Loading) text += " (" + Json::Value(tab.progress).asString() + ")";
    if (tab.documentLoaded) text += ", document";
    text += std::string(", ") + (tab.shown ? "shown" : "hidden");
    if (tab.focused) text += ", focused";
    if (!tab.title.empty()) text += ", title \"" + Excerpt(tab.title) + "\"";
    if (!tab.url.empty()) text += ", url " + Excerpt(tab.url);
    if (!tab.address.empty()) text += ", address " + Excerpt(tab.address);
    if (tab.renderProcess) text += ", render process " + std::to_string(*tab.renderProcess);
    if (tab.memoryLevel != 0) text += ", memory level " + std::to_string(tab.memoryLevel);
    return text;
}

class MtmFamily : public Family {
  public:
    explicit MtmFamily(const FamilySetup& setup);

  private:
    void AddRows();
    void AddCommands();
    void AddNotification(const char* name, void (MtmFamily::*method)(In), const char* mark = "");

    // Lifecycle of tabs.
    void OnTabCreated(In in) { mTv.tabs.Add(in.Int("tabid")); }
    void OnTabDestroyed(In in);
    void OnRenderRequestCloseTab(In in) { mBrowser.GiveUp(Named(in), TabState::Closing); }
    void OnAllTabsDestroyed(In);
    void OnBlinkOutOfMemory(In in);

    // Visibility.
    void OnTabFocus(In in) { mTv.tabs.Focus(in.Int("tabid")); }
    void OnTabHide(In in) { Named(in).shown = false; }
    void OnTabShow(In in) { Named(in).shown = true; }
    void OnLoadingStateChanged(In in);
    void OnAddressBarChanged(In in) { Named(in).address = Text(in, "url"); }
    void OnTabTitleChanged(In in) { Named(in).title = Text(in, "title"); }
    void OnTabURLChanged(In in) { Named(in).url = Text(in, "title"); }

    // Loading.
    void OnLoadProgressChanged(In in);
    void OnTabDocumentLoadedInFrame(In in) { Named(in).documentLoaded = true; }
    void OnTabLoadFinished(In in);
    void OnTabLoadFailed(In in);

    // Memory.
    void OnMemoryWarningDetected(In in) { mTv.tabs.memoryStatus = in.Int("mem_status"); }
    void OnMemoryReduced(In in) { Named(in).memoryLevel = in.Int("level"); }

    // At the television.
    std::string Key(const Words& words);
    std::string TabTable(const Words& words);
    std::string Crash(const Words& words);
    std::string CloseTabs(const Words& words);

    Tab& Named(In in) { return mTv.tabs.Named(in.Int("tabid")); }
    static std::string Text(In in, const char* member) { return in.Text(member).substr(0, kLongestKept); }
    void Crashed(Tab& tab);

    Tv& mTv;
    Browser mBrowser;
};

MtmFamily::MtmFamily(const FamilySetup& setup)
    : Family("mtm"),
      mTv(setup.tv),
      mBrowser(setup.loop, setup.tv, setup.settings,
               Sends(setup.makeSink,
                     {"SetAppConfig", "SetDvbOrigin", "CreateApp", "DestroyApp", "DestroyAllApps", "ShowHideTab",
                      "SendKey", "GetXmlFile", "LoadURLInTab", "GetRenderProcessId", "Ping"})) {
    AddRows();
    AddCommands();
}

void MtmFamily::AddNotification(const char* name, void (MtmFamily::*method)(In), const char* mark) {
    const auto handler = [this, method](In in, Out) {
        mBrowser.FoundThere();
        (this->*method)(in);
        mBrowser.KeepPinging();
    };
    Row(name, handler, mark);
}

void MtmFamily::AddRows() {
    using F = MtmFamily;
    AddNotification("OnTabCreated", &F::OnTabCreated);
    AddNotification("OnTabDestroyed", &F::OnTabDestroyed);
    AddNotification("OnRenderRequestCloseTab", &F::OnRenderRequestCloseTab);
    AddNotification("OnAllTabsDestroyed", &F::OnAllTabsDestroyed);
    AddNotification("OnTabFocus", &F::OnTabFocus);
    AddNotification("OnTabHide", &F::OnTabHide);
    AddNotification("OnTabShow", &F::OnTabShow);
    AddNotification("OnLoadingStateChanged", &F::OnLoadingStateChanged, "is_loading");
    AddNotification("OnAddressBarChanged", &F::OnAddressBarChanged);
    AddNotification("OnLoadProgressChanged", &F::OnLoadProgressChanged);
    AddNotification("OnTabTitleChanged", &F::OnTabTitleChanged);
    AddNotification("OnTabURLChanged", &F::OnTabURLChanged);
    AddNotification("OnTabLoadFinished", &F::OnTabLoadFinished);
    AddNotification("OnTabLoadFailed", &F::OnTabLoadFailed);
    AddNotification("OnMemoryWarningDetected", &F::OnMemoryWarningDetected);
    AddNotification("OnMemoryReduced", &F::OnMemoryReduced);
    AddNotification("OnBlinkOutOfMemory", &F::OnBlinkOutOfMemory);
    AddNotification("OnTabDocumentLoadedInFrame", &F::OnTabDocumentLoadedInFrame);
}

void MtmFamily::AddCommands() {
    using F = MtmFamily;
    AddCommand("key NAME", "press a key of the remote control", &F::Key);
    AddCommand("tabs", "show the table of tabs", &F::TabTable);
    AddCommand("crash TAB", "crash the process of the tab", &F::Crash);
    AddCommand("close-tabs", "close all tabs and end their applications", &F::CloseTabs);
}

void MtmFamily::OnTabDestroyed(In in) {
    const Tab tab = Named(in);
    mTv.tabs.Remove(tab.id);
    const ApplicationPointer application = tab.application.lock();
    if (application) mTv.applications.End(application);
}

void MtmFamily::OnAllTabsDestroyed(In) {
    std::vector<ApplicationPointer> applications;
    for (const auto& entry : mTv.tabs.All()) {
        const ApplicationPointer application = entry.second.application.lock();
        if (application) applications.push_back(application);
    }
    mTv.tabs.Clear();
    for (const auto& application : applications) mTv.applications.End(application);
}

void MtmFamily::Crashed(Tab& tab) {
    const ApplicationPointer application = tab.application.lock();
    Journal::Log("mtm: tab " + std::to_string(tab.id) + " has crashed" +
                 (application ? ", " + application->name + " ends" : ""));
    mBrowser.GiveUp(tab, TabState::Crashed);
}

void MtmFamily::OnBlinkOutOfMemory(In in) {
    Crashed(Named(in));
}

// The report is about the browser, not a tab.
void MtmFamily::OnLoadingStateChanged(In in) {
    const bool loading = in.Bool("is_loading");
    const bool canGoBack = in.Bool("can_back");
    mTv.tabs.canGoForward = in.Bool("can_forward");
    mTv.tabs.canGoBack = canGoBack;
    mTv.tabs.loading = loading;
}

void MtmFamily::OnLoadProgressChanged(In in) {
    Tab& tab = Named(in);
    tab.progress = in.Real("progress");
    if (!tab.Going() && tab.progress < 1) tab.state = TabState::Loading;
}

void MtmFamily::OnTabLoadFinished(In in) {
    Tab& tab = Named(in);
    tab.url = Text(in, "url");
    if (tab.Going()) return;
    tab.state = TabState::Loaded;
    const ApplicationPointer application = tab.application.lock();
    const bool first = application && !tab.saidLoaded;
    if (!first) return;
    tab.saidLoaded = true;
    mTv.applications.SayLoaded(application);
}

void MtmFamily::OnTabLoadFailed(In in) {
    Tab& tab = Named(in);
    const int code = in.Int("error_code");
    const std::string description = Text(in, "description");
    tab.url = Text(in, "url");
    tab.failure = std::to_string(code) + " " + description;
    if (!tab.Going()) tab.state = TabState::Failed;
}

std::string MtmFamily::Key(const Words& words) {
    const RemoteKey* key = FindKey(Word(words));
    if (key == nullptr) {
        std::set<std::string> known;
        for (const RemoteKey& one : RemoteKeys()) known.insert(one.name);
        throw Refused("the remote control has no key \"" + Excerpt(words[0]) + "\"" + DidYouMean(words[0], known));
    }
    const ApplicationPointer taker = mBrowser.SendKey(*key);
    return taker ? taker->name : "no application takes it";
}

std::string MtmFamily::TabTable(const Words& words) {
    RequireNone(words);
    const Tabs& tabs = mTv.tabs;
    std::string text = std::string("browser ") + mBrowser.Presence() + ", status " +
                       std::to_string(tabs.browserStatus) + ", memory " + std::to_string(tabs.memoryStatus) +
                       (tabs.loading ? ", loading" : "") + (tabs.canGoBack ? ", can go back" : "") +
                       (tabs.canGoForward ? ", can go forward" : "");
    for (const auto& entry : tabs.All()) text += "; " + Described(entry.second);
    return text;
}

std::string MtmFamily::Crash(const Words& words) {
    const auto tab = Number(Word(words), INT32_MAX);
    if (!tab) throw WrongWords();
    Crashed(mTv.tabs.Named(*tab));
    return "";
}

std::string MtmFamily::CloseTabs(const Words& words) {
    RequireNone(words);
    mBrowser.DestroyAll();
    return "";
}

}  // namespace

std::unique_ptr<Family> MakeMtmFamily(const FamilySetup& setup) {
    return std::make_unique<MtmFamily>(setup);
}

}  // namespace hbbtv::sim
