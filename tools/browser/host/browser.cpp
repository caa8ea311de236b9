#include "browser.h"

#include <csignal>
#include <cstdio>

#include "chromium/keys.h"
#include "common/failure.h"
#include "common/text/printable.h"
#include "files.h"
#include "host_programs.h"
#include "page_script.h"

namespace hbbtv::browser {

namespace {

constexpr Milliseconds kTimeToRelease{1000};

}  // namespace

Browser::Browser(const Options& options, devtools::Loop& loop, Platform& platform)
    : mOptions(options),
      mLoop(loop),
      mPlatform(platform),
      mCalls(loop, platform, options.callLimit),
      mConsole(options.console),
      mCarousel(loop, platform),
      mTabs(loop, platform, [this](const std::string& url, const Platform::Reply& reply) { GetXmlFile(url, reply); },
            {[this](int id, const Tab& tab) { mOpened.TabCreated(id, tab); },
             [this](int id, const Tab&) { return mOpened.BecomesRelated(id); },
             [this](int id, const Tab&) { mOpened.TabGone(id); },
             [this](const std::string& url) { return mCarousel.PageUrl(url); }}),
      mOpened(options, loop, platform, mCarousel, mFiles) {
    mFiles.Serve(kTelevisionUrl, "");
    mFiles.Serve(kPictureUrl, "");
    for (const auto& [url, directory] : options.serve) mFiles.Serve(url, directory);
}

int Browser::Run() {
    mPlatform.Start({[this](const Json::Value& event) { TakeEvent(event); },
                     [this](const std::string& command, const Json::Value& arguments, const Platform::Reply& reply) {
                         mOpened.Commanded(command, arguments);
                         mTabs.Take(command, arguments, reply);
                         Painted();
                     },
                     [this] { ObjectsLost("service"); }, [] {}, [this] { ObjectsLost("platform"); }});
    mLoop.OnSignals({SIGINT, SIGTERM}, [this] { End(kDone, ""); });
    mLoop.OnSignals({SIGUSR1}, [this] {
        WritePicture([](const std::string& problem) {
            if (!problem.empty()) std::fprintf(stderr, "hbbtv-browser: %s\n", Printable(problem).c_str());
        });
    });
    StartApplications();
    if (mOptions.HasWindow()) {
        OpenWindow();
    } else if (!mOptions.headless && !mOptions.EndsByItself()) {
        std::fprintf(stderr, "hbbtv-browser: there is no display, so nothing is shown; see --screenshot\n");
    }
    mOpened.Open(
        mTabs, *mApplications.pages, [this](const auto& onTaken) { WritePicture(onTaken); },
        [this](int code, const std::string& text) { End(code, text); });
    mLoop.RunUntil([this] { return mExit.has_value(); });
    Stop();
    if (*mExit != kDone) throw Failure(static_cast<ExitCode>(*mExit), mMessage);
    return kDone;
}

void Browser::Stop() {
    mOpened.Stop();
    ReleaseAll();
    mTabs.Use(nullptr);
    mPlatform.Flush(kTimeToRelease);
    // Ending one runs the loop, and with it functions of the other.
    for (Side* side : {&mWindow, &mApplications}) {
        if (side->chromium) side->chromium->Forget();
    }
    for (Side* side : {&mWindow, &mApplications}) {
        side->pages.reset();
        side->chromium.reset();
    }
    mScreen.reset();
}

void Browser::Start(Side& side, const devtools::ChromiumOptions& options, bool window) {
    side.chromium = std::make_unique<devtools::DevTools>(mLoop, options);
    Pages::Handlers handlers{
        [this, &side](const std::string& page, const PageChange& change) { Changed(side, page, change); },
        [this, &side](const Document& document, const Request& request) { Called(side, document, request); },
        [this, &side](const Request& request) { FileWanted(side, request); },
        [this](const std::string& document) { DocumentGone(document); }, nullptr};
    if (!window && mOptions.HasWindow()) handlers.onPainted = [this] { Painted(); };
    ScreenSize size = mOptions.size;
    if (window) size.width += kWidthOfRemote;
    const Pages::Settings settings{kPageScript, size, mFiles.Prefixes(), kBroadcastHosts};
    side.pages = std::make_unique<Pages>(*side.chromium, mConsole, settings, handlers);
    side.chromium->SetHandlers([&side](const std::string& session, const std::string& method,
                                       const Json::Value& params) { side.pages->Take(session, method, params); },
                               [this, window] {
                                   if (!window) return ApplicationsEnded();
                                   if (mScreen->Ready()) return End(kDone, "");  // the viewer has closed it
                                   End(kUnavailable, "cannot open a window: " + mWindow.chromium->LastMessage());
                               });
}

void Browser::StartApplications() {
    Start(mApplications, ChromiumFor(mOptions), false);
    mTabs.Use(mApplications.pages.get());
    if (!mOptions.HasWindow()) MakeScreen(mApplications);
}

// In the window, or on a page that is only seen in pictures, and exists when the first one is taken.
void Browser::MakeScreen(Side& side) {
    mScreen = std::make_unique<Screen>(
        *side.pages, [this] { return mApplications.pages.get(); }, [this] { return mTabs.Shown(); });
}

void Browser::OpenWindow() {
    Start(mWindow, WindowFor(mOptions), true);
    MakeScreen(mWindow);
    mScreen->Start(true, [this] {
        mWindow.pages->Evaluate(mScreen->Page(), "television.showRemote()", [](const Json::Value&) {});
        Painted();
    });
}

// One that has not even started is not started again. Called by Chromium's own object, so the next one is started
// later.
void Browser::ApplicationsEnded() {
    const std::string message = "Chromium has ended: " + mApplications.chromium->LastMessage();
    mTabs.Use(nullptr);
    ReleaseAll();
    if (mOpened.HasErrand() || !mApplications.pages->Started()) return End(kPeerLost, message);
    std::fprintf(stderr, "hbbtv-browser: %s; it is started again\n", Printable(message).c_str());
    mLoop.Post([this] {
        mApplications.pages.reset();
        mApplications.chromium.reset();
        StartApplications();
    });
}

void Browser::End(int code, const std::string& message) {
    if (mExit) return;
    mExit = code;
    mMessage = message;
}

void Browser::Changed(const Side& side, const std::string& page, const PageChange& change) {
    if (mScreen) mScreen->Changed(page, change);
    if (&side != &mApplications) return;
    mOpened.Changed(page, change);
    mTabs.Changed(page, change);
    if (change.kind == PageChange::Kind::Gone) Painted();
}

void Browser::Called(Side& side, const Document& document, const Request& request) {
    mCalls.Make(
        request.body,
        [&](const std::string& name, const Json::Value& arguments) { return HostCall(document, name, arguments); },
        [this, document](const std::vector<MadeCall>& calls) {
            for (const MadeCall& call : calls) Made(document, call);
        },
        [&side, request](const std::string& answer) {
            if (!side.pages) return;
            if (answer.empty()) return side.pages->Fulfill(request, {400, "text/plain", "not a list of calls", ""});
            side.pages->Fulfill(request, {200, "application/json", answer, ""});
        });
}

void Browser::Made(const Document& document, const MadeCall& call) {
    mHoldings.Called(document.name, call.method, call.arguments, call.results);
    if (mScreen) mScreen->Made(call);
    if (call.method == "IApplicationManager.CreateApplication")
        mCarousel.StartApplication(call.arguments["url"].asString());
}

Json::Value Browser::HostCall(const Document& document, const std::string& name, const Json::Value& arguments) {
    const int tab = mTabs.Of(document.page);
    if (name == "tab") return mTabs.Described(tab);
    if (name == "close" && tab != 0) mTabs.CloseRequested(tab);
    if (name == "press" && mScreen && document.page == mScreen->Page()) Press(arguments["name"].asString());
    return Json::objectValue;
}

void Browser::FileWanted(Side& side, const Request& request) {
    const Response missing{404, "text/plain", "no such file", ""};
    const Response none{204, "", "", ""};
    if (request.url == kTelevisionUrl) return side.pages->Fulfill(request, {200, "text/html", kTelevision, ""});
    if (request.url.rfind(kPictureUrl, 0) == 0) {
        const std::string file = PictureFile(mOptions.picture, PathOf(request.url).substr(1));
        return side.pages->Fulfill(request, file.empty() ? none : BytesResponse(file, file, request.range));
    }
    const std::string url = BroadcastUrl(request.url);
    if (url.empty()) return side.pages->Fulfill(request, mFiles.Answer(request.url, request.range).value_or(missing));
    mCarousel.Request(url, [&side, request, missing](const std::string& path) {
        if (!side.pages) return;
        const std::string name = PathOf(request.url);
        side.pages->Fulfill(request, path.empty() ? missing : BytesResponse(path, name, request.range));
    });
}

void Browser::GetXmlFile(const std::string& url, const Platform::Reply& reply) {
    const auto answer = [reply](const std::string& text) {
        Json::Value results;
        results["status"] = text.empty() ? -1 : 0;
        results["xmlFile"] = text;
        reply(results);
    };
    if (!PageUrlOf(url).empty()) {
        return mCarousel.Request(
            url, [answer](const std::string& path) { answer(path.empty() ? "" : BytesResponse(path, path, "").body); });
    }
    const std::optional<Response> file = mFiles.Answer(url, "");
    if (!file) return mApplications.pages->GetFile(url, answer);
    answer(file->status == 200 ? file->body : "");
}

void Browser::TakeEvent(const Json::Value& event) {
    if (event["interface"] == "IDsmcc") return mCarousel.Take(event["arguments"]);
    if (event["event"] == "onRequestDsmccFile") mCarousel.StartApplication(event["arguments"]["fileName"].asString());
    if (mScreen) mScreen->Take(event);
    if (event["interface"] == "IVideoBroadcast")
        MakeReleases(mHoldings.Received("IVideoBroadcast." + event["event"].asString(), event["arguments"]));
    for (const Side* side : {&mApplications, &mWindow}) {
        if (side->pages) side->pages->Deliver(event);
    }
}

void Browser::DocumentGone(const std::string& document) {
    MakeReleases(mHoldings.Gone(document));
}

void Browser::MakeReleases(const std::vector<Release>& releases) {
    for (const Release& release : releases) {
        if (mScreen && release.second.isMember("vb")) mScreen->Released(release.second["vb"].asInt64());
        mPlatform.CallLater(release.first, release.second);
    }
}

// Pages are notified, so that they forget their handles.
void Browser::ObjectsLost(const char* ended) {
    mHoldings.Clear();
    Json::Value event;
    event["interface"] = "host";
    event["event"] = "restart";
    event["arguments"]["of"] = ended;
    TakeEvent(event);
}

void Browser::ReleaseAll() {
    for (const std::string& document : mHoldings.Documents()) DocumentGone(document);
}

void Browser::Painted() {
    if (mScreen && mOptions.HasWindow()) mScreen->Refresh();
}

void Browser::WritePicture(const std::function<void(const std::string&)>& onWritten) {
    mScreen->Start(mOptions.HasWindow(), [this, onWritten] {
        mScreen->Capture([this, onWritten](const std::string& png) {
            if (png.empty()) return onWritten("cannot take a picture");
            onWritten(ReplaceFile(mOptions.screenshot, png));
        });
    });
}

// A key of the remote control in the window, or of the keyboard.
void Browser::Press(const std::string& key) {
    if (!mOptions.remote.empty()) return RunProgram(mOptions.remote, key);
    const std::vector<std::string> shown = mTabs.Shown();
    if (shown.empty()) return;
    try {
        mApplications.pages->PressKey(shown.back(), KeyCode(key));
    } catch (const Failure&) {
        // A key for the television, such as P+, which has no remote control here.
    }
}

}  // namespace hbbtv::browser
