// The browser as the television sees it: opens a tab for every running application, updates it with the application's
// state, and pings the browser. Without a browser the rest works; tabs are created when it starts.
#pragma once

#include <set>
#include <string>

#include "core/event_loop.h"
#include "families/mtm/browser_commands.h"
#include "family/settings.h"
#include "television/tv.h"

namespace hbbtv::sim {

struct RemoteKey;

class Browser {
  public:
    Browser(EventLoop& loop, Tv& tv, const Settings& settings, EventSink& sink);

    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    // A message from the browser has arrived: opens tabs for applications that waited for it.
    void FoundThere();

    // Starts the pings if there are applications or tabs.
    void KeepPinging();

    // Sends the key to the topmost application that takes it. Returns null and does not send it if none does.
    ApplicationPointer SendKey(const RemoteKey& key);

    // Destroys the tab, which becomes Closing or Crashed, and ends its application.
    void GiveUp(Tab& tab, TabState state);

    // Ends all applications with their tabs.
    void DestroyAll();

    // "there", "not there" or "not asked", for the table.
    const char* Presence() const;

  private:
    enum class Known { Nothing, There, NotThere };

    void Ready(const ApplicationPointer& application);
    void Shown(const ApplicationPointer& application);
    void Bound(const ApplicationPointer& application);
    void Ended(const ApplicationPointer& application);
    void Open(const ApplicationPointer& application);
    void OpenAll();
    void AskForSignalling(const ApplicationPointer& application);
    void SignallingCame(const ApplicationPointer& application, const Json::Value& reply);
    void AskForTab(const ApplicationPointer& application);
    void TabCame(const ApplicationPointer& application, const Json::Value& reply);
    void Fill(int tab, const ApplicationPointer& application);
    void AskForRenderProcess(int tab);
    void NoTab(const ApplicationPointer& application, const Json::Value& reply, const std::string& what);
    void Show(int tab, const Application& application);
    void DestroyLeftovers();
    void Ping();
    void Ponged(const Json::Value& reply);
    void Lost();

    Tv& mTv;
    const Settings& mSettings;
    BrowserCommands mCommands;
    Timer mPing;
    bool mPinging = false;
    Known mKnown = Known::Nothing;
    bool mLeftovers = false;                      // it was absent, and may still have unknown tabs
    std::set<const Application*> mAsked;          // those with a request that it has not replied to yet
    bool mAbsenceLogged = false;                  // the absence of the browser has been logged
    std::set<const Application*> mRefusalLogged;  // those whose refusal has been logged
    int mKeyEvents = 0;
};

}  // namespace hbbtv::sim
