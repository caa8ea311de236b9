// Programmes: broadcast values, values set by clients, and descriptors.
#include "family/family_setup.h"

#include <map>

#include "core/error.h"
#include "family/object_family.h"
#include "television/programmes/si/si_descriptors.h"

namespace hbbtv::sim {

namespace {

// A tag is one byte.
constexpr int kLastTag = 0xff;

void SetDuration(Programme& programme, int duration) {
    if (duration < 0) throw Refused("the duration is negative");
    programme.duration = duration;
}

void SetIdType(Programme& programme, int type) {
    programme.idType = static_cast<int>(Choice(type, ProgrammeIdType::TvaGroupCrid, "type of identifiers"));
}

class ProgrammeFamily : public ObjectFamily<Programme> {
  public:
    explicit ProgrammeFamily(const FamilySetup& setup);

  private:
    // Marks the programme as changed by a client.
    template <typename Change>
    void Set(const char* name, Change change) {
        ObjectFamily::Set(name, [change](Programme& programme, In in) {
            change(programme, in);
            programme.changed = true;
        });
    }

    void AddMembers();
    void AddDescriptors();

    void Release(In in, Out out);
    void GetParentalRatings(In in, Out out);
    std::vector<std::string> Descriptors(In in) const;
    void GetSIDescriptorByIndex(In in, Out out);
    void GetSIDescriptorByEventId(In in, Out);

    Tv& mTv;
    std::map<const Programme*, int> mWantedTags;  // of the programmes with a requested tag
};

ProgrammeFamily::ProgrammeFamily(const FamilySetup& setup)
    : ObjectFamily("programme", setup.tv.programmes, "programme"), mTv(setup.tv) {
    AddMembers();
    AddDescriptors();
}

void ProgrammeFamily::AddMembers() {
    Row("Release", &ProgrammeFamily::Release);
    Get("GetName", "out_name", [](const Programme& p) { return p.name; });
    Set("SetName", [](Programme& p, In in) { p.name = in.ShortText("in_name"); });
    Get("GetDescription", "out_desc", [](const Programme& p) { return p.description; });
    Set("SetDescription", [](Programme& p, In in) { p.description = in.ShortText("in_desc"); });
    Get("GetLongDescription", "out_longDesc", [](const Programme& p) { return p.longDescription; });
    Set("SetLongDescription", [](Programme& p, In in) { p.longDescription = in.ShortText("in_longDesc"); });
    Get("GetStartTime", "out_startTime", [](const Programme& p) { return static_cast<int>(p.start); });
    Set("SetStartTime", [](Programme& p, In in) { p.start = in.Int("in_startTime"); });
    Get("GetDuration", "out_duration", [](const Programme& p) { return p.duration; });
    Set("SetDuration", [](Programme& p, In in) { SetDuration(p, in.Int("in_duration")); });
    Get("GetChannelID", "out_channelID", [](const Programme& p) { return p.channelId; });
    Set("SetChannelID", [](Programme& p, In in) { p.channelId = in.ShortText("in_channelID"); });
    Get("GetProgramID", "out_programID", [](const Programme& p) { return p.id; });
    Set("SetProgramID", [](Programme& p, In in) { p.id = in.ShortText("in_programID"); });
    Get("GetProgramIDType", "out_programIDType", [](const Programme& p) { return p.idType; });
    Set("SetProgramIDType", [](Programme& p, In in) { SetIdType(p, in.Int("in_programIDType")); });
    Row("GetParentalRatings", &ProgrammeFamily::GetParentalRatings);
}

void ProgrammeFamily::AddDescriptors() {
    Row("GetSIDescriptorNum",
        [this](In in, Out out) { out["out_num"] = static_cast<unsigned>(Descriptors(in).size()); });
    Row("GetSIDescriptorByIndex", &ProgrammeFamily::GetSIDescriptorByIndex);
    Row("GetSIDescriptorByEventId", &ProgrammeFamily::GetSIDescriptorByEventId);
}

void ProgrammeFamily::Release(In in, Out out) {
    mWantedTags.erase(Named(in).get());
    ObjectFamily::Release(in, out);
}

// Clients may add to the collection, so a programme whose collection has a handle counts as changed.
void ProgrammeFamily::GetParentalRatings(In in, Out out) {
    const auto programme = Named(in);
    if (!programme->ratings) programme->ratings = std::make_shared<RatingCollection>();
    out["out_handle"] = Text(mTv.ratingCollections, programme->ratings);
    programme->changed = true;
}

// Returns all descriptors, or those with the requested tag.
std::vector<std::string> ProgrammeFamily::Descriptors(In in) const {
    const auto programme = Named(in);
    std::vector<std::string> all = DescriptorsOf(*programme);
    const auto wanted = mWantedTags.find(programme.get());
    if (wanted == mWantedTags.end()) return all;
    std::vector<std::string> found;
    for (std::string& descriptor : all) {
        if (static_cast<unsigned char>(descriptor[0]) == wanted->second) found.push_back(std::move(descriptor));
    }
    return found;
}

void ProgrammeFamily::GetSIDescriptorByIndex(In in, Out out) {
    const std::string descriptor = At(Descriptors(in), in.UInt("in_index"));
    out["length"] = static_cast<unsigned>(descriptor.size());
    for (size_t i = 0; i < descriptor.size(); ++i) {
        out["k" + std::to_string(i)] = static_cast<int>(static_cast<unsigned char>(descriptor[i]));
    }
}

// Extension and private data specifier are for extended and private tags, of which there are none here.
void ProgrammeFamily::GetSIDescriptorByEventId(In in, Out) {
    const auto programme = Named(in);
    const int tag = in.Int("in_descTag");
    in.Int("in_descTagExt");
    in.Int("in_priDataSpec");
    if (tag > kLastTag) throw Refused("there is no descriptor tag " + std::to_string(tag));
    if (tag < 0) {
        mWantedTags.erase(programme.get());
    } else {
        mWantedTags[programme.get()] = tag;
    }
}

}  // namespace

std::unique_ptr<Family> MakeProgrammeFamily(const FamilySetup& setup) {
    return std::make_unique<ProgrammeFamily>(setup);
}

}  // namespace hbbtv::sim
