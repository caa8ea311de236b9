// The bouquets next to an enigma2 lamedb: the order of its services, and the favourite lists of its owner.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "television/line_up/line_up.h"
#include "text/lines.h"

namespace hbbtv::sim {

// The name of a service in the receiver's files. The upper half of the namespace is the reception: a satellite's
// position in tenths of a degree east, 0xeeee terrestrial, 0xffff cable.
struct ServiceReference {
    uint32_t nameSpace = 0;
    int onid = 0;
    int tsid = 0;
    int sid = 0;

    uint32_t Place() const { return nameSpace >> 16; }
};

struct Bouquets {
    std::vector<std::shared_ptr<Service>> order;  // each service at its first position; null for a numbered marker
    std::vector<FavouriteServices> lists;
};

// Returns null for a service that is not in the lamedb.
using FindService = std::function<std::shared_ptr<Service>(const ServiceReference&)>;

// Reads `bouquets.tv` and `bouquets.radio` in the directory and the files that they name. If they are missing there are
// no bouquets; unusable lines are skipped with a warning. A service without a name gets that of a bouquet.
Bouquets ReadBouquets(const std::string& directory, const FindService& find, const FileWarning& warn);

}  // namespace hbbtv::sim
