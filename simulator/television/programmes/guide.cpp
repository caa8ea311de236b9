#include "television/programmes/guide.h"

namespace hbbtv::sim {

ProgrammeList Guide::NowAndNext(const std::shared_ptr<const Service>& service, std::time_t time) {
    ProgrammeList found;
    Walk(service, {time, kLastTime}, [&](const std::shared_ptr<Programme>& programme) {
        found.push_back(programme);
        return found.size() < 2;
    });
    return found;
}

}  // namespace hbbtv::sim
