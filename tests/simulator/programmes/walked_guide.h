// The programmes that a guide has for a service, as a list.
#pragma once

#include "television/programmes/guide.h"

namespace hbbtv::sim {

inline ProgrammeList Walked(Guide& guide, const std::shared_ptr<const Service>& service,
                            TimeRange range = {0, kLastTime}) {
    ProgrammeList found;
    guide.Walk(service, range, [&](const std::shared_ptr<Programme>& programme) {
        found.push_back(programme);
        return true;
    });
    return found;
}

}  // namespace hbbtv::sim
