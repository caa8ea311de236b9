// The applications that run, as the television's application manager keeps them: who started whom, which are shown, and
// which keys they take. What a browser makes of them is in tabs.h.
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

// Organisation and application in hexadecimal with a dot between, "13.1f5", as they stand in signalled URLs.
std::string IdText(const ApplicationId& id);
std::optional<ApplicationId> ReadApplicationId(const std::string& text);

// Whether the URL names a file of signalling in XML, and not an application itself.
bool IsXmlSignalling(const std::string& url);

enum class ApplicationType { BroadcastRelated = 0, BroadcastIndependent = 1, Operator = 2 };

struct Application {
    ApplicationId id;
    ApplicationId parent = kNoApplication;  // that made it as its child
    std::string name;
    std::string url;       // where it is, as announced or asked for
    std::string document;  // what a tab has to load; empty until that is known
    std::vector<std::string> boundaries;
    std::shared_ptr<const Service> service;  // that it is bound to; null: broadcast-independent
    bool operatorApplication = false;
    bool admitted = false;  // the parents have nothing against it
    bool running = true;
    bool shown = false;
    int minimumAge = 0;
    int keySets = 0;
    std::vector<int> otherKeys;

    ApplicationType Type() const;

    // Asks for keys; what the remote control does not have is left out.
    void AskForKeys(int sets, const std::vector<int>& others);
    bool Takes(const RemoteKey& key) const;
};

using ApplicationPointer = std::shared_ptr<Application>;

class Applications {
  public:
    using Event = Changes<const ApplicationPointer&>;

    Event ready;  // admitted, or what it has to load became known
    Event shown;  // or hidden
    Event bound;  // to a service, or not any more
    Event loaded;
    Event ended;

    // The one that was started or shown last stands last: it lies on top.
    const std::vector<ApplicationPointer>& Running() const { return mRunning; }

    // Null when none of this name runs. An application number alone finds the topmost one of that number.
    ApplicationPointer Find(const ApplicationId& id) const;
    ApplicationPointer FindNumber(int application) const;

    // The topmost one that is shown; when none is, the topmost one. Null when none runs.
    ApplicationPointer Current() const;

    std::vector<ApplicationPointer> ChildrenOf(const ApplicationId& id) const;
    bool AnyShown() const;

    // An application number that no other application of the organisation has.
    int NewNumber(int organisation);

    // Throws Refused when it runs already, or too many do.
    ApplicationPointer Start(Application application);
    void Admit(const ApplicationPointer& application);
    void FoundDocument(const ApplicationPointer& application, const std::string& url);

    // A file of the broadcast is there. False when no application waits for it.
    bool FileArrived(const std::string& url, const std::string& path);

    void SetShown(const ApplicationPointer& application, bool show);
    void Bind(const ApplicationPointer& application, std::shared_ptr<const Service> service);
    void SayLoaded(const ApplicationPointer& application);

    // With its children.
    void End(const ApplicationPointer& application);

    // Ends those that are bound to another service.
    void LeaveFor(const std::shared_ptr<const Service>& service);

  private:
    void ToTop(const ApplicationPointer& application);

    std::vector<ApplicationPointer> mRunning;
    int mNextNumber = 0x8000;  // above those that broadcasters sign or leave unsigned
};

}  // namespace hbbtv::sim
