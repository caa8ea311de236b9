#include "television/programmes/schedule.h"

#include <algorithm>
#include <random>

namespace hbbtv::sim {

namespace {

constexpr std::time_t kDay = 24 * 60 * 60;
constexpr int kMinute = 60;
constexpr int kShortest = 10 * kMinute;  // a shorter rest of the day extends its last programme
constexpr std::time_t kLongestWalk = 62 * kDay;
constexpr int kLargestNumber =
    127;  // of a programme in its day: an event id has 9 bits for the day and 7 for the programme

struct Kind {
    const char* name;
    const char* genre;
    const char* description;
    int minutes;  // usual length
    int age;      // minimum age; 0: none
};

const Kind kTelevision[] = {
    {"News", "News", "The news of the hour from home and abroad.", 15, 0},
    {"Weather Tomorrow", "News", "How the weather will be, region by region.", 15, 0},
    {"Morning Magazine", "Magazine", "Guests, topics and music for the first coffee.", 60, 0},
    {"The Long River", "Documentary", "A journey along the water, from its source to the sea.", 45, 0},
    {"Cities at Night", "Documentary", "Who works while the others sleep.", 45, 12},
    {"Wild Coast", "Documentary", "Birds, seals and the people who count them.", 50, 0},
    {"Kitchen Table", "Leisure", "Three courses, one hour, no recipe left out.", 60, 0},
    {"Harbour Watch", "Series", "The crew of a police boat and its cases.", 45, 12},
    {"The Neighbours Upstairs", "Series", "A house, six families and one lift that never works.", 30, 0},
    {"Old Letters", "Film", "A postwoman finds letters that were never delivered.", 90, 6},
    {"The Last Ferry", "Film", "A storm, an island and one boat too few.", 105, 16},
    {"Quiz at Seven", "Show", "Four players, twelve questions, one winner.", 45, 0},
    {"Sports Live", "Sport", "The match of the day with interviews and analysis.", 120, 0},
    {"Paws and Claws", "Children", "A vet explains how animals get well.", 25, 0},
    {"Talk at Ten", "Talk", "One subject and people who disagree about it.", 75, 0},
    {"Business Today", "News", "Markets, firms and what they mean for you.", 30, 0},
};

const Kind kRadio[] = {
    {"News and Weather", "News", "The news at the full hour.", 10, 0},
    {"Good Morning", "Magazine", "Music and information for the start of the day.", 120, 0},
    {"The Afternoon", "Music", "New songs and old acquaintances.", 120, 0},
    {"Concert Evening", "Music", "A concert recorded with an audience.", 90, 0},
    {"Background", "Information", "What stands behind the news.", 30, 0},
    {"Radio Play", "Culture", "A story for listening.", 60, 0},
    {"Night Music", "Music", "Quiet music through the night.", 180, 0},
};

std::mt19937 Generator(uint32_t seed, const Service& service, std::time_t day) {
    std::vector<uint32_t> words{seed, static_cast<uint32_t>(service.onid), static_cast<uint32_t>(service.tsid),
                                static_cast<uint32_t>(service.sid), static_cast<uint32_t>(day / kDay)};
    for (const char c : service.uri) words.push_back(static_cast<unsigned char>(c));
    std::seed_seq sequence(words.begin(), words.end());
    return std::mt19937(sequence);
}

// The standard library's distributions differ between systems; this does not.
template <size_t N>
size_t Draw(std::mt19937& random, const Kind (&)[N]) {
    return random() % N;
}

std::time_t StartOfDay(std::time_t time) {
    return time - time % kDay;
}

int EventId(std::time_t day, size_t number) {
    return static_cast<int>((day / kDay % 512) << 7 | static_cast<std::time_t>(number));
}

}  // namespace

Schedule::Day Schedule::MakeDay(const std::shared_ptr<const Service>& service, std::time_t day) const {
    std::mt19937 random = Generator(mSeed, *service, day);
    const bool radio = service->type == ChannelType::Radio;
    ProgrammeList programmes;
    size_t previous = SIZE_MAX;
    for (std::time_t start = day; start < day + kDay;) {
        size_t choice = radio ? Draw(random, kRadio) : Draw(random, kTelevision);
        if (choice == previous) choice = choice == 0 ? 1 : choice - 1;
        previous = choice;
        const Kind& kind = radio ? kRadio[choice] : kTelevision[choice];
        std::time_t end = start + kind.minutes * kMinute;
        if (day + kDay - end < kShortest || programmes.size() == kLargestNumber) end = day + kDay;
        const auto programme = MakeProgramme(service, {start, end}, EventId(day, programmes.size()));
        programme->name = kind.name;
        programme->genres = {kind.genre};
        programme->description = kind.description;
        programme->longDescription = std::string(kind.description) + " On " + service->name + ".";
        programme->language = "eng";
        if (kind.age > 0) AddRating(*programme, {kSchemeDvbSi, std::to_string(kind.age), kind.age, 0, ""});
        programmes.push_back(programme);
        start = end;
    }
    return std::make_shared<const ProgrammeList>(std::move(programmes));
}

// Programmes that are referenced or changed are kept, so that the same ones are returned again.
void Schedule::ForgetDays() {
    for (auto day = mDays.begin(); day != mDays.end();) {
        const ProgrammeList& programmes = *day->second;
        const bool used = std::any_of(programmes.begin(), programmes.end(), [](const auto& programme) {
            return programme->changed || programme.use_count() > 1;
        });
        day = used ? std::next(day) : mDays.erase(day);
    }
    mMostDays = std::max(mMostDays, 2 * mDays.size());
}

Schedule::Day Schedule::DayOf(const std::shared_ptr<const Service>& service, std::time_t day) {
    const auto key = std::make_tuple(service->onid, service->tsid, service->sid, service->uri, day);
    const auto known = mDays.find(key);
    if (known != mDays.end()) return known->second;
    if (mDays.size() >= mMostDays) ForgetDays();
    return mDays[key] = MakeDay(service, day);
}

void Schedule::Walk(const std::shared_ptr<const Service>& service, TimeRange range, const Visitor& visit) {
    range.from = std::clamp<std::time_t>(range.from, 0, kLastTime);
    range.to = std::clamp<std::time_t>(range.to, 0, std::min(kLastTime, range.from + kLongestWalk));
    for (std::time_t start = StartOfDay(range.from); start < range.to; start += kDay) {
        const Day day = DayOf(service, start);  // keeps the day even if the visitor changes the guide
        for (const auto& programme : *day) {
            if (programme->onAir.Meets(range) && !visit(programme)) return;
        }
    }
}

TimeRange Schedule::Known(std::time_t now) const {
    return {StartOfDay(now) - kDay, StartOfDay(now) + 8 * kDay};
}

}  // namespace hbbtv::sim
