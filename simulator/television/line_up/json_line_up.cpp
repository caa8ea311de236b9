// The reader of the simulator's own line-up format.
#include <cctype>
#include <map>
#include <set>
#include <tuple>

#include "common/nearest_name.h"
#include "common/text/quote.h"
#include "core/error.h"
#include "television/device/remote_control.h"
#include "television/line_up/line_up.h"
#include "text/json_source.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

using Names = JsonNames;
using Object = JsonObject;
using Source = JsonSource;

const Names kDeliveries{{"DVB_C", 10}, {"DVB_S", 11}, {"DVB_T", 12}, {"DVB_C2", 14}, {"DVB_S2", 15}, {"DVB_T2", 16}};
const Names kChannelTypes{{"TV", 0}, {"RADIO", 1}, {"OTHER", 2}};
const Names kDefinitions{{"SD", 0}, {"HD", 1}};
const Names kAccess{{"free", 0}, {"scrambled", 1}, {"locked", 2}};
const Names kReceptions{{"none", 0}, {"good", 1}};
const Names kControlCodes{{"present", 0}, {"autostart", 1}};
const Names kComponentTypes{{"video", 0}, {"audio", 1}, {"subtitle", 2}};

// OIPF DAE volume 2, media formats, and the one of ultra high definition, which came later (ETSI TS 102 796).
const Names kEncodings[] = {
    {{"AVC_HD_25", 0},
     {"AVC_HD_30", 0},
     {"AVC_SD_25", 0},
     {"AVC_SD_30", 0},
     {"AVC_SP_25", 0},
     {"AVC_SP_30", 0},
     {"AVC_3D_25", 0},
     {"AVC_3D_30", 0},
     {"HEVC_UHD_25", 0},
     {"MPEG2_SD_25", 0},
     {"MPEG2_SD_30", 0},
     {"MPEG2_HD_25", 0},
     {"MPEG2_HD_30", 0}},
    {{"HEAAC", 0}, {"HEAAC2", 0}, {"HEAAC_MPS", 0}, {"MPEG1_L2", 0}, {"AC3", 0}, {"E-AC3", 0}, {"DTS", 0}},
    {{"DVB-SUBT", 0}, {"EBU-SUBT", 0}, {"CEA-SUBT", 0}, {"3GPP-TT", 0}}};

constexpr int kLargestId = 65535;
constexpr int kLargestOrganisation = 0x7fffffff;
constexpr int kLowestAge = 4;  // the range of the rating descriptor
constexpr int kHighestAge = 18;
constexpr int kLargestPid = 8190;
constexpr int kLargestTag = 255;
constexpr int kLargestNumber = 9999;
constexpr int kMostChannels = 24;
constexpr int kHighestFrequency = 100000000;  // kHz; satellites send at 10 to 13 GHz
constexpr size_t kMostGenres = 256;

Network ReadNetwork(const Source& source, const Json::Value& value) {
    const Object object(source, value, "network", {"id", "name", "position", "delivery", "nid"});
    Network network;
    network.id = object.Text("id");
    network.name = object.Text("name");
    network.position = object.Text("position", "");
    network.delivery = static_cast<IdType>(object.OneOf("delivery", kDeliveries));
    network.networkId = object.Int("nid", 0, kLargestId);
    return network;
}

std::string Language(const Object& object) {
    const std::string language = object.Text("language");
    const bool good =
        language.size() == 3 && language.find_first_not_of("abcdefghijklmnopqrstuvwxyz") == std::string::npos;
    if (!good) object.Refuse("language", "is not an ISO 639-2 code of three lower-case letters");
    return language;
}

Component ReadComponent(const Source& source, const Json::Value& value) {
    const Object object(source, value, "component",
                        {"type", "tag", "pid", "encoding", "encrypted", "aspectRatio", "language", "audioDescription",
                         "channels", "hearingImpaired", "label"});
    Component component;
    component.type = static_cast<ComponentType>(object.OneOf("type", kComponentTypes));
    const bool video = component.type == ComponentType::Video;
    const bool audio = component.type == ComponentType::Audio;
    const bool subtitle = component.type == ComponentType::Subtitle;
    object.Only(video, "aspectRatio", "video components");
    object.Only(audio, "audioDescription", "audio components");
    object.Only(audio, "channels", "audio components");
    object.Only(subtitle, "hearingImpaired", "subtitle components");
    object.Only(!video, "language", "audio and subtitle components");
    component.tag = object.Int("tag", 0, kLargestTag);
    component.pid = object.Int("pid", 0, kLargestPid);
    object.OneOf("encoding", kEncodings[static_cast<int>(component.type)]);
    component.encoding = object.Text("encoding");
    component.encrypted = object.Bool("encrypted", false);
    component.label = object.Text("label", "");
    if (video) component.aspectRatio = object.Real("aspectRatio", 1.78, 1.0, 3.0);
    if (!video) component.language = Language(object);
    if (audio) component.audioDescription = object.Bool("audioDescription", false);
    if (audio) component.audioChannels = object.Has("channels") ? object.Int("channels", 1, kMostChannels) : 2;
    if (subtitle) component.hearingImpaired = object.Bool("hearingImpaired", false);
    return component;
}

