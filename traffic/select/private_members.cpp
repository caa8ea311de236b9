#include "traffic/select/private_members.h"

#include <algorithm>

#include "traffic/view/members.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

bool Defines(const Json::Value& members, const std::string& key) {
    return std::any_of(members.begin(), members.end(),
                       [&key](const Json::Value& member) { return IsKey(key, member["key"].asString()); });
}

bool EnvelopeDefines(const Json::Value& envelope, const std::string& key) {
    return std::any_of(envelope.begin(), envelope.end(),
                       [&key](const Json::Value& member) { return member["key"] == key; });
}

// The record's operation is that of the entry.
bool IsDefined(const Record& record, const Json::Value& entry, bool ofReply, const std::string& key) {
    const Json::Value& family = FindFamily(record.family).protocol;
    if (!ofReply) {
        return EnvelopeDefines(family[record.event ? "event_envelope" : "envelope"], key) ||
               Defines(entry[record.event ? "members" : "request"], key);
    }
    const bool own = !record.event || entry.isMember("reply");
    return key == "ret" || Defines(own ? entry["reply"] : family["event_forms"]["request"]["reply"], key);
}

}  // namespace

const std::vector<PrivateMember>& PrivateMembers() {
    static const std::vector<PrivateMember> members{
        {"local_system", "GetDeviceID", "deviceID", true},
        {"local_system", "GetSerialNumber", "serialNumber", true},
        {"configuration", "GetDeviceIdContent", "serial", true},
        {"configuration", "GetDeviceIdContent", "request_time", true},
        {"configuration", "device id", "device_id", true},
        {"configuration", "device id time stamp", "device_id_ts", true},
        {"configuration", "GetText", "info", false},
        {"configuration", "SetText", "info", false},
        {"search_manager", "MetaSearch_CreateQuery", "value", false},
        {"favourite_list", "GetName", "name", false},
        {"favourite_list", "SetName", "name", false},
        {"favourite_list_collection", "CreateFavouriteList", "name", false},
        {"channel", "GetFavIDsNameByIndex", "name", false},
        {"mtm", "OnTabTitleChanged", "title", false},
        // A PIN is entered by keys.
        {"mtm", "SendKey", "key", false},
        {"application_manager", "KeyConsumedByBrowser", "keyCode", false},
    };
    return members;
}

Privacy PrivacyOf(const Record& record, bool ofReply, const std::string& key) {
    for (const PrivateMember& member : PrivateMembers()) {
        if (key != member.key) continue;
        if (member.identifies) return Privacy::Identifier;
        if (record.family == member.family && record.operation == member.operation) return Privacy::Personal;
    }
    const Json::Value* const entry = ProtocolEntry(record);
    return entry != nullptr && IsDefined(record, *entry, ofReply, key) ? Privacy::Public : Privacy::Unknown;
}

}  // namespace hbbtv::traffic
