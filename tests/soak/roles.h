// The processes of a soak run that the first one starts: this program, in another role.
#pragma once

namespace hbbtv::soak {

constexpr char kPlatformRole[] = "platform";
constexpr char kClientRole[] = "client";

// Both print "ready", then run until they are killed.
int RunPlatform();
int RunClient(int client);

}  // namespace hbbtv::soak
