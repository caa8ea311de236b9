// The services of an enigma2 receiver from its lamedb, in the order of its bouquets. Values that neither has are those
// of the tables in docs/simulator.md.
#include <filesystem>
#include <map>
#include <tuple>

#include "television/line_up/bouquets.h"
#include "television/line_up/components.h"
#include "television/line_up/formats.h"
#include "text/lines.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

constexpr uint32_t kTerrestrial = 0xeeee;
constexpr uint32_t kCable = 0xffff;
constexpr uint32_t kWholeCircle = 3600;  // tenths of a degree
constexpr uint32_t kLargestPid = 8190;

// A service by its type in EN 300 468; the audio encoding is the one usual with the video encoding.
struct Kind {
    int serviceType;
    ChannelType type;
    bool highDefinition;
    const char* picture;
    const char* sound;
};

constexpr Kind kKinds[] = {
    {1, ChannelType::Tv, false, "MPEG2_SD_25", "MPEG1_L2"}, {2, ChannelType::Radio, false, nullptr, "MPEG1_L2"},
    {10, ChannelType::Radio, false, nullptr, "HEAAC"},      {17, ChannelType::Tv, true, "MPEG2_HD_25", "MPEG1_L2"},
    {22, ChannelType::Tv, false, "AVC_SD_25", "MPEG1_L2"},  {25, ChannelType::Tv, true, "AVC_HD_25", "MPEG1_L2"},
    {28, ChannelType::Tv, true, "AVC_3D_25", "MPEG1_L2"},   {31, ChannelType::Tv, true, "HEVC_UHD_25", "E-AC3"},
    {32, ChannelType::Tv, true, "HEVC_UHD_25", "E-AC3"}};

constexpr Kind kOther{0, ChannelType::Other, false, nullptr, nullptr};

// The meaning of a cached PID after `c:`.
enum Cache { kCachedVideo = 0, kCachedTeletext = 2 };

struct CachedSound {
    uint32_t id;
    const char* encoding;
};

constexpr CachedSound kCachedSounds[] = {{1, "MPEG1_L2"}, {4, "AC3"}, {10, "HEAAC"}, {12, "HEAAC"}, {11, "E-AC3"}};

struct Transponder {
    IdType delivery = IdType::DvbS;
    int frequency = 0;  // kHz
};

// `sid:namespace:tsid:onid:type:number`; the rest of the line, if any, is ignored.
struct Header {
    ServiceReference reference;
    int type = 0;
};

// `p:provider,c:cached PID,C:CA system`.
struct Properties {
    std::string provider;
    bool scrambled = false;
    std::map<uint32_t, int> pids;  // by their meaning
};

std::optional<Header> ReadHeader(std::string_view line) {
    const auto fields = Split(Trimmed(line), ':');
    if (fields.size() < 6) return std::nullopt;
    const auto sid = ReadNumber(fields[0], 16, 0xffff);
    const auto nameSpace = ReadNumber(fields[1], 16, UINT32_MAX);
    const auto tsid = ReadNumber(fields[2], 16, 0xffff);
    const auto onid = ReadNumber(fields[3], 16, 0xffff);
    const auto type = ReadNumber(fields[4], 10, 0xff);
    if (!sid || !nameSpace || !tsid || !onid || !type) return std::nullopt;
    return Header{{*nameSpace, static_cast<int>(*onid), static_cast<int>(*tsid), static_cast<int>(*sid)},
                  static_cast<int>(*type)};
}

bool IsProperties(std::string_view line) {
    return StartsWith(line, "p:");
}

// "19.2E", "5W"; empty if it is not an orbital position.
std::string Position(uint32_t place) {
    if (place >= kWholeCircle) return "";
    const bool west = place > kWholeCircle / 2;
    const uint32_t tenths = west ? kWholeCircle - place : place;
    const std::string fraction = tenths % 10 == 0 ? "" : "." + std::to_string(tenths % 10);
    return std::to_string(tenths / 10) + fraction + (west ? "W" : "E");
}

class LamedbReader {
  public:
    LamedbReader(const std::string& text, const std::string& path, const FileWarning& warn)
        : mLines(text, path, warn), mDirectory(std::filesystem::path(path).parent_path()), mWarn(warn) {}

