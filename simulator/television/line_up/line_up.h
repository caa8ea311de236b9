// The services that the simulated television receives, from the line-up file. docs/simulator.md documents its formats.
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
    bool description = false;  // created by a client: not a component of a service, but a description of one
};

using ComponentList = std::vector<std::shared_ptr<Component>>;

// An application as announced by a service.
struct SignalledApplication {
    std::string name;
    int organisation = 0;
    int application = 0;
    std::string url;
    bool autostart = false;      // otherwise it is present: started on request only
    bool boundToService = true;  // broadcast-related: it ends with the service
    int keySets = 0;
    std::vector<int> otherKeys;
    std::vector<std::string> boundaries;  // URL prefixes of its pages
    int minimumAge = 0;
};

constexpr bool IsIp(IdType type) {
    return type == IdType::IptvSds || type == IdType::IptvUri;
}

struct Network {
    std::string id;
    std::string name;
    std::string position;  // of a satellite: "19.2E"; otherwise empty
    IdType delivery = IdType::DvbS;
    int networkId = 0;
};

enum class Access {
    Free,
    Scrambled,
    Locked
};  // Scrambled: no key or module for it; Locked: by parental control, with a PIN

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
    bool listed = true;  // if false, on air but not in the channel list
    Access access = Access::Free;
    bool received = true;
    std::string longName;  // empty: the name
    std::string description;
    std::vector<std::string> genres;
    std::string logoUrl;
    bool hidden = false;      // in the list, but not shown to the viewer
    int frequency = 0;        // kHz, 0 if unknown
    std::string uri;          // of an IP service; its onid, tsid and sid are 0
    std::string programmeId;  // the service's id in XMLTV files; empty: none
    ComponentList components;
    std::vector<std::shared_ptr<const SignalledApplication>> applications;
};

// A favourite list from the line-up.
struct FavouriteServices {
    std::string id;
    std::string name;
    std::vector<std::shared_ptr<const Service>> services;
};

struct LineUp {
    std::vector<FavouriteServices> favouriteLists;
    std::vector<std::shared_ptr<Service>> services;  // in the order of the file, which is the order of zapping

    // Returns null if there is none. Services are only added, with their numbers set. IP services have no such numbers.
    std::shared_ptr<Service> Find(int onid, int tsid, int sid) const;

    std::shared_ptr<Service> First() const;

  private:
    // Index of `services`, updated on lookup, so that lookups while reading are not linear.
    mutable std::map<std::tuple<int, int, int>, std::shared_ptr<Service>> mByTriplet;
    mutable size_t mIndexed = 0;
};

// Reads the simulator's own format. `name` is the file's name in messages. Throws Fatal, like all readers of line-ups.
LineUp ParseLineUp(const std::string& text, const std::string& name);

// Reads a file in any of the formats, detected from its contents; for a directory, its lamedb.
LineUp ReadLineUp(const std::string& path, const FileWarning& warn);

// The line-up that is built into the program.
LineUp DefaultLineUp();

}  // namespace hbbtv::sim
