// What the traffic itself has told about handles: a handle that IChannel.GetName was asked about has that name.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

// Not thread-safe. Keeps at most kMost handles, the latest ones.
class Names {
  public:
    static constexpr size_t kMost = 20000;

    // Takes the kinds and names of the record's handles. A handle that was released has none.
    void Learn(const Record& record);

    // Returns the name of the object, "Das Erste HD", or "" if it is not known.
    std::string Of(uint64_t handle) const;

    // Returns what the handle is, "channel" or "video_broadcast", or "".
    std::string KindOf(uint64_t handle) const;

  private:
    struct Object {
        std::string kind;
        std::string name;
    };

    Object& Remembered(uint64_t handle);
    void LearnHandles(const Json::Value& members, const Json::Value& payload);

    std::unordered_map<uint64_t, Object> mObjects;
    std::deque<uint64_t> mOrder;
};

}  // namespace hbbtv::traffic
