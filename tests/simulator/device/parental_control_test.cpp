// Rating schemes, thresholds, ratings and their collections, and what survives a restart.
#include <filesystem>

#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

const char* const kFsk = "urn:oipf:GermanyFSKCS";
const char* const kMpaa = "urn:mpeg:mpeg7:cs:MPAAParentalRatingCS:2001";

class ParentalControl : public VideoBroadcastFixture {
  protected:
    ParentalControl() { mFamily = "parental_control_manager"; }
    void SetUp() override { Begin(); }

    void Begin() {
        StartRemembering();
        mManager = Handle("Create");
    }

    void Restart() {
        EXPECT_EQ(Stop(), 0) << mSimulator->Output();
        Begin();
    }

    std::string SchemeAt(unsigned index) {
        return HandleOf(mManager, "GetParentalRatingSchemeByIndex", {{"index", index}});
    }
    std::string NameOfScheme(const std::string& scheme) { return HandleOf(scheme, "GetParentalRatingSchemeName"); }

    std::string SchemeNames() {
        std::string names;
        const int count = GetOf(mManager, "GetParentalRatingSchemeNum").asInt();
        for (int i = 0; i < count; ++i) names += (i == 0 ? "" : " ") + NameOfScheme(SchemeAt(static_cast<unsigned>(i)));
        return names;
    }

    // Returns "scheme name value labels region", or "none" for the null handle.
    std::string RatingText(const std::string& rating) {
        if (rating.empty()) return "none";
        return HandleOf(rating, "GetScheme") + " " + HandleOf(rating, "GetParentalRatingName") + " " +
               GetOf(rating, "GetValue").asString() + " " + GetOf(rating, "GetLabel").asString() + " " +
               HandleOf(rating, "GetRegion");
    }

    std::string ThresholdAt(unsigned index) { return RatingText(HandleOf(SchemeAt(index), "GetThreshold")); }

    int AddScheme(const std::string& name, const std::string& values) {
        return RetOf(mManager, "AddScheme", {{"name", name}, {"values", values}});
    }

    int AddRating(const std::string& collection, const std::string& scheme, const std::string& name, int value,
                  unsigned labels, const std::string& region) {
        return RetOf(collection, "AddParentalRating",
                     {{"in_scheme", scheme},
                      {"in_name", name},
                      {"in_value", value},
                      {"in_labels", labels},
                      {"in_region", region}});
    }

    // Returns the event of an object that presents a service whose rating changes.
    Json::Value RatingEvent(const std::string& rating, const std::string& answer) {
        EXPECT_EQ(Tell("parental-rating " + rating), answer);
        const Event event = NextEventOf("video_broadcast");
        EXPECT_EQ(event.name, "TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED");
        EXPECT_EQ(event.members["contentID"], "");
        EXPECT_EQ(event.members["drmSystemID"], "");
        return event.members;
    }

    std::string mManager;
};

TEST_F(ParentalControl, HasTheSchemesOfItsCountries) {
    EXPECT_EQ(SchemeNames(), std::string("dvb-si ") + kFsk + " " + kMpaa);
    EXPECT_EQ(RetOf(mManager, "GetParentalRatingSchemeByIndex", {{"index", 3u}}), -1);
    EXPECT_EQ(RetOf(mManager, "GetParentalRatingSchemeByIndex", {{"index", 4294967295u}}), -1);
    EXPECT_EQ(RetOf(mManager, "GetParentalRatingSchemeByIndex", {{"index", -1}}), -1);
}

TEST_F(ParentalControl, BlocksFromTheThresholdOfEachSchemeOn) {
    EXPECT_EQ(ThresholdAt(0), "dvb-si 18 18 0 ");
    EXPECT_EQ(ThresholdAt(1), "urn:oipf:GermanyFSKCS 18 4 0 DE") << "the value is the position in the scheme";
    EXPECT_EQ(ThresholdAt(2), "urn:mpeg:mpeg7:cs:MPAAParentalRatingCS:2001 NC-17 4 0 US");
    EXPECT_EQ(Tell(std::string("parental-threshold ") + kMpaa + " PG-13"), "ok");
    EXPECT_EQ(ThresholdAt(2), "urn:mpeg:mpeg7:cs:MPAAParentalRatingCS:2001 PG-13 2 0 US");
    EXPECT_EQ(Tell("parental-threshold dvb-si none"), "ok");
    EXPECT_EQ(ThresholdAt(0), "none");
    EXPECT_EQ(Tell("parental-threshold dvb-si 3"), "error: the scheme has no such rating");
    EXPECT_EQ(Tell("parental-threshold dvb 4"), "error: there is no such rating scheme");
}

