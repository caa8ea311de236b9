// Rating schemes with their thresholds, ratings, and collections of ratings.
#include "family/family_setup.h"

#include "core/error.h"
#include "family/members.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMostRatings = 1000;  // in one collection

// One client's access to the television's parental control.
struct Manager {};

// Counts and labels are ints on the wire and unsigned in the interface, with the same bits.
int Bits(uint32_t number) {
    return static_cast<int>(number);
}

std::string Region(const std::string& region) {
    const bool letters = region.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos;
    if (!region.empty() && (region.size() != 2 || !letters)) throw Refused("a region is two capital letters or empty");
    return region;
}

class ParentalControlManagerFamily : public Family {
  public:
    explicit ParentalControlManagerFamily(const FamilySetup& setup);

  private:
    void AddManagerRows();
    void AddRatingRows();

    void Create(In, Out out) { out["out_handle"] = Text(mManagers, std::make_shared<Manager>()); }
    void Destroy(In in, Out) { Remove(mManagers, in, "in_handle", kManager); }
    void GetParentalRatingSchemeNum(In in, Out out);
    void GetParentalRatingSchemeByIndex(In in, Out out);
    void AddScheme(In in, Out out);
    void ReleaseParentalRatingScheme(In in, Out) { Remove(mSchemes, in, "in_handle", kScheme); }
    void GetParentalRatingSchemeName(In in, Out out) { out["out_name"] = Scheme(in).name; }
    void GetThreshold(In in, Out out) { out["out_handle"] = Text(mRatings, Scheme(in).threshold); }
    void GetIconUrl(In in, Out out);
    void ReleaseParentalRating(In in, Out) { Remove(mRatings, in, "in_handle", kRating); }
    void GetScheme(In in, Out out) { out["out_scheme"] = NamedRating(in).scheme; }
    void GetParentalRatingName(In in, Out out) { out["out_name"] = NamedRating(in).name; }
    void GetValue(In in, Out out) { out["out_value"] = NamedRating(in).value; }
    void GetLabel(In in, Out out) { out["out_label"] = Bits(NamedRating(in).labels); }
    void GetRegion(In in, Out out) { out["out_region"] = NamedRating(in).region; }
    void GetRatingNum(In in, Out out) { out["out_num"] = Bits(static_cast<uint32_t>(Collection(in).size())); }
    void GetRatingByIndex(In in, Out out);
    void AddParentalRating(In in, Out);
    void ReleaseParentalRatingCollection(In in, Out) { Remove(mTv.ratingCollections, in, "in_handle", kCollection); }
    void GetLocalParentalRating(In, Out out);

    // At the television.
    std::string SetThreshold(const Words& words);

    void RequireManager(In in) const { Find(mManagers, in, "in_handle", kManager); }
    const RatingScheme& Scheme(In in) const { return *Find(mSchemes, in, "in_handle", kScheme); }
    const Rating& NamedRating(In in) const { return *Find(mRatings, in, "in_handle", kRating); }
    RatingCollection& Collection(In in) const { return *Find(mTv.ratingCollections, in, "in_handle", kCollection); }

    static constexpr const char* kManager = "parental control manager";
    static constexpr const char* kScheme = "parental rating scheme";
    static constexpr const char* kRating = "parental rating";
    static constexpr const char* kCollection = "collection of parental ratings";

    Tv& mTv;
    HandleTable<Manager> mManagers;
    HandleTable<RatingScheme> mSchemes;
    HandleTable<Rating> mRatings;
};

ParentalControlManagerFamily::ParentalControlManagerFamily(const FamilySetup& setup)
    : Family("parental_control_manager"),
      mTv(setup.tv),
      mManagers(setup.tv.handleSource),
      mSchemes(setup.tv.handleSource),
      mRatings(setup.tv.handleSource) {
    AddManagerRows();
    AddRatingRows();
    AddCommand("parental-threshold SCHEME RATING|none", "block from this rating on, or nothing",
               &ParentalControlManagerFamily::SetThreshold);
}

