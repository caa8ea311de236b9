// What queries find among the programmes below: every property, every comparison, the operators, and
// what is refused.
#include "television/programmes/programme_query.h"

#include <gtest/gtest.h>

#include "family/arguments.h"
#include "text/letter_case.h"

namespace hbbtv::sim {
namespace {

constexpr int kEqual = 0;
constexpr int kNotEqual = 1;
constexpr int kGreater = 2;
constexpr int kGreaterOrEqual = 3;
constexpr int kLess = 4;
constexpr int kLessOrEqual = 5;
constexpr int kContains = 6;

class Queries : public testing::Test {
  protected:
    Queries() {
        mService->name = "One";
        mService->onid = 1;
        mService->tsid = 2;
        mService->sid = 3;
        AddSound(*mService, "deu");
        // Names, start times and durations in seconds, genres, ages.
        Add("News", 1000, 900, {"News"}, {});
        Add("Kitchen Table", 2000, 3600, {"Leisure", "Cooking"}, {6});
        Add("Old Letters", 6000, 5400, {"Film"}, {12, 16});
        Add("Österreich heute", 12000, 900, {}, {});
        mProgrammes[0]->description = "All that happened.";
        mProgrammes[1]->longDescription = "Three courses, one HOUR.";
        mProgrammes[2]->episode = 2;
        mProgrammes[2]->totalEpisodes = 13;
        mProgrammes[2]->components = mService->components;
        AddSound(*mProgrammes[2], "fra");
        mProgrammes[3]->idType = 0;
        mProgrammes[3]->channelId = "ccid:9.9.9";
    }

    template <typename T>
    static void AddSound(T& owner, const std::string& language) {
        auto sound = std::make_shared<Component>();
        sound->type = ComponentType::Audio;
        sound->language = language;
        owner.components.push_back(sound);
    }

    void Add(const std::string& name, std::time_t start, int duration, std::vector<std::string> genres,
             const std::vector<int>& ages) {
        const auto programme =
            MakeProgramme(mService, {start, start + duration}, static_cast<int>(mProgrammes.size()) + 1);
        programme->name = name;
        programme->genres = std::move(genres);
        for (const int age : ages) AddRating(*programme, {kSchemeDvbSi, "FSK " + std::to_string(age), age, 0, ""});
        mProgrammes.push_back(programme);
    }

    // Returns the first letters of the matching programmes: "NKOÖ" is all.
    std::string Found(const ProgrammeQuery::Shared& query) const {
        std::string found;
        for (const auto& programme : mProgrammes) {
            const bool umlaut = programme->name[0] == '\xC3';
            if (query->Fits(*programme)) found += programme->name.substr(0, umlaut ? 2 : 1);
        }
        return found;
    }

    std::string Found(const std::string& property, int comparison, const std::string& value) const {
        return Found(Compare("Programme." + property, comparison, value));
    }

