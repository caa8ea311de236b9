// The URLs by which applications name files of the object carousel:
//   dvb://<onid>.<tsid>.<sid>.<component tag>/<path>     numbers in hexadecimal
//   dvb://current.ait/<organisation id>.<application id> the start of an application of the current service
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "television/applications/applications.h"

namespace hbbtv::sim {

// Names from the root of the carousel downwards, none of which leads out of it: no ".", "..", empty name, slash or NUL.
using CarouselPath = std::vector<std::string>;

struct CarouselUrl {
    std::optional<ApplicationId> application;  // then there is nothing else
    int onid = 0;
    int tsid = 0;
    int sid = 0;
    int componentTag = 0;
    CarouselPath path;
};

// Query and fragment are the application's own and left out. Throws Refused, also for a path that climbs, in whatever
// way it is written.
CarouselUrl ReadCarouselUrl(const std::string& url);

// The path behind the first slash of such a URL, or of a file in the carousel's directory. Throws Refused.
CarouselPath ReadCarouselPath(const std::string& text);

std::string PathText(const CarouselPath& path);

}  // namespace hbbtv::sim
