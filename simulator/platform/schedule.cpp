// Generated programmes: see schedule.h.
#include "platform/schedule.h"

#include <random>

namespace hbbtv::sim {

namespace {

constexpr std::time_t kDay = 24 * 60 * 60;
constexpr int kMinute = 60;
constexpr int kShortest = 10 * kMinute;  // what is left of a day is joined to its last programme when it is shorter
constexpr size_t kMostDays = 512;        // kept; all can be made again

struct Kind {
    const char* name;
    const char* genre;
    const char* description;
    int minutes;  // usual length
};

const Kind kTelevision[] = {
    {"News", "News", "The news of the hour from home and abroad.", 15},
    {"Weather Tomorrow", "News", "How the weather will be, region by region.", 15},
    {"Morning Magazine", "Magazine", "Guests, topics and music for the first coffee.", 60},
    {"The Long River", "Documentary", "A journey along the water, from its source to the sea.", 45},
    {"Cities at Night", "Documentary", "Who works while the others sleep.", 45},
    {"Wild Coast", "Documentary", "Birds, seals and the people who count them.", 50},
    {"Kitchen Table", "Leisure", "Three courses, one hour, no recipe left out.", 60},
    {"Harbour Watch", "Series", "The crew of a police boat and its cases.", 45},
    {"The Neighbours Upstairs", "Series", "A house, six families and one lift that never works.", 30},
    {"Old Letters", "Film", "A postwoman finds letters that were never delivered.", 90},
    {"The Last Ferry", "Film", "A storm, an island and one boat too few.", 105},
    {"Quiz at Seven", "Show", "Four players, twelve questions, one winner.", 45},
    {"Sports Live", "Sport", "The match of the day with interviews and analysis.", 120},
    {"Paws and Claws", "Children", "A vet explains how animals get well.", 25},
    {"Talk at Ten", "Talk", "One subject and people who disagree about it.", 75},
    {"Business Today", "News", "Markets, firms and what they mean for you.", 30},
};

const Kind kRadio[] = {
    {"News and Weather", "News", "The news at the full hour.", 10},
    {"Good Morning", "Magazine", "Music and information for the start of the day.", 120},
    {"The Afternoon", "Music", "New songs and old acquaintances.", 120},
    {"Concert Evening", "Music", "A concert recorded with an audience.", 90},
    {"Background", "Information", "What stands behind the news.", 30},
    {"Radio Play", "Culture", "A story for listening.", 60},
    {"Night Music", "Music", "Quiet music through the night.", 180},
};

std::mt19937 Generator(uint32_t seed, const Service& service, std::time_t day) {
    std::vector<uint32_t> words{seed, static_cast<uint32_t>(service.onid), static_cast<uint32_t>(service.tsid),
                                static_cast<uint32_t>(service.sid), static_cast<uint32_t>(day / kDay)};
    for (const char c : service.uri) words.push_back(static_cast<unsigned char>(c));
    std::seed_seq sequence(words.begin(), words.end());
    return std::mt19937(sequence);
}

// The library's distributions differ between systems; this does not.
template <size_t N>
size_t Draw(std::mt19937& random, const Kind (&)[N]) {
    return random() % N;
}

std::time_t DayOf(std::time_t time) {
    return time - ((time % kDay) + kDay) % kDay;
}

}  // namespace

ProgrammeList Schedule::MakeDay(const std::shared_ptr<const Service>& service, std::time_t day) const {
    std::mt19937 random = Generator(mSeed, *service, day);
    const bool radio = service->type == ChannelType::Radio;
    ProgrammeList programmes;
    size_t previous = SIZE_MAX;
    for (std::time_t start = day; start < day + kDay;) {
        size_t choice = radio ? Draw(random, kRadio) : Draw(random, kTelevision);
        if (choice == previous) choice = choice == 0 ? 1 : choice - 1;
        previous = choice;
        const Kind& kind = radio ? kRadio[choice] : kTelevision[choice];
        auto programme = std::make_shared<Programme>();
        programme->service = service;
        programme->eventId = static_cast<int>(programmes.size()) + 1;
        programme->name = kind.name;
        programme->genre = kind.genre;
        programme->description = kind.description;
        programme->longDescription = std::string(kind.description) + " On " + service->name + ".";
        programme->start = start;
        programme->duration = kind.minutes * kMinute;
        const std::time_t left = day + kDay - start - programme->duration;
        if (left < kShortest) programme->duration = static_cast<int>(day + kDay - start);
        start += programme->duration;
        programmes.push_back(std::move(programme));
    }
    return programmes;
}

const ProgrammeList& Schedule::Day(const std::shared_ptr<const Service>& service, std::time_t day) {
    const auto key = std::make_tuple(service->onid, service->tsid, service->sid, service->uri, day);
    const auto known = mDays.find(key);
    if (known != mDays.end()) return known->second;
    if (mDays.size() >= kMostDays) mDays.clear();
    return mDays[key] = MakeDay(service, day);
}

ProgrammeList Schedule::Between(const std::shared_ptr<const Service>& service, std::time_t from, std::time_t to) {
    ProgrammeList found;
    for (std::time_t day = DayOf(from); day < to; day += kDay) {
        for (const auto& programme : Day(service, day)) {
            if (programme->start + programme->duration > from && programme->start < to) found.push_back(programme);
        }
    }
    return found;
}

ProgrammeList Schedule::NowAndNext(const std::shared_ptr<const Service>& service, std::time_t time) {
    ProgrammeList found = Between(service, time, DayOf(time) + 2 * kDay);
    found.resize(2);  // a day has more than one programme, so there are always two
    return found;
}

}  // namespace hbbtv::sim
