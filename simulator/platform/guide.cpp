// What every guide can do by walking: see guide.h.
#include "platform/guide.h"

namespace hbbtv::sim {

ProgrammeList Guide::NowAndNext(const std::shared_ptr<const Service>& service, std::time_t time) {
    ProgrammeList found;
    Walk(service, {time, kLastTime}, [&](const std::shared_ptr<Programme>& programme) {
        found.push_back(programme);
        return found.size() < 2;
    });
    return found;
}

ProgrammeList Guide::Between(const std::shared_ptr<const Service>& service, std::time_t from, std::time_t to) {
    ProgrammeList found;
    Walk(service, {from, to}, [&](const std::shared_ptr<Programme>& programme) {
        found.push_back(programme);
        return true;
    });
    return found;
}

ProgrammeList Guide::Search(const std::vector<std::shared_ptr<Service>>& services, TimeRange range,
                            const std::function<bool(const Programme&)>& fits, size_t most) {
    ProgrammeList found;
    for (const auto& service : services) {
        if (found.size() >= most) break;
        Walk(service, range, [&](const std::shared_ptr<Programme>& programme) {
            if (fits(*programme)) found.push_back(programme);
            return found.size() < most;
        });
    }
    return found;
}

}  // namespace hbbtv::sim