    LineUp Read() {
        while (mLines.Next() && Trimmed(mLines.Line()).empty()) {
        }
        const std::string_view version = Trimmed(mLines.Line());
        if (version == "eDVB services /4/") {
            ReadTransponders();
            ReadServices();
        } else if (version == "eDVB services /5/") {
            ReadLines();
        } else {
            mLines.Refuse("unknown version of the lamedb; known are \"eDVB services /4/\" and /5/");
        }
        Arrange();
        return std::move(mLineUp);
    }

  private:
    void ReadTransponders() {
        if (!mLines.Next() || Trimmed(mLines.Line()) != "transponders") {
            mLines.Refuse("the list of transponders is missing");
        }
        while (NextBefore("services")) {
            const std::string ids(mLines.Line());
            const int number = mLines.Number();
            std::string tuning;
            while (NextBefore("services") && Trimmed(mLines.Line()) != "/") {
                if (!tuning.empty())
                    mLines.Warn(Quotation(mLines.Line()) + " is where \"/\" is expected; it is skipped");
                if (tuning.empty()) tuning = Trimmed(mLines.Line());
            }
            AddTransponder(number, ids, tuning);
        }
        if (Trimmed(mLines.Line()) != "services") mLines.Refuse("the list of services is missing");
    }

    // Moves to the next line that is not empty; returns false at the end of the file and at this word. The "end" of a
    // list is skipped, because the next word implies it.
    bool NextBefore(std::string_view word) {
        if (Trimmed(mLines.Line()) == word) return false;
        while (mLines.Next()) {
            const std::string_view line = Trimmed(mLines.Line());
            if (line == word) return false;
            if (!line.empty() && line != "end") return true;
        }
        return false;
    }

    void ReadServices() {
        bool strange = false;  // and reported
        while (mLines.Next()) {
            const std::string_view line = mLines.Line();
            const int number = mLines.Number();
            if (Trimmed(line) == "end") return;
            if (const auto header = ReadHeader(line)) {
                strange = false;
                ReadBlock(*header, number);
            } else if (!Trimmed(line).empty() && !strange) {
                strange = true;
                mLines.Warn(Quotation(line) +
                            " does not begin a service (sid:namespace:tsid:onid:type:number); it is skipped up to the "
                            "next one");
            }
        }
        mLines.Warn("the list of services has no end; the file is probably truncated");
    }

    // Name and properties behind a header. Either may be missing, and then the next service begins.
    void ReadBlock(const Header& header, int number) {
        std::string name;
        std::string properties;
        const auto ends = [](std::string_view line) { return Trimmed(line) == "end" || ReadHeader(line).has_value(); };
        const bool named = IsProperties(mLines.Ahead(2)) || !(IsProperties(mLines.Ahead(1)) || ends(mLines.Ahead(1)));
        if (named && mLines.Next()) name = mLines.Line();
        const bool described = IsProperties(mLines.Ahead(1)) || !ends(mLines.Ahead(1));
        if (described && mLines.Next()) properties = mLines.Line();
        if (!named || !described) mLines.Warn(number, "the service has no name line or no provider line");
        AddService(number, header, name, properties);
    }

    void ReadLines() {
        while (mLines.Next()) {
            const std::string_view line = Trimmed(mLines.Line());
            if (line.empty() || line[0] == '#' || line == "end") continue;
            const size_t comma = std::min(line.find(','), line.size());
            const std::string_view rest = line.substr(std::min(comma + 1, line.size()));
            if (StartsWith(line, "t:")) {
                AddTransponder(mLines.Number(), line.substr(2, comma - 2), rest);
            } else if (StartsWith(line, "s:")) {
                ReadServiceLine(line.substr(2, comma - 2), rest);
            } else {
                mLines.Warn(Quotation(line) + " is neither a transponder nor a service; it is skipped");
            }
        }
    }

    // `"name",p:provider,...`; a name may contain quotes.
    void ReadServiceLine(std::string_view ids, std::string_view rest) {
        const auto header = ReadHeader(ids);
        if (!header) return mLines.Warn(Quotation(ids) + " does not name a service; it is skipped");
        size_t end = rest.rfind("\",p:");
        if (end == std::string_view::npos) end = rest.rfind('"');
        if (!StartsWith(rest, "\"") || end == 0) return mLines.Warn("the service has no quoted name; it is skipped");
        AddService(mLines.Number(), *header, rest.substr(1, end - 1), rest.substr(std::min(end + 2, rest.size())));
    }

