// What is taken out of records, and what stays.
#include "traffic/select/redaction.h"

#include <gtest/gtest.h>

#include "common/text/json.h"
#include "sample_records.h"
#include "wire/endpoint.h"
#include "wire/message.h"
#include "wire/protocol.h"

namespace hbbtv::traffic::test {
namespace {

const Json::Value* MemberIn(const Json::Value& members, const std::string& key) {
    for (const Json::Value& member : members) {
        if (member["key"] == key) return &member;
    }
    return nullptr;
}

// Returns the entry of protocol/ and sets whether it is an event, or returns null.
const Json::Value* EntryOf(const PrivateMember& member, bool& event) {
    const WireFamily& family = FindFamily(member.family);
    event = false;
    for (const Json::Value& operation : family.protocol["operations"]) {
        if (operation["name"] == member.operation) return &operation;
    }
    event = true;
    for (const Json::Value& one : family.protocol["events"]) {
        if (one["name"] == member.operation) return &one;
    }
    return nullptr;
}

// A message of the entry, and a reply, with this value as the member wherever protocol/ has it.
Record With(const PrivateMember& member, const Json::Value& entry, bool event, const Json::Value& value) {
    const WireFamily& family = FindFamily(member.family);
    const bool asked = MemberIn(entry[event ? "members" : "request"], member.key) != nullptr;
    Json::Value members(Json::objectValue);
    if (asked) members[member.key] = value;
    const Json::Value message = event ? MakeEvent(family, entry, members) : MakeRequest(family, entry, members);
    Json::Value reply(Json::objectValue);
    reply["ret"] = 0;
    if (!asked) reply[member.key] = value;
    return Exchange(event ? EventsOf(family).socket : RequestsOf(family).socket, WriteJson(message), WriteJson(reply));
}

TEST(PrivateMembers, AreInTheProtocolAndAreReplacedByValuesOfTheirType) {
    for (const PrivateMember& member : PrivateMembers()) {
        const std::string name = std::string(member.family) + "." + member.operation + " " + member.key;
        bool event = false;
        const Json::Value* const entry = EntryOf(member, event);
        ASSERT_NE(entry, nullptr) << name;
        const Json::Value* defined = nullptr;
        for (const char* part : {"request", "reply", "members"}) {
            const Json::Value* const found = MemberIn((*entry)[part], member.key);
            if (found != nullptr) defined = found;
        }
        ASSERT_NE(defined, nullptr) << name;
        const bool isText = (*defined)["type"] == "string";
        Record record = With(member, *entry, event, isText ? Json::Value("secret") : Json::Value(4711));
        ASSERT_EQ(record.operation, member.operation);
        Redaction().Apply(record);
        const bool asked = record.message.json.isMember(member.key);
        const Json::Value& value = asked ? record.message.json[member.key] : record.reply->json[member.key];
        EXPECT_EQ(value.isString(), isText) << name;
        EXPECT_EQ(value.asString(), isText ? "redacted-1" : "1") << name;
    }
}

// A member of protocol/ that looks like an identification of the television is in the list.
TEST(PrivateMembers, HaveWhatIdentifiesATelevision) {
    size_t found = 0;
    for (const WireFamily& family : WireFamilies()) {
        for (const char* part : {"operations", "events"}) {
            for (const Json::Value& entry : family.protocol[part]) {
                for (const char* members : {"request", "reply", "members"}) {
                    for (const Json::Value& member : entry[members]) {
                        const std::string folded = FoldedName(member["key"].asString());
                        if (folded.find("serial") == std::string::npos && folded.find("deviceid") != 0) continue;
                        ++found;
                        EXPECT_EQ(PrivacyOf({}, false, member["key"].asString()), Privacy::Identifier)
                            << family.name << " " << member["key"].asString();
                    }
                }
            }
        }
    }
    EXPECT_EQ(found, 5u);
}

// Redacts the request of a record of the channels, and returns its members.
Json::Value Redacted(const std::string& socket, const std::string& request) {
    Record record = Exchange(socket, request, R"({"ret":0})");
    Redaction().Apply(record);
    return record.message.json;
}

TEST(Redaction, ReplacesStringsThatTheProtocolDoesNotDefine) {
    EXPECT_EQ(WriteJson(Redacted(kChannels, R"({"c_handle":"0x5","method":13,"new":"anna","other":"0x7","type":12})")),
              R"({"c_handle":"0x5","method":13,"new":"redacted-1","other":"0x7","type":12})");
    EXPECT_EQ(WriteJson(Redacted(kChannels, R"({"a":[{"b":"anna"}],"c":1,"method":99,"type":12})")),
              R"({"a":[{"b":"redacted-1"}],"c":1,"method":99,"type":12})");
    EXPECT_EQ(WriteJson(Redacted("service_of_tomorrow", R"({"user":"anna","was":"anna"})")),
              R"({"user":"redacted-1","was":"redacted-1"})");
    EXPECT_EQ(WriteJson(Redacted(kChannels, R"(["anna"])")), R"(["redacted-1"])");
}

TEST(Redaction, LeavesWhatTheProtocolDefines) {
    const std::string named = R"({"c_handle":"0x5","method":12,"name":"arte","type":12})";
    EXPECT_EQ(WriteJson(Redacted(kChannels, named)), named);
    const std::string ids = R"({"channel0":"0x1","channel1":"0x2","method":8,"size":2,"type":19})";
    EXPECT_EQ(WriteJson(Redacted(kChannelConfig, ids)), ids);
    Record event = Exchange("service_hbbtv_to_plugin_vb",
                            R"({"context":"0x7","error":0,"event":1,"state":2,"type":"videobroadcast"})");
    const std::string before = WriteJson(ToJson(event));
    Redaction().Apply(event);
    EXPECT_EQ(WriteJson(ToJson(event)), before);
}

TEST(Redaction, TakesUsersQueriesAndFragmentsOutOfUrls) {
    const auto url = [](const std::string& text) {
        return Redacted(kVideoBroadcast, R"({"channel":"0x1","method":11,"trickPlay":false,"type":3,"url":")" + text +
                                             R"(","vb_handle":"0x2"})")["url"]
            .asString();
    };
    EXPECT_EQ(url("https://anna:pw@a.example:8080/p@th?x=1&y=2#z"),
              "https://redacted-1@a.example:8080/p@th?redacted-2#redacted-3");
    EXPECT_EQ(url("http://a.example?u=anna http://b.example/?u=anna#"),
              "http://a.example?redacted-1 http://b.example/?redacted-1#");
    EXPECT_EQ(url("/start?user=anna"), "/start?redacted-1");
    EXPECT_EQ(url("dvb://1.3fb.283e/a/b"), "dvb://1.3fb.283e/a/b");
    EXPECT_EQ(url("http://a.example/?"), "http://a.example/?");
    EXPECT_EQ(url("://@?#"), "://@?#") << "nothing in it";
}

TEST(Redaction, KeepsEqualNumbersEqual) {
    const auto key = [](int code) {
        return Exchange("service_hbbtv_to_mtm",
                        R"({"key":)" + std::to_string(code) + R"(,"keyType":0,"keyeventId":0,"method":27,"type":0})");
    };
    Redaction redaction;
    std::vector<int> keys;
    for (const int code : {49, 57, 49}) {
        Record record = key(code);
        ASSERT_EQ(record.operation, "SendKey");
        redaction.Apply(record);
        keys.push_back(record.message.json["key"].asInt());
    }
    EXPECT_EQ(keys, (std::vector<int>{1, 2, 1}));
}

}  // namespace
}  // namespace hbbtv::traffic::test