TEST_F(ParentalControl, HasAnIconForEachValueOfItsOwnSchemes) {
    EXPECT_EQ(GetOf(SchemeAt(0), "GetIconUrl", {{"index", 0u}}), "http://ratings.example/dvb/4.png");
    EXPECT_EQ(GetOf(SchemeAt(0), "GetIconUrl", {{"index", 14u}}), "http://ratings.example/dvb/18.png");
    EXPECT_EQ(RetOf(SchemeAt(0), "GetIconUrl", {{"index", 15u}}), -1);
    EXPECT_EQ(GetOf(SchemeAt(1), "GetIconUrl", {{"index", 2u}}), "http://ratings.example/fsk/12.png");
    EXPECT_EQ(RetOf(SchemeAt(1), "GetIconUrl", {{"index", 5u}}), -1);
    EXPECT_EQ(GetOf(SchemeAt(2), "GetIconUrl", {{"index", 5u}}), "http://ratings.example/mpaa/NR.png");
    const std::string added = HandleOf(mManager, "AddScheme", {{"name", "mine"}, {"values", "a"}});
    EXPECT_EQ(GetOf(added, "GetIconUrl", {{"index", 0u}}), "");
    EXPECT_EQ(RetOf(added, "GetIconUrl", {{"index", 1u}}), -1);
}

TEST_F(ParentalControl, ReturnsTheAgeThatIsSetAndTheCountry) {
    Json::Value reply = Ask("GetLocalParentalRating");
    EXPECT_EQ(reply["parentRating"], 18);
    EXPECT_EQ(reply["countryCode"], "DEU");
    EXPECT_EQ(Tell("parental-threshold dvb-si 12"), "ok");
    EXPECT_EQ(Tell("set country FRA"), "ok");
    reply = Ask("GetLocalParentalRating");
    EXPECT_EQ(reply["parentRating"], 12);
    EXPECT_EQ(reply["countryCode"], "FRA");
    EXPECT_EQ(Tell("parental-threshold dvb-si none"), "ok");
    EXPECT_EQ(Ask("GetLocalParentalRating")["parentRating"], 0);
}

TEST_F(ParentalControl, HasOneAgeWithThePreferencesWhoeverChangesIt) {
    ServeEvents("configuration");
    const auto ages = [&] {
        return Ask("GetLocalParentalRating")["parentRating"].asString() + " " +
               Get("configuration.GetRatingAge").asString() + " " + ThresholdAt(0);
    };
    const auto event = [&] { return NextEventOf("configuration").Text(); };
    EXPECT_EQ(ages(), "18 18 dvb-si 18 18 0 ");
    EXPECT_EQ(Ret("configuration.RegisterCallback"), 0);
    EXPECT_EQ(Tell("parental-threshold dvb-si 12"), "ok");
    EXPECT_EQ(event(), "rating age age=12");
    EXPECT_EQ(ages(), "12 12 dvb-si 12 12 0 ");
    EXPECT_EQ(Tell("set rating-age 16"), "ok");
    EXPECT_EQ(event(), "rating age age=16");
    EXPECT_EQ(ages(), "16 16 dvb-si 16 16 0 ");
    EXPECT_EQ(Tell("parental-threshold dvb-si none"), "ok");
    EXPECT_EQ(event(), "rating age age=0");
    EXPECT_EQ(ages(), "0 0 none");
    EXPECT_EQ(Tell("set rating-age 4"), "ok");
    Restart();
    EXPECT_EQ(ages(), "4 4 dvb-si 4 4 0 ");
    EXPECT_EQ(Tell("set rating-age 0"), "ok");
    Restart();
    EXPECT_EQ(ages(), "0 0 none") << "the scheme's own 18 does not come back";
}

TEST_F(ParentalControl, BlocksFromTheAgeOfThePreferencesOn) {
    ObjectIn("presenting");
    EXPECT_EQ(Tell("set rating-age 12"), "ok");
    EXPECT_EQ(RatingEvent("dvb-si 11", "ok")["blocked"], false);
    EXPECT_EQ(RatingEvent("dvb-si 12", "ok blocked")["blocked"], true);
}

