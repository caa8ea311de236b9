// The browser's tabs as reported by the browser, and the application that each was created for.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "television/applications/applications.h"

namespace hbbtv::sim {

// Crashed and Closing: the browser was asked to destroy the tab and has not confirmed it yet.
enum class TabState { Empty, Loading, Loaded, Failed, Crashed, Closing };

struct Tab {
    int id = 0;
    std::weak_ptr<Application> application;  // empty for a tab that the browser created on its own
    std::string madeFor;                     // its name and ids, also after it has ended
    TabState state = TabState::Empty;
    bool shown = false;
    bool focused = false;
    bool documentLoaded = false;  // of a frame
    bool saidLoaded = false;      // its application was reported as loaded
    double progress = 0;
    std::string url;
    std::string title;
    std::string address;  // as shown in the address bar
    std::string failure;  // of the last load: "-105 name not resolved"
    int memoryLevel = 0;
    std::optional<int> renderProcess;

    bool Going() const { return state == TabState::Closing || state == TabState::Crashed; }
};

class Tabs {
  public:
    // Returns the tab with this number, a new one if there was none or one that was closing. Throws Refused.
    Tab& Add(int id);

    // Returns null if there is none.
    Tab* Find(int id);
    Tab* Of(const ApplicationPointer& application);

    // Throws Refused.
    Tab& Named(int id);

    void Focus(int id);
    void Remove(int id) { mTabs.erase(id); }
    void Clear() { mTabs.clear(); }
    void CloseAll();

    const std::map<int, Tab>& All() const { return mTabs; }

    // The browser's own state.
    int browserStatus = 0;  // its reply to the last ping
    int memoryStatus = 0;
    bool loading = false;
    bool canGoBack = false;
    bool canGoForward = false;

  private:
    std::map<int, Tab> mTabs;
};

}  // namespace hbbtv::sim
