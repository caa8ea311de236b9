// The browser as the television sees it: gives every application that runs a tab, follows it with what becomes of the
// application, and looks from time to time whether somebody is still there. Without a browser everything else goes on;
// the tabs are made when it comes.
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

    // Something came from the browser: what waited for it gets its tab now.
    void FoundThere();

    // Starts the pings when there is anything to ask about.
    void KeepPinging();

    // To the topmost application that takes the key. Null, and nothing is sent, when none does.
    ApplicationPointer SendKey(const RemoteKey& key);

    // Destroys the tab, which is Closing or Crashed then, and ends its application.
    void GiveUp(Tab& tab, TabState state);

    // All applications end with their tabs.
    void DestroyAll();

    // For the table: "there", "not there", "not asked".
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
    bool mLeftovers = false;                    // it was away, and may still have tabs that nobody knows
    std::set<const Application*> mAsked;        // those for which it was asked something and has not answered
    bool mSaidNobody = false;                   // the log line about a browser that is not there
    std::set<const Application*> mSaidRefused;  // likewise about an application that it refuses
    int mKeyEvents = 0;
};

}  // namespace hbbtv::sim
