// What protocol/ says about the members of a message as far as it matters when two messages are compared.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace hbbtv::traffic {

struct MemberFacts {
    std::string kind;    // of the object that a handle is of, "context", or empty if it is not a handle
    bool clock = false;  // the value depends on when it is asked for
};

class MessageFacts {
  public:
    // `members` are those of a request, a reply or an event in protocol/.
    void Add(const Json::Value& members);

    // Returns what is known about the member of a key, which may be a numbered one: "channel3".
    MemberFacts Of(const std::string& key) const;

  private:
    struct Known {
        std::string key;  // of protocol/
        MemberFacts facts;
    };
    std::vector<Known> mKnown;
};

// Which message of an exchange.
enum class Side { Message, Reply };

// Returns what is known about a message of an operation or an event; nothing is known about those that protocol/ lacks.
// Not thread-safe.
const MessageFacts& FactsOf(const std::string& family, const std::string& operation, bool event, Side side);

// Calls `visit` for the key and the kind of each handle that is not null.
void ForEachHandle(const MessageFacts& facts, const Json::Value& message,
                   const std::function<void(const std::string& key, const std::string& kind, uint32_t handle)>& visit);

// Returns the handle as the library reads it: the low 32 bits, 0 for null. Returns nothing if it is not a handle.
std::optional<uint32_t> ReadHandle(const Json::Value& value);

}  // namespace hbbtv::traffic
