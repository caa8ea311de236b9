// Descriptors of programmes, byte by byte as EN 300 468 has them.
#include "television/programmes/si/si_descriptors.h"

#include <gtest/gtest.h>

#include "programmes/bytes.h"
#include "television/programmes/si/si_codes.h"

namespace hbbtv::sim {
namespace {

using test::Bytes;
using Texts = std::vector<std::string>;

class Descriptors : public testing::Test {
  protected:
    Descriptors() { mProgramme->language = "eng"; }

    // Returns the descriptors of a tag.
    Texts Of(int tag) const {
        Texts found;
        for (const std::string& descriptor : DescriptorsOf(*mProgramme)) {
            EXPECT_LE(descriptor.size(), 256u);
            EXPECT_EQ(static_cast<unsigned char>(descriptor[1]) + 2u, descriptor.size());
            if (static_cast<unsigned char>(descriptor[0]) == tag) found.push_back(descriptor);
        }
        return found;
    }

    std::shared_ptr<Service> mService = std::make_shared<Service>();
    std::shared_ptr<Programme> mProgramme = MakeProgramme(mService, {0, 60}, 1);
};

TEST_F(Descriptors, OfAShortEventHoldLanguageNameAndDescription) {
    mProgramme->name = "News";
    mProgramme->description = "All of it.";
    EXPECT_EQ(DescriptorsOf(*mProgramme), Texts{Bytes("\x4d\x13", "eng", "\x04", "News", "\x0a", "All of it.")});
    mProgramme->language = "en";
    mProgramme->name = mProgramme->description = "";
    EXPECT_EQ(DescriptorsOf(*mProgramme), Texts{Bytes("\x4d\x05", "und", "\x00\x00")});
}

TEST_F(Descriptors, MarkTextsThatAreMoreThanAsciiAsUtf8) {
    mProgramme->name = "K\xc3\xb6ln";
    mProgramme->description = "\x05";
    EXPECT_EQ(Of(kShortEvent), Texts{Bytes("\x4d\x0d", "eng", "\x06\x15", "K\xc3\xb6ln", "\x02\x15\x05")})
        << "a small first byte would choose another table";
}

TEST_F(Descriptors, OfAShortEventGiveTheNameTheFirstRoom) {
    mProgramme->name = std::string(300, 'n');
    mProgramme->description = "d";
    EXPECT_EQ(Of(kShortEvent), Texts{Bytes("\x4d\xfe", "eng", "\xf9") + std::string(249, 'n') + Bytes("\x00")});
    mProgramme->name = std::string(247, 'n');
    mProgramme->description = "\xc3\xb6\xc3\xb6";
    EXPECT_EQ(Of(kShortEvent), Texts{Bytes("\x4d\xfc", "eng", "\xf7") + std::string(247, 'n') + Bytes("\x00")})
        << "room for the mark and half a letter";
    mProgramme->name = std::string(246, 'n');
    EXPECT_EQ(Of(kShortEvent),
              Texts{Bytes("\x4d\xfe", "eng", "\xf6") + std::string(246, 'n') + Bytes("\x03\x15\xc3\xb6")});
}

TEST_F(Descriptors, OfExtendedEventsShareALongText) {
    mProgramme->longDescription = std::string(248, 'a') + std::string(2, 'b');
    const std::string first = Bytes("\x4e\xfe\x01", "eng", "\x00\xf8") + std::string(248, 'a');
    EXPECT_EQ(Of(kExtendedEvent), (Texts{first, Bytes("\x4e\x08\x11", "eng", "\x00\x02", "bb")}));
    EXPECT_EQ(first.size(), 256u);
    mProgramme->longDescription.clear();
    EXPECT_EQ(Of(kExtendedEvent), Texts());
}

TEST_F(Descriptors, OfExtendedEventsDoNotCutACharacterAndEndAfter16) {
    for (int i = 0; i < 82; ++i) mProgramme->longDescription += "\xe2\x82\xac";
    mProgramme->longDescription += "a\xc3\xb6";
    const Texts two = Of(kExtendedEvent);
    ASSERT_EQ(two.size(), 2u) << "82 signs of 3 bytes, a letter and the mark are 248 bytes";
    EXPECT_EQ(two[0].substr(0, 12), Bytes("\x4e\xfe\x01", "eng", "\x00\xf8\x15\xe2\x82\xac"));
    EXPECT_EQ(two[1], Bytes("\x4e\x09\x11", "eng", "\x00\x03\x15\xc3\xb6"));
    mProgramme->longDescription = std::string(16 * 248 + 1, 'x');
    const Texts most = Of(kExtendedEvent);
    ASSERT_EQ(most.size(), 16u);
    EXPECT_EQ(most[0].substr(0, 3), "\x4e\xfe\x0f");
    EXPECT_EQ(most[15].substr(0, 3), "\x4e\xfe\xff");
}

Component ComponentOf(ComponentType type, const std::string& encoding, int channels = 0, double aspectRatio = 1.78) {
    Component component;
    component.type = type;
    component.encoding = encoding;
    component.audioChannels = channels;
    component.aspectRatio = aspectRatio;
    return component;
}

TEST_F(Descriptors, OfComponentsHoldStreamTypeTagLanguageAndLabel) {
    Component picture = ComponentOf(ComponentType::Video, "AVC_HD_25");
    picture.tag = 1;
    Component sound = ComponentOf(ComponentType::Audio, "AC3", 5);
    sound.tag = 0xff;
    sound.language = "fra";
    sound.label = Bytes("d\xc3\xa9", "but");
    const Component unknown = ComponentOf(ComponentType::Subtitle, "3GPP-TT");
    for (const Component& component : {picture, sound, unknown}) {
        mService->components.push_back(std::make_shared<Component>(component));
    }
    EXPECT_EQ(Of(kComponent), (Texts{Bytes("\x50\x06\xf5\x0b\x01", "und"),
                                     Bytes("\x50\x0d\xf4\x44\xff", "fra", "\x15", "d\xc3\xa9", "but")}));
    sound.label = std::string(1000, 'l');
    mProgramme->components = {std::make_shared<Component>(sound)};
    EXPECT_EQ(Of(kComponent), Texts{Bytes("\x50\xfe\xf4\x44\xff", "fra") + std::string(248, 'l')})
        << "the programme's own in place of those of the service";
}

struct Code {
    Component component;
    int content, type;
};

TEST(StreamCodes, AreThoseOfTable26) {
    Component described = ComponentOf(ComponentType::Audio, "AC3", 2);
    described.audioDescription = true;
    Component layer2 = ComponentOf(ComponentType::Audio, "MPEG1_L2", 2);
    layer2.audioDescription = true;
    Component impaired = ComponentOf(ComponentType::Subtitle, "DVB-SUBT");
    impaired.hearingImpaired = true;
    const auto video = ComponentType::Video;
    const auto audio = ComponentType::Audio;
    const auto subtitle = ComponentType::Subtitle;
    const std::vector<Code> codes{{ComponentOf(video, "MPEG2_SD_25"), 0xf1, 0x03},
                                  {ComponentOf(video, "MPEG2_SD_25", 0, 1.33), 0xf1, 0x01},
                                  {ComponentOf(video, "MPEG2_SD_30"), 0xf1, 0x07},
                                  {ComponentOf(video, "MPEG2_HD_25"), 0xf1, 0x0b},
                                  {ComponentOf(video, "MPEG2_HD_30", 0, 1.33), 0xf1, 0x0d},
                                  {ComponentOf(video, "AVC_SD_25"), 0xf5, 0x03},
                                  {ComponentOf(video, "AVC_SD_30", 0, 1.33), 0xf5, 0x05},
                                  {ComponentOf(video, "AVC_HD_25"), 0xf5, 0x0b},
                                  {ComponentOf(video, "AVC_HD_30"), 0xf5, 0x0f},
                                  {ComponentOf(video, "AVC_3D_25"), 0xf5, 0x80},
                                  {ComponentOf(video, "HEVC_UHD_25"), 0x09, 0x04},
                                  {ComponentOf(audio, "MPEG1_L2", 1), 0xf2, 0x01},
                                  {ComponentOf(audio, "MPEG1_L2", 2), 0xf2, 0x03},
                                  {ComponentOf(audio, "MPEG1_L2", 5), 0xf2, 0x05},
                                  {layer2, 0xf2, 0x40},
                                  {ComponentOf(audio, "AC3", 1), 0xf4, 0x40},
                                  {ComponentOf(audio, "AC3", 2), 0xf4, 0x42},
                                  {ComponentOf(audio, "AC3", 5), 0xf4, 0x44},
                                  {described, 0xf4, 0x52},
                                  {ComponentOf(audio, "E-AC3", 2), 0xf4, 0xc2},
                                  {ComponentOf(audio, "E-AC3", 5), 0xf4, 0xc4},
                                  {ComponentOf(audio, "E-AC3", 7), 0xf4, 0xc5},
                                  {ComponentOf(audio, "HEAAC", 2), 0xf6, 0x03},
                                  {ComponentOf(audio, "HEAAC2", 2), 0xf6, 0x43},
                                  {ComponentOf(subtitle, "EBU-SUBT"), 0xf3, 0x01},
                                  {ComponentOf(subtitle, "DVB-SUBT"), 0xf3, 0x10},
                                  {impaired, 0xf3, 0x20}};
    for (const Code& code : codes) {
        const auto found = StreamCodeOf(code.component);
        ASSERT_TRUE(found) << code.component.encoding;
        EXPECT_EQ(found->content, code.content) << code.component.encoding;
        EXPECT_EQ(found->type, code.type) << code.component.encoding << " " << code.component.audioChannels;
    }
    EXPECT_FALSE(StreamCodeOf(ComponentOf(audio, "DTS", 2)));
    EXPECT_FALSE(StreamCodeOf(ComponentOf(subtitle, "CEA-SUBT")));
    EXPECT_FALSE(StreamCodeOf(ComponentOf(video, "")));
}

TEST_F(Descriptors, OfContentHoldAPairOfBytesForEachKnownGenre) {
    mProgramme->genres = {"Documentary", "Whatever", "movie / drama (general)", "FOOTBALL / Soccer"};
    EXPECT_EQ(Of(kContent), Texts{Bytes("\x54\x06\x23\x00\x10\x00\x43\x00")});
    mProgramme->genres = Texts(256, "News");
    EXPECT_EQ(Of(kContent).at(0).size(), 256u);
    mProgramme->genres = {"Whatever"};
    EXPECT_EQ(Of(kContent), Texts());
}

TEST(Contents, AreThoseOfTable28) {
    const std::map<std::string, int> contents{{"Weather", 0x21},
                                              {"Magazine", 0x22},
                                              {"Show", 0x30},
                                              {"Quiz", 0x31},
                                              {"Talk show", 0x33},
                                              {"Sports", 0x40},
                                              {"Children's / Youth programmes", 0x50},
                                              {"Cartoons/Puppets", 0x55},
                                              {"Music", 0x60},
                                              {"Arts / Culture", 0x70},
                                              {"Social/Political issues/Economics", 0x80},
                                              {"Krimi", 0x11},
                                              {"Cooking", 0xa5},
                                              {"Tourism/Travel", 0xa1}};
    for (const auto& [genre, content] : contents) EXPECT_EQ(ContentOf(genre), content) << genre;
    EXPECT_FALSE(ContentOf(""));
}

TEST_F(Descriptors, OfParentalRatingHoldCountryAndAge) {
    EXPECT_EQ(Of(kParentalRating), Texts());
    AddRating(*mProgramme, {kSchemeFsk, "0", 0, 0, "DE"});
    EXPECT_EQ(Of(kParentalRating), Texts()) << "for everybody";
    AddRating(*mProgramme, {kSchemeFsk, "18", 4, 0, "DE"});
    AddRating(*mProgramme, {kSchemeDvbSi, "4", 4, 0, "GB"});
    AddRating(*mProgramme, {kSchemeDvbSi, "10", 10, 0, ""});
    AddRating(*mProgramme, {kSchemeMpaa, "PG-13", 2, 0, ""});
    AddRating(*mProgramme, {kSchemeDvbSi, "19", 19, 0, ""});
    EXPECT_EQ(Of(kParentalRating),
              Texts{Bytes("\x55\x10", "DEU", "\x0f", "GBR", "\x01", "DEU", "\x07", "USA", "\x0a")});
    for (int i = 0; i < 100; ++i) AddRating(*mProgramme, {kSchemeDvbSi, "10", 10, 0, ""});
    EXPECT_EQ(Of(kParentalRating).at(0).size(), 254u) << "63 of 4 bytes";
}

TEST_F(Descriptors, ComeInOneOrder) {
    mService->components = {std::make_shared<Component>(ComponentOf(ComponentType::Video, "AVC_HD_25"))};
    mProgramme->longDescription = "x";
    mProgramme->genres = {"News"};
    AddRating(*mProgramme, {kSchemeFsk, "12", 2, 0, ""});
    std::string tags;
    for (const std::string& descriptor : DescriptorsOf(*mProgramme)) tags += descriptor[0];
    EXPECT_EQ(tags, "\x4d\x4e\x50\x54\x55");
}

}  // namespace
}  // namespace hbbtv::sim
