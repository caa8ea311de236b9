// Looking services up, and where line-ups come from: see line_up.h.
#include "platform/line_up.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "platform/default_line_up.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLargestFile = 16u << 20;

}  // namespace

std::shared_ptr<Service> LineUp::Find(int onid, int tsid, int sid) const {
    for (; mIndexed < services.size(); ++mIndexed) {
        const auto& service = services[mIndexed];
        if (service->uri.empty()) mByTriplet.emplace(std::tie(service->onid, service->tsid, service->sid), service);
    }
    const auto found = mByTriplet.find({onid, tsid, sid});
    return found == mByTriplet.end() ? nullptr : found->second;
}

std::shared_ptr<Service> LineUp::First() const {
    for (const auto& service : services) {
        if (service->listed) return service;
    }
    return nullptr;
}

LineUp ReadLineUp(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw BadLineUp(path + ": cannot be opened: " + std::strerror(errno));
    std::string text(kLargestFile + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad()) throw BadLineUp(path + ": cannot be read: " + std::strerror(errno));
    text.resize(static_cast<size_t>(file.gcount()));
    if (text.size() > kLargestFile) throw BadLineUp(path + ": is larger than 16 MiB");
    return ParseLineUp(text, path);
}

LineUp DefaultLineUp() {
    return ParseLineUp(kDefaultLineUp, "built-in line-up");
}

}  // namespace hbbtv::sim
