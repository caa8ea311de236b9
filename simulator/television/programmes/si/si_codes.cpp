#include "television/programmes/si/si_codes.h"
#include "text/text.h"

#include <map>

namespace hbbtv::sim {

namespace {

// Lower case, without spaces.
const std::map<std::string, uint8_t> kContents{{"action", 0x12},
                                               {"adventure", 0x12},
                                               {"adventure/western/war", 0x12},
                                               {"animals", 0x91},
                                               {"arts/culture", 0x70},
                                               {"arts/culture(withoutmusic)", 0x70},
                                               {"athletics", 0x46},
                                               {"ballet", 0x66},
                                               {"business", 0x80},
                                               {"cartoons/puppets", 0x55},
                                               {"children", 0x50},
                                               {"children's/youthprogrammes", 0x50},
                                               {"classicalmusic", 0x62},
                                               {"comedy", 0x14},
                                               {"cooking", 0xa5},
                                               {"crime", 0x11},
                                               {"culture", 0x70},
                                               {"detective/thriller", 0x11},
                                               {"discussion/interview/debate", 0x24},
                                               {"documentary", 0x23},
                                               {"dokumentation", 0x23},
                                               {"drama", 0x10},
                                               {"education/science/factualtopics", 0x90},
                                               {"familie", 0x50},
                                               {"fashion", 0x7b},
                                               {"film", 0x10},
                                               {"film/cinema", 0x76},
                                               {"fitness", 0xa4},
                                               {"football", 0x43},
                                               {"football/soccer", 0x43},
                                               {"fußball", 0x43},
                                               {"gameshow", 0x31},
                                               {"gameshow/quiz/contest", 0x31},
                                               {"gardening", 0xa7},
                                               {"horror", 0x13},
                                               {"information", 0x80},
                                               {"jazz", 0x64},
                                               {"kids", 0x50},
                                               {"kinder", 0x50},
                                               {"komödie", 0x14},
                                               {"krimi", 0x11},
                                               {"kultur", 0x70},
                                               {"leisure", 0xa0},
                                               {"leisurehobbies", 0xa0},
                                               {"literature", 0x75},
                                               {"magazin", 0x22},
                                               {"magazine", 0x22},
                                               {"movie", 0x10},
                                               {"movie/drama", 0x10},
                                               {"music", 0x60},
                                               {"music/ballet/dance", 0x60},
                                               {"musik", 0x60},
                                               {"nachrichten", 0x20},
                                               {"nature", 0x91},
                                               {"nature/animals/environment", 0x91},
                                               {"news", 0x20},
                                               {"news/currentaffairs", 0x20},
                                               {"news/weatherreport", 0x21},
                                               {"newsmagazine", 0x22},
                                               {"politics", 0x80},
                                               {"quiz", 0x31},
                                               {"religion", 0x73},
                                               {"reise", 0xa1},
                                               {"romance", 0x16},
                                               {"science", 0x90},
                                               {"sciencefiction", 0x13},
                                               {"sciencefiction/fantasy/horror", 0x13},
                                               {"series", 0x15},
                                               {"serie", 0x15},
                                               {"show", 0x30},
                                               {"show/gameshow", 0x30},
                                               {"soap", 0x15},
                                               {"soap/melodrama/folkloric", 0x15},
                                               {"social/politicalissues/economics", 0x80},
                                               {"spielfilm", 0x10},
                                               {"sport", 0x40},
                                               {"sports", 0x40},
                                               {"talk", 0x33},
                                               {"talkshow", 0x33},
                                               {"tennis/squash", 0x44},
                                               {"theatre", 0x71},
                                               {"thriller", 0x11},
                                               {"tourism/travel", 0xa1},
                                               {"travel", 0xa1},
                                               {"unterhaltung", 0x30},
                                               {"varietyshow", 0x32},
                                               {"weather", 0x21},
                                               {"western", 0x12},
                                               {"wetter", 0x21}};

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::optional<StreamCode> PictureCode(const Component& component) {
    const std::string& encoding = component.encoding;
    const bool high = encoding.find("_HD_") != std::string::npos;
    const bool wide = component.aspectRatio <= 0 || component.aspectRatio > 1.5;
    const int rate = EndsWith(encoding, "_30") ? 4 : 0;  // 25 Hz, followed by the same ones with 30 Hz
    const auto type = [&](int step) { return static_cast<uint8_t>((wide ? 3 : 1) + step + rate); };
    if (StartsWith(encoding, "MPEG2_")) return StreamCode{0xf1, type(high ? 8 : 0)};
    if (StartsWith(encoding, "AVC_3D_")) return StreamCode{0xf5, static_cast<uint8_t>(rate == 0 ? 0x80 : 0x82)};
    if (StartsWith(encoding, "AVC_HD_")) return StreamCode{0xf5, static_cast<uint8_t>(0x0b + rate)};
    if (StartsWith(encoding, "AVC_")) return StreamCode{0xf5, type(0)};
    if (StartsWith(encoding, "HEVC_UHD_")) return StreamCode{0x09, 0x04};
    return std::nullopt;
}

// Annex D: E-AC-3, a full service, for the visually impaired, and the channels.
uint8_t Ac3Type(const Component& component, bool enhanced) {
    const int channels = component.audioChannels;
    int type = (enhanced ? 0x80 : 0) | 0x40 | (component.audioDescription ? 0x10 : 0);
    if (channels > 6 && enhanced) {
        type |= 5;
    } else if (channels > 2) {
        type |= 4;
    } else if (channels == 2) {
        type |= 2;
    }
    return static_cast<uint8_t>(type);
}

std::optional<StreamCode> SoundCode(const Component& component) {
    const std::string& encoding = component.encoding;
    const int channels = component.audioChannels;
    const uint8_t plain = component.audioDescription ? 0x40 : channels > 2 ? 0x05 : channels == 1 ? 0x01 : 0x03;
    if (encoding == "MPEG1_L2") return StreamCode{0xf2, plain};
    if (encoding == "AC3") return StreamCode{0xf4, Ac3Type(component, false)};
    if (encoding == "E-AC3") return StreamCode{0xf4, Ac3Type(component, true)};
    if (encoding == "HEAAC2") return StreamCode{0xf6, static_cast<uint8_t>(component.audioDescription ? 0x44 : 0x43)};
    if (StartsWith(encoding, "HEAAC")) return StreamCode{0xf6, plain};
    return std::nullopt;
}

std::optional<StreamCode> SubtitleCode(const Component& component) {
    if (component.encoding == "EBU-SUBT") return StreamCode{0xf3, 0x01};
    if (component.encoding != "DVB-SUBT") return std::nullopt;
    return StreamCode{0xf3, static_cast<uint8_t>(component.hearingImpaired ? 0x20 : 0x10)};
}

}  // namespace

std::optional<uint8_t> ContentOf(const std::string& genre) {
    std::string plain;
    for (const char c : genre) {
        if (c != ' ') plain += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    const std::string general = "(general)";
    if (EndsWith(plain, general)) plain.resize(plain.size() - general.size());
    const auto found = kContents.find(plain);
    return found == kContents.end() ? std::nullopt : std::optional<uint8_t>(found->second);
}

std::optional<StreamCode> StreamCodeOf(const Component& component) {
    switch (component.type) {
        case ComponentType::Video:
            return PictureCode(component);
        case ComponentType::Audio:
            return SoundCode(component);
        case ComponentType::Subtitle:
            return SubtitleCode(component);
    }
    return std::nullopt;
}

}  // namespace hbbtv::sim
