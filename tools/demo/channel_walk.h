// The demo's walk through the channel list: every channel, asked for what a viewer's channel list shows.
#pragma once

#include <functional>
#include <string>

#include "caller.h"
#include "transcript.h"

namespace hbbtv::demo {

// Shows the list as a table and gives every channel's handle and name to `name`. The handles stay good, so that the
// events that follow have names. Whether everything went as it should.
bool WalkChannels(Transcript& transcript, Caller& caller,
                  const std::function<void(int64_t channel, const std::string& name)>& name);

}  // namespace hbbtv::demo
