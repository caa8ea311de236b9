#include "family/family.h"

#include <set>

#include "common/nearest_name.h"
#include "core/error.h"
#include "wire/message.h"

namespace hbbtv::sim {

namespace {

const WireFamily& Named(const std::string& name) {
    std::set<std::string> known;
    for (const WireFamily& family : WireFamilies()) {
        if (family.name == name) return family;
        known.insert(family.name);
    }
    throw Fatal(kCannotServe, "protocol/ has no family \"" + name + "\"" + DidYouMean(name, known, kShortList));
}

// `kind` is "operation" or "event".
const Json::Value& Named(const WireFamily& family, const std::string& kind, const std::string& name) {
    std::set<std::string> known;
    for (const Json::Value& entry : family.protocol[kind + "s"]) {
        if (entry["name"] == name) return entry;
        known.insert(entry["name"].asString());
    }
    throw Fatal(kCannotServe, "protocol/" + family.name + ".json has no " + kind + " \"" + name + "\"" +
                                  DidYouMean(name, known, kShortList));
}

FamilyAddress AddressOf(const WireFamily& family) {
    const Json::Value& endpoints = family.protocol["endpoints"];
    const Json::Value& envelope = family.protocol["envelope"];
    FamilyAddress address;
    address.name = family.name;
    address.requestSocket = endpoints["requests"]["socket"].asString();
    address.eventSocket = endpoints["events"]["socket"].asString();
    address.eventPort = endpoints["events"]["port"].asInt();
    address.codeMember = envelope["code"]["key"].asString();
    if (envelope.isMember("type")) address.type = envelope["type"]["value"].asInt();
    return address;
}

}  // namespace

Family::Family(const std::string& name) : mWire(Named(name)), mAddress(AddressOf(mWire)) {}

std::string Family::ObjectMember() const {
    return mWire.protocol["envelope"]["object"]["key"].asString();
}

void Family::Row(const std::string& name, Handler handler, const std::string& mark) {
    const int code = Named(mWire, "operation", name)["code"].asInt();
    mOperations.emplace(code, Operation{name, mark, std::move(handler)});
}

EventSink& Family::Sends(const MakeSink& makeSink, std::initializer_list<const char*> events) {
    for (const char* event : events) {
        mEvents[event] = MakeEvent(mWire, Named(mWire, "event", event), Json::Value(Json::objectValue));
    }
    return makeSink(mAddress, mEvents);
}

}  // namespace hbbtv::sim
