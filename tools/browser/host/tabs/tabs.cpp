#include "tabs/tabs.h"

#include <algorithm>
#include <utility>

#include "chromium/keys.h"

namespace hbbtv::browser {

namespace {

// A platform that does not load the URL after it has created the tab does not intend to.
constexpr Milliseconds kTimeToLoad{200};
constexpr Milliseconds kTimeToBecomeRelated{1000};

// Types of keys.
constexpr int kPressed = 0;  // and released
constexpr int kDown = 1;
constexpr int kUp = 2;

void Done(const Platform::Reply& reply) {
    Json::Value results;
    results["status"] = 0;
    reply(results);
}

void Refuse(const Platform::Reply& reply) {
    reply(Json::Value(Json::objectValue));
}

void Fill(Tab& tab, const Json::Value& arguments) {
    tab.url = arguments["url"].asString();
    tab.broadcastRelated = arguments["isBroadcastRelated"].asBool();
    tab.mode = arguments["appMode"].asString();
    tab.boundaries.clear();
    for (const Json::Value& boundary : arguments["boundaries"]) tab.boundaries.push_back(boundary.asString());
}

}  // namespace

Tabs::Tabs(devtools::Loop& loop, Platform& platform, GetXml getXml, Handlers handlers)
    : mLoop(loop),
      mPlatform(platform),
      mGetXml(std::move(getXml)),
      mHandlers(std::move(handlers)),
      mMemory(loop, platform, [this](int id) { TellLowMemory(id); }) {}

const std::map<std::string, Tabs::Row>& Tabs::Rows() {
    static const std::map<std::string, Row> rows{
        {"CreateApp", &Tabs::Create},
        {"LoadURLInTab", &Tabs::LoadUrl},
        {"SetAppConfig", &Tabs::Configure},
        {"SetDvbOrigin", &Tabs::SetOrigin},
        {"ShowHideTab", &Tabs::ShowHide},
        {"DestroyApp", &Tabs::Destroy},
        {"DestroyAllApps", &Tabs::DestroyAll},
        {"SendKey", &Tabs::SendKey},
        {"GetXmlFile", &Tabs::GetXmlFile},
        {"GetRenderProcessId", &Tabs::GetRenderProcess},
        {"Ping", &Tabs::Ping},
    };
    return rows;
}

void Tabs::Use(Pages* pages) {
    mPages = pages;
    mMemory.Use(pages);
    if (pages != nullptr) return;
    while (!mTabs.empty()) Gone(mTabs.begin()->first);
}

void Tabs::Take(const std::string& command, const Json::Value& arguments, const Platform::Reply& reply) {
    const auto row = Rows().find(command);
    if (row == Rows().end() || mPages == nullptr) return Refuse(reply);
    const bool knownTab = !arguments.isMember("tabId") || Find(arguments["tabId"].asInt()) != nullptr;
    if (!knownTab) return Refuse(reply);
    (this->*row->second)(arguments, reply);
}

int Tabs::Of(const std::string& page) const {
    for (const auto& [id, tab] : mTabs) {
        if (tab.page == page) return id;
    }
    return 0;
}

const Tab* Tabs::Find(int id) const {
    const auto found = mTabs.find(id);
    return found == mTabs.end() ? nullptr : &found->second;
}

std::vector<std::string> Tabs::Shown() const {
    std::vector<std::string> pages;
    for (const int id : mOrder) pages.push_back(mTabs.at(id).page);
    return pages;
}

void Tabs::Create(const Json::Value& arguments, const Platform::Reply& reply) {
    mPages->Create([this, arguments, reply](const std::string& page) {
        if (page.empty()) return Refuse(reply);
        const int id = ++mLast;
        Fill(mTabs[id], arguments);
        Created(id, page);
        Json::Value results;
        results["status"] = 0;
        results["tabId"] = id;
        reply(results);
        if (arguments["autoShow"].asBool()) Show(id, true);
        mLoop.After(kTimeToLoad, [this, id] {
            const Tab* tab = Find(id);
            if (tab == nullptr || tab->loading || tab->held) return;
            mTabs[id].early = true;
            Load(id);
        });
    });
}

void Tabs::Created(int id, const std::string& page) {
    mTabs[id].page = page;
    mMemory.Add(id, page);
    Report("OnTabCreated", id);
    mHandlers.onCreated(id, mTabs[id]);
}

void Tabs::LoadUrl(const Json::Value& arguments, const Platform::Reply& reply) {
    const int id = arguments["tabId"].asInt();
    Tab& tab = mTabs[id];
    const bool begun = std::exchange(tab.early, false) && tab.url == arguments["url"].asString();
    Fill(tab, arguments);
    Done(reply);
    if (arguments["autoShow"].asBool()) Show(id, true);
    if (begun) return;
    tab.held = !tab.broadcastRelated && mHandlers.becomesRelated(id, tab);
    if (!tab.held) return Load(id);
    mLoop.After(kTimeToBecomeRelated, [this, id] {
        if (Find(id) != nullptr && mTabs[id].held) Load(id);
    });
}

void Tabs::Load(int id) {
    Tab& tab = mTabs[id];
    tab.loading = true;
    tab.held = false;
    if (!tab.url.empty()) mPages->Load(tab.page, mHandlers.pageUrl(tab.url));
}

void Tabs::Configure(const Json::Value& arguments, const Platform::Reply& reply) {
    const int id = arguments["tabId"].asInt();
    Tab& tab = mTabs[id];
    tab.broadcastRelated = arguments["isBroadcastRelated"].asBool();
    Done(reply);
    TellPage(tab, id);
}

void Tabs::SetOrigin(const Json::Value& arguments, const Platform::Reply& reply) {
    const int id = arguments["tabId"].asInt();
    Tab& tab = mTabs[id];
    tab.origin = arguments["origin"].asString();
    Done(reply);
    TellPage(tab, id);
    if (tab.held && tab.broadcastRelated) Load(id);
}

Json::Value Tabs::Described(int id) const {
    Json::Value values;
    const Tab* tab = Find(id);
    values["tab"] = id;
    values["broadcastRelated"] = tab == nullptr || tab->broadcastRelated;
    values["origin"] = tab == nullptr ? "" : tab->origin;
    values["mode"] = tab == nullptr ? "" : tab->mode;
    values["shown"] = tab != nullptr && tab->shown;
    values["boundaries"] = Json::Value(Json::arrayValue);
    if (tab == nullptr) return values;
    for (const std::string& boundary : tab->boundaries) values["boundaries"].append(boundary);
    return values;
}

void Tabs::TellLowMemory(int id) {
    Json::Value event;
    event["interface"] = "host";
    event["event"] = "lowMemory";
    mPages->Deliver(event, mTabs[id].page);
}

void Tabs::TellPage(const Tab& tab, int id, bool shownChanged) {
    Json::Value event;
    event["interface"] = "host";
    event["event"] = "tab";
    event["arguments"] = Described(id);
    event["arguments"]["shownChanged"] = shownChanged;
    mPages->Deliver(event, tab.page);
}

void Tabs::ShowHide(const Json::Value& arguments, const Platform::Reply& reply) {
    const int id = arguments["tabId"].asInt();
    Done(reply);
    if (arguments["show"].asBool()) {
        Show(id, arguments["isMulti"].asBool());
    } else {
        Hide(id);
    }
}

// Alone, unless several tabs may be shown at once.
void Tabs::Show(int id, bool multi) {
    const std::vector<int> others = mOrder;
    for (const int other : others) {
        if (!multi && other != id) Hide(other);
    }
    const bool wasShown = std::exchange(mTabs[id].shown, true);
    mOrder.erase(std::remove(mOrder.begin(), mOrder.end(), id), mOrder.end());
    mOrder.push_back(id);
    if (!wasShown) Report("OnTabShow", id);
    if (!wasShown) TellPage(mTabs[id], id, true);
    Focus();
}

void Tabs::Hide(int id) {
    if (!std::exchange(mTabs[id].shown, false)) return;
    mOrder.erase(std::remove(mOrder.begin(), mOrder.end(), id), mOrder.end());
    Report("OnTabHide", id);
    TellPage(mTabs[id], id, true);
    Focus();
}

// The topmost tab has the focus.
void Tabs::Focus() {
    const int topmost = mOrder.empty() ? 0 : mOrder.back();
    if (std::exchange(mFocused, topmost) == topmost || topmost == 0) return;
    Report("OnTabFocus", topmost);
}

void Tabs::Destroy(const Json::Value& arguments, const Platform::Reply& reply) {
    Done(reply);
    Close(arguments["tabId"].asInt());
}

void Tabs::DestroyAll(const Json::Value&, const Platform::Reply& reply) {
    Done(reply);
    for (const auto& entry : mTabs) Close(entry.first);
}

void Tabs::Close(int id) {
    if (!std::exchange(mTabs[id].destroyed, true)) mPages->Close(mTabs[id].page);
}

void Tabs::Gone(int id) {
    const Tab tab = mTabs[id];
    mTabs.erase(id);
    mMemory.Remove(id);
    mOrder.erase(std::remove(mOrder.begin(), mOrder.end(), id), mOrder.end());
    Report("OnTabDestroyed", id);
    if (mTabs.empty()) mPlatform.CallLater("IMtm.OnAllTabsDestroyed", Json::Value(Json::objectValue));
    Focus();
    mHandlers.onGone(id, tab);
}

// The platform does not name the tab: it is the one with the focus.
void Tabs::SendKey(const Json::Value& arguments, const Platform::Reply& reply) {
    const Tab* tab = Find(mFocused);
    const int type = arguments["keyType"].asInt();
    if (tab == nullptr || type < kPressed || type > kUp) return Refuse(reply);
    const int code = arguments["key"].asInt();
    if (type == kPressed) mPages->PressKey(tab->page, code);
    if (type == kDown) mPages->HoldKey(tab->page, code, !mHeldKeys.insert(code).second);
    if (type == kUp) mPages->ReleaseKey(tab->page, code);
    if (type != kDown) mHeldKeys.erase(code);
    Done(reply);
}

void Tabs::GetXmlFile(const Json::Value& arguments, const Platform::Reply& reply) {
    mGetXml(arguments["url"].asString(), reply);
}

void Tabs::GetRenderProcess(const Json::Value& arguments, const Platform::Reply& reply) {
    mPages->GetRenderProcess(mTabs[arguments["tabId"].asInt()].page, [reply](int process) {
        if (process == 0) return Refuse(reply);
        Json::Value results;
        results["status"] = 0;
        results["renderId"] = process;
        reply(results);
    });
}

// The number is that of the tabs.
void Tabs::Ping(const Json::Value&, const Platform::Reply& reply) {
    mPages->CheckChromium([reply, count = static_cast<int>(mTabs.size())](bool answers) {
        if (!answers) return Refuse(reply);
        Json::Value results;
        results["status"] = 0;
        results["pingStatus"] = count;
        reply(results);
    });
}

void Tabs::Changed(const std::string& page, const PageChange& change) {
    const int id = Of(page);
    if (id == 0) return;
    Json::Value further(Json::objectValue);
    switch (change.kind) {
        case PageChange::Kind::Loading:
        case PageChange::Kind::Stopped:
            return ReportLoading(id, change.kind == PageChange::Kind::Loading);
        case PageChange::Kind::Progress:
            further["progress"] = change.progress;
            return Report("OnLoadProgressChanged", id, further);
        case PageChange::Kind::Url:
            further["url"] = change.text;
            Report("OnTabURLChanged", id, further);
            return Report("OnAddressBarChanged", id, further);
        case PageChange::Kind::Title:
            further["title"] = change.text;
            return Report("OnTabTitleChanged", id, further);
        case PageChange::Kind::DocumentLoaded:
            return Report("OnTabDocumentLoadedInFrame", id);
        case PageChange::Kind::Finished:
            further["url"] = change.text;
            return Report("OnTabLoadFinished", id, further);
        case PageChange::Kind::Failed:
            return ReportFailure(id, change, change.text);
        case PageChange::Kind::Crashed:
            if (change.text == kOutOfMemory) {
                Report("OnBlinkOutOfMemory", id);
            } else {
                ReportFailure(id, change, "the process of the page has ended: " + change.text);
            }
            return Close(id);
        case PageChange::Kind::Gone:
            return Gone(id);
    }
}

void Tabs::ReportFailure(int id, const PageChange& change, const std::string& description) {
    Json::Value further;
    further["url"] = change.url;
    further["errorCode"] = change.code;
    further["description"] = description;
    Report("OnTabLoadFailed", id, further);
}

void Tabs::ReportLoading(int id, bool loading) {
    mPages->GetHistory(mTabs[id].page, [this, loading](bool canBack, bool canForward) {
        Json::Value arguments;
        arguments["isLoading"] = loading;
        arguments["canBack"] = canBack;
        arguments["canForward"] = canForward;
        mPlatform.CallLater("IMtm.OnLoadingStateChanged", arguments);
    });
}

void Tabs::Report(const char* name, int id, const Json::Value& further) {
    Json::Value arguments = further;
    arguments["tabId"] = id;
    mPlatform.CallLater(std::string("IMtm.") + name, arguments);
}

}  // namespace hbbtv::browser
