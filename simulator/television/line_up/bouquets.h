// The bouquets beside an enigma2 lamedb: in which order its services stand, and which lists their owner has made.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "television/line_up/line_up.h"
#include "text/lines.h"

namespace hbbtv::sim {

// How the receiver's files name a service. The upper half of the name space says where it is received: a satellite's
// position in tenths of a degree east, 0xeeee terrestrial, 0xffff cable.
struct ServiceReference {
    uint32_t nameSpace = 0;
    int onid = 0;
    int tsid = 0;
    int sid = 0;

    uint32_t Place() const { return nameSpace >> 16; }
};

struct Bouquets {
    std::vector<std::shared_ptr<Service>> order;  // each service where it comes first; null where a marker has a number
    std::vector<FavouriteServices> lists;
};

// Null for a service that the lamedb does not have.
using FindService = std::function<std::shared_ptr<Service>(const ServiceReference&)>;

// Reads `bouquets.tv` and `bouquets.radio` in the directory and the files that they name. Without them there are no
// bouquets; what cannot be used is skipped with a warning. A service without a name gets that of a bouquet.
Bouquets ReadBouquets(const std::string& directory, const FindService& find, const FileWarning& warn);

}  // namespace hbbtv::sim
