// Which handle of the running system is which handle of the recording.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "traffic/compare/facts.h"

namespace hbbtv::traffic {

// Handles of different kinds are independent. A handle may be several of the recording: one platform returns the same
// handle for the same object again, another one a new handle for each request.
class Handles {
  public:
    std::optional<uint32_t> Live(const std::string& kind, uint32_t recorded) const;

    // Returns the handles of the recording that it is.
    std::set<uint32_t> Recorded(const std::string& kind, uint32_t live) const;

    // Returns whether the two are known to be the same, or none of them was seen.
    bool Same(const std::string& kind, uint32_t recorded, uint32_t live) const;

    // Returns whether the two can be the same: they are, or one of them was not seen.
    bool Fit(const std::string& kind, uint32_t recorded, uint32_t live) const;

    void Bind(const std::string& kind, uint32_t recorded, uint32_t live);

    // Binds the handles of two messages that are the same one.
    void Learn(const MessageFacts& facts, const Json::Value& recorded, const Json::Value& live);

    // Forgets the handles of a recorded message: their objects have ended, and the numbers can get other objects.
    void Forget(const MessageFacts& facts, const Json::Value& recorded);

    // Returns the recorded message with the handles of the running system, as far as they are known.
    Json::Value Translated(const MessageFacts& facts, const Json::Value& recorded) const;

  private:
    using Key = std::pair<std::string, uint32_t>;  // kind, handle

    std::map<Key, uint32_t> mLive;                // by the recorded one: the latest
    std::map<Key, std::set<uint32_t>> mRecorded;  // by the live one
};

}  // namespace hbbtv::traffic
