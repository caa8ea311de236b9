// What is known of a channel, and what clients may change of it.
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

// What no operation of its own gives.
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

// There is one logo, of a size that nobody knows.
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
    : ObjectFamily({"channel", "service_plugin_to_hbbtv_vb_chn", "", 2, "method", 12}, setup.tv.channels, "c_handle",
                   "channel"),
      mTv(setup.tv) {
    AddIdentity();
    AddState();
    AddTexts();
}

// What nothing that is received has (an ATSC source, an analogue carrier, a minor number) is 0.
void ChannelFamily::AddIdentity() {
    Row(0, "Release", &ChannelFamily::Release);
    Get(1, "GetChannelType", "channelType", [](const Channel& c) { return static_cast<int>(c.Type()); });
    Get(2, "GetIdType", "idType", [](const Channel& c) { return c.idType; });
    Get(3, "GetCcid", "ccid", [](const Channel& c) { return c.ccid; });
    Get(4, "GetTunerID", "tunerId", [](const Channel& c) { return c.service && !c.OverIp() ? "tuner:1" : ""; });
    Get(5, "GetOnid", "onid", [](const Channel& c) { return c.onid; });
    Get(6, "GetNid", "nid", [](const Channel& c) { return c.Nid(); });
    Get(7, "GetTsid", "tsid", [](const Channel& c) { return c.tsid; });
    Get(8, "GetSid", "sid", [](const Channel& c) { return c.sid; });
    Get(9, "GetSourceID", "sourceId", [](const Channel& c) { return c.sourceId; });
    Get(10, "GetFreq", "freq", [](const Channel& c) { return c.service ? c.service->frequency : 0; });
    Get(11, "GetCni", "cni", [](const Channel&) { return 0; });
    Get(14, "GetMajorChannel", "majorChannel", [](const Channel& c) { return c.Number(); });
    Get(15, "GetMinorChannel", "minorChannel", [](const Channel&) { return 0; });
    Get(16, "GetDsd", "dsd", [](const Channel& c) { return c.dsd; });
    Get(22, "GetIpBroadcastID", "ipBroadcastId", [](const Channel& c) { return c.ipBroadcastId; });
    Get(41, "GetTerminalChannel", "terminalChannel", [](const Channel& c) { return c.Number(); });
}

// Bit rate and rebuffering time are those of streams over IP, of which the line-up says neither.
void ChannelFamily::AddState() {
    Get(17, "GetFavourite", "favourite", [this](const Channel& c) { return !mTv.favourites->Holding(c).empty(); });
    Get(18, "GetFavIDsNum", "num",
        [this](const Channel& c) { return static_cast<unsigned>(mTv.favourites->Holding(c).size()); });
    Get(19, "GetFavIDsNameByIndex", "name",
        [this](const Channel& c, In in) { return At(mTv.favourites->Holding(c), in.UInt("index"))->id; });
    Get(20, "GetLocked", "locked", [](const Channel& c) { return c.Blocked(); });
    Get(21, "GetManualBlock", "manualBlock", [](const Channel& c) { return c.Blocked(); });
    Get(23, "GetChannelMaxBitRate", "maxBitrate", [](const Channel&) { return 0u; });
    Get(24, "GetChannelTTR", "ttr", [](const Channel&) { return 0; });
    Get(25, "GetRecordable", "recordable", [](const Channel& c) { return c.CanBePresented(); });
    Get(30, "GetAuthorized", "authorized",
        [](const Channel& c) { return c.service && c.service->access != Access::Scrambled; });
    Set(35, "SetHidden", [](Channel& c, In in) { c.hidden = in.Bool("hidden"); });
    Get(36, "GetHidden", "hidden", [](const Channel& c) { return c.hidden; });
}

void ChannelFamily::AddTexts() {
    Set(12, "SetName", [](Channel& c, In in) { c.name = in.ShortText("name"); });
    Get(13, "GetName", "name", [](const Channel& c) { return c.name; });
    Set(26, "SetLongName", [](Channel& c, In in) { c.longName = in.ShortText("longname"); });
    Get(27, "GetLongName", "longname", [](const Channel& c) { return c.longName.value_or(c.name); });
    Set(28, "SetDescription", [](Channel& c, In in) { c.description = in.ShortText("description"); });
    Get(29, "GetDescription", "description", [](const Channel& c) { return c.description; });
    Set(31, "SetGenreNum", [](Channel& c, In in) { SetGenreNum(c, in.UInt("num")); });
    Set(32, "SetGenreByIndex", [](Channel& c, In in) { SetGenre(c, in.UInt("index"), in.ShortText("genre")); });
    Get(33, "GetGenreNum", "num", [](const Channel& c) { return static_cast<unsigned>(c.genres.size()); });
    Get(34, "GetGenreByIndex", "genre", [](const Channel& c, In in) { return At(c.genres, in.UInt("index")); });
    Set(37, "SetLogoURL", [](Channel& c, In in) { c.logoUrl = in.ShortText("url"); });
    Get(38, "GetLogoURL", "url", [](const Channel& c) { return c.logoUrl; });
    Get(39, "GetField", "field", [](const Channel& c, In in) { return Field(c, in.Text("fieldId")); });
    Get(40, "GetLogo", "logo", [](const Channel& c, In in) { return Logo(c, in.Int("width"), in.Int("height")); });
}

}  // namespace

std::unique_ptr<Family> MakeChannelFamily(const FamilySetup& setup) {
    return std::make_unique<ChannelFamily>(setup);
}

}  // namespace hbbtv::sim
