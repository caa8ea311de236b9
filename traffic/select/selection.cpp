#include "traffic/select/selection.h"

#include <cstdio>
#include <ctime>

#include "common/failure.h"
#include "common/text/quote.h"
#include "traffic/view/line.h"

namespace hbbtv::traffic {

namespace {

constexpr uint64_t kDay = 86400ull * 1000000;

[[noreturn]] void FailAbout(const std::string& text) {
    throw Failure(kUsage, Quoted(text) + " is not a time, such as 12:47:25.5 or 2026-11-22T12:47:25");
}

// Reads digits up to `most`, and the character after them unless it is 0.
bool Part(const char*& at, int most, char after, int& number) {
    const char* const begin = at;
    number = 0;
    for (; *at >= '0' && *at <= '9' && at - begin < 4; ++at) number = number * 10 + (*at - '0');
    if (at == begin || number > most) return false;
    if (after == '\0') return true;
    return *at++ == after;
}

// Reads ".5" as microseconds.
bool Fraction(const char*& at, uint64_t& microseconds) {
    microseconds = 0;
    if (*at != '.') return true;
    int digits = 0;
    for (++at; *at >= '0' && *at <= '9'; ++at) {
        if (digits++ < 6) microseconds = microseconds * 10 + static_cast<uint64_t>(*at - '0');
    }
    for (int i = digits; i < 6; ++i) microseconds *= 10;
    return digits > 0;
}

bool Date(const char*& at, uint64_t& day) {
    tm parts{};
    if (!Part(at, 9999, '-', parts.tm_year) || !Part(at, 12, '-', parts.tm_mon) || !Part(at, 31, 'T', parts.tm_mday)) {
        return false;
    }
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    const time_t seconds = timegm(&parts);
    day = static_cast<uint64_t>(seconds) * 1000000;
    return seconds >= 0;
}

}  // namespace

uint64_t ParseTime(const std::string& text, const std::string& zone, uint64_t start) {
    const char* at = text.c_str();
    uint64_t day = 0;
    const bool dated = text.find('T') != std::string::npos;
    if (dated && !Date(at, day)) FailAbout(text);
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    uint64_t fraction = 0;
    if (!Part(at, 23, ':', hours) || !Part(at, 59, '\0', minutes)) FailAbout(text);
    if (*at == ':' && (!Part(++at, 59, '\0', seconds) || !Fraction(at, fraction))) FailAbout(text);
    if (*at != '\0') FailAbout(text);
    const auto offset = static_cast<uint64_t>(ZoneOffset(zone));
    uint64_t ofDay = static_cast<uint64_t>(hours * 3600 + minutes * 60 + seconds) * 1000000 + fraction;
    if (dated) return day + ofDay - offset;
    const uint64_t local = start + offset;
    ofDay += local - local % kDay;
    // The recording begins a moment before its first record.
    return (ofDay + 1000000 < local ? ofDay + kDay : ofDay) - offset;
}

Selection::Selection(const SelectionSettings& settings)
    : mFilter(settings.filter),
      mReader(settings.path,
              settings.withPayloads || mFilter.NeedsPayloads() || settings.follow ? Payloads::Read : Payloads::Skipped),
      mHead(mReader.Head()),
      mLearns(settings.withPayloads) {
    if (!settings.from.empty()) mFrom = ParseTime(settings.from, mHead.zone, mHead.time.Wall());
    if (!settings.to.empty()) mTo = ParseTime(settings.to, mHead.zone, mHead.time.Wall());
    if (settings.follow) mFollow.emplace(*settings.follow);
    if (settings.redacted) {
        mRedaction.emplace();
        Redaction::Apply(mHead);
    }
}

bool Selection::Selected(const Record& record) {
    const bool followed = !mFollow || mFollow->Concerns(record);
    return followed && record.time.Wall() >= mFrom && record.time.Wall() <= mTo && mFilter.Matches(record);
}

std::optional<Record> Selection::Next() {
    while (std::optional<Record> record = mReader.Next()) {
        const bool selected = Selected(*record);
        // Also of the others, whose ids may be within strings of those that are selected.
        if (mRedaction) mRedaction->Apply(*record);
        if (mLearns) mNames.Learn(*record);
        if (selected) return record;
    }
    return std::nullopt;
}

}  // namespace hbbtv::traffic
