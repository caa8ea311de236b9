// Line-ups in any format: detecting it, files in none of them, damaged files, and the program
// with line-ups that other programs wrote.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "build_kind.h"
#include "line_up/line_up_reading.h"
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

using sim::Reading;
using sim::ReadingOfFile;
using sim::ReadingOfText;
using sim::Texts;
const char* const kPlaylist =
    "#EXTM3U\n"
    "#EXTINF:-1 tvg-id=\"one\" tvg-chno=\"1\" group-title=\"News;HD\",One\n"
    "udp://@239.0.0.1:1234\n"
    "#EXTINF:-1 tvg-chno=\"7\",Two\n"
    "#EXTGRP:Films\n"
    "http://tv.example/two.m3u8\n"
    "#EXTINF:-1 radio=\"true\",Three\n"
    "http://tv.example/three.mp3\n";

const char* const kLamedb =
    "eDVB services /4/\n"
    "transponders\n"
    "00c00000:03fb:0001\n"
    "\ts 11493750:22000000:1:4:192:2:0:1:2:0:2\n"
    "/\n"
    "end\n"
    "services\n"
    "283d:00c00000:03fb:0001:25:0\n"
    "Das Erste HD\n"
    "p:ARD,c:0013ed,c:0113ee,c:0213f0,c:0413f2\n"
    "2bb7:00c00000:03f3:0001:2:0\n"
    "Dlf\n"
    "p:DRadio\n"
    "0d49:00820000:1450:013e:25:0\n"
    "Rai 1 HD\n"
    "p:RAI,C:0500\n"
    "end\n";

const char* const kLamedb5 =
    "eDVB services /5/\n"
    "t:00c00000:03fb:0001,s:11493750:22000000:1:4:192:2:0:1:2:0:2\n"
    "s:283d:00c00000:03fb:0001:25:0:0,\"Das Erste HD\",p:ARD,c:0013ed,c:0113ee\n"
    "s:2bb7:00c00000:03f3:0001:2:0:0,\"Dlf\",p:DRadio\n";

const char* const kBouquets = "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.tv\" ORDER BY bouquet\n";

const char* const kBouquet =
    "#NAME Favourites\n"
    "#SERVICE 1:0:2:2BB7:3F3:1:C00000:0:0:0:\n"
    "#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0:\n"
    "#SERVICE 1:0:19:283E:3FB:1:C00000:0:0:0:\n";

TEST(LineUpFormat, IsDetectedByTheContentWhateverTheFileIsCalled) {
    const ScratchDirectory directory;
    WriteFile(directory / "channels.txt", kPlaylist);
    EXPECT_EQ(ReadingOfFile(directory / "channels.txt").Names(), (Texts{"One", "Two", "Three"}));
    WriteFile(directory / "channels.m3u", kLamedb);
    EXPECT_EQ(ReadingOfFile(directory / "channels.m3u").Names(), (Texts{"Das Erste HD", "Dlf", "Rai 1 HD"}));
    WriteFile(directory / "lamedb", std::string("\n \n") + kSmallLineUp);
    EXPECT_EQ(ReadingOfFile(directory.Path()).lineUp.services.size(), 6u);
    EXPECT_EQ(ReadingOfText(std::string("\xef\xbb\xbf\r\n ") + kPlaylist).Names(), (Texts{"One", "Two", "Three"}));
    EXPECT_EQ(ReadingOfText(std::string("\n") + kLamedb).Names(), (Texts{"Das Erste HD", "Dlf", "Rai 1 HD"}));
    EXPECT_EQ(ReadingOfText(kLamedb5).Names(), (Texts{"Das Erste HD", "Dlf"}));
}

TEST(LineUpFormat, MayHaveAnyLengthOfLinesInJson) {
    std::string text = kSmallLineUp;
    text.insert(1, std::string(100000, ' '));
    const Reading reading = ReadingOfText(text);
    EXPECT_EQ(reading.lineUp.services.size(), 6u);
    EXPECT_EQ(reading.warnings, Texts());
}

