#include "services.h"

#include <IAIPEventCallbackListener.h>
#include <IAVControlCallbackListener.h>
#include <IChannelConfigCallbackListener.h>
#include <IConfigurationCallbackListener.h>
#include <IDsmccCallbackListener.h>
#include <IMtmCallbackListener.h>
#include <ISearchManagerCallbackListener.h>
#include <IVideoBroadcastCallbackListener.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwAVComponent.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwAVControl.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwApplicationManager.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwApplicationPrivatedata.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwCapabilities.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwChannel.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwChannelList.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwConfiguration.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwDsmcc.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwFavouriteList.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwFavouriteListCollection.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwLocalSystem.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwMtm.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwParentalControlManager.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwProgramme.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwSearchManager.h>
#include <vantorel/hardware/hbbtv/1.0/BpHwVideoBroadcast.h>

#include <algorithm>

#include "AVComponent.h"
#include "AVControl.h"
#include "ApplicationManager.h"
#include "ApplicationPrivatedata.h"
#include "Capabilities.h"
#include "Channel.h"
#include "ChannelConfig.h"
#include "ChannelList.h"
#include "Configuration.h"
#include "Dsmcc.h"
#include "FavouriteList.h"
#include "FavouriteListCollection.h"
#include "LocalSystem.h"
#include "Mtm.h"
#include "ParentalControlManager.h"
#include "Programme.h"
#include "SearchManager.h"
#include "VideoBroadcast.h"
#include "input.h"
#include "package_values.h"

namespace hbbtv::fuzz {

namespace {

namespace implementation = ::vantorel::hardware::hbbtv::implementation;
namespace interfaces = ::vantorel::hardware::hbbtv::V1_0;

template <typename Proxy>
android::sp<Service::IBase> ProxyOf(const android::sp<android::hardware::IBinder>& remote) {
    return new Proxy(remote);
}

#define SERVICE(name)                                                           \
    Service {                                                                   \
        "I" #name, new implementation::name(), &ProxyOf<interfaces::BpHw##name> \
    }

template <typename I>
Service Client(const char* interface) {
    return {interface, ListenerOf<I>(UsualClient::Get()), nullptr};
}

}  // namespace

// The objects of both lists are never destroyed: events may arrive until the process ends.
const std::vector<Service>& Services() {
    static const auto* const services = new std::vector<Service>{
        SERVICE(AVComponent),
        SERVICE(AVControl),
        SERVICE(ApplicationManager),
        SERVICE(ApplicationPrivatedata),
        SERVICE(Capabilities),
        SERVICE(Channel),
        SERVICE(ChannelConfig),
        SERVICE(ChannelList),
        SERVICE(Configuration),
        SERVICE(Dsmcc),
        SERVICE(FavouriteList),
        SERVICE(FavouriteListCollection),
        SERVICE(LocalSystem),
        SERVICE(Mtm),
        SERVICE(ParentalControlManager),
        SERVICE(Programme),
        SERVICE(SearchManager),
        SERVICE(VideoBroadcast),
    };
    return *services;
}

const std::vector<Service>& Clients() {
    static const auto* const clients = new std::vector<Service>{
        Client<IAIPEventCallback>("IAIPEventCallback"),
        Client<IAVControlCallback>("IAVControlCallback"),
        Client<IChannelConfigCallback>("IChannelConfigCallback"),
        Client<IConfigurationCallback>("IConfigurationCallback"),
        Client<IDsmccCallback>("IDsmccCallback"),
        Client<IMtmCallback>("IMtmCallback"),
        Client<ISearchManagerCallback>("ISearchManagerCallback"),
        Client<IVideoBroadcastCallback>("IVideoBroadcastCallback"),
    };
    return *clients;
}

const Service& ServiceOf(const std::string& interface) {
    const auto found = std::find_if(Services().begin(), Services().end(),
                                    [&](const Service& service) { return service.interface == interface; });
    FUZZ_CHECK(found != Services().end());
    return *found;
}

CallOutcome CallMethod(Service::IBase& object, const std::string& interface, const std::string& method,
                       const Json::Value& arguments) {
    for (const MethodBinding& binding : AllBindings().at(interface)->methods) {
        if (binding.name == method) return binding.invoke(object, arguments, UsualClient::Get());
    }
    FUZZ_CHECK(!"a method of the interface");
}

void RegisterClient() {
    for (const Service& service : Services()) {
        for (const Method& method : Package::Get().FindInterface(service.interface).methods) {
            if (method.name.find("Register") == std::string::npos) continue;
            Json::Value arguments = UsualValues(method.arguments);
            if (arguments.empty() || method.name.find("UnRegister") != std::string::npos) continue;
            const Type& first = *method.arguments[0].type;
            const size_t times = first.kind == Type::Kind::Enum ? first.enumerators.size() : 1;
            for (size_t i = 0; i < times; ++i) {
                if (first.kind == Type::Kind::Enum) arguments[0] = Json::Int64{first.enumerators[i].value};
                FUZZ_CHECK(CallMethod(*service.object, service.interface, method.name, arguments).answered);
            }
        }
    }
}

const std::vector<std::string>& MethodNames() {
    static const auto* const names = [] {
        auto* const all = new std::vector<std::string>;
        for (const Service& service : Services()) {
            for (const Method& method : Package::Get().FindInterface(service.interface).methods) {
                all->push_back(service.interface + "." + method.name);
            }
        }
        return all;
    }();
    return *names;
}

}  // namespace hbbtv::fuzz