// Returns the numbers of the names in a list of strings. `what` ("a key set") is part of the message.
std::vector<int> Numbers(const Source& source, const Json::Value& list, const std::string& what, const Names& names) {
    std::vector<int> numbers;
    for (const Json::Value& value : list) {
        const std::string name = value.isString() ? value.asString() : "";
        const auto found = names.find(name);
        if (found == names.end()) {
            std::set<std::string> known;
            for (const auto& entry : names) known.insert(entry.first);
            source.Refuse(value, Quoted(name) + " is not the name of " + what + DidYouMean(name, known));
        }
        numbers.push_back(found->second);
    }
    return numbers;
}

Names OtherKeyNames() {
    Names names;
    for (const RemoteKey& key : RemoteKeys()) {
        if (key.set == kOtherKeys) names[key.name] = key.code;
    }
    return names;
}

std::string Url(const Source& source, const Json::Value& value) {
    const std::string text = value.isString() ? value.asString() : "";
    const size_t scheme = text.find("://");
    if (scheme == std::string::npos || scheme == 0) source.Refuse(value, Quoted(text) + " is not a URL");
    return text;
}

SignalledApplication ReadApplication(const Source& source, const Json::Value& value) {
    const Object object(source, value, "signalled application",
                        {"name", "organisation", "application", "url", "control", "boundToService", "keySets",
                         "otherKeys", "boundaries", "minimumAge"});
    SignalledApplication application;
    application.name = object.Text("name");
    application.organisation = object.Int("organisation", 1, kLargestOrganisation);
    application.application = object.Int("application", 0, kLargestId);
    application.url = Url(source, object.Member("url"));
    application.autostart = object.OneOf("control", kControlCodes) == 1;
    application.boundToService = object.Bool("boundToService", true);
    application.keySets = object.Has("keySets") ? 0 : kUsualKeySets;
    if (object.Has("keySets")) {
        for (const int set : Numbers(source, object.List("keySets"), "a key set", KeySetNames())) {
            application.keySets |= set;
        }
    }
    if (object.Has("otherKeys")) {
        application.otherKeys = Numbers(source, object.List("otherKeys"), "one of the other keys", OtherKeyNames());
        application.keySets |= kOtherKeys;
    }
    if (object.Has("boundaries")) {
        for (const Json::Value& url : object.List("boundaries")) application.boundaries.push_back(Url(source, url));
    }
    if (object.Has("minimumAge")) application.minimumAge = object.Int("minimumAge", kLowestAge, kHighestAge);
    return application;
}

class LineUpReader {
  public:
    explicit LineUpReader(const Source& source) : mSource(source) {}

    LineUp Read() {
        const Json::Value root = mSource.Parse();
        const Object object(mSource, root, "line-up", {"networks", "services", "favouriteLists"});
        for (const Json::Value& value : object.List("networks")) AddNetwork(value);
        for (const Json::Value& value : object.List("services")) AddService(value);
        if (mLastNumber == 0) object.Refuse("services", "has no service that is in the channel list");
        if (!object.Has("favouriteLists")) return std::move(mLineUp);
        for (const Json::Value& value : object.List("favouriteLists")) AddFavouriteList(value);
        return std::move(mLineUp);
    }

  private:
    void AddNetwork(const Json::Value& value) {
        const auto network = std::make_shared<const Network>(ReadNetwork(mSource, value));
        if (!mNetworks.emplace(network->id, network).second) {
            mSource.Refuse(value, "there is another network with the id " + Quoted(network->id));
        }
    }

    std::shared_ptr<const Network> NetworkOf(const Object& object) const {
        const std::string id = object.Text("network");
        const auto found = mNetworks.find(id);
        if (found != mNetworks.end()) return found->second;
        std::set<std::string> ids;
        for (const auto& entry : mNetworks) ids.insert(entry.first);
        object.Refuse("network", "is " + Quoted(id) + ", and there is no such network" + DidYouMean(id, ids));
    }

