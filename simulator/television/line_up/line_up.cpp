#include "television/line_up/line_up.h"

#include <algorithm>
#include <filesystem>

#include "core/error.h"
#include "television/line_up/default_line_up.h"
#include "television/line_up/formats.h"
#include "text/lines.h"
#include "text/text.h"

namespace hbbtv::sim {

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

LineUp ParseAnyLineUp(const std::string& text, const std::string& path, const FileWarning& warn) {
    const std::string_view blanks = " \t\r\n";
    const std::string_view whole = WithoutByteOrderMark(text);
    const size_t first = std::min(whole.find_first_not_of(blanks), whole.size());
    const std::string_view start = whole.substr(first, whole.find_first_of("\r\n", first) - first);
    if (StartsWith(start, "#EXT")) return ParseM3u(text, path, warn);
    if (StartsWith(start, "eDVB services ")) return ParseLamedb(text, path, warn);
    if (start.empty() || start[0] == '{' || start[0] == '[') return ParseLineUp(text, path);
    const auto line = 1 + std::count(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(first), '\n');
    const std::string place = path + ":" + std::to_string(line);
    if (StartsWith(start, "#NAME"))
        throw Fatal(kFileRefused, place + ": this is a bouquet; the line-up is the lamedb in the same directory");
    throw Fatal(kFileRefused, place + ": " + Quotation(start) +
                                  " is not the start of a line-up: JSON ({), M3U (#EXTM3U) or lamedb (eDVB services)");
}

LineUp ReadLineUp(const std::string& path, const FileWarning& warn) {
    std::error_code error;
    const bool directory = std::filesystem::is_directory(path, error);
    const std::string file = directory ? (std::filesystem::path(path) / "lamedb").string() : path;
    FewWarnings warnings(file, warn);
    return ParseAnyLineUp(ReadWhole(file), file, std::ref(warnings));
}

LineUp DefaultLineUp() {
    return ParseLineUp(kDefaultLineUp, "built-in line-up");
}

}  // namespace hbbtv::sim
