// One programme of a service: what the broadcast says of it, and what clients have made of that.
#pragma once

#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "platform/line_up.h"

namespace hbbtv::sim {

// From a time on and up to another one, which is no longer in it; UTC.
struct TimeRange {
    std::time_t from = 0;
    std::time_t to = 0;

    bool Meets(const TimeRange& other) const { return std::max(from, other.from) < std::min(to, other.to); }
};

// The last second that the interface can say.
constexpr std::time_t kLastTime = INT32_MAX;

// Schemes of OIPF DAE volumes 3 and 5. A value is an age; in the scheme of the MPAA it is the place in its list.
extern const char* const kSchemeDvbSi;
extern const char* const kSchemeFsk;
extern const char* const kSchemeMpaa;

struct ParentalRating {
    std::string scheme;
    std::string name;
    int value = 0;
    unsigned labels = 0;  // a bit for each
    std::string region;   // ISO 3166, two letters; empty when it holds everywhere
};

using ParentalRatings = std::vector<std::shared_ptr<ParentalRating>>;

// Values of OIPF DAE volume 5.
enum class ProgrammeIdType { TvaCrid = 0, DvbEvent = 1, TvaGroupCrid = 2 };

struct Programme {
    std::shared_ptr<const Service> service;
    TimeRange onAir;
    int eventId = 0;  // 0 to 65535, unique within the service for a month and more

    // What clients may change. Where the programme stands among the others stays as `onAir` says.
    std::string name;
    std::string description;  // short
    std::string longDescription;
    std::time_t start = 0;
    int duration = 0;       // seconds
    std::string channelId;  // ccid
    std::string id;
    int idType = static_cast<int>(ProgrammeIdType::DvbEvent);
    bool changed = false;  // by a client

    std::string language = "und";  // of the texts, ISO 639-2
    std::vector<std::string> genres;
    std::shared_ptr<ParentalRatings> ratings;  // null: none
    int season = 0;                            // 0 when not known, like the next two
    int episode = 0;
    int totalEpisodes = 0;
    std::string seriesId;
    std::string iconUrl;
    bool repeated = false;
    ComponentList components;  // empty: those of the service

    const ComponentList& Components() const { return components.empty() ? service->components : components; }
};

using ProgrammeList = std::vector<std::shared_ptr<Programme>>;

// With this time and this number, and what follows from them: times, channel and identifier. The identifier is the
// same in every run: the address of the DVB event, and for services over IP a CRID.
std::shared_ptr<Programme> MakeProgramme(std::shared_ptr<const Service> service, TimeRange onAir, int eventId);

void AddRating(Programme& programme, ParentalRating rating);

}  // namespace hbbtv::sim
