#include "families/mtm/browser.h"

#include "core/error.h"
#include "core/journal.h"
#include "families/mtm/xml_signalling.h"
#include "family/members.h"
#include "television/device/remote_control.h"

namespace hbbtv::sim {

namespace {

constexpr int kPressed = 0;  // type of a key's message

BrowserCommands::Page PageOf(const Application& application) {
    const char* mode = application.operatorApplication ? "opapp" : "hbbtv";
    return {application.document, application.shown, application.service != nullptr, mode, application.boundaries};
}

std::string Origin(const Service& service) {
    return service.uri.empty() ? DvbUrl(service) : service.uri;
}

}  // namespace

Browser::Browser(EventLoop& loop, Tv& tv, const Settings& settings, EventSink& sink)
    : mTv(tv), mSettings(settings), mCommands(sink), mPing(loop) {
    tv.applications.ready.Watch([this](const ApplicationPointer& application) { Ready(application); });
    tv.applications.shown.Watch([this](const ApplicationPointer& application) { Shown(application); });
    tv.applications.bound.Watch([this](const ApplicationPointer& application) { Bound(application); });
    tv.applications.ended.Watch([this](const ApplicationPointer& application) { Ended(application); });
}

const char* Browser::Presence() const {
    if (mKnown == Known::Nothing) return "not asked";
    return mKnown == Known::There ? "there" : "not there";
}

void Browser::Ready(const ApplicationPointer& application) {
    KeepPinging();
    Open(application);
}

void Browser::Open(const ApplicationPointer& application) {
    if (!application->admitted || mAsked.count(application.get()) != 0 || mTv.tabs.Of(application)) return;
    if (!application->document.empty()) return AskForTab(application);
    if (IsXmlSignalling(application->url)) AskForSignalling(application);
}

void Browser::OpenAll() {
    const std::vector<ApplicationPointer> running = mTv.applications.Running();
    for (const auto& application : running) Open(application);
}

void Browser::AskForSignalling(const ApplicationPointer& application) {
    mAsked.insert(application.get());
    mCommands.GetXmlFile(application->url, IdText(application->id), [this, application](const Json::Value& reply) {
        mAsked.erase(application.get());
        if (application->running) SignallingCame(application, reply);
    });
}

void Browser::SignallingCame(const ApplicationPointer& application, const Json::Value& reply) {
    const bool text = WentWell(reply) && reply["xmlFile"].isString();
    const auto location = text ? LocationIn(reply["xmlFile"].asString()) : std::nullopt;
    if (!location)
        return NoTab(application, reply, "it returns no application location for " + Excerpt(application->url));
    mTv.applications.FoundDocument(application, *location);
}

void Browser::AskForTab(const ApplicationPointer& application) {
    DestroyLeftovers();
    mAsked.insert(application.get());
    mCommands.CreateApp(PageOf(*application), [this, application](const Json::Value& reply) {
        mAsked.erase(application.get());
        TabCame(application, reply);
    });
}

void Browser::TabCame(const ApplicationPointer& application, const Json::Value& reply) {
    const auto id = IntIn(reply, "tabid");
    if (!application->running) {
        if (id) mCommands.DestroyApp(*id);
        if (Tab* tab = id ? mTv.tabs.Find(*id) : nullptr) tab->state = TabState::Closing;
        return;
    }
    if (!id) return NoTab(application, reply, "it did not create a tab");
    const Tab* known = mTv.tabs.Find(*id);
    const bool taken = known != nullptr && !known->Going() && known->application.lock();
    if (taken) return NoTab(application, reply, "tab " + std::to_string(*id) + " is used by another application");
    try {
        Tab& tab = mTv.tabs.Add(*id);
        tab.application = application;
        tab.madeFor = application->name + " (" + IdText(application->id) + ")";
    } catch (const Refused& e) {
        return NoTab(application, reply, e.what());
    }
    mAbsenceLogged = false;
    mRefusalLogged.erase(application.get());
    Fill(*id, application);
    FoundThere();
}

void Browser::Fill(int tab, const ApplicationPointer& application) {
    mCommands.SetAppConfig(tab, application->service != nullptr);
    if (application->service) mCommands.SetDvbOrigin(tab, Origin(*application->service));
    mCommands.LoadURLInTab(tab, PageOf(*application));
    if (application->shown) Show(tab, *application);
    AskForRenderProcess(tab);
}

void Browser::AskForRenderProcess(int id) {
    mCommands.GetRenderProcessId(id, [this, id](const Json::Value& reply) {
        Tab* tab = mTv.tabs.Find(id);
        const auto process = IntIn(reply, "render_id");
        if (tab != nullptr) tab->renderProcess = process;
    });
}

// Logs the absence of the browser once, and a refusal once per application.
void Browser::NoTab(const ApplicationPointer& application, const Json::Value& reply, const std::string& what) {
    const bool absent = reply.isNull();
    const bool logged = absent ? mAbsenceLogged : !mRefusalLogged.insert(application.get()).second;
    if (absent) mKnown = Known::NotThere;
    if (absent) mAbsenceLogged = true;
    if (logged) return;
    Journal::Log("mtm: no tab for " + application->name + ": " +
                 (absent ? "no browser responds" : "the browser responds, but " + what));
}

void Browser::Show(int tab, const Application& application) {
    int shown = 0;
    for (const auto& running : mTv.applications.Running()) shown += running->shown ? 1 : 0;
    mCommands.ShowHideTab(tab, application.shown, shown > 1);
}

void Browser::Shown(const ApplicationPointer& application) {
    if (const Tab* tab = mTv.tabs.Of(application)) Show(tab->id, *application);
}

void Browser::Bound(const ApplicationPointer& application) {
    const Tab* tab = mTv.tabs.Of(application);
    if (tab == nullptr) return;
    mCommands.SetAppConfig(tab->id, application->service != nullptr);
    if (application->service) mCommands.SetDvbOrigin(tab->id, Origin(*application->service));
}

void Browser::Ended(const ApplicationPointer& application) {
    mRefusalLogged.erase(application.get());
    if (Tab* tab = mTv.tabs.Of(application)) GiveUp(*tab, TabState::Closing);
}

void Browser::GiveUp(Tab& tab, TabState state) {
    tab.state = state;
    mCommands.DestroyApp(tab.id);
    if (const ApplicationPointer application = tab.application.lock()) mTv.applications.End(application);
}

void Browser::DestroyAll() {
    mCommands.DestroyAllApps();
    mTv.tabs.CloseAll();
    while (!mTv.applications.Running().empty()) mTv.applications.End(mTv.applications.Running().back());
}

ApplicationPointer Browser::SendKey(const RemoteKey& key) {
    const auto& running = mTv.applications.Running();
    for (auto application = running.rbegin(); application != running.rend(); ++application) {
        if (!(*application)->shown || !(*application)->Takes(key) || !mTv.tabs.Of(*application)) continue;
        mCommands.SendKey(key.code, kPressed, ++mKeyEvents);
        return *application;
    }
    return nullptr;
}

void Browser::FoundThere() {
    const bool wasAway = mKnown == Known::NotThere;
    mKnown = Known::There;
    if (!wasAway) return;
    DestroyLeftovers();
    OpenAll();
}

void Browser::DestroyLeftovers() {
    if (mLeftovers) mCommands.DestroyAllApps();
    mLeftovers = false;
}

void Browser::KeepPinging() {
    const bool wanted = !mTv.applications.Running().empty() || !mTv.tabs.All().empty();
    if (!wanted || mPinging || mPing.Running() || mSettings.pingInterval.count() == 0) return;
    mPing.Start(mSettings.pingInterval, [this] { Ping(); });
}

void Browser::Ping() {
    mPinging = true;
    mCommands.Ping([this](const Json::Value& reply) {
        mPinging = false;
        Ponged(reply);
        KeepPinging();
    });
}

void Browser::Ponged(const Json::Value& reply) {
    const auto status = IntIn(reply, "status");
    if (!status) return Lost();
    mTv.tabs.browserStatus = *status;
    FoundThere();
    OpenAll();
}

// A browser that does not reply has no tabs: a new one does not know those of the old one.
void Browser::Lost() {
    if (!mTv.tabs.All().empty()) {
        Journal::Log("mtm: the browser does not respond; its tabs are removed");
        mLeftovers = true;
    }
    mTv.tabs.Clear();
    mKnown = Known::NotThere;
}

}  // namespace hbbtv::sim