TEST(LineUpFormat, MayHaveNamesOf64KibibytesInEveryForm) {
    std::string name;
    while (name.size() < 65536) name += "K\xc3\xb6ln, \"\xf0\x9f\x93\xba\" \\' ";
    name.back() = '.';
    const Texts names{name};
    EXPECT_EQ(ReadingOfText("#EXTM3U\n#EXTINF:-1 tvg-chno=\"1\"," + name + "\nudp://a\n").Names(), names);
    EXPECT_EQ(
        ReadingOfText("eDVB services /4/\ntransponders\nend\nservices\n1:00c00000:1:1:1:0\n" + name + "\np:A\nend\n")
            .Names(),
        names);
    EXPECT_EQ(ReadingOfText("eDVB services /5/\ns:1:00c00000:1:1:1:0,\"" + name + "\",p:A\n").Names(), names);
}

TEST(LineUpFormat, IsRefusedWithAMessageIfItIsUnknown) {
    const std::string forms = " is not the start of a line-up: JSON ({), M3U (#EXTM3U) or lamedb (eDVB services)";
    const std::map<std::string, std::string> refused{
        {"", "/nowhere/f:1:1: the file is empty"},
        {" \r\n\n", "/nowhere/f:1:1: the file is empty"},
        {"\n\nTitle,URI\n", "/nowhere/f:3: \"Title,URI\"" + forms},
        {"\xff\xfe#\x01", "/nowhere/f:1: \"..#.\"" + forms},
        {"udp://a\n", "/nowhere/f:1: \"udp://a\"" + forms},
        {"#NAME Favourites (TV)\n#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0:\n",
         "/nowhere/f:1: this is a bouquet; the line-up is the lamedb in the same directory"},
        {"[", "/nowhere/f:1:2: not valid JSON: Syntax error: value, object or array expected"}};
    for (const auto& entry : refused) {
        const Reading reading = ReadingOfText(entry.first);
        EXPECT_EQ(reading.refusal, entry.second);
        EXPECT_EQ(reading.warnings, Texts());
    }
}

TEST(LineUpFormat, OfAFileThatCannotBeReadIsRefusedWithTheReason) {
    const ScratchDirectory directory;
    const std::string file = directory / "lamedb";
    EXPECT_EQ(ReadingOfFile(directory.Path()).refusal, file + ": cannot be opened: No such file or directory");
    std::filesystem::create_directory(file);
    EXPECT_EQ(ReadingOfFile(directory.Path()).refusal, file + ": cannot be read: Is a directory");
    std::filesystem::remove(file);
    WriteFile(file, kLamedb + std::string(16u << 20, '\n'));
    EXPECT_EQ(ReadingOfFile(file).refusal, file + ": is larger than 16 MiB");
}

constexpr int kRounds = kSanitized ? 400 : 4000;

// Uses the C library's decoder.
bool IsUtf8(const std::string& text) {
    return std::mbstowcs(nullptr, text.c_str(), 0) != static_cast<size_t>(-1);
}

// Expects what holds for every line-up that is not refused.
void ExpectSound(const Reading& reading, const std::string& text) {
    if (!reading.refusal.empty()) return;
    EXPECT_NE(reading.lineUp.First(), nullptr) << text;
    int last = 0;
    for (const auto& service : reading.lineUp.services) {
        EXPECT_NE(service->name, "") << text;
        EXPECT_TRUE(IsUtf8(service->name) && IsUtf8(service->provider) && IsUtf8(service->uri)) << text;
        EXPECT_TRUE(IsUtf8(service->logoUrl) && IsUtf8(service->programmeId)) << text;
        ASSERT_NE(service->network, nullptr) << text;
        EXPECT_TRUE(!service->listed || service->number > last) << text;
        last = std::max(last, service->number);
        for (const auto& component : service->components) EXPECT_LE(component->pid, 8190) << text;
    }
    for (const auto& list : reading.lineUp.favouriteLists) EXPECT_TRUE(IsUtf8(list.name)) << text;
}

