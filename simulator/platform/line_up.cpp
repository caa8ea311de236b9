// Looking services up, and where line-ups come from: see line_up.h.
#include "platform/line_up.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "platform/default_line_up.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLargestFile = 16u << 20;

std::vector<std::shared_ptr<Service>> Listed(const LineUp& lineUp) {
    std::vector<std::shared_ptr<Service>> listed;
    for (const auto& service : lineUp.services) {
        if (service->listed) listed.push_back(service);
    }
    return listed;
}

}  // namespace

std::shared_ptr<Service> LineUp::Find(int onid, int tsid, int sid) const {
    for (const auto& service : services) {
        if (service->onid == onid && service->tsid == tsid && service->sid == sid) return service;
    }
    return nullptr;
}

std::shared_ptr<Service> LineUp::FindNumber(int number) const {
    for (const auto& service : services) {
        if (service->listed && service->number == number) return service;
    }
    return nullptr;
}

std::shared_ptr<Service> LineUp::Neighbour(const Service& from, int steps) const {
    const auto listed = Listed(*this);
    const int count = static_cast<int>(listed.size());
    for (int i = 0; i < count; ++i) {
        if (listed[i].get() == &from) return listed[((i + steps) % count + count) % count];
    }
    return nullptr;
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
