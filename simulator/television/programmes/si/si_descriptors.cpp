#include "television/programmes/si/si_descriptors.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "television/programmes/si/si_codes.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLongestBody = kLongestDescriptor - 2;  // after tag and length
constexpr size_t kMostExtended = 16;                     // its number has four bits
constexpr char kUtf8 = 0x15;                             // prefix of a UTF-8 string (annex A)
const char* const kHome = "DEU";                         // the television's country

char Byte(size_t value) {
    return static_cast<char>(static_cast<unsigned char>(value));
}

std::string Descriptor(int tag, const std::string& body) {
    return std::string{Byte(static_cast<size_t>(tag)), Byte(body.size())} + body;
}

// Returns exactly three letters, as in every descriptor with a language.
std::string Language(const std::string& code) {
    return code.size() == 3 ? code : "und";
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

// Removes as much from the front of the string as fits and returns it in the standard's coding: ASCII in the default
// table, anything else as UTF-8.
std::string TakeText(std::string_view& text, size_t room) {
    const bool ascii = IsAscii(text);
    const std::string_view taken = StartOf(text, ascii || room == 0 ? room : room - 1);
    text.remove_prefix(taken.size());
    if (ascii || taken.empty()) return std::string(taken);
    return kUtf8 + std::string(taken);
}

std::string WithLength(const std::string& text) {
    return Byte(text.size()) + text;
}

std::string ShortEvent(const Programme& programme) {
    std::string_view name = programme.name;
    std::string_view description = programme.description;
    std::string body = Language(programme.language);
    body += WithLength(TakeText(name, kLongestBody - body.size() - 2));
    body += WithLength(TakeText(description, kLongestBody - body.size() - 1));
    return Descriptor(kShortEvent, body);
}

void AddExtendedEvents(const Programme& programme, std::vector<std::string>& descriptors) {
    std::vector<std::string> parts;
    std::string_view rest = programme.longDescription;
    while (!rest.empty() && parts.size() < kMostExtended) parts.push_back(TakeText(rest, kLongestBody - 6));
    for (size_t i = 0; i < parts.size(); ++i) {
        std::string body(1, Byte(i << 4 | (parts.size() - 1)));
        body += Language(programme.language);
        body += WithLength("");  // no items
        body += WithLength(parts[i]);
        descriptors.push_back(Descriptor(kExtendedEvent, body));
    }
}

void AddComponents(const Programme& programme, std::vector<std::string>& descriptors) {
    for (const auto& component : programme.Components()) {
        const auto code = StreamCodeOf(*component);
        if (!code) continue;
        std::string body{Byte(code->content), Byte(code->type), Byte(static_cast<size_t>(component->tag))};
        body += Language(component->language);
        std::string_view label = component->label;
        body += TakeText(label, kLongestBody - body.size());
        descriptors.push_back(Descriptor(kComponent, body));
    }
}

std::string Content(const Programme& programme) {
    std::string body;
    for (const std::string& genre : programme.genres) {
        const auto content = ContentOf(genre);
        if (content && body.size() + 2 <= kLongestBody) body += {Byte(*content), 0};
    }
    return body;
}

std::string CountryOf(const Rating& rating) {
    static const std::map<std::string, std::string> kCountries{
        {"AT", "AUT"}, {"CH", "CHE"}, {"DE", "DEU"}, {"ES", "ESP"}, {"FR", "FRA"},
        {"GB", "GBR"}, {"IE", "IRL"}, {"IT", "ITA"}, {"PL", "POL"}, {"US", "USA"}};
    if (rating.scheme == kSchemeMpaa) return "USA";
    const auto found = kCountries.find(rating.region);
    return found == kCountries.end() ? kHome : found->second;
}

// A minimum age from 4 to 18 is sent as the age minus 3.
std::string Ratings(const Programme& programme) {
    std::string body;
    if (!programme.ratings) return body;
    for (const auto& rating : *programme.ratings) {
        const int age = AgeOf(*rating);
        if (age < 4 || age > 18 || body.size() + 4 > kLongestBody) continue;
        body += CountryOf(*rating) + Byte(static_cast<size_t>(age - 3));
    }
    return body;
}

}  // namespace

std::vector<std::string> DescriptorsOf(const Programme& programme) {
    std::vector<std::string> descriptors{ShortEvent(programme)};
    AddExtendedEvents(programme, descriptors);
    AddComponents(programme, descriptors);
    const std::string content = Content(programme);
    if (!content.empty()) descriptors.push_back(Descriptor(kContent, content));
    const std::string ratings = Ratings(programme);
    if (!ratings.empty()) descriptors.push_back(Descriptor(kParentalRating, ratings));
    return descriptors;
}

}  // namespace hbbtv::sim