void ParentalControlManagerFamily::AddManagerRows() {
    using F = ParentalControlManagerFamily;
    Row("Create", &F::Create);
    Row("Destroy", &F::Destroy);
    Row("GetParentalRatingSchemeNum", &F::GetParentalRatingSchemeNum);
    Row("GetParentalRatingSchemeByIndex", &F::GetParentalRatingSchemeByIndex);
    Row("AddScheme", &F::AddScheme);
    Row("ReleaseParentalRatingScheme", &F::ReleaseParentalRatingScheme);
    Row("GetParentalRatingSchemeName", &F::GetParentalRatingSchemeName);
    Row("GetThreshold", &F::GetThreshold);
    Row("GetIconUrl", &F::GetIconUrl);
}

void ParentalControlManagerFamily::AddRatingRows() {
    using F = ParentalControlManagerFamily;
    Row("ReleaseParentalRating", &F::ReleaseParentalRating);
    Row("GetScheme", &F::GetScheme);
    Row("GetParentalRatingName", &F::GetParentalRatingName);
    Row("GetValue", &F::GetValue);
    Row("GetLabel", &F::GetLabel);
    Row("GetRegion", &F::GetRegion);
    Row("GetRatingNum", &F::GetRatingNum);
    Row("GetRatingByIndex", &F::GetRatingByIndex);
    Row("AddParentalRating", &F::AddParentalRating);
    Row("ReleaseParentalRatingCollection", &F::ReleaseParentalRatingCollection);
    Row("GetLocalParentalRating", &F::GetLocalParentalRating);
}

void ParentalControlManagerFamily::GetParentalRatingSchemeNum(In in, Out out) {
    RequireManager(in);
    out["num"] = Bits(static_cast<uint32_t>(mTv.parentalControl.Schemes().size()));
}

void ParentalControlManagerFamily::GetParentalRatingSchemeByIndex(In in, Out out) {
    RequireManager(in);
    out["out_handle"] = Text(mSchemes, At(mTv.parentalControl.Schemes(), in.UInt("index")));
}

void ParentalControlManagerFamily::AddScheme(In in, Out out) {
    RequireManager(in);
    const std::string name = in.ShortText("name");
    out["out_handle"] = Text(mSchemes, mTv.parentalControl.Add(name, in.ShortText("values")));
}

void ParentalControlManagerFamily::GetIconUrl(In in, Out out) {
    const RatingScheme& scheme = Scheme(in);
    const unsigned index = in.UInt("index");
    At(scheme.values, index);
    out["out_url"] = scheme.IconOf(index);
}

void ParentalControlManagerFamily::GetRatingByIndex(In in, Out out) {
    out["out_handle"] = Text(mRatings, At(Collection(in), in.UInt("in_index")));
}

void ParentalControlManagerFamily::AddParentalRating(In in, Out) {
    RatingCollection& collection = Collection(in);
    Rating rating;
    rating.scheme = in.Text("in_scheme");
    rating.name = in.Text("in_name");
    rating.value = in.Int("in_value");
    rating.labels = in.UInt("in_labels");
    rating.region = Region(in.Text("in_region"));
    const auto scheme = mTv.parentalControl.Find(rating.scheme);
    if (!scheme) throw Refused("there is no such rating scheme");
    if (!scheme->RatingOf(rating.name)) throw Refused("the scheme has no such rating");
    if (collection.size() >= kMostRatings) throw Refused("the collection already has 1000 ratings");
    collection.push_back(std::make_shared<Rating>(std::move(rating)));
}

void ParentalControlManagerFamily::GetLocalParentalRating(In, Out out) {
    out["parentRating"] = mTv.preferences.Get(Preference::RatingAge);
    out["countryCode"] = mTv.preferences.Get(Preference::Country);
}

std::string ParentalControlManagerFamily::SetThreshold(const Words& words) {
    if (words.size() != 2) throw WrongWords();
    mTv.parentalControl.SetThreshold(words[0], words[1] == "none" ? "" : words[1]);
    return "";
}

}  // namespace

std::unique_ptr<Family> MakeParentalControlManagerFamily(const FamilySetup& setup) {
    return std::make_unique<ParentalControlManagerFamily>(setup);
}

}  // namespace hbbtv::sim
