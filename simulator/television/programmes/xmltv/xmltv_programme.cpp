#include "television/programmes/xmltv/xmltv_programme.h"
#include "text/text.h"

#include <algorithm>
#include <map>

namespace hbbtv::sim {

namespace {

constexpr size_t kLongestText = 64u << 10;
constexpr size_t kLongestShort = 250;  // bytes of the short description
constexpr size_t kMostGenres = 256;
constexpr size_t kMostSubtitles = 64;

using Warn = std::function<void(const std::string&)>;

// ISO 639-1 to 639-2.
const std::map<std::string, std::string> kLanguages{
    {"ar", "ara"}, {"bg", "bul"}, {"ca", "cat"}, {"cs", "ces"}, {"cy", "cym"}, {"da", "dan"}, {"de", "deu"},
    {"el", "ell"}, {"en", "eng"}, {"es", "spa"}, {"et", "est"}, {"fi", "fin"}, {"fr", "fra"}, {"ga", "gle"},
    {"hr", "hrv"}, {"hu", "hun"}, {"it", "ita"}, {"ja", "jpn"}, {"lt", "lit"}, {"lv", "lav"}, {"nb", "nob"},
    {"nl", "nld"}, {"no", "nor"}, {"pl", "pol"}, {"pt", "por"}, {"ro", "ron"}, {"ru", "rus"}, {"sk", "slk"},
    {"sl", "slv"}, {"sr", "srp"}, {"sv", "swe"}, {"tr", "tur"}, {"uk", "ukr"}, {"zh", "zho"}};

// Returns "deu" for "de", "de_AT" and "deu"; "und" for unknown languages.
std::string Language(const std::string& code) {
    const std::string word = code.substr(0, code.find_first_of("_-"));
    const auto known = kLanguages.find(word);
    if (known != kLanguages.end()) return known->second;
    const bool letters = std::all_of(word.begin(), word.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    return word.size() == 3 && letters ? word : "und";
}

// Replaces runs of spaces and line ends by one space.
std::string Shown(const std::string& raw) {
    std::string line;
    for (const char c : raw) {
        const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        if (blank && (line.empty() || line.back() == ' ')) continue;
        line += blank ? ' ' : c;
    }
    return std::string(StartOf(ReadableText(line), kLongestText));
}

// Comments and CDATA sections split the text of an element.
std::string TextOf(const pugi::xml_node& element) {
    std::string text;
    for (const pugi::xml_node& piece : element.children()) text += piece.value();
    return Shown(text);
}

// Cut at the end of a word.
std::string Shortened(const std::string& text) {
    if (text.size() <= kLongestShort) return text;
    const std::string_view end = "...";
    std::string_view start = StartOf(text, kLongestShort - end.size());
    const size_t blank = start.rfind(' ');
    if (blank != std::string_view::npos) start = start.substr(0, blank);
    return std::string(start) + std::string(end);
}

void FillTexts(Programme& programme, const pugi::xml_node& node) {
    programme.name = ShownText(node, "title");
    const std::string subTitle = ShownText(node, "sub-title");
    if (!subTitle.empty()) programme.name += " - " + subTitle;
    programme.longDescription = ShownText(node, "desc");
    programme.description = Shortened(programme.longDescription);
    programme.language = Language(node.child("title").attribute("lang").value());
    programme.iconUrl = Shown(node.child("icon").attribute("src").value());
    programme.repeated = !node.child("previously-shown").empty();
    for (const pugi::xml_node& category : node.children("category")) {
        const std::string genre = TextOf(category);
        if (!genre.empty() && programme.genres.size() < kMostGenres) programme.genres.push_back(genre);
    }
}

// "4" or "4/10", counted from 0, or empty.
bool ReadPart(std::string_view part, int& number, int& total) {
    part = Trimmed(part);
    if (part.empty()) return true;
    const auto words = Split(part, '/');
    const auto first = ReadNumber(Trimmed(words[0]), 10, 99999);
    const auto second = words.size() == 2 ? ReadNumber(Trimmed(words[1]), 10, 99999) : 0u;
    if (!first || !second || words.size() > 2) return false;
    number = static_cast<int>(*first) + 1;
    total = static_cast<int>(*second);
    return true;
}

void FillEpisode(Programme& programme, const pugi::xml_node& node, const Warn& warn) {
    const pugi::xml_node number = node.find_child_by_attribute("episode-num", "system", "xmltv_ns");
    if (number.empty()) return;
    const std::string text = TextOf(number);
    const auto parts = Split(text, '.');
    int seasons = 0;
    int part = 0;
    int ofParts = 0;
    const bool read = parts.size() == 3 && ReadPart(parts[0], programme.season, seasons) &&
                      ReadPart(parts[1], programme.episode, programme.totalEpisodes) &&
                      ReadPart(parts[2], part, ofParts);
    if (!read) {
        programme.season = programme.episode = programme.totalEpisodes = 0;
        warn("the episode " + Quotation(text) + " is not like 0.4/10.0; it is ignored");
        return;
    }
    programme.seriesId = ShownText(node, "title");
    if (programme.season > 0) programme.seriesId += "/" + std::to_string(programme.season);
}

// In the order of their schemes.
const char* const kMpaa[] = {"G", "PG", "PG-13", "R", "NC-17", "NR"};
constexpr int kFsk[] = {0, 6, 12, 16, 18};

// The number at the end of "12", "12+" or "FSK 12".
std::optional<int> Age(std::string_view text) {
    if (!text.empty() && text.back() == '+') text.remove_suffix(1);
    const size_t begin = text.find_last_not_of("0123456789");
    const auto age = ReadNumber(text.substr(begin == std::string_view::npos ? 0 : begin + 1), 10, 99);
    return age ? std::optional<int>(static_cast<int>(*age)) : std::nullopt;
}

void FillRating(Programme& programme, const std::string& system, const std::string& text) {
    if (system == "MPAA") {
        const auto* const found = std::find(std::begin(kMpaa), std::end(kMpaa), text);
        if (found == std::end(kMpaa)) return;
        AddRating(programme, {kSchemeMpaa, text, static_cast<int>(found - std::begin(kMpaa)), 0, ""});
        return;
    }
    const auto age = Age(text);
    if (!age) return;
    const auto* const fsk = std::find(std::begin(kFsk), std::end(kFsk), *age);
    if (system == "FSK" && fsk != std::end(kFsk)) {
        AddRating(programme, {kSchemeFsk, std::to_string(*age), static_cast<int>(fsk - std::begin(kFsk)), 0, "DE"});
    } else if (*age >= 4 && *age <= 18) {
        AddRating(programme, {kSchemeDvbSi, std::to_string(*age), *age, 0, ""});
    }
}

const std::map<std::string, int> kChannels{{"mono", 1},      {"stereo", 2},   {"dolby", 2},
                                           {"bilingual", 2}, {"surround", 5}, {"dolby digital", 5}};

// Gives the programme its own components.
ComponentList& OwnComponents(Programme& programme) {
    if (programme.components.empty()) programme.components = programme.service->components;
    return programme.components;
}

void FillSound(Programme& programme, const pugi::xml_node& node) {
    const auto channels = kChannels.find(ShownText(node.child("audio"), "stereo"));
    if (channels == kChannels.end()) return;
    for (auto& component : OwnComponents(programme)) {
        if (component->type != ComponentType::Audio) continue;
        component = std::make_shared<Component>(*component);
        component->audioChannels = channels->second;
        return;
    }
}

int FreeTag(const ComponentList& components) {
    int tag = 0;
    for (const auto& component : components) tag = std::max(tag, component->tag);
    return std::min(tag + 1, 255);
}

// Replaces those of the service; new ones reuse their tags as long as there are any.
void FillSubtitles(Programme& programme, const pugi::xml_node& node) {
    if (node.child("subtitles").empty()) return;
    ComponentList& components = OwnComponents(programme);
    const auto begin = std::stable_partition(components.begin(), components.end(), [](const auto& component) {
        return component->type != ComponentType::Subtitle;
    });
    const ComponentList known(begin, components.end());
    components.erase(begin, components.end());
    size_t count = 0;
    for (const pugi::xml_node& subtitles : node.children("subtitles")) {
        const std::string type = subtitles.attribute("type").value();
        if (type == "onscreen" || count >= kMostSubtitles) continue;  // a part of the picture
        auto component = std::make_shared<Component>();
        component->type = ComponentType::Subtitle;
        component->tag = count < known.size() ? known[count]->tag : FreeTag(components);
        component->pid = count < known.size() ? known[count]->pid : 0;
        component->encoding = type == "teletext" ? "EBU-SUBT" : "DVB-SUBT";
        component->hearingImpaired = type == "teletext" || type == "deaf-signed";
        component->language = Language(ShownText(subtitles, "language"));
        components.push_back(component);
        ++count;
    }
}

}  // namespace

std::string ShownText(const pugi::xml_node& parent, const char* child) {
    return TextOf(parent.child(child));
}

void FillProgramme(Programme& programme, const pugi::xml_node& node, const Warn& warn) {
    FillTexts(programme, node);
    FillEpisode(programme, node, warn);
    for (const pugi::xml_node& rating : node.children("rating")) {
        FillRating(programme, rating.attribute("system").value(), ShownText(rating, "value"));
    }
    FillSound(programme, node);
    FillSubtitles(programme, node);
}

}  // namespace hbbtv::sim
