// Programmes: what is broadcast of them, what clients set, and their descriptors.
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
    // What a client has set shows in the programme.
    template <typename Change>
    void Set(int code, const char* name, Change change) {
        ObjectFamily::Set(code, name, [change](Programme& programme, In in) {
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
    std::map<const Programme*, int> mWantedTags;  // of the programmes for which a tag was asked
};

ProgrammeFamily::ProgrammeFamily(const FamilySetup& setup)
    : ObjectFamily({"programme", "service_plugin_to_hbbtv_program", "", 13, "method", 5}, setup.tv.programmes, "handle",
                   "programme"),
      mTv(setup.tv) {
    AddMembers();
    AddDescriptors();
}

void ProgrammeFamily::AddMembers() {
    Row(0, "Release", &ProgrammeFamily::Release);
    Get(1, "GetName", "out_name", [](const Programme& p) { return p.name; });
    Set(3, "SetName", [](Programme& p, In in) { p.name = in.ShortText("in_name"); });
    Get(7, "GetDescription", "out_desc", [](const Programme& p) { return p.description; });
    Set(9, "SetDescription", [](Programme& p, In in) { p.description = in.ShortText("in_desc"); });
    Get(10, "GetLongDescription", "out_longDesc", [](const Programme& p) { return p.longDescription; });
    Set(12, "SetLongDescription", [](Programme& p, In in) { p.longDescription = in.ShortText("in_longDesc"); });
    Get(13, "GetStartTime", "out_startTime", [](const Programme& p) { return static_cast<int>(p.start); });
    Set(15, "SetStartTime", [](Programme& p, In in) { p.start = in.Int("in_startTime"); });
    Get(16, "GetDuration", "out_duration", [](const Programme& p) { return p.duration; });
    Set(18, "SetDuration", [](Programme& p, In in) { SetDuration(p, in.Int("in_duration")); });
    Get(19, "GetChannelID", "out_channelID", [](const Programme& p) { return p.channelId; });
    Set(21, "SetChannelID", [](Programme& p, In in) { p.channelId = in.ShortText("in_channelID"); });
    Get(28, "GetProgramID", "out_programID", [](const Programme& p) { return p.id; });
    Set(30, "SetProgramID", [](Programme& p, In in) { p.id = in.ShortText("in_programID"); });
    Get(31, "GetProgramIDType", "out_programIDType", [](const Programme& p) { return p.idType; });
    Set(33, "SetProgramIDType", [](Programme& p, In in) { SetIdType(p, in.Int("in_programIDType")); });
    Row(34, "GetParentalRatings", &ProgrammeFamily::GetParentalRatings);
}

void ProgrammeFamily::AddDescriptors() {
    Row(76, "GetSIDescriptorNum",
        [this](In in, Out out) { out["out_num"] = static_cast<unsigned>(Descriptors(in).size()); });
    Row(78, "GetSIDescriptorByIndex", &ProgrammeFamily::GetSIDescriptorByIndex);
    Row(79, "GetSIDescriptorByEventId", &ProgrammeFamily::GetSIDescriptorByEventId);
}

void ProgrammeFamily::Release(In in, Out out) {
    mWantedTags.erase(Named(in).get());
    ObjectFamily::Release(in, out);
}

// Clients may add to the collection, so a programme whose collection was given out counts as changed.
void ProgrammeFamily::GetParentalRatings(In in, Out out) {
    const auto programme = Named(in);
    if (!programme->ratings) programme->ratings = std::make_shared<RatingCollection>();
    out["out_handle"] = Text(mTv.ratingCollections, programme->ratings);
    programme->changed = true;
}

// All of them, or those that are wanted.
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

// Extension and private data specifier tell descriptors of extended and private tags apart, and here there are none.
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
