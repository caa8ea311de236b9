// The running applications of the television's application manager: their parents, visibility and keys. Their tabs in
// the browser are in tabs.h.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/changes.h"
#include "television/line_up/line_up.h"

namespace hbbtv::sim {

struct RemoteKey;

struct ApplicationId {
    int application = -1;
    int organisation = -1;

    bool operator==(const ApplicationId& other) const {
        return application == other.application && organisation == other.organisation;
    }
};

// Both ids -1: no application.
constexpr ApplicationId kNoApplication;

// Organisation and application in hexadecimal, "13.1f5", as in signalled URLs.
std::string IdText(const ApplicationId& id);
std::optional<ApplicationId> ReadApplicationId(const std::string& text);

// Returns whether the URL names an XML AIT rather than an application.
bool IsXmlSignalling(const std::string& url);

enum class ApplicationType { BroadcastRelated = 0, BroadcastIndependent = 1, Operator = 2 };

struct Application {
    ApplicationId id;
    ApplicationId parent = kNoApplication;  // the application that created it as its child
    std::string name;
    std::string url;       // as announced or requested
    std::string document;  // the page that a tab has to load; empty until known
    std::vector<std::string> boundaries;
    std::shared_ptr<const Service> service;  // the service that it is bound to; null: broadcast-independent
    bool operatorApplication = false;
    bool admitted = false;  // allowed by parental control
    bool running = true;
    bool shown = false;
    int minimumAge = 0;
    int keySets = 0;
    std::vector<int> otherKeys;

    ApplicationType Type() const;

    // Requests keys; those that the remote control lacks are ignored.
    void AskForKeys(int sets, const std::vector<int>& others);
    bool Takes(const RemoteKey& key) const;
};

using ApplicationPointer = std::shared_ptr<Application>;

class Applications {
  public:
    using Event = Changes<const ApplicationPointer&>;

    Event ready;  // admitted, or its page became known
    Event shown;  // or hidden
    Event bound;  // to a service, or no longer
    Event loaded;
    Event ended;

    // The one started or shown last is the last: it is on top.
    const std::vector<ApplicationPointer>& Running() const { return mRunning; }

    // Returns null if none with these ids is running. An application number alone finds the topmost one with that
    // number.
    ApplicationPointer Find(const ApplicationId& id) const;
    ApplicationPointer FindNumber(int application) const;

    // Returns the topmost one that is shown, otherwise the topmost one. Null if none is running.
    ApplicationPointer Current() const;

    std::vector<ApplicationPointer> ChildrenOf(const ApplicationId& id) const;
    bool AnyShown() const;

    // Returns an application number that is unused in the organisation.
    int NewNumber(int organisation);

    // Throws Refused if it is already running, or too many are.
    ApplicationPointer Start(Application application);
    void Admit(const ApplicationPointer& application);
    void FoundDocument(const ApplicationPointer& application, const std::string& url);

    // A file of the broadcast has arrived. Returns false if no application waits for it.
    bool FileArrived(const std::string& url, const std::string& path);

    void SetShown(const ApplicationPointer& application, bool show);
    void Bind(const ApplicationPointer& application, std::shared_ptr<const Service> service);
    void SayLoaded(const ApplicationPointer& application);

    // Ends it and its children.
    void End(const ApplicationPointer& application);

    // Ends those that are bound to another service.
    void LeaveFor(const std::shared_ptr<const Service>& service);

  private:
    void ToTop(const ApplicationPointer& application);

    std::vector<ApplicationPointer> mRunning;
    int mNextNumber = 0x8000;  // above the ranges of unsigned and signed applications
};

}  // namespace hbbtv::sim
