// The platform of all families, and a client of all interfaces: whether every family answers.
#pragma once

#include <list>
#include <string>
#include <utility>
#include <vector>

#include "common/text/json.h"
#include "package/caller.h"
#include "package/description.h"
#include "raw_socket.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

class EveryFamily {
  public:
    explicit EveryFamily(const std::string& reply = R"({"ret": 5})") {
        for (const WireFamily& family : WireFamilies()) mPlatforms.emplace_back(RequestsOf(family).socket, reply);
    }

    // Calls a method of each interface. Returns each call that did not succeed, with what it returned.
    static std::string Unanswered(std::chrono::milliseconds patience = std::chrono::seconds(20)) {
        static const std::vector<std::pair<const char*, const char*>> kCalls = {
            {"IAVComponent.GetComponentTag", "[1]"},
            {"IAVControl.ComponentUpdate", "[0, 0, [], 0]"},  // one-way: 0 if it was sent
            {"IApplicationManager.GetCurrentApp", "[]"},
            {"IApplicationPrivatedata.GetFreeMem", "[]"},
            {"ICapabilities.HasCapability", "[1]"},
            {"IChannel.Release", "[1]"},
            {"IChannelConfig.GetCurrentChannel", "[]"},
            {"IChannelList.Release", "[1]"},
            {"IConfiguration.GetCountryId", "[]"},
            {"IDsmcc.OnReleaseFile", R"(["dvb://1", 1])"},
            {"IFavouriteList.Release", "[1]"},
            {"IFavouriteListCollection.Release", "[1]"},
            {"ILocalSystem.GetDeviceID", "[]"},
            {"IMtm.OnTabCreated", "[1]"},
            {"IParentalControlManager.Destroy", "[1]"},
            {"IProgramme.GetName", "[1]"},
            {"ISearchManager.SearchManager_Create", "[]"},
            {"IVideoBroadcast.NextChannel", "[1]"},
        };
        std::string unanswered;
        for (const auto& [name, arguments] : kCalls) {
            try {
                const auto [interface, method] = Package::Get().FindMethod(name);
                static NoEvents none;
                ServiceCaller service(*interface, patience);
                const Json::Value results = service.Call(*method, ParseJson(arguments), none);
                const int expected = interface->name == "IAVControl" ? 0 : 5;
                if (StatusOf(*method, results) != expected)
                    unanswered += std::string(name) + " -> " + WriteJson(results) + "\n";
            } catch (const std::exception& e) {
                unanswered += std::string(name) + ": " + e.what() + "\n";
            }
        }
        return unanswered;
    }

  private:
    std::list<FakePlatform> mPlatforms;
};

}  // namespace hbbtv::test
