// The services that the simulated television receives, as the line-up file describes them. The formats that it may have
// are documented in docs/simulator.md.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "text/lines.h"

namespace hbbtv::sim {

// Values of OIPF DAE volume 5.
enum class ComponentType { Video = 0, Audio = 1, Subtitle = 2 };
enum class ChannelType { Tv = 0, Radio = 1, Other = 2 };
enum class IdType {
    Analog = 0,
    DvbC = 10,
    DvbS = 11,
    DvbT = 12,
    DvbSiDirect = 13,
    DvbC2 = 14,
    DvbS2 = 15,
    DvbT2 = 16,
    IptvSds = 40,
    IptvUri = 41
};

struct Component {
    ComponentType type = ComponentType::Video;
    int tag = 0;
    int pid = 0;
    std::string encoding;
    bool encrypted = false;
    double aspectRatio = 0;         // video
    std::string language;           // audio and subtitles, ISO 639-2
    bool audioDescription = false;  // audio
    int audioChannels = 0;          // audio
    bool hearingImpaired = false;   // subtitles
    std::string label;
    bool description = false;  // made by a client: no component of a service, but a description of one
};

using ComponentList = std::vector<std::shared_ptr<Component>>;

// An application as a service's signalling announces it.
struct SignalledApplication {
    std::string name;
    int organisation = 0;
    int application = 0;
    std::string url;
    bool autostart = false;      // otherwise it is only present: started when somebody asks for it
    bool boundToService = true;  // broadcast-related: it ends with the service
    int keySets = 0;
    std::vector<int> otherKeys;
    std::vector<std::string> boundaries;  // URLs below which its pages are
    int minimumAge = 0;
};

constexpr bool IsIp(IdType type) {
    return type == IdType::IptvSds || type == IdType::IptvUri;
}

struct Network {
    std::string id;
    std::string name;
    std::string position;  // of a satellite, as people write it: "19.2E"; empty otherwise
    IdType delivery = IdType::DvbS;
    int networkId = 0;
};

enum class Access {
    Free,
    Scrambled,
    Locked
};  // Scrambled: no key or module for it; Locked: by the parents, with a PIN

struct Service {
    std::string name;
    std::string provider;
    std::shared_ptr<const Network> network;
    int onid = 0;
    int tsid = 0;
    int sid = 0;
    ChannelType type = ChannelType::Tv;
    bool highDefinition = false;
    int number = 0;      // on the remote control; 0 for a service that is not in the channel list
    bool listed = true;  // on air without being in the channel list when false
    Access access = Access::Free;
    bool received = true;
    std::string longName;  // empty: the name
    std::string description;
    std::vector<std::string> genres;
    std::string logoUrl;
    bool hidden = false;      // in the list, but not shown to the viewer
    int frequency = 0;        // kHz, 0 when not known
    std::string uri;          // of an IP service; its onid, tsid and sid are 0
    std::string programmeId;  // how programme data in XMLTV names the service; empty when it does not
    ComponentList components;
    std::vector<std::shared_ptr<const SignalledApplication>> applications;
};

// A list of favourites as the line-up brings it along.
struct FavouriteServices {
    std::string id;
    std::string name;
    std::vector<std::shared_ptr<const Service>> services;
};

struct LineUp {
    std::vector<FavouriteServices> favouriteLists;
    std::vector<std::shared_ptr<Service>> services;  // in the order of the file, which is the order of zapping

    // Null without one. Services are only ever added, with their numbers in place. IP services have no such numbers.
    std::shared_ptr<Service> Find(int onid, int tsid, int sid) const;

    std::shared_ptr<Service> First() const;

  private:
    // Grows behind `services`, so that looking up while reading is no walk through what was read.
    mutable std::map<std::tuple<int, int, int>, std::shared_ptr<Service>> mByTriplet;
    mutable size_t mIndexed = 0;
};

// The simulator's own format. `name` stands for the text in messages. Throws Fatal, as all that read a line-up do.
LineUp ParseLineUp(const std::string& text, const std::string& name);

// A file in any of the formats, told apart by what is in it; of a directory, its lamedb.
LineUp ReadLineUp(const std::string& path, const FileWarning& warn);

// The line-up that is built into the program.
LineUp DefaultLineUp();

}  // namespace hbbtv::sim
