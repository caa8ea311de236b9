#include "television/programmes/programme.h"

#include <cstdio>
#include <map>
#include <vector>

#include "television/channels/service_channels.h"

namespace hbbtv::sim {

namespace {

std::string DvbEventUrl(const Service& service, int eventId) {
    char event[16];
    std::snprintf(event, sizeof(event), ";%x", static_cast<unsigned>(eventId));
    return DvbUrl(service) + event;
}

// Percent-encodes characters that are not allowed in a URL.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.';
        char number[4];
        std::snprintf(number, sizeof(number), "%%%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        escaped += plain ? std::string(1, c) : number;
    }
    return escaped;
}

}  // namespace

std::shared_ptr<Programme> MakeProgramme(std::shared_ptr<const Service> service, TimeRange onAir, int eventId) {
    auto programme = std::make_shared<Programme>();
    programme->onAir = onAir;
    programme->eventId = eventId;
    programme->start = onAir.from;
    programme->duration = static_cast<int>(onAir.to - onAir.from);
    programme->channelId = CcidOf(*service);
    if (service->uri.empty()) {
        programme->id = DvbEventUrl(*service, eventId);
    } else {
        programme->id = "crid://iptv.example/" + Escaped(service->uri) + "/" + std::to_string(eventId);
        programme->idType = static_cast<int>(ProgrammeIdType::TvaCrid);
    }
    programme->service = std::move(service);
    return programme;
}

int AgeOf(const Rating& rating) {
    static const std::map<std::string, std::vector<int>> kAges{{kSchemeFsk, {0, 6, 12, 16, 18}},
                                                               {kSchemeMpaa, {0, 0, 13, 17, 18, 0}}};
    const auto ages = kAges.find(rating.scheme);
    if (ages == kAges.end()) return rating.value;
    const auto position = static_cast<size_t>(rating.value);
    return position < ages->second.size() ? ages->second[position] : 0;
}

void AddRating(Programme& programme, Rating rating) {
    if (!programme.ratings) programme.ratings = std::make_shared<RatingCollection>();
    programme.ratings->push_back(std::make_shared<Rating>(std::move(rating)));
}

}  // namespace hbbtv::sim
