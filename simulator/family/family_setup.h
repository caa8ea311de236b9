// What each family is created with.
#pragma once

#include <string>

#include "core/event_loop.h"
#include "family/family.h"
#include "family/settings.h"
#include "television/tv.h"

namespace hbbtv::sim {

struct FamilySetup {
    EventLoop& loop;
    Tv& tv;
    const Settings& settings;
    MakeSink makeSink;
    const std::string& directory;  // of the sockets and the files next to them
};

}  // namespace hbbtv::sim
