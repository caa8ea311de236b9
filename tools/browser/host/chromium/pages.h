// The pages of Chromium: a target for each, with the frames of other sites, which have targets of their own. Prepares
// each document before its first script runs, and follows what becomes of it.
#pragma once

#include <json/value.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "chromium/console.h"
#include "chromium/render_processes.h"
#include "chromium/requests.h"
#include "devtools/devtools.h"

namespace hbbtv::browser {

struct ScreenSize {
    int width = 1280;
    int height = 720;
};

// What has become of a page.
struct PageChange {
    enum class Kind { Loading, Stopped, Progress, Url, Title, DocumentLoaded, Finished, Failed, Crashed, Gone };

    Kind kind;
    std::string text;     // URL, title, or why it failed or crashed; kOutOfMemory
    double progress = 0;  // 0 to 1
    int code = 0;         // of a failure
    std::string url;      // of a failure
};

// Why a page has crashed whose memory has run out.
inline constexpr const char* kOutOfMemory = "oom";

// A document that can make calls.
struct Document {
    std::string name;  // unique
    std::string page;  // the target of the page, also for frames
};

class Pages {
  public:
    struct Handlers {
        std::function<void(const std::string& page, const PageChange& change)> onChange;
        std::function<void(const Document& document, const Request& request)> onCall;
        std::function<void(const Request& request)> onFile;
        std::function<void(const std::string& document)> onDocumentGone;
        std::function<void()> onPainted;  // by any page; null: not reported
    };

    struct Settings {
        std::string script;  // runs in each document before its own
        ScreenSize size;
        std::vector<std::string> own;  // beginnings of URLs that Handlers::onFile answers
        std::string ownHosts;          // end of the names of hosts whose URLs it answers
    };

    Pages(devtools::DevTools& chromium, Console& console, Settings settings, Handlers handlers);

    // Calls the functions that wait for Chromium, with nothing.
    ~Pages();
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    // Returns whether Chromium has answered.
    bool Started() const { return mStarted; }

    // Takes an event of Chromium.
    void Take(const std::string& name, const std::string& method, const Json::Value& params);

    // Creates a page. `onCreated` gets its target, or an empty string.
    void Create(const std::function<void(const std::string& page)>& onCreated);

    // Waits for the page that a Chromium with a window opens by itself.
    void AwaitFirst(const std::function<void(const std::string& page)>& onCreated) { mAwaited[kFirst] = onCreated; }

    // Loads a URL. What becomes of it is reported as changes.
    void Load(const std::string& page, const std::string& url);

    // Closes a page, which is reported as Gone.
    void Close(const std::string& page);

    // Sends a command to a page's own session, as DevTools::Send().
    void Send(const std::string& page, const std::string& method, const Json::Value& params,
              devtools::DevTools::OnAnswer onAnswer = nullptr);

    // Presses and releases a key. `onTaken` is called when the page has handled it.
    void PressKey(const std::string& page, int code, const std::function<void()>& onTaken = nullptr);

    // Press a key, again if `repeated`; release it.
    void HoldKey(const std::string& page, int code, bool repeated);
    void ReleaseKey(const std::string& page, int code);

    // Return what the name says, or zeros if Chromium does not answer.
    void GetRenderProcess(const std::string& page, const RenderProcesses::OnProcess& onProcess) {
        mProcesses.Get(page, onProcess);
    }
    void GetHistory(const std::string& page, const std::function<void(bool canBack, bool canForward)>& onHistory);
    // Gets the bytes that objects of the page's scripts use, with those of pages of the same process; 0 if the page
    // does not answer.
    void GetHeap(const std::string& page, const std::function<void(double bytes)>& onHeap);
    void CheckChromium(const std::function<void(bool answers)>& onChecked);

    // Gets a file from a server, with the cookies of the pages. `onText` gets an empty string if that fails.
    void GetFile(const std::string& url, const std::function<void(const std::string& text)>& onText);

    // Evaluates an expression in the page's main document. `onValue` gets its value, or null.
    void Evaluate(const std::string& page, const std::string& expression,
                  const std::function<void(const Json::Value&)>& onValue);

    // Calls the receiver of events in all documents of a page, or of all pages if it is empty.
    void Deliver(const Json::Value& event, const std::string& page = "");

    void Fulfill(const Request& request, const Response& response) { mRequests.Fulfill(request, response); }

  private:
    static constexpr const char* kFirst = "";  // in mAwaited: the first of all pages

    struct Context {
        int id = 0;
        std::string frame;
        std::string name;
    };
    struct Session {
        std::string target;
        std::string page;
        bool main = false;      // of the page, not of a frame
        bool prepared = false;  // a document that is loaded before that would miss some of it
        std::vector<Context> contexts;
        std::string mainFrame;
        LoadFailure failure{0, ""};  // of the document that is being loaded
        std::string url;
    };

    std::string SessionOf(const std::string& page) const;
    void ReadStream(const std::string& page, const std::string& stream, const std::string& begin,
                    const std::function<void(const std::string&)>& onText);

    // In page_events.cpp.
    void Attached(const std::string& parent, const Json::Value& params);
    void Detached(const std::string& name);
    void Prepare(const std::string& name, const Session& session);
    void Prepared(const std::string& name);
    void TakePageEvent(const std::string& name, Session& session, const std::string& method, const Json::Value& params);
    void Navigated(Session& session, const Json::Value& frame);
    void Loaded(Session& session);
    void WatchTitle(const std::string& name, const std::string& last);
    void ContextCreated(Session& session, const Json::Value& context);
    void ContextsGone(Session& session, int id);
    void Crashed(const Json::Value& params);
    bool ReportedNoMemory();
    void Called(const Request& request);
    void LoadFailed(const std::string& name, const std::string& frame, const LoadFailure& failure);
    void Report(const Session& session, const PageChange& change);

    devtools::DevTools& mChromium;
    Console& mConsole;
    const Settings mSettings;
    const Handlers mHandlers;
    Requests mRequests;
    std::map<std::string, Session> mSessions;  // by the name of DevTools
    std::string mHelper;                       // a page that no tab shows
    RenderProcesses mProcesses;
    bool mStarted = false;
    size_t mReadMessages = 0;                                                 // bytes of those of Chromium
    std::map<std::string, std::function<void(const std::string&)>> mAwaited;  // by the target that is not prepared yet
};

}  // namespace hbbtv::browser
