#include "usual_messages.h"

#include "values.h"
#include "wire/message.h"

namespace hbbtv::fuzz {

namespace {

constexpr int kSeed = 100;

Json::Value ValuesFor(const Json::Value& members) {
    return test::ValuesFor(members, kSeed, test::kAllBools);
}

}  // namespace

Json::Value UsualRequest(const WireFamily& family, const Json::Value& operation) {
    return MakeRequest(family, operation, ValuesFor(operation["request"]));
}

Json::Value UsualReply(const Json::Value& operation) {
    Json::Value reply(Json::objectValue);
    reply["ret"] = 0;
    AddMembers(operation["reply"], ValuesFor(operation["reply"]), reply);
    return reply;
}

Json::Value UsualEvent(const WireFamily& family, const Json::Value& event) {
    Json::Value values = ValuesFor(EventMembers(family, event));
    if (values.isMember("context")) values["context"] = 1;
    return MakeEvent(family, event, values);
}

}  // namespace hbbtv::fuzz
