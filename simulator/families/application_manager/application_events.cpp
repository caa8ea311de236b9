#include "families/application_manager/application_events.h"

#include "family/members.h"

namespace hbbtv::sim {

void ApplicationEvents::ApplicationLoaded(const ApplicationId& id) {
    Json::Value members;
    members["appid"] = id.application;
    members["orgid"] = id.organisation;
    mSink.Send("application loaded", members);
}

void ApplicationEvents::BroadcastFullScreen(bool full, bool destroyed) {
    Json::Value members;
    members["bValue"] = full ? 1 : 0;
    members["isDestroy"] = destroyed ? 1 : 0;
    mSink.Send("set broadcast full screen", members);
}

void ApplicationEvents::AskParentalRating(const std::string& country,
                                          std::function<void(std::optional<int>)> onRating) {
    Json::Value members;
    members["countryCode"] = country;
    mSink.SendAndWait("local parental rating", members, [onRating = std::move(onRating)](const Json::Value& reply) {
        onRating(IntIn(reply, "parentalRating"));
    });
}

}  // namespace hbbtv::sim
