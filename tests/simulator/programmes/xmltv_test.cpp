// XMLTV files: what is read from them, times and time zones, odd programmes, and files that cannot be used.
#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>

#include "core/error.h"
#include "programmes/walked_guide.h"
#include "simulator_fixture.h"
#include "television/programmes/programme_search.h"
#include "television/programmes/xmltv/xmltv.h"
#include "television/programmes/xmltv/xmltv_time.h"

namespace hbbtv::sim {
namespace {

using Texts = std::vector<std::string>;

// One has the name "one.tv" in programme data; Two and Tout\xc3\xa9 have none.
LineUp ThreeServices() {
    const std::string components = R"("components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "AVC_HD_25"},
        {"type": "audio", "tag": 2, "pid": 2, "encoding": "AC3", "language": "deu"},
        {"type": "subtitle", "tag": 5, "pid": 5, "encoding": "DVB-SUBT", "language": "deu"}]})";
    const std::string common = R"(, "network": "s", "onid": 1, "tsid": 1, "type": "TV", )";
    return ParseLineUp(R"({"networks": [{"id": "s", "name": "S", "delivery": "DVB_S", "nid": 1}], "services": [)"
                       R"({"name": "One")" +
                           common + R"("sid": 1, "number": 1, "programmeId": "one.tv", )" + components +
                           R"(,{"name": "Two")" + common + R"("sid": 2, "number": 2, )" + components +
                           R"(,{"name": "Touté")" + common + R"("sid": 3, "number": 3, )" + components + "]}",
                       "line-up");
}

std::string Row(const std::string& title, const std::string& start, const std::string& stop = "",
                const std::string& channel = "one.tv") {
    return "<programme channel=\"" + channel + "\" start=\"" + start + "\"" +
           (stop.empty() ? "" : " stop=\"" + stop + "\"") + "><title>" + title + "</title></programme>\n";
}

class Xmltv : public testing::Test {
  protected:
    void Read(const std::string& text) {
        mWarnings.clear();
        mRefusal.clear();
        try {
            mGuide = ParseXmltv(text, "f", mLineUp, [this](const std::string& w) { mWarnings.push_back(w); });
        } catch (const Fatal& e) {
            mGuide.reset();
            mRefusal = e.what();
        }
    }

    // Returns the programmes of a service: "Title 100+50" with start and duration.
    Texts Of(int sid) {
        Texts texts;
        if (!mGuide) return {mRefusal};
        for (const auto& p : Walked(*mGuide, mLineUp.Find(1, 1, sid))) {
            texts.push_back(p->name + " " + std::to_string(p->start) + "+" + std::to_string(p->duration));
        }
        return texts;
    }

    // Returns the only programme of a file with these members.
    std::shared_ptr<Programme> Only(const std::string& content) {
        Read("<tv><programme channel=\"one.tv\" start=\"19700101000100\" stop=\"19700101000200\"><title>T</title>" +
             content + "</programme></tv>");
        const auto all = mGuide ? Walked(*mGuide, mLineUp.Find(1, 1, 1)) : ProgrammeList();
        EXPECT_EQ(all.size(), 1u) << mRefusal;
        return all.empty() ? MakeProgramme(mLineUp.First(), {0, 1}, 0) : all.front();
    }

    LineUp mLineUp = ThreeServices();
    std::unique_ptr<ListedGuide> mGuide;
    Texts mWarnings;
    std::string mRefusal;
};

TEST_F(Xmltv, FindsServicesByTheirNameInProgrammeDataOrElseByTheirDisplayName) {
    const std::string start = "19700101000100";
    const std::string stop = "19700101000200";
    Read(R"(<tv><channel id="x"><display-name>2</display-name><display-name> Two </display-name></channel>
<channel id="y"><display-name>One</display-name></channel>
<channel id="z"><display-name>Tout&#233;</display-name></channel>)" +
         Row("A", start, stop, "x") + Row("B", start, stop, "y") + Row("C", start, stop) + Row("D", start, stop, "z") +
         "</tv>");
    EXPECT_EQ(Of(1), Texts{"C 60+60"}) << "its name there is one.tv, whatever is shown to people";
    EXPECT_EQ(Of(2), Texts{"A 60+60"});
    EXPECT_EQ(Of(3), Texts{"D 60+60"});
    EXPECT_EQ(mWarnings, Texts{"f: channels that are not in the line-up, 1: \"y\""});
    EXPECT_EQ(mGuide->Known(0).from, 60);
    EXPECT_EQ(mGuide->Known(0).to, 120);
}