    void AddService(const Json::Value& value) {
        const Object object(
            mSource, value, "service",
            {"name",        "provider", "network", "onid",   "tsid",      "sid",         "type",
             "definition",  "number",   "listed",  "access", "reception", "components",  "longName",
             "description", "genres",   "logo",    "hidden", "frequency", "programmeId", "applications"});
        auto service = std::make_shared<Service>();
        service->name = object.Text("name");
        service->provider = object.Text("provider", "");
        service->network = NetworkOf(object);
        service->onid = object.Int("onid", 0, kLargestId);
        service->tsid = object.Int("tsid", 0, kLargestId);
        service->sid = object.Int("sid", 0, kLargestId);
        service->type = static_cast<ChannelType>(object.OneOf("type", kChannelTypes));
        object.Only(service->type != ChannelType::Radio, "definition", "services with a picture");
        service->highDefinition = object.OneOf("definition", kDefinitions, 0) == 1;
        service->access = static_cast<Access>(object.OneOf("access", kAccess, 0));
        service->received = object.OneOf("reception", kReceptions, 1) == 1;
        service->listed = object.Bool("listed", true);
        ReadNumber(object, *service);
        ReadComponents(object, *service);
        if (object.Has("applications")) ReadApplications(object, *service);
        ReadDetails(object, *service);
        if (mLineUp.Find(service->onid, service->tsid, service->sid)) {
            object.Refuse("there is another service with the onid, tsid and sid of " + Quoted(service->name));
        }
        mLineUp.services.push_back(std::move(service));
    }

    void ReadNumber(const Object& object, Service& service) {
        object.Only(service.listed, "number", "services that are in the channel list");
        if (!service.listed) return;
        service.number = object.Int("number", 1, kLargestNumber);
        if (service.number <= mLastNumber) {
            object.Refuse("number", "is " + std::to_string(service.number) + " and follows " +
                                        std::to_string(mLastNumber) + ": services stand in the order of their numbers");
        }
        mLastNumber = service.number;
    }

    void ReadComponents(const Object& object, Service& service) const {
        std::set<int> tags;
        for (const Json::Value& value : object.List("components")) {
            const auto component = std::make_shared<Component>(ReadComponent(mSource, value));
            if (!tags.insert(component->tag).second) {
                mSource.Refuse(value, Quoted(service.name) + " has another component with the tag " +
                                          std::to_string(component->tag));
            }
            service.components.push_back(component);
        }
        if (service.components.empty()) object.Refuse("components", "is empty");
    }

    void ReadApplications(const Object& object, Service& service) const {
        std::set<std::pair<int, int>> ids;
        for (const Json::Value& value : object.List("applications")) {
            const auto application = std::make_shared<const SignalledApplication>(ReadApplication(mSource, value));
            if (!ids.emplace(application->organisation, application->application).second) {
                mSource.Refuse(value, Quoted(service.name) + " has another application with the ids of " +
                                          Quoted(application->name));
            }
            service.applications.push_back(application);
        }
    }

    void ReadDetails(const Object& object, Service& service) const {
        object.Only(service.listed, "hidden", "services that are in the channel list");
        service.longName = object.Text("longName", "");
        service.description = object.Text("description", "");
        service.logoUrl = object.Text("logo", "");
        service.hidden = object.Bool("hidden", false);
        if (object.Has("frequency")) service.frequency = object.Int("frequency", 1, kHighestFrequency);
        service.programmeId = object.Text("programmeId", "");
        if (!object.Has("genres")) return;
        for (const Json::Value& genre : object.List("genres")) {
            if (!genre.isString() || genre.asString().empty())
                mSource.Refuse(genre, "a genre is not a string, or is empty");
            service.genres.push_back(genre.asString());
        }
        const std::string most = std::to_string(kMostGenres);
        if (service.genres.size() > kMostGenres) object.Refuse("genres", "has more than " + most + " genres");
    }

    void AddFavouriteList(const Json::Value& value) {
        const Object object(mSource, value, "favourite list", {"id", "name", "services"});
        FavouriteServices list;
        list.id = object.Text("id");
        list.name = object.Text("name");
        if (!mFavouriteIds.insert(list.id).second) {
            object.Refuse("id", "is " + Quoted(list.id) + ", as that of another favourite list");
        }
        for (const Json::Value& member : object.List("services")) list.services.push_back(Favourite(member));
        mLineUp.favouriteLists.push_back(std::move(list));
    }

    std::shared_ptr<const Service> Favourite(const Json::Value& value) const {
        const Object object(mSource, value, "favourite", {"onid", "tsid", "sid"});
        const int onid = object.Int("onid", 0, kLargestId);
        const int tsid = object.Int("tsid", 0, kLargestId);
        const int sid = object.Int("sid", 0, kLargestId);
        const auto service = mLineUp.Find(onid, tsid, sid);
        if (!service) object.Refuse("there is no service with the onid, tsid and sid of this favourite");
        return service;
    }

    const Source& mSource;
    std::map<std::string, std::shared_ptr<const Network>> mNetworks;
    std::set<std::string> mFavouriteIds;
    LineUp mLineUp;
    int mLastNumber = 0;
};

}  // namespace

LineUp ParseLineUp(const std::string& text, const std::string& name) {
    const Source source(text, name);
    return LineUpReader(source).Read();
}

}  // namespace hbbtv::sim
