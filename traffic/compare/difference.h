// How a message differs from the recorded one.
#pragma once

#include <string>
#include <vector>

#include "traffic/compare/facts.h"
#include "traffic/compare/handles.h"
#include "traffic/record/record.h"

namespace hbbtv::traffic {

struct Difference {
    std::string text;    // `"name" is "ZDF HD", in the recording "Das Erste HD"`
    bool clock = false;  // the member depends on when it is asked for
};

// Other handles are not a difference if they can be the same as those of the recording.
std::vector<Difference> Differences(const MessageFacts& facts, const Message& recorded, const Message& live,
                                    const Handles& handles);

}  // namespace hbbtv::traffic
