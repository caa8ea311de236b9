#include "families/application_manager/application_starter.h"

#include <algorithm>

#include "core/error.h"
#include "core/journal.h"
#include "television/device/remote_control.h"

namespace hbbtv::sim {

namespace {

const char* const kSignalled = "dvb://current.ait/";

constexpr size_t kLongestUrl = 4096;

constexpr int kHighestRating = 15;  // of the rating descriptor; higher values and 0 mean no limit
constexpr int kAgeOfRating0 = 3;

bool HasAutoshow(const std::string& query) {
    return ("&" + query + "&").find("&autoshow=1&") != std::string::npos;
}

std::string WithQuery(const std::string& url, const std::string& query) {
    if (query.empty()) return url;
    return url + (url.find('?') == std::string::npos ? "?" : "&") + query;
}

bool Allowed(int minimumAge, std::optional<int> rating) {
    const bool limit = rating && *rating > 0 && *rating <= kHighestRating;
    return !limit || minimumAge <= *rating + kAgeOfRating0;
}

}  // namespace

ApplicationStarter::ApplicationStarter(EventLoop& loop, Tv& tv, const Settings& settings, ApplicationEvents& events)
    : mTv(tv), mSettings(settings), mEvents(events), mReception(loop) {
    tv.tuner.changed.Watch([this] { ServiceChanged(); });
    ServiceChanged();
}

// Announcements are received with the service, so they are known when its picture is.
void ApplicationStarter::ServiceChanged() {
    mTv.applications.LeaveFor(mTv.tuner.On()->service);
    mReception.Start(mSettings.tuneTime, [this] { SignallingReceived(); });
}

std::shared_ptr<const Service> ApplicationStarter::Tuned() const {
    const auto& service = mTv.tuner.On()->service;
    return service && service->received ? service : nullptr;
}

void ApplicationStarter::SignallingReceived() {
    const auto service = Tuned();
    if (!service) return;
    for (const auto& announced : service->applications) {
        const ApplicationId id{announced->application, announced->organisation};
        const bool start = announced->autostart && !mTv.applications.Find(id);
        if (!start) continue;
        try {
            StartAnnounced(id, "", true);
        } catch (const Refused& e) {
            Journal::Log("application_manager: " + announced->name + " does not start: " + e.what());
        }
    }
}

Application ApplicationStarter::Announced(const ApplicationId& id, const std::string& query) const {
    const auto service = Tuned();
    for (const auto& announced : service ? service->applications : decltype(service->applications)()) {
        if (!(ApplicationId{announced->application, announced->organisation} == id)) continue;
        Application application;
        application.id = id;
        application.name = announced->name;
        application.url = WithQuery(announced->url, query);
        application.boundaries = announced->boundaries;
        application.minimumAge = announced->minimumAge;
        if (announced->boundToService) application.service = service;
        application.AskForKeys(announced->keySets, announced->otherKeys);
        return application;
    }
    throw Refused("the service announces no application " + IdText(id));
}

ApplicationPointer ApplicationStarter::StartAnnounced(const ApplicationId& id, const std::string& query, bool shown) {
    Application application = Announced(id, query);
    application.shown = shown;
    return Start(std::move(application));
}

ApplicationPointer ApplicationStarter::Create(const ApplicationPointer& creator, const std::string& url, bool child,
                                              bool operatorApp) {
    if (child && !creator) throw Refused("a child needs the application that creates it");
    if (url.size() > kLongestUrl)
        throw Refused("the URL is longer than " + std::to_string(kLongestUrl) + " characters");
    Application application;
    const std::string signalled = kSignalled;
    const size_t question = std::min(url.find('?'), url.size());
    const std::string query = question < url.size() ? url.substr(question + 1) : "";
    if (url.rfind(signalled, 0) == 0) {
        const auto id = ReadApplicationId(url.substr(signalled.size(), question - signalled.size()));
        if (!id) throw Refused("\"" + Excerpt(url) + "\" does not name an application");
        application = Announced(*id, query);
    } else {
        const size_t scheme = url.find("://");
        if (scheme == std::string::npos || scheme == 0) throw Refused("\"" + Excerpt(url) + "\" is not a URL");
        const int organisation = creator ? creator->id.organisation : 0;
        application.id = {mTv.applications.NewNumber(organisation), organisation};
        application.name = Excerpt(url);
        application.url = url;
        if (creator) application.service = creator->service;
        application.AskForKeys(kUsualKeySets, {});
    }
    if (child) application.parent = creator->id;
    application.operatorApplication = operatorApp;
    application.shown = HasAutoshow(query);
    return Start(std::move(application));
}

ApplicationPointer ApplicationStarter::Start(Application described) {
    const bool shown = described.shown;
    described.shown = false;
    const int minimumAge = described.minimumAge;
    const ApplicationPointer application = mTv.applications.Start(std::move(described));
    mTv.applications.SetShown(application, shown);
    if (minimumAge == 0) {
        mTv.applications.Admit(application);
    } else {
        mEvents.AskParentalRating(mTv.preferences.Get(Preference::Country).asString(),
                                  [this, application](std::optional<int> rating) { Admit(application, rating); });
    }
    return application;
}

void ApplicationStarter::Admit(const ApplicationPointer& application, std::optional<int> rating) {
    if (!application->running) return;
    if (Allowed(application->minimumAge, rating)) return mTv.applications.Admit(application);
    Journal::Log("application_manager: " + Excerpt(application->name) + " is for those from " +
                 std::to_string(application->minimumAge) + " on, and the rating " + std::to_string(*rating) +
                 " forbids it");
    mTv.applications.End(application);
}

}  // namespace hbbtv::sim