TEST_F(Xmltv, TakesTextsLanguageGenresAndTheRest) {
    const auto p = Only(R"(<sub-title>S</sub-title><desc lang="de">Ein
        Satz &amp; <![CDATA[<noch> einer]]></desc><category>News</category><category> Talk show </category>
        <icon src="http://a/i.png"/><previously-shown start="2000"/>)");
    EXPECT_EQ(p->name, "T - S");
    EXPECT_EQ(p->description, "Ein Satz & <noch> einer");
    EXPECT_EQ(p->longDescription, "Ein Satz & <noch> einer");
    EXPECT_EQ(p->genres, (Texts{"News", "Talk show"}));
    EXPECT_EQ(p->iconUrl, "http://a/i.png");
    EXPECT_TRUE(p->repeated);
    EXPECT_EQ(p->language, "und");
    EXPECT_EQ(p->id, "dvb://1.1.1;1");
    EXPECT_EQ(p->channelId, "ccid:1.1.1");
    EXPECT_FALSE(Only("")->repeated);
}

TEST_F(Xmltv, TakesTheLanguageOfTheTitle) {
    for (const auto& [given, language] : std::map<std::string, std::string>{
             {"de", "deu"}, {"en_GB", "eng"}, {"fr-FR", "fra"}, {"ita", "ita"}, {"xx", "und"}, {"GERMAN", "und"}}) {
        Read("<tv><programme channel=\"one.tv\" start=\"19700101000100\"><title lang=\"" + given +
             "\">T</title></programme></tv>");
        EXPECT_EQ(Walked(*mGuide, mLineUp.First(), {0, 100})[0]->language, language) << given;
    }
}

TEST_F(Xmltv, ShortensALongDescriptionAtTheEndOfAWord) {
    std::string text;
    while (text.size() < 300) text += "\xc3\xa4\xc3\xa4\xc3\xa4 ";
    text.pop_back();
    const auto p = Only("<desc>" + text + "</desc>");
    EXPECT_EQ(p->longDescription, text);
    EXPECT_EQ(p->description, text.substr(0, 244) + "...") << "35 words of 6 bytes and the blanks between them";
    EXPECT_EQ(Only("<desc>" + std::string(250, 'x') + "</desc>")->description, std::string(250, 'x'));
}

struct Episode {
    const char* text;
    int season, episode, total;
    const char* series;
};

TEST_F(Xmltv, CountsEpisodesFrom1) {
    for (const Episode& e : {Episode{"1.4/10.0/1", 2, 5, 10, "T/2"}, Episode{" 0 . 0 . ", 1, 1, 0, "T/1"},
                             Episode{".11.", 0, 12, 0, "T"}}) {
        const auto p = Only(std::string("<episode-num system=\"onscreen\">S9</episode-num>"
                                        "<episode-num system=\"xmltv_ns\">") +
                            e.text + "</episode-num>");
        EXPECT_EQ(p->season, e.season) << e.text;
        EXPECT_EQ(p->episode, e.episode) << e.text;
        EXPECT_EQ(p->totalEpisodes, e.total) << e.text;
        EXPECT_EQ(p->seriesId, e.series) << e.text;
        EXPECT_EQ(mWarnings, Texts()) << e.text;
    }
    for (const std::string text : {"5", "a.b.c", "1.2.3.4", "1.2/3/4.", "-1.0.0", "999999.0.0"}) {
        const auto p = Only("<episode-num system=\"xmltv_ns\">" + text + "</episode-num>");
        EXPECT_EQ(p->season + p->episode + p->totalEpisodes, 0) << text;
        EXPECT_EQ(mWarnings, Texts{"f:1: the episode \"" + text + "\" is not like 0.4/10.0; it is ignored"});
    }
}

struct Rating {
    const char* system;
    const char* text;
    std::string expected;  // scheme, name and value; empty when there is none
};