    // `namespace:tsid:onid`, and `s`, `c` or `t` with the numbers for tuning, of which the first is the frequency.
    void AddTransponder(int number, std::string_view ids, std::string_view tuning) {
        const auto id = Split(Trimmed(ids), ':');
        const bool complete = id.size() >= 3;
        const auto nameSpace = complete ? ReadNumber(id[0], 16, UINT32_MAX) : std::nullopt;
        const auto tsid = complete ? ReadNumber(id[1], 16, 0xffff) : std::nullopt;
        const auto onid = complete ? ReadNumber(id[2], 16, 0xffff) : std::nullopt;
        if (!nameSpace || !tsid || !onid) {
            return mLines.Warn(
                number,
                Quotation(ids) + " does not name a transponder (namespace:tsid:onid); the transponder is skipped");
        }
        const char kind = tuning.empty() ? '?' : tuning[0];
        const auto numbers = Split(Trimmed(tuning.substr(std::min<size_t>(2, tuning.size()))), ':');
        const auto frequency = ReadNumber(numbers[0], 10, INT32_MAX);
        if ((kind != 's' && kind != 'c' && kind != 't') || !frequency) {
            return mLines.Warn(number, Quotation(tuning) +
                                           " is not a satellite (s), cable (c) or terrestrial (t) tuning; "
                                           "the transponder is skipped");
        }
        const size_t system = kind == 's' ? 7 : 10;
        const bool second = numbers.size() > system && numbers[system] == "1";
        Transponder transponder;
        transponder.delivery = kind == 'c' ? IdType::DvbC : second ? IdType::DvbT2 : IdType::DvbT;
        if (kind == 's') transponder.delivery = second ? IdType::DvbS2 : IdType::DvbS;
        transponder.frequency = static_cast<int>(kind == 't' ? *frequency / 1000 : *frequency);
        mTransponders[{*nameSpace, *tsid, *onid}] = transponder;
    }

    void AddService(int number, const Header& header, std::string_view name, std::string_view properties) {
        const ServiceReference& id = header.reference;
        const auto known = mServices.emplace(std::make_tuple(id.onid, id.tsid, id.sid), Known());
        if (!known.second) {
            return mLines.Warn(number, Quotation(ReadableText(name)) + " has the onid, tsid and sid of line " +
                                           std::to_string(known.first->second.line) + "; the service is skipped");
        }
        const auto service = std::make_shared<Service>();
        service->name = ReadableText(name);
        service->onid = id.onid;
        service->tsid = id.tsid;
        service->sid = id.sid;
        Place(id, *service);
        Describe(header.type, ReadProperties(number, properties), *service);
        known.first->second = {service, id.Place(), number};
        mLineUp.services.push_back(service);
    }

    // Where it is received.
    void Place(const ServiceReference& id, Service& service) {
        const uint32_t place = id.Place();
        Transponder transponder;
        if (place == kTerrestrial) transponder.delivery = IdType::DvbT;
        if (place == kCable) transponder.delivery = IdType::DvbC;
        const auto found = mTransponders.find({id.nameSpace, id.tsid, id.onid});
        if (found != mTransponders.end()) transponder = found->second;
        service.frequency = transponder.frequency;
        service.network = NetworkOf(place, transponder.delivery, id.onid);
    }

    std::shared_ptr<const Network> NetworkOf(uint32_t place, IdType delivery, int onid) {
        auto& known = mNetworks[{place, delivery, onid}];
        if (known) return known;
        const auto network = std::make_shared<Network>();
        const bool satellite = delivery == IdType::DvbS || delivery == IdType::DvbS2;
        network->position = satellite ? Position(place) : "";
        network->name = satellite ? "Satellite" : delivery == IdType::DvbC ? "Cable" : "Terrestrial";
        if (!network->position.empty()) network->name += " " + network->position;
        network->delivery = delivery;
        network->networkId = onid;
        network->id = "lamedb-" + std::to_string(mNetworks.size());
        return known = network;
    }

    Properties ReadProperties(int number, std::string_view line) const {
        Properties properties;
        std::string* text = nullptr;  // the property that a comma inside it continues
        for (const std::string_view word : Split(line, ',')) {
            const bool keyed = word.size() >= 2 && word[1] == ':' && word[0] != ' ';
            const std::string_view value = keyed ? word.substr(2) : word;
            if (!keyed && text) {
                text->append(",").append(word);
            } else if (!keyed && !Trimmed(word).empty()) {
                mLines.Warn(number, Quotation(word) + " is not a property of a service; it is skipped");
            } else if (keyed) {
                text = word[0] == 'p' ? &properties.provider : nullptr;
                if (text) *text = value;
                if (word[0] == 'C') properties.scrambled = true;
                if (word[0] == 'c') ReadCached(number, value, properties);
            }
        }
        properties.provider = ReadableText(properties.provider);
        return properties;
    }

