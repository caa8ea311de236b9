// One programme of a service: the broadcast values, and those that clients have set.
#pragma once

#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "television/device/rating.h"
#include "television/line_up/line_up.h"

namespace hbbtv::sim {

// A half-open range of time, UTC.
struct TimeRange {
    std::time_t from = 0;
    std::time_t to = 0;

    bool Meets(const TimeRange& other) const { return std::max(from, other.from) < std::min(to, other.to); }
};

// The last second that the interface can express.
constexpr std::time_t kLastTime = INT32_MAX;

// Values of OIPF DAE volume 5.
enum class ProgrammeIdType { TvaCrid = 0, DvbEvent = 1, TvaGroupCrid = 2 };

struct Programme {
    std::shared_ptr<const Service> service;
    TimeRange onAir;
    int eventId = 0;  // 0 to 65535, unique within the service for a month and more

    // Values that clients may change. The order of programmes depends on `onAir` only.
    std::string name;
    std::string description;  // short
    std::string longDescription;
    std::time_t start = 0;
    int duration = 0;       // seconds
    std::string channelId;  // ccid
    std::string id;
    int idType = static_cast<int>(ProgrammeIdType::DvbEvent);
    bool changed = false;  // by a client

    std::string language = "und";  // of name and descriptions, ISO 639-2
    std::vector<std::string> genres;
    std::shared_ptr<RatingCollection> ratings;  // null: none
    int season = 0;                             // 0 if unknown, like the next two
    int episode = 0;
    int totalEpisodes = 0;
    std::string seriesId;
    std::string iconUrl;
    bool repeated = false;
    ComponentList components;  // empty: those of the service

    const ComponentList& Components() const { return components.empty() ? service->components : components; }
};

using ProgrammeList = std::vector<std::shared_ptr<Programme>>;

// Creates a programme with this time and number, and the values derived from them: times, channel and identifier. The
// identifier is the same in every run: the URL of the DVB event, or a CRID for IP services.
std::shared_ptr<Programme> MakeProgramme(std::shared_ptr<const Service> service, TimeRange onAir, int eventId);

// Returns the minimum age of a rating, by its scheme; 0 if it has none.
int AgeOf(const Rating& rating);

void AddRating(Programme& programme, Rating rating);

}  // namespace hbbtv::sim