    std::shared_ptr<Service> mService = std::make_shared<Service>();
    ProgrammeList mProgrammes;
};

TEST_F(Queries, CompareTextsLetterByLetter) {
    EXPECT_EQ(Found("name", kEqual, "News"), "N");
    EXPECT_EQ(Found("name", kEqual, "news"), "") << "only contains leaves the case alone";
    EXPECT_EQ(Found("name", kEqual, "New"), "");
    EXPECT_EQ(Found("name", kNotEqual, "News"), "KOÖ");
    EXPECT_EQ(Found("name", kGreater, "News"), "OÖ");
    EXPECT_EQ(Found("name", kGreaterOrEqual, "News"), "NOÖ");
    EXPECT_EQ(Found("name", kLess, "News"), "K");
    EXPECT_EQ(Found("name", kLessOrEqual, "News"), "NK");
}

TEST_F(Queries, FindPartsOfTextsInEitherLetterCase) {
    EXPECT_EQ(Found("name", kContains, "TABLE"), "K");
    EXPECT_EQ(Found("name", kContains, "ett"), "O");
    EXPECT_EQ(Found("name", kContains, "österREICH"), "Ö");
    EXPECT_EQ(Found("name", kContains, "ÖSTERREICH"), "Ö");
    EXPECT_EQ(Found("name", kContains, "e"), "NKOÖ");
    EXPECT_EQ(Found("name", kContains, ""), "NKOÖ");
    EXPECT_EQ(Found("name", kContains, "Table "), "");
    EXPECT_EQ(Found("description", kContains, "HAPPENED."), "N");
    EXPECT_EQ(Found("longDescription", kContains, "one hour"), "K");
}

TEST_F(Queries, CompareNumbersAsNumbers) {
    EXPECT_EQ(Found("startTime", kEqual, "2000"), "K");
    EXPECT_EQ(Found("startTime", kNotEqual, "2000"), "NOÖ");
    EXPECT_EQ(Found("startTime", kGreater, "2000"), "OÖ");
    EXPECT_EQ(Found("startTime", kGreaterOrEqual, "2000"), "KOÖ");
    EXPECT_EQ(Found("startTime", kLess, "6000"), "NK");
    EXPECT_EQ(Found("startTime", kLessOrEqual, "6000"), "NKO");
    EXPECT_EQ(Found("startTime", kLess, "-1"), "");
    EXPECT_EQ(Found("startTime", kLess, "9223372036854775807"), "NKOÖ");
    EXPECT_EQ(Found("duration", kGreater, "1000"), "KO") << "900 is less than 1000, though not as a text";
    EXPECT_EQ(Found("duration", kContains, "400"), "O");
    EXPECT_EQ(Found("programmeIDType", kEqual, "0"), "Ö");
}

TEST_F(Queries, FindNoNumberThatIsNotKnown) {
    EXPECT_EQ(Found("episode", kEqual, "2"), "O");
    EXPECT_EQ(Found("episode", kLess, "3"), "O");
    EXPECT_EQ(Found("episode", kNotEqual, "2"), "NKÖ");
    EXPECT_EQ(Found("totalEpisodes", kGreaterOrEqual, "13"), "O");
}

TEST_F(Queries, HoldWhenOneOfSeveralValuesDoes) {
    EXPECT_EQ(Found("genre", kEqual, "Cooking"), "K");
    EXPECT_EQ(Found("genre", kEqual, "Leisure"), "K");
    EXPECT_EQ(Found("genre", kNotEqual, "Cooking"), "NOÖ") << "also where there is none";
    EXPECT_EQ(Found("genre", kContains, "FIL"), "O");
    EXPECT_EQ(Found("genre", kContains, ""), "NKO") << "no genre holds nothing";
    EXPECT_EQ(Found("genre", kGreater, "Film"), "NK");
    EXPECT_EQ(Found("audioLanguages", kEqual, "fra"), "O");
    EXPECT_EQ(Found("audioLanguages", kEqual, "deu"), "NKOÖ") << "the service's own as well";
    EXPECT_EQ(Found("subtitleLanguages", kContains, ""), "");
}

TEST_F(Queries, CompareRatingsByAgeOrByName) {
    EXPECT_EQ(Found("parentalRatings", kEqual, "16"), "O");
    EXPECT_EQ(Found("parentalRatings", kLess, "12"), "K");
    EXPECT_EQ(Found("parentalRatings", kLessOrEqual, "12"), "KO");
    EXPECT_EQ(Found("parentalRatings", kNotEqual, "6"), "NOÖ");
    EXPECT_EQ(Found("parentalRatings", kEqual, "FSK 6"), "K");
    EXPECT_EQ(Found("parentalRatings", kContains, "fsk"), "KO");
    EXPECT_EQ(Found("parentalRatings", kContains, "6"), "KO");
}

TEST_F(Queries, KnowTheChannelAndTheProgramme) {
    EXPECT_EQ(Found("channelID", kEqual, "ccid:1.2.3"), "NKO");
    EXPECT_EQ(Found("channelID", kNotEqual, "ccid:1.2.3"), "Ö");
    EXPECT_EQ(Found("programmeID", kEqual, "dvb://1.2.3;2"), "K");
}

TEST_F(Queries, CombineOthers) {
    const auto contains = [](const char* part) { return Compare("Programme.name", kContains, part); };
    EXPECT_EQ(Found(And(contains("e"), contains("o"))), "O");
    EXPECT_EQ(Found(Or(contains("news"), contains("table"))), "NK");
    EXPECT_EQ(Found(Not(contains("t"))), "N");
    EXPECT_EQ(Found(Not(Not(contains("t")))), "KOÖ");
    EXPECT_EQ(Found(And(Or(contains("news"), contains("table")), Not(contains("kitchen")))), "N");
    EXPECT_EQ(Found(Or(And(contains("old"), contains("letters")), And(contains("news"), contains("old")))), "O");
    EXPECT_EQ(Found(Not(Or(contains("news"), And(contains("old"), contains("letters"))))), "KÖ");
}

TEST_F(Queries, MayCombineAQueryWithItselfUntilItIsTooLarge) {
    ProgrammeQuery::Shared query = Compare("Programme.name", kContains, "table");
    for (int i = 0; i < 8; ++i) query = And(query, query);
    EXPECT_EQ(query->Size(), 511u) << "256 comparisons and 255 operators";
    EXPECT_EQ(Found(query), "K");
    const auto refused = [](const ProgrammeQuery::Shared& q) { EXPECT_THROW(And(q, q), Refused) << q->Size(); };
    refused(query);
    for (int i = 511; i < 1000; ++i) query = Not(query);
    EXPECT_EQ(Found(query), "NOÖ");
    EXPECT_THROW(Not(query), Refused);
}

TEST_F(Queries, RefuseInvalidFieldsComparisonsAndNumbers) {
    for (const char* field : {"", "name", "Programme.", "Programme.Name", "programme.name", "Programme.name ",
                              "Programme.colour", "Channel.name"}) {
        EXPECT_THROW(Compare(field, kEqual, "x"), Refused) << field;
    }
    for (const int comparison : {-1, 7, 2147483647}) {
        EXPECT_THROW(Compare("Programme.name", comparison, "x"), Refused) << comparison;
    }
    for (const char* value : {"", "x", "1.5", "1e3", " 1", "1 ", "+1", "0x10", "9223372036854775808"}) {
        EXPECT_THROW(Compare("Programme.startTime", kGreater, value), Refused) << value;
    }
    EXPECT_THROW(Compare("Programme.name", kEqual, std::string(1025, 'x')), Refused);
    EXPECT_NO_THROW(Compare("Programme.name", kEqual, std::string(1024, 'x')));
}

TEST(SmallLettersOf, EuropeanAlphabetsAreMade) {
    EXPECT_EQ(SmallLetters("AZaz09[@"), "azaz09[@");
    EXPECT_EQ(SmallLetters("ÀÖØÞßà×"), "àöøþßà×");
    EXPECT_EQ(SmallLetters("ŁĄŻĘŠŽŸĿ"), "łążęšžÿŀ");
    EXPECT_EQ(SmallLetters("ΑΩΣ"), "αωσ");
    EXPECT_EQ(SmallLetters("МОСКВАЯЁЂҐ"), "москваяёђґ");
    EXPECT_EQ(SmallLetters("日本ÀB"), "日本àb");
}

TEST(SmallLettersOf, InvalidUtf8IsUnchanged) {
    EXPECT_EQ(SmallLetters("\xC3"), "\xC3");
    EXPECT_EQ(SmallLetters("\xC3(A\x80\xFF"), "\xC3(a\x80\xFF");
    EXPECT_EQ(SmallLetters(std::string("\0A", 2)), std::string("\0a", 2));
}

}  // namespace
}  // namespace hbbtv::sim