TEST_F(Xmltv, MapsRatingsToTheSchemesOfTheInterface) {
    const std::string fsk = "urn:oipf:GermanyFSKCS ";
    const std::string mpaa = "urn:mpeg:mpeg7:cs:MPAAParentalRatingCS:2001 ";
    for (const Rating& r :
         {Rating{"FSK", "12", fsk + "12 2"}, Rating{"FSK", "FSK 0", fsk + "0 0"}, Rating{"FSK", "13", "dvb-si 13 13"},
          Rating{"MPAA", "PG-13", mpaa + "PG-13 2"}, Rating{"MPAA", "G", mpaa + "G 0"}, Rating{"MPAA", "X", ""},
          Rating{"", "16+", "dvb-si 16 16"}, Rating{"CSA", "10", "dvb-si 10 10"}, Rating{"CSA", "3", ""},
          Rating{"VCHIP", "TV-G", ""}, Rating{"CSA", "19", ""}, Rating{"CSA", "", ""}}) {
        const auto p = Only(std::string("<rating system=\"") + r.system + "\"><value>" + r.text + "</value></rating>");
        std::string text;
        if (p->ratings) {
            ASSERT_EQ(p->ratings->size(), 1u);
            const sim::Rating& rating = *p->ratings->front();
            text = rating.scheme + " " + rating.name + " " + std::to_string(rating.value);
        }
        EXPECT_EQ(text, r.expected) << r.system << " " << r.text;
    }
}

Texts ComponentTexts(const Programme& programme) {
    Texts texts;
    for (const auto& c : programme.Components()) {
        texts.push_back(std::to_string(c->tag) + " " + c->encoding + " " + c->language + " " +
                        std::to_string(c->audioChannels) + (c->hearingImpaired ? " impaired" : ""));
    }
    return texts;
}

