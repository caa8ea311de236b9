// The tabs of the television's applications: carries out the platform's commands, and reports what becomes of the tabs.
#pragma once

#include <json/value.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "chromium/pages.h"
#include "devtools/loop.h"
#include "platform/platform.h"
#include "tabs/memory.h"

namespace hbbtv::browser {

struct Tab {
    std::string page;  // empty until Chromium has created it
    std::string url;
    bool broadcastRelated = false;
    std::string origin;  // dvb://...
    std::string mode;
    std::vector<std::string> boundaries;
    bool shown = false;
    bool loading = false;    // its URL, or loaded
    bool early = false;      // loading began before the platform's command
    bool held = false;       // loading waits until it is broadcast-related
    bool destroyed = false;  // as the platform commanded, or after a crash
};

class Tabs {
  public:
    using GetXml = std::function<void(const std::string& url, const Platform::Reply& reply)>;
    using OnTab = std::function<void(int id, const Tab& tab)>;

    struct Handlers {
        OnTab onCreated;                                             // its page exists, and nothing is loaded
        std::function<bool(int id, const Tab& tab)> becomesRelated;  // returns whether loading waits for that
        OnTab onGone;
        std::function<std::string(const std::string& url)> pageUrl;  // of what the platform wants to be loaded
    };

    // `getXml` gets an XML file, with the results of IMtmCallback.GetXmlFile.
    Tabs(devtools::Loop& loop, Platform& platform, GetXml getXml, Handlers handlers);

    // Sets the pages of a Chromium that has started; null when it has ended, which ends all tabs.
    void Use(Pages* pages);

    // Takes a command of the platform.
    void Take(const std::string& command, const Json::Value& arguments, const Platform::Reply& reply);

    // Takes what has become of a page.
    void Changed(const std::string& page, const PageChange& change);

    // Takes the wish of a page to be closed.
    void CloseRequested(int id) { Report("OnRenderRequestCloseTab", id); }

    // Returns the tab of a page, or 0.
    int Of(const std::string& page) const;

    // Returns null if there is none.
    const Tab* Find(int id) const;

    // Returns what a page may know of its tab; 0: of none.
    Json::Value Described(int id) const;

    // Returns the pages that are shown, the lowest first.
    std::vector<std::string> Shown() const;

  private:
    using Row = void (Tabs::*)(const Json::Value& arguments, const Platform::Reply& reply);
    static const std::map<std::string, Row>& Rows();

    void Create(const Json::Value& arguments, const Platform::Reply& reply);
    void LoadUrl(const Json::Value& arguments, const Platform::Reply& reply);
    void Configure(const Json::Value& arguments, const Platform::Reply& reply);
    void SetOrigin(const Json::Value& arguments, const Platform::Reply& reply);
    void ShowHide(const Json::Value& arguments, const Platform::Reply& reply);
    void Destroy(const Json::Value& arguments, const Platform::Reply& reply);
    void DestroyAll(const Json::Value& arguments, const Platform::Reply& reply);
    void SendKey(const Json::Value& arguments, const Platform::Reply& reply);
    void GetXmlFile(const Json::Value& arguments, const Platform::Reply& reply);
    void GetRenderProcess(const Json::Value& arguments, const Platform::Reply& reply);
    void Ping(const Json::Value& arguments, const Platform::Reply& reply);

    void Created(int id, const std::string& page);
    void Load(int id);
    void Show(int id, bool multi);
    void Hide(int id);
    void Focus();
    void Close(int id);
    void Gone(int id);
    void TellLowMemory(int id);
    void TellPage(const Tab& tab, int id, bool shownChanged = false);
    void ReportFailure(int id, const PageChange& change, const std::string& description);
    void ReportLoading(int id, bool loading);
    void Report(const char* name, int id, const Json::Value& further = Json::Value(Json::objectValue));

    devtools::Loop& mLoop;
    Platform& mPlatform;
    const GetXml mGetXml;
    Pages* mPages = nullptr;
    const Handlers mHandlers;
    Memory mMemory;
    std::map<int, Tab> mTabs;
    std::vector<int> mOrder;  // of the shown tabs, the topmost last
    int mLast = 0;            // number of the newest tab
    int mFocused = 0;
    std::set<int> mHeldKeys;
};

}  // namespace hbbtv::browser
