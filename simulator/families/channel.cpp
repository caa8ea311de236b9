// The properties of a channel, and those that clients may change.
#include "family/family_setup.h"

#include <map>
#include <set>

#include "common/nearest_name.h"
#include "core/error.h"
#include "core/journal.h"
#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

constexpr unsigned kMostGenres = 256;

using FieldReader = std::string (*)(const Service&);

// Properties without an operation of their own.
const std::map<std::string, FieldReader> kFields{
    {"definition", [](const Service& service) -> std::string { return service.highDefinition ? "HD" : "SD"; }},
    {"network", [](const Service& service) { return service.network->name; }},
    {"position", [](const Service& service) { return service.network->position; }},
    {"programmeId", [](const Service& service) { return service.programmeId; }},
    {"provider", [](const Service& service) { return service.provider; }}};

std::string Field(const Channel& channel, const std::string& fieldId) {
    const auto field = kFields.find(fieldId);
    if (field != kFields.end()) return channel.service ? field->second(*channel.service) : "";
    std::set<std::string> known;
    for (const auto& entry : kFields) known.insert(entry.first);
    throw Refused("there is no field \"" + Excerpt(fieldId) + "\"" + DidYouMean(fieldId.substr(0, 100), known));
}

// There is one logo, of unknown size.
std::string Logo(const Channel& channel, int width, int height) {
    if (width < 0 || height < 0) throw Refused("the logo has a negative size");
    return channel.logoUrl;
}

void SetGenreNum(Channel& channel, unsigned count) {
    if (count > kMostGenres) throw Refused("a channel has at most " + std::to_string(kMostGenres) + " genres");
    channel.genres.resize(count);
}

void SetGenre(Channel& channel, unsigned index, std::string genre) {
    At(channel.genres, index);
    channel.genres[index] = std::move(genre);
}

class ChannelFamily : public ObjectFamily<Channel> {
  public:
    explicit ChannelFamily(const FamilySetup& setup);

  private:
    void AddIdentity();
    void AddState();
    void AddTexts();

    Tv& mTv;
};

ChannelFamily::ChannelFamily(const FamilySetup& setup)
    : ObjectFamily("channel", setup.tv.channels, "channel"), mTv(setup.tv) {
    AddIdentity();
    AddState();
    AddTexts();
}

// Properties that no received service has (ATSC source, analogue carrier, minor number) are 0.
void ChannelFamily::AddIdentity() {
    Row("Release", &ChannelFamily::Release);
    Get("GetChannelType", "channelType", [](const Channel& c) { return static_cast<int>(c.Type()); });
    Get("GetIdType", "idType", [](const Channel& c) { return c.idType; });
    Get("GetCcid", "ccid", [](const Channel& c) { return c.ccid; });
    Get("GetTunerID", "tunerId", [](const Channel& c) { return c.service && !c.OverIp() ? "tuner:1" : ""; });
    Get("GetOnid", "onid", [](const Channel& c) { return c.onid; });
    Get("GetNid", "nid", [](const Channel& c) { return c.Nid(); });
    Get("GetTsid", "tsid", [](const Channel& c) { return c.tsid; });
    Get("GetSid", "sid", [](const Channel& c) { return c.sid; });
    Get("GetSourceID", "sourceId", [](const Channel& c) { return c.sourceId; });
    Get("GetFreq", "freq", [](const Channel& c) { return c.service ? c.service->frequency : 0; });
    Get("GetCni", "cni", [](const Channel&) { return 0; });
    Get("GetMajorChannel", "majorChannel", [](const Channel& c) { return c.Number(); });
    Get("GetMinorChannel", "minorChannel", [](const Channel&) { return 0; });
    Get("GetDsd", "dsd", [](const Channel& c) { return c.dsd; });
    Get("GetIpBroadcastID", "ipBroadcastId", [](const Channel& c) { return c.ipBroadcastId; });
    Get("GetTerminalChannel", "terminalChannel", [](const Channel& c) { return c.Number(); });
}

// Bit rate and rebuffering time are those of IP streams and not in the line-up.
void ChannelFamily::AddState() {
    Get("GetFavourite", "favourite", [this](const Channel& c) { return !mTv.favourites->Holding(c).empty(); });
    Get("GetFavIDsNum", "num",
        [this](const Channel& c) { return static_cast<unsigned>(mTv.favourites->Holding(c).size()); });
    Get("GetFavIDsNameByIndex", "name",
        [this](const Channel& c, In in) { return At(mTv.favourites->Holding(c), in.UInt("index"))->Id(); });
    Get("GetLocked", "locked", [](const Channel& c) { return c.Blocked(); });
    Get("GetManualBlock", "manualBlock", [](const Channel& c) { return c.Blocked(); });
    Get("GetChannelMaxBitRate", "maxBitrate", [](const Channel&) { return 0u; });
    Get("GetChannelTTR", "ttr", [](const Channel&) { return 0; });
    Get("GetRecordable", "recordable", [](const Channel& c) { return c.CanBePresented(); });
    Get("GetAuthorized", "authorized",
        [](const Channel& c) { return c.service && c.service->access != Access::Scrambled; });
    Set("SetHidden", [](Channel& c, In in) { c.hidden = in.Bool("hidden"); });
    Get("GetHidden", "hidden", [](const Channel& c) { return c.hidden; });
}

void ChannelFamily::AddTexts() {
    Set("SetName", [](Channel& c, In in) { c.name = in.ShortText("name"); });
    Get("GetName", "name", [](const Channel& c) { return c.name; });
    Set("SetLongName", [](Channel& c, In in) { c.longName = in.ShortText("longname"); });
    Get("GetLongName", "longname", [](const Channel& c) { return c.longName.value_or(c.name); });
    Set("SetDescription", [](Channel& c, In in) { c.description = in.ShortText("description"); });
    Get("GetDescription", "description", [](const Channel& c) { return c.description; });
    Set("SetGenreNum", [](Channel& c, In in) { SetGenreNum(c, in.UInt("num")); });
    Set("SetGenreByIndex", [](Channel& c, In in) { SetGenre(c, in.UInt("index"), in.ShortText("genre")); });
    Get("GetGenreNum", "num", [](const Channel& c) { return static_cast<unsigned>(c.genres.size()); });
    Get("GetGenreByIndex", "genre", [](const Channel& c, In in) { return At(c.genres, in.UInt("index")); });
    Set("SetLogoURL", [](Channel& c, In in) { c.logoUrl = in.ShortText("url"); });
    Get("GetLogoURL", "url", [](const Channel& c) { return c.logoUrl; });
    Get("GetField", "field", [](const Channel& c, In in) { return Field(c, in.Text("fieldId")); });
    Get("GetLogo", "logo", [](const Channel& c, In in) { return Logo(c, in.Int("width"), in.Int("height")); });
}

}  // namespace

std::unique_ptr<Family> MakeChannelFamily(const FamilySetup& setup) {
    return std::make_unique<ChannelFamily>(setup);
}

}  // namespace hbbtv::sim
