// Messages of the wire by the names in protocol/: no test types a code, an address or a key of an envelope. An unknown
// name throws, which fails the test with the name.
#pragma once

#include <json/value.h>

#include <map>
#include <string>
#include <vector>

#include "raw_socket.h"
#include "wire/protocol.h"

namespace hbbtv::test {

using Members = std::map<std::string, Json::Value>;

class Operation {
  public:
    // "channel.GetName"
    explicit Operation(const std::string& name);

    const WireFamily& Family() const { return mFamily; }

    // Whether a request may have this member; of numbered ones, the name of all: "channel" for "channel%d".
    bool Has(const std::string& member) const;

    // Returns the request with these members; others may be missing, but unknown ones throw. A list becomes numbered
    // members and their count.
    Json::Value Request(const Members& members) const;

    // Returns the key of the object that the operation is about, its first member.
    std::string ObjectKey() const;

    // Returns the key of the last member, the value of an operation that sets one.
    std::string ValueKey() const;

    // Expects the members of a successful reply, or "ret" alone, and nothing else.
    void CheckReply(const Json::Value& reply) const;

    // Returns the value of the only result that a reply has.
    Json::Value OnlyResult(const Json::Value& reply) const;

  private:
    const std::string mName;
    const WireFamily& mFamily;
    const Json::Value& mWire;
};

// Returns a request with any code and any members.
Json::Value RawRequest(const WireFamily& family, const Json::Value& code, const Members& members);

// Returns "channel.Release" and the others, in the order of their codes.
std::vector<std::string> OperationsOf(const std::string& family);

// Returns those of the operations' names that are not in `others`.
std::vector<std::string> Without(std::vector<std::string> operations, const std::vector<std::string>& others);

// Returns codes below, between and above those of the family's operations.
std::vector<int> CodesWithoutOperation(const std::string& family);

struct Event {
    std::string name;
    Json::Value members;  // without those of the envelope, but with the context

    // Returns the name and the members in order, each as JSON: `ShowHideTab isMulti=false showHide=true tabid=3`.
    std::string Text() const;
};

// Reads an event, expecting the form, the envelope and the members that protocol/ gives it.
Event ReadEvent(const std::string& family, const Frame& message);

// Returns the values as an array of JSON.
template <typename Values>
Json::Value List(const Values& values) {
    Json::Value list(Json::arrayValue);
    for (const auto& value : values) list.append(value);
    return list;
}

Json::Value Parsed(const std::string& text);

}  // namespace hbbtv::test