TEST_F(Xmltv, ChangesTheComponentsOfTheServiceByWhatItSaysOfSoundAndSubtitles) {
    EXPECT_EQ(ComponentTexts(*Only("")), (Texts{"1 AVC_HD_25  0", "2 AC3 deu 2", "5 DVB-SUBT deu 0"}));
    EXPECT_EQ(ComponentTexts(*Only("<audio><stereo>dolby digital</stereo></audio>")),
              (Texts{"1 AVC_HD_25  0", "2 AC3 deu 5", "5 DVB-SUBT deu 0"}));
    EXPECT_EQ(ComponentTexts(*Only(R"(<audio><stereo>mono</stereo></audio>
        <subtitles type="onscreen"/><subtitles type="teletext"><language>de</language></subtitles>
        <subtitles type="deaf-signed"><language>eng</language></subtitles><subtitles/>)")),
              (Texts{"1 AVC_HD_25  0", "2 AC3 deu 1", "5 EBU-SUBT deu 0 impaired", "6 DVB-SUBT eng 0 impaired",
                     "7 DVB-SUBT und 0"}));
    EXPECT_EQ(ComponentTexts(*Only("")), (Texts{"1 AVC_HD_25  0", "2 AC3 deu 2", "5 DVB-SUBT deu 0"}))
        << "the service's own stay as they are";
}

TEST(XmltvTimes, AreReadWithTheirZones) {
    const std::map<std::string, std::time_t> times{
        {"20260131201500 +0100", 1769886900}, {"20260131201500 -0330", 1769903100},
        {"20260131201500", 1769890500},       {"202601312015", 1769890500},
        {"2026013120 UTC", 1769889600},       {"20260131", 1769817600},
        {"20260731201500 CEST", 1785521700},  {"20260731201500 BST", 1785525300},
        {"20260731201500 EDT", 1785543300},   {"  20260131201500+0100 ", 1769886900},
        {"20240229000000 Z", 1709164800},     {"19700101010000 +0100", 0},
        {"20380119031407 +0000", 2147483647}};
    for (const auto& [text, time] : times) EXPECT_EQ(ReadXmltvTime(text), time) << text;
}

TEST(XmltvTimes, AreRefusedIfInvalid) {
    const std::map<std::string, Texts> refused{
        {"is not a time like 20260131201500 +0100", {"", "now", "2026", "202601312", "2026013120150000", "2026-01-31"}},
        {"is not a date and time that exists",
         {"20261301", "20260001", "20260132", "20260100", "20250229", "2026013124", "202601312060", "20260131201560"}},
        {"is not within the years 1970 to 2038", {"19691231", "19700101000000 +0100", "20380119031408", "99990101"}},
        {"has a time zone that is not known",
         {"20260131 XYZ", "20260131 +01:00", "20260131 +1500", "20260131 +0160", "20260131 +-100", "20260131 cet"}}};
    for (const auto& [reason, texts] : refused) {
        for (const std::string& text : texts) {
            try {
                ReadXmltvTime(text);
                ADD_FAILURE() << text;
            } catch (const std::invalid_argument& e) {
                EXPECT_EQ(e.what(), reason) << text;
            }
        }
    }
}

TEST_F(Xmltv, KeepsTheLengthOfProgrammesInTheNightsInWhichTheClocksAreChanged) {
    Read("<tv>" + Row("Spring", "20260329010000 +0100", "20260329040000 +0200") +
         Row("Autumn", "20261025020000 +0200", "20261025020000 +0100") + "</tv>");
    EXPECT_EQ(Of(1), (Texts{"Spring 1774742400+7200", "Autumn 1792886400+3600"}));
    EXPECT_EQ(mWarnings, Texts());
}

TEST_F(Xmltv, EndsAProgrammeWithoutAnEndWhereTheNextOneStarts) {
    Read("<tv>" + Row("C", "19700101100000", "") + Row("A", "19700101010000") + Row("B", "19700101013000") + "</tv>");
    EXPECT_EQ(Of(1), (Texts{"A 3600+1800", "B 5400+21600", "C 36000+3600"}))
        << "six hours at most, and an hour for the last one";
    EXPECT_EQ(mWarnings, Texts());
}

TEST_F(Xmltv, ShortensAProgrammeThatGoesOnWhenTheNextOneStarts) {
    Read("<tv>\n" + Row("A", "19700101000100", "19700101010000") + Row("B", "19700101000300", "19700101000400") +
         Row("B again", "19700101000300") + Row("C", "19700101000500", "19700101000600") + "</tv>");
    EXPECT_EQ(Of(1), (Texts{"A 60+120", "B 180+60", "C 300+60"}));
    EXPECT_EQ(mWarnings, (Texts{"f:2: the programme overlaps the next one; it is shortened",
                                "f:4: the channel has another programme with this start; it is skipped"}));
}

TEST_F(Xmltv, GivesProgrammesThatStartInTheSameMinuteDifferentIds) {
    Read("<tv>" + Row("A", "19700101000100", "19700101000110") + Row("B", "19700101000110", "19700101000120") +
         Row("C", "19700101000200", "19700101000300") + "</tv>");
    Texts ids;
    for (const auto& p : Walked(*mGuide, mLineUp.First(), {0, 1000})) ids.push_back(p->id);
    EXPECT_EQ(ids, (Texts{"dvb://1.1.1;1", "dvb://1.1.1;2", "dvb://1.1.1;3"}));
}

TEST_F(Xmltv, SkipsWhatCannotBeUsedAndReportsWhere) {
    const std::string good = Row("Good", "19700101000100", "19700101000200");
    for (const auto& [bad, warning] : std::map<std::string, std::string>{
             {"<programme start=\"19700101\"><title>T</title></programme>",
              "the programme has no channel; it is skipped"},
             {"<programme channel=\"one.tv\"><title>T</title></programme>",
              "the programme has no start; it is skipped"},
             {"<programme channel=\"one.tv\" start=\"19700101\"/>", "the programme has no title; it is skipped"},
             {"<programme channel=\"one.tv\" start=\"19700101\"><title> \n</title></programme>",
              "the programme has no title; it is skipped"},
             {Row("T", "noon"), "the start \"noon\" is not a time like 20260131201500 +0100; the programme is skipped"},
             {Row("T", "19700101", "19700133"),
              "the stop \"19700133\" is not a date and time that exists; the programme is skipped"},
             {Row("T", "19700102", "19700101"), "the programme ends before it begins; it is skipped"},
             {Row("T", "19700102", "19700102"), "the programme ends before it begins; it is skipped"},
             {"<channel><display-name>Two</display-name></channel>", "the channel has no id; it is skipped"}}) {
        Read("<tv>\n" + good + bad + "</tv>");
        EXPECT_EQ(Of(1), Texts{"Good 60+60"}) << bad;
        EXPECT_EQ(mWarnings, Texts{"f:3: " + warning}) << bad;
    }
}

TEST_F(Xmltv, NamesAFewOfTheChannelsThatAreNotReceived) {
    std::string text = "<tv>" + Row("A", "19700101");
    for (int i = 1; i <= 7; ++i) text += "<programme channel=\"c" + std::to_string(i) + "\" start=\"x\"/>";
    Read(text + "</tv>");
    EXPECT_EQ(mWarnings,
              Texts{"f: channels that are not in the line-up, 7: \"c1\", \"c2\", \"c3\", \"c4\", \"c5\", ..."});
}

TEST_F(Xmltv, ReportsAThousandWarningsAndCountsTheOthers) {
    std::string text = "<tv>" + Row("A", "19700101");
    for (int i = 0; i < 1003; ++i) text += Row("B", "x");
    Read(text + "</tv>");
    ASSERT_EQ(mWarnings.size(), 1001u);
    EXPECT_EQ(mWarnings.back(), "f: there are 3 more warnings");
}

TEST_F(Xmltv, ShowsInvalidUtf8AsLatin1AndWithoutControlCharacters) {
    Read("<tv>" + Row("K\xf6ln\x07", "19700101") + "</tv>");
    EXPECT_EQ(Of(1), Texts{"K\xc3\xb6ln 0+3600"});
}

TEST_F(Xmltv, LeavesEntitiesOfADocumentTypeAsTheyStand) {
    Read("<!DOCTYPE tv [<!ENTITY a \"aaaa\"><!ENTITY f SYSTEM \"file:///etc/passwd\">]><tv>" +
         Row("&a;&f;", "19700101") + "</tv>");
    EXPECT_EQ(Of(1), Texts{"&a;&f; 0+3600"});
}

TEST_F(Xmltv, RefusesWhatIsNotXmltv) {
    const std::string nothing = "f: no programme belongs to a service of the line-up";
    for (const auto& [text, refusal] : std::map<std::string, std::string>{
             {"", "f:1: is not valid XML: No document element found"},
             {"\n\nno", "f:3: is not valid XML: No document element found"},
             {"{\"services\": []}", "f:1: is not valid XML: No document element found"},
             {"<tv>\n<programme>\n</tv>", "f:3: is not valid XML: Start-end tags mismatch"},
             {"<tv>\n\n<channel id=\"a>", "f:3: is not valid XML: Error parsing element attribute"},
             {"<tv>\n<!-- ", "f:2: is not valid XML: Error parsing comment"},
             {"<tv>", "f:1: is not valid XML: Start-end tags mismatch"},
             {"\n<html></html>", "f:2: begins with <html>, where XMLTV has <tv>"},
             {"<tv/>", nothing},
             {"<tv><programme channel=\"x\" start=\"19700101\"><title>T</title></programme></tv>", nothing},
             {"<tv>" + Row("T", "never") + "</tv>", nothing},
             {std::string("\xff\xfe<\0t\0v\0", 8), "f:1: is UTF-16, not UTF-8"},
             {std::string("<tv>\0</tv>", 10), "f:1: is not valid XML: Start-end tags mismatch"}}) {
        Read(text);
        EXPECT_EQ(mRefusal, refusal) << text;
    }
}

TEST_F(Xmltv, SurvivesEveryCutAndEveryChangedByteOfAFile) {
    const std::string text = "<?xml version=\"1.0\"?><tv><channel id=\"x\"><display-name>Two</display-name></channel>" +
                             Row("T &amp; <![CDATA[U]]>", "19700101000000 +0000", "19700101010000 CET") + "</tv>";
    for (size_t i = 0; i < text.size(); ++i) {
        Read(text.substr(0, i));
        EXPECT_NE(mRefusal, "") << i;
        for (const char c : {'\0', '<', '>', '"', '&', '/', '\xff', '9'}) {
            std::string damaged = text;
            damaged[i] = c;
            Read(damaged);
            EXPECT_TRUE(mGuide != nullptr || !mRefusal.empty());
        }
    }
}

TEST_F(Xmltv, TakesElementsThatNestDeep) {
    std::string text = "<tv>" + Row("A", "19700101");
    for (int i = 0; i < 200000; ++i) text += "<a>";
    for (int i = 0; i < 200000; ++i) text += "</a>";
    Read(text + "</tv>");
    EXPECT_EQ(Of(1), Texts{"A 0+3600"});
}

TEST_F(Xmltv, Holds100000ProgrammesAndWalksThemQuickly) {
    std::string text = "<tv><channel id=\"two\"><display-name>Two</display-name></channel>";
    char row[256];
    for (int i = 0; i < 100000; ++i) {
        const int minute = i / 2;  // from 2020-01-01 on, for two channels
        std::snprintf(row, sizeof(row),
                      "<programme channel=\"%s\" start=\"2020%02d%02d%02d%02d00\"><title>Number %d</title>"
                      "<desc>What happens in it, told in a sentence.</desc></programme>\n",
                      i % 2 == 0 ? "one.tv" : "two", 1 + minute / 1440 / 28, 1 + minute / 1440 % 28, minute / 60 % 24,
                      minute % 60, i);
        text += row;
    }
    const auto start = std::chrono::steady_clock::now();
    Read(text + "</tv>");
    const auto read = std::chrono::steady_clock::now();
    ASSERT_TRUE(mGuide) << mRefusal;
    EXPECT_EQ(mGuide->Size(), 100000u);
    EXPECT_EQ(mWarnings, Texts());
    ResultRoom room;
    const auto listed = [this] { return ProgrammeSearch::Services(mLineUp.services.begin(), mLineUp.services.end()); };
    ProgrammeSearch search(*mGuide, room, listed, 1);
    search.SetQuery(Compare("Programme.name", 6, "Number 9999"));
    search.Ask(0, 100, 0);
    search.Step(std::chrono::steady_clock::time_point::max());
    const auto searched = std::chrono::steady_clock::now();
    EXPECT_EQ(search.Total(), 11u) << "9999 and 99990 to 99999";
    const auto next = mGuide->NowAndNext(mLineUp.First(), 1577836800 + 90);
    ASSERT_EQ(next.size(), 2u);
    EXPECT_EQ(next[0]->name, "Number 2");
    EXPECT_EQ(next[1]->name, "Number 4");
    EXPECT_LT(read - start, std::chrono::seconds(20));
    EXPECT_LT(searched - read, std::chrono::seconds(2));
}

TEST_F(Xmltv, TakesAsManyProgrammesOfAServiceAsThereAreEventIds) {
    std::string text = "<tv>";
    char row[128];
    for (int i = 0; i < 65537; ++i) {
        std::snprintf(row, sizeof(row),
                      "<programme channel=\"one.tv\" start=\"202001%02d%02d%02d%02d\"><title>T</title></programme>\n",
                      1 + i / 86400, i / 3600 % 24, i / 60 % 60, i % 60);
        text += row;
    }
    Read(text + "</tv>");
    EXPECT_EQ(mGuide->Size(), 65535u);
    EXPECT_EQ(mWarnings, Texts{"f:65536: the channel has more than 65535 programmes; the rest is skipped"});
}

TEST(XmltvFiles, ThatCannotBeReadAreRefused) {
    const LineUp lineUp = ThreeServices();
    const auto refusal = [&](const std::string& path) -> std::string {
        try {
            ReadXmltv(path, lineUp, [](const std::string&) {});
            return "";
        } catch (const Fatal& e) {
            return e.what();
        }
    };
    EXPECT_EQ(refusal("/nowhere/guide.xml"), "/nowhere/guide.xml: cannot be opened: No such file or directory");
    EXPECT_EQ(refusal("/"), "/: cannot be read: Is a directory");
    test::ScratchDirectory directory;
    test::WriteFile(directory / "g.xml", "<tv>" + Row("A", "19700101") + "</tv>");
    EXPECT_EQ(refusal(directory / "g.xml"), "");
}

}  // namespace
}  // namespace hbbtv::sim