// Returns the text with a few bytes replaced, removed or inserted, and sometimes without its end.
std::string Damaged(std::string text, std::mt19937& random) {
    static const std::string kBytes("\0\n\r\t \"#,:/=019afpcst\x86\xc3\xff", 24);
    const auto below = [&](size_t end) { return end == 0 ? 0 : random() % end; };
    for (size_t changes = 1 + below(5); changes > 0; --changes) {
        const size_t at = below(text.size());
        const char byte = below(2) == 0 ? kBytes[below(kBytes.size())] : static_cast<char>(random());
        const size_t kind = below(4);
        if (kind == 0) text.insert(at, 1, byte);
        if (kind == 1) text.erase(at, 1 + below(3));
        if (kind >= 2 && !text.empty()) text[at] = byte;
    }
    if (below(4) == 0) text.resize(below(text.size()));
    return text;
}

class DamagedLineUp : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override { ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr); }
    void TearDown() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_P(DamagedLineUp, IsReadOrRefusedButNothingElse) {
    std::mt19937 random(20260620);
    int readable = 0;
    for (int i = 0; i < kRounds; ++i) {
        const std::string text = Damaged(GetParam(), random);
        const Reading reading = ReadingOfText(text);
        ExpectSound(reading, text);
        readable += reading.refusal.empty();
    }
    EXPECT_GT(readable, kRounds / 4) << "an odd byte is not a reason to refuse a file";
}

TEST_P(DamagedLineUp, IsReadOrRefusedWhereverItIsCutOff) {
    const std::string whole = GetParam();
    for (size_t length = 0; length < whole.size(); ++length) {
        const std::string text = whole.substr(0, length);
        ExpectSound(ReadingOfText(text), text);
    }
}

std::string FormatName(const testing::TestParamInfo<const char*>& info) {
    static const char* const kNames[] = {"M3u", "Lamedb4", "Lamedb5"};
    return kNames[info.index];
}

INSTANTIATE_TEST_SUITE_P(Every, DamagedLineUp, testing::Values(kPlaylist, kLamedb, kLamedb5), FormatName);

TEST(DamagedBouquet, NeverKeepsItsLamedbFromBeingRead) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    const ScratchDirectory directory;
    WriteFile(directory / "lamedb", kLamedb);
    std::mt19937 random(20260621);
    for (int i = 0; i < kRounds / 4; ++i) {
        const std::string list = i % 2 == 0 ? Damaged(kBouquets, random) : kBouquets;
        const std::string bouquet = Damaged(kBouquet, random);
        WriteFile(directory / "bouquets.tv", list);
        WriteFile(directory / "userbouquet.a.tv", bouquet);
        const Reading reading = ReadingOfFile(directory.Path());
        EXPECT_EQ(reading.refusal, "") << list << bouquet;
        EXPECT_EQ(reading.lineUp.services.size(), 3u) << list << bouquet;
        ExpectSound(reading, list + bouquet);
    }
    std::setlocale(LC_CTYPE, "C");
}

class ForeignLineUp : public VideoBroadcastFixture {
  protected:
    void StartWith(const std::string& lineUp) { Start({"--line-up", lineUp}); }

    std::string ByUri(const std::string& vb, const std::string& uri, int idType = 41) {
        return CreateChannel(vb, idType, 0, 0, 0, 0, uri);
    }
};

TEST_F(ForeignLineUp, PlaylistChannelsAreTunedToByTheirUri) {
    WriteFile(mDirectory / "list.m3u", kPlaylist);
    StartWith(mDirectory / "list.m3u");
    EXPECT_NE(mSimulator->Output().find("line-up: 3 channels, on: One\n"), std::string::npos) << mSimulator->Output();
    const std::string vb = NewObject();
    const std::string two = ByUri(vb, "http://tv.example/two.m3u8");
    EXPECT_EQ(SetChannel(vb, two), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"),
              (Events{"PlayState 1 0", "ChannelChanged ?" + two + " 0", "PlayState 2 0"}));
    EXPECT_EQ(CurrentChannel(vb), two);
    EXPECT_EQ(GetOf(vb, "GetAVComponentNumByType", {{"comType", 0}}), 1);
    EXPECT_EQ(GetOf(vb, "GetProgrammeNum"), 2);
    EXPECT_EQ(Tell("zap 8"), "ok Three");
    EXPECT_EQ(EventsUntil("PlayState 2 0").size(), 3u);
    EXPECT_EQ(CurrentChannel(vb), ByUri(vb, "http://tv.example/three.mp3"));
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0").size(), 3u);
    EXPECT_EQ(CurrentChannel(vb), ByUri(vb, "udp://@239.0.0.1:1234"));
    EXPECT_EQ(Stop(), 0);
}

