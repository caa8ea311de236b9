// All families that the simulator plays. A new one is a line in families.cpp and files of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/event_loop.h"
#include "core/family.h"
#include "families/settings.h"
#include "platform/tv.h"

namespace hbbtv::sim {

struct FamilySetup {
    EventLoop& loop;
    Tv& tv;
    const Settings& settings;
    std::function<EventSink&(const FamilyAddress&)> sinkOf;  // where that family's events go
    const std::string& directory;                            // of the sockets, and of what is put beside them
};

std::vector<std::unique_ptr<Family>> MakeFamilies(const FamilySetup& setup);

}  // namespace hbbtv::sim
