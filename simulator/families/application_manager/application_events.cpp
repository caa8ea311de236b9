#include "families/application_manager/application_events.h"

#include "family/members.h"

namespace hbbtv::sim {

void ApplicationEvents::ApplicationLoaded(const ApplicationId& id) {
    Json::Value event;
    event["t"] = 237;
    event["appid"] = id.application;
    event["orgid"] = id.organisation;
    mSink.Send("ApplicationEvent", event);
}

void ApplicationEvents::BroadcastFullScreen(bool full, bool destroyed) {
    Json::Value event;
    event["t"] = 270;
    event["bValue"] = full ? 1 : 0;
    event["isDestroy"] = destroyed ? 1 : 0;
    mSink.Send("SetBroadcastFullScreen", event);
}

void ApplicationEvents::AskParentalRating(const std::string& country,
                                          std::function<void(std::optional<int>)> onRating) {
    Json::Value event;
    event["t"] = 271;
    event["countryCode"] = country;
    mSink.SendAndWait("GetLocalParentalRating", event, [onRating = std::move(onRating)](const Json::Value& reply) {
        onRating(IntIn(reply, "parentalRating"));
    });
}

}  // namespace hbbtv::sim