TEST_F(ParentalControl, KeepsSchemesThatAreAddedAndWhatTheParentsSet) {
    const std::string scheme =
        HandleOf(mManager, "AddScheme", {{"name", "urn:x<&>\""}, {"values", "mild, strong,\xc3\xa4"}});
    EXPECT_EQ(NameOfScheme(scheme), "urn:x<&>\"");
    EXPECT_EQ(RatingText(HandleOf(scheme, "GetThreshold")), "none");
    EXPECT_EQ(Tell("parental-threshold urn:x<&>\" strong"), "ok");
    EXPECT_EQ(Tell("parental-threshold dvb-si 6"), "ok");
    EXPECT_EQ(Tell(std::string("parental-threshold ") + kFsk + " none"), "ok");
    EXPECT_EQ(Tell("set country ITA"), "ok");
    Restart();
    EXPECT_EQ(SchemeNames(), std::string("dvb-si ") + kFsk + " " + kMpaa + " urn:x<&>\"");
    EXPECT_EQ(ThresholdAt(0), "dvb-si 6 6 0 ");
    EXPECT_EQ(ThresholdAt(1), "none");
    EXPECT_EQ(ThresholdAt(3), "urn:x<&>\" strong 1 0 ");
    EXPECT_EQ(Ask("GetLocalParentalRating")["countryCode"], "ITA");
    EXPECT_EQ(RetOf(SchemeAt(3), "GetIconUrl", {{"index", 2u}}), 0);
    EXPECT_EQ(RetOf(SchemeAt(3), "GetIconUrl", {{"index", 3u}}), -1);
}

TEST_F(ParentalControl, SetsADamagedDocumentAside) {
    for (const std::string damaged :
         {"{", "[]", R"({"schemes": [{"name": "dvb-si", "values": ["1"]}], "thresholds": []})",
          R"({"schemes": [{"name": "x", "values": [1]}], "thresholds": []})",
          R"({"schemes": [], "thresholds": [{"scheme": "dvb-si", "rating": "3"}]})",
          R"({"schemes": [], "thresholds": [{"scheme": "x", "rating": ""}]})"}) {
        EXPECT_EQ(Stop(), 0);
        WriteFile(mDirectory / "state/parental_control.json", damaged);
        Begin();
        EXPECT_EQ(SchemeNames(), std::string("dvb-si ") + kFsk + " " + kMpaa) << damaged;
        EXPECT_FALSE(std::filesystem::exists(mDirectory / "state/parental_control.json"));
    }
    EXPECT_TRUE(std::filesystem::exists(mDirectory / "state/parental_control.json.damaged-6"));
}

TEST_F(ParentalControl, AddsASchemeOnceAndRefusesInvalidOnes) {
    const std::string scheme = HandleOf(mManager, "AddScheme", {{"name", "mine"}, {"values", "a,b"}});
    EXPECT_EQ(HandleOf(mManager, "AddScheme", {{"name", "mine"}, {"values", "a, b"}}), scheme) << "it is the same";
    for (const std::string& name : {std::string("mine"), std::string("dvb-si"), std::string(), std::string("two words"),
                                    std::string("t\xc3\xa4g"), std::string("line\n"), std::string(257, 'x')}) {
        EXPECT_EQ(AddScheme(name, "a"), -1) << name;
    }
    for (const char* values : {"", "a,,b", "a,b,a"}) EXPECT_EQ(AddScheme("new", values), -1) << values;
    EXPECT_EQ(GetOf(mManager, "GetParentalRatingSchemeNum"), 4);
    std::string values = "0";
    for (int i = 1; i < 256; ++i) values += "," + std::to_string(i);
    EXPECT_EQ(AddScheme("most", values), 0);
    EXPECT_EQ(AddScheme("more", values + ",256"), -1);
    for (int i = 5; i < 100; ++i) ASSERT_EQ(AddScheme("s" + std::to_string(i), "a"), 0);
    EXPECT_EQ(AddScheme("s100", "a"), -1) << "there are 100";
}

TEST_F(ParentalControl, ReportsTheRatingOfTheServiceAndBlocksItFromTheThresholdOn) {
    ObjectIn("presenting");
    const Json::Value mild = RatingEvent("dvb-si 16", "ok");
    EXPECT_EQ(mild["blocked"], false);
    const std::string collection = mild["PRCollectionHandle"].asString();
    EXPECT_EQ(GetOf(collection, "GetRatingNum"), 1);
    EXPECT_EQ(RatingText(HandleOf(collection, "GetRatingByIndex", {{"in_index", 0u}})), "dvb-si 16 16 0 ");
    const Json::Value strong = RatingEvent(std::string(kFsk) + " 18", "ok blocked");
    EXPECT_EQ(strong["blocked"], true);
    EXPECT_EQ(NextEvent(), "PlayState 1 3");
    EXPECT_EQ(Tell("parental-rating dvb-si 4"), "error: nothing is presented");
    EXPECT_EQ(Tell("parental-lock pin"), "ok");
    EXPECT_EQ(NextEvent(), "PlayState 2 0");
    EXPECT_EQ(Tell("parental-threshold dvb-si 12"), "ok");
    EXPECT_EQ(RatingEvent("dvb-si 12", "ok blocked")["blocked"], true);
    EXPECT_EQ(Tell("parental-rating dvb-si 19"), "error: there is no such rating");
}