    // Two digits for the meaning, the rest for the PID; values that are not PIDs occur as well.
    void ReadCached(int number, std::string_view value, Properties& properties) const {
        const auto id = ReadNumber(value.substr(0, 2), 10, 99);
        const auto pid = value.size() < 3 ? std::nullopt : ReadNumber(value.substr(2), 16, UINT32_MAX);
        if (!id || !pid)
            return mLines.Warn(number, Quotation("c:" + std::string(value)) + " is not a PID; it is skipped");
        bool used = *id == kCachedVideo || *id == kCachedTeletext;
        for (const CachedSound& sound : kCachedSounds) used = used || sound.id == *id;
        if (!used) return;
        if (*pid > kLargestPid) {
            return mLines.Warn(number, Quotation("c:" + std::string(value)) + " is above 8190; it is skipped");
        }
        properties.pids[*id] = static_cast<int>(*pid);
    }

    static Kind KindOf(int serviceType, const Properties& properties) {
        for (const Kind& kind : kKinds) {
            if (kind.serviceType == serviceType) return kind;
        }
        if (properties.pids.count(kCachedVideo) != 0) return kKinds[0];
        for (const CachedSound& sound : kCachedSounds) {
            if (properties.pids.count(sound.id) != 0) return kKinds[1];
        }
        return kOther;
    }

    static void Describe(int serviceType, const Properties& properties, Service& service) {
        const Kind kind = KindOf(serviceType, properties);
        service.type = kind.type;
        service.highDefinition = kind.highDefinition;
        service.provider = properties.provider;
        service.access = properties.scrambled ? Access::Scrambled : Access::Free;
        const auto pid = [&](uint32_t id) {
            const auto found = properties.pids.find(id);
            return found == properties.pids.end() ? 0 : found->second;
        };
        if (kind.picture) AddPicture(service, kind.picture, pid(kCachedVideo));
        bool silent = true;
        for (const CachedSound& sound : kCachedSounds) {
            if (properties.pids.count(sound.id) == 0) continue;
            AddSound(service, sound.encoding, pid(sound.id));
            silent = false;
        }
        if (silent && kind.sound) AddSound(service, kind.sound, 0);
        if (properties.pids.count(kCachedTeletext) != 0) AddSubtitle(service, "EBU-SUBT", pid(kCachedTeletext));
    }

    std::shared_ptr<Service> Find(const ServiceReference& reference) const {
        const auto found = mServices.find({reference.onid, reference.tsid, reference.sid});
        const bool same = found != mServices.end() && found->second.place == reference.Place();
        return same ? found->second.service : nullptr;
    }

    void Arrange() {
        Bouquets bouquets = ReadBouquets(
            mDirectory, [this](const ServiceReference& reference) { return Find(reference); }, mWarn);
        std::vector<std::shared_ptr<Service>> services;
        for (const auto& service : bouquets.order) {
            ++mLastNumber;
            if (!service) continue;
            service->number = mLastNumber;
            services.push_back(service);
        }
        for (const auto& service : mLineUp.services) {
            if (service->number != 0) continue;
            service->listed = service->type != ChannelType::Other;
            if (service->listed) service->number = ++mLastNumber;
            services.push_back(service);
        }
        for (const auto& service : services) {
            if (service->name.empty()) service->name = "Service " + std::to_string(service->sid);
        }
        mLineUp.services = std::move(services);
        mLineUp.favouriteLists = std::move(bouquets.lists);
        if (!mLineUp.First()) mLines.Refuse("the lamedb has no service for the channel list");
    }

    struct Known {
        std::shared_ptr<Service> service;
        uint32_t place = 0;
        int line = 0;
    };

    Lines mLines;
    std::string mDirectory;
    const FileWarning& mWarn;
    std::map<std::tuple<uint32_t, int, int>, Transponder> mTransponders;
    std::map<std::tuple<uint32_t, IdType, int>, std::shared_ptr<const Network>> mNetworks;
    std::map<std::tuple<int, int, int>, Known> mServices;
    LineUp mLineUp;
    int mLastNumber = 0;
};

}  // namespace

LineUp ParseLamedb(const std::string& text, const std::string& path, const FileWarning& warn) {
    return LamedbReader(text, path, warn).Read();
}

}  // namespace hbbtv::sim