TEST_F(ForeignLineUp, OfAPlaylistResolvesNoOtherUriAndReceivesNoBroadcast) {
    WriteFile(mDirectory / "list.m3u", kPlaylist);
    StartWith(mDirectory / "list.m3u");
    const std::string vb = NewObject();
    const std::map<std::string, std::string> errors{{ByUri(vb, "udp://@239.0.0.2:1234"), "8"},
                                                    {ByUri(vb, "udp://@239.0.0.1:1234", 40), "8"},
                                                    {CreateChannel(vb, 11, 0, 0, 0), "0"},
                                                    {CreateChannel(vb, 13, 0, 0, 0), "0"}};
    for (const auto& error : errors) {
        EXPECT_EQ(SetChannel(vb, error.first), 0);
        EXPECT_EQ(NextEvent(), "ChannelError ?" + error.first + " " + error.second);
    }
}

TEST_F(ForeignLineUp, ReceiversServicesStandInTheOrderOfTheBouquets) {
    WriteFile(mDirectory / "lamedb", kLamedb);
    WriteFile(mDirectory / "bouquets.tv", kBouquets);
    WriteFile(mDirectory / "userbouquet.a.tv", kBouquet);
    StartWith(mDirectory.Path());
    const std::string output = mSimulator->Output();
    EXPECT_NE(output.find("line-up: 3 channels, on: Dlf\n"), std::string::npos) << output;
    const std::string warning = "hbbtv-sim: " + (mDirectory / "userbouquet.a.tv:4: ") +
                                "\"1:0:19:283E:3FB:1:C00000:0:0:0:\" is not a service of the lamedb; it is "
                                "skipped\n";
    EXPECT_NE(output.find(warning), std::string::npos) << output;
    EXPECT_EQ(Tell("zap next"), "ok Das Erste HD");
    EXPECT_EQ(Tell("zap 3"), "ok Rai 1 HD");
    const std::string vb = NewObject();
    const std::string erste = CreateChannel(vb, 11, 1, 1019, 10301);
    EXPECT_EQ(SetChannel(vb, erste), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"),
              (Events{"PlayState 1 0", "ChannelChanged ?" + erste + " 0", "PlayState 2 0"}));
    EXPECT_EQ(GetOf(vb, "GetAVComponentNumByType", {{"comType", 1}}), 2);
    const std::string rai = CreateChannel(vb, 11, 318, 5200, 3401);
    EXPECT_EQ(SetChannel(vb, rai), 0);
    EXPECT_EQ(EventsUntil("PlayState 0 4").size(), 3u) << "it is scrambled";
    EXPECT_EQ(Stop(), 0);
}

TEST_F(ForeignLineUp, ThatCannotBeUsedIsRefusedWithItsPlaceAndCode3) {
    WriteFile(mDirectory / "list.m3u", "#EXTM3U\n#EXTINF:-1,A\n");
    WriteFile(mDirectory / "lamedb", "eDVB services /4/\ntransponders\nend\n");
    const std::string place = "hbbtv-sim: cannot read " + mDirectory.Path();
    const std::map<std::string, std::string> outputs{
        {mDirectory / "list.m3u", "hbbtv-sim: " + (mDirectory / "list.m3u:2: \"A\" has no URI; it is skipped\n") +
                                      place + "/list.m3u:2: the playlist has no service\n"},
        {mDirectory.Path(), place + "/lamedb:3: the list of services is missing\n"}};
    for (const auto& entry : outputs) {
        const Outcome outcome = Run({"--line-up", entry.first});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.output, entry.second);
    }
}

}  // namespace
}  // namespace hbbtv::test
