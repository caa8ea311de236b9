// The events of a family as protocol/ defines them, each with a value for every member.
#pragma once

#include <json/value.h>

#include <string>

namespace hbbtv::test {

class ProtocolEvent {
  public:
    // Finds the event by name or code, as "mediasync:5".
    explicit ProtocolEvent(const std::string& event);

    const Json::Value& Definition() const { return mDefinition; }

    // The event on one line. A context of its envelope is 0xabcd.
    std::string Text() const;

    // Values of the members, by argument.
    const Json::Value& Values() const { return mValues; }

    // Returns "UiLanguage" for "UI language".
    std::string TestName() const;

  private:
    const Json::Value& mDefinition;
    Json::Value mValues;
};

// Returns "UiLanguage" for "UI language", "ComponentType" for "component_type".
std::string TestNameOf(const std::string& name);

}  // namespace hbbtv::test