TEST_F(ParentalControl, KeepsRatingsThatAreAddedToACollectionWithAllTheirBits) {
    ObjectIn("presenting");
    const std::string collection = RatingEvent("dvb-si 4", "ok")["PRCollectionHandle"].asString();
    EXPECT_EQ(AddRating(collection, kMpaa, "R", 3, 511, "US"), 0);
    EXPECT_EQ(AddRating(collection, "dvb-si", "12", 12, 4294967295u, ""), 0);
    EXPECT_EQ(AddRating(collection, "dvb-si", "12", -2147483647 - 1, 2147483648u, "DE"), 0);
    EXPECT_EQ(GetOf(collection, "GetRatingNum"), 4);
    const auto at = [&](unsigned index) {
        return RatingText(HandleOf(collection, "GetRatingByIndex", {{"in_index", index}}));
    };
    EXPECT_EQ(at(0), "dvb-si 4 4 0 ");
    EXPECT_EQ(at(1), std::string(kMpaa) + " R 3 511 US");
    EXPECT_EQ(at(2), "dvb-si 12 12 -1 ") << "the labels' bits, as an int";
    EXPECT_EQ(at(3), "dvb-si 12 -2147483648 -2147483648 DE");
    EXPECT_EQ(RetOf(collection, "GetRatingByIndex", {{"in_index", 4u}}), -1);
    EXPECT_EQ(AddRating(collection, "unknown", "12", 12, 0, ""), -1);
    EXPECT_EQ(AddRating(collection, "dvb-si", "3", 3, 0, ""), -1);
    EXPECT_EQ(AddRating(collection, "dvb-si", "12", 12, 0, "DEU"), -1);
    EXPECT_EQ(AddRating(collection, "dvb-si", "12", 12, 0, "de"), -1);
    EXPECT_EQ(GetOf(collection, "GetRatingNum"), 4);
    for (int i = 4; i < 1000; ++i) ASSERT_EQ(AddRating(collection, "dvb-si", "12", 12, 0, ""), 0);
    EXPECT_EQ(AddRating(collection, "dvb-si", "12", 12, 0, ""), -1) << "there are 1000";
}

TEST_F(ParentalControl, RefusesHandlesThatAreReleasedUnknownOrOfAnotherKind) {
    ObjectIn("presenting");
    const std::string collection = RatingEvent("dvb-si 4", "ok")["PRCollectionHandle"].asString();
    const std::string scheme = SchemeAt(0);
    const std::string rating = HandleOf(scheme, "GetThreshold");
    const std::map<std::string, std::vector<std::string>> operations{
        {mManager, {"GetParentalRatingSchemeNum", "GetParentalRatingSchemeByIndex", "AddScheme", "Destroy"}},
        {scheme, {"GetParentalRatingSchemeName", "GetThreshold", "GetIconUrl", "ReleaseParentalRatingScheme"}},
        {rating, {"GetScheme", "GetParentalRatingName", "GetValue", "GetLabel", "GetRegion", "ReleaseParentalRating"}},
        {collection, {"GetRatingNum", "GetRatingByIndex", "AddParentalRating", "ReleaseParentalRatingCollection"}}};
    const Members members{{"index", 0u},   {"in_index", 0u},        {"name", "mine"},
                          {"values", "a"}, {"in_scheme", "dvb-si"}, {"in_name", "4"},
                          {"in_value", 4}, {"in_labels", 0u},       {"in_region", ""}};
    for (const auto& [kind, ofKind] : operations) {
        for (const auto& other : operations) {
            if (other.first != kind) ExpectRefused(ofKind, {other.first}, members);
        }
        ExpectRefused(ofKind, {"", "0x1", "x"}, members);
        ExpectRequestsRefused(ofKind, members);
    }
    for (const auto& [kind, ofKind] : operations) {
        for (const std::string& operation : ofKind) {
            EXPECT_EQ(RetOf(kind, operation, Fitting(operation, members)), 0) << operation;
        }
        ExpectRefused(ofKind, {kind}, members);
    }
    ExpectOtherCodesRefused("parental_control_manager");
}

}  // namespace
}  // namespace hbbtv::test
