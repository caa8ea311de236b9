// Starts and ends applications, with the tuned service or on request. One with a minimum age runs only if the parental
// rating allows it.
#pragma once

#include "core/event_loop.h"
#include "families/application_manager/application_events.h"
#include "family/settings.h"
#include "television/tv.h"

namespace hbbtv::sim {

class ApplicationStarter {
  public:
    ApplicationStarter(EventLoop& loop, Tv& tv, const Settings& settings, ApplicationEvents& events);

    // Starts one that the tuned service announces. `query` is appended to its URL. Throws Refused.
    ApplicationPointer StartAnnounced(const ApplicationId& id, const std::string& query, bool shown);

    // Creates one for an application or, if the creator is null, for the television's own software. Throws Refused.
    ApplicationPointer Create(const ApplicationPointer& creator, const std::string& url, bool child, bool operatorApp);

  private:
    void ServiceChanged();
    void SignallingReceived();
    std::shared_ptr<const Service> Tuned() const;
    Application Announced(const ApplicationId& id, const std::string& query) const;
    ApplicationPointer Start(Application application);
    void Admit(const ApplicationPointer& application, std::optional<int> rating);

    Tv& mTv;
    const Settings& mSettings;
    ApplicationEvents& mEvents;
    Timer mReception;
};

}  // namespace hbbtv::sim
