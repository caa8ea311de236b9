// The URLs by which applications name files of the object carousel:
//   dvb://<onid>.<tsid>.<sid>.<component tag>/<path>     numbers in hexadecimal
//   dvb://current.ait/<organisation id>.<application id> the start of an application of the current service
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "television/applications/applications.h"

namespace hbbtv::sim {

// Names from the root of the carousel, none of which leads out of it: no ".", "..", empty name, slash or NUL.
using CarouselPath = std::vector<std::string>;

struct CarouselUrl {
    std::optional<ApplicationId> application;  // the other members are then unused
    int onid = 0;
    int tsid = 0;
    int sid = 0;
    int componentTag = 0;
    CarouselPath path;
};

// Query and fragment belong to the application and are left out. Throws Refused, also for a path with "..", however it
// is encoded.
CarouselUrl ReadCarouselUrl(const std::string& url);

// Parses the path after the first slash of such a URL, or of a file in the carousel's directory. Throws Refused.
CarouselPath ReadCarouselPath(const std::string& text);

std::string PathText(const CarouselPath& path);

}  // namespace hbbtv::sim
