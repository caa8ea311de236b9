// M3U playlists: what is read from them, the defaults, and the warnings about odd lines.
#include <gtest/gtest.h>

#include "line_up/line_up_reading.h"
#include "television/programmes/schedule.h"
#include "television/tv.h"

namespace hbbtv::sim {
namespace {

const char* const kPlaylist =
    "#EXTM3U url-tvg=\"http://guide.example/epg.xml\"\n"
    "#PLAYLIST:House\n"
    "#EXTINF:-1 tvg-id=\"DasErste.de\" tvg-name=\"ARD\" tvg-chno=\"1\" tvg-logo=\"http://logo.example/a,b.png\" "
    "group-title=\"Allgemein; Nachrichten ;\",Das Erste HD\n"
    "udp://@239.0.0.1:1234\n"
    "\n"
    "#EXTINF:-1 tvg-chno=\"12\",arte, fran\xc3\xa7"
    "ais\n"
    "#EXTGRP:Kultur\n"
    "#EXTVLCOPT:network-caching=1000\n"
    "http://tv.example/arte.m3u8?token=a%20b\n"
    "#EXTINF:-1 radio=\"true\" tvg-name=\"Dlf\",\n"
    "https://radio.example/dlf.mp3\n";

TEST(M3u, HoldsNamesNumbersLogosGroupsAndWhatIsRadio) {
    const Reading reading = ReadingOfText(kPlaylist);
    EXPECT_EQ(reading.refusal, "");
    EXPECT_EQ(reading.warnings, Texts());
    EXPECT_EQ(reading.Names(), (Texts{"Das Erste HD",
                                      "arte, fran\xc3\xa7"
                                      "ais",
                                      "Dlf"}));
    EXPECT_EQ(reading.Numbers(), (std::vector<int>{1, 12, 13}));
    const Service& first = *reading.lineUp.services[0];
    EXPECT_EQ(first.uri, "udp://@239.0.0.1:1234");
    EXPECT_EQ(first.programmeId, "DasErste.de");
    EXPECT_EQ(first.logoUrl, "http://logo.example/a,b.png");
    EXPECT_EQ(first.genres, (Texts{"Allgemein", "Nachrichten"}));
    EXPECT_EQ(first.type, ChannelType::Tv);
    const Service& arte = *reading.lineUp.services[1];
    EXPECT_EQ(arte.uri, "http://tv.example/arte.m3u8?token=a%20b");
    EXPECT_EQ(arte.genres, Texts{"Kultur"});
    EXPECT_EQ(arte.programmeId, "");
    EXPECT_EQ(arte.logoUrl, "");
    EXPECT_EQ(reading.lineUp.services[2]->type, ChannelType::Radio);
}

TEST(M3u, UsesTheDocumentedValueForWhatItCannotExpress) {
    const Reading reading = ReadingOfText(kPlaylist);
    ASSERT_EQ(reading.lineUp.services.size(), 3u);
    const Service& tv = *reading.lineUp.services[0];
    EXPECT_EQ(ComponentsOf(tv), (Texts{"video 1 0 AVC_HD_25", "audio 2 0 HEAAC und"}));
    EXPECT_DOUBLE_EQ(tv.components[0]->aspectRatio, 1.78);
    EXPECT_EQ(tv.components[1]->audioChannels, 2);
    EXPECT_TRUE(tv.highDefinition);
    EXPECT_TRUE(tv.listed);
    EXPECT_TRUE(tv.received);
    EXPECT_EQ(tv.access, Access::Free);
    EXPECT_EQ(tv.onid, 0);
    EXPECT_EQ(tv.tsid, 0);
    EXPECT_EQ(tv.sid, 0);
    EXPECT_EQ(tv.network->delivery, IdType::IptvUri);
    EXPECT_EQ(tv.network->name, "House");
    EXPECT_EQ(tv.network->networkId, 0);
    const Service& radio = *reading.lineUp.services[2];
    EXPECT_EQ(ComponentsOf(radio), Texts{"audio 1 0 HEAAC und"});
    EXPECT_FALSE(radio.highDefinition);
    EXPECT_EQ(ReadingOfText("#EXTM3U\nudp://a\n").lineUp.services[0]->network->name, "IPTV");
}

TEST(M3u, NamesAServiceAfterTheNextBestThing) {
    const Reading reading = ReadingOfText(
        "#EXTM3U\n#EXTINF:-1 tvg-name=\"Name\" tvg-id=\"id\",\nudp://a\n#EXTINF:-1 tvg-id=\"id\"\nudp://b\n"
        "#EXTINF:0\nudp://c\nudp://d\n");
    EXPECT_EQ(reading.Names(), (Texts{"Name", "id", "udp://c", "udp://d"}));
    EXPECT_EQ(reading.warnings, Texts());
}

TEST(M3u, MayComeFromAnySystem) {
    const Reading reading = ReadingOfText("\xef\xbb\xbf\r\n#EXTM3U\r\n#EXTINF:-1 radio=1 tvg-chno=7,\tOne \r\nudp://a");
    EXPECT_EQ(reading.Names(), Texts{"One"});
    EXPECT_EQ(reading.Numbers(), std::vector<int>{7});
    EXPECT_EQ(reading.lineUp.services[0]->type, ChannelType::Radio);
    EXPECT_EQ(reading.lineUp.services[0]->uri, "udp://a");
    EXPECT_EQ(ReadingOfText("#EXTINF:-1,One\nudp://a\n").Names(), Texts{"One"});
}

TEST(M3u, ShowsNamesInUtf8WithoutControlCharacters) {
    const Reading reading = ReadingOfText(
        "#EXTM3U\n#EXTINF:-1,M\xfcnchen \xc2\x86TV\xc2\x87\nudp://a\n#EXTINF:-1,\xf0\x9f\x93\xba "
        "\x01\xed\xa0\x80\nudp://b\n");
    EXPECT_EQ(reading.Names(), (Texts{"M\xc3\xbcnchen TV", "\xf0\x9f\x93\xba \xc3\xad\xc2\xa0"}));
    EXPECT_EQ(ReadingOfText("#EXTM3U\n#EXTINF:-1,A\tB\nudp://a\n").Names(), Texts{"A B"});
}

TEST(M3u, IsReadWithAWarningAboutEveryOddLine) {
    ExpectReading("#EXTM3U\n#EXTINF:-1,A\nudp://a\n#EXTINF:-1,B\nudp://a\n", {"A"},
                  {"5: the URI is that of line 3; the service is skipped"});
    ExpectReading("#EXTM3U\n#EXTINF:-1,A\n#EXTINF:-1,B\nudp://b\n#EXTINF:-1,C\n", {"B"},
                  {"2: \"A\" has no URI; it is skipped", "5: \"C\" has no URI; it is skipped"});
    ExpectReading("#EXTM3U\n#EXTINF:-1,A\nfilm.ts\n#EXTINF:-1,B\nC:\\film.ts\nudp://c\n", {"udp://c"},
                  {"3: \"film.ts\" is not a URI; the service is skipped",
                   "5: \"C:\\film.ts\" is not a URI; the service is skipped"});
    ExpectReading("#EXTM3U\nudp://a\xff\nudp://b\n", {"udp://b"},
                  {"2: \"udp://a.\" is not a URI; the service is skipped"});
    ExpectReading("#EXTM3U\n#EXTINF:-1 tvg-chno=\"5\",A\nudp://a\n#EXTINF:-1 tvg-chno=\"3\",B\nudp://b\n", {"A", "B"},
                  {"4: the number \"3\" is not a whole number above 5 and up to 9999; the service gets 6"});
    for (const std::string number : {"1.2", "10000"}) {
        ExpectReading(
            "#EXTM3U\n#EXTINF:-1 tvg-chno=\"" + number + "\",A\nudp://a\n", {"A"},
            {"2: the number \"" + number + "\" is not a whole number above 0 and up to 9999; the service gets 1"});
    }
    ExpectReading("#EXTM3U\n#EXTINF:-1 tvg-id=\"a,A\nudp://a\n", {"A"},
                  {"2: the attributes cannot be read; the name is what follows the last comma"});
    ExpectReading("#EXTM3U\n#EXTINF:-1 tvg-name=\"The \"A\" Team\" x,A\nudp://a\n", {"A"}, {});
    ExpectReading("#EXTM3U\n#EXTINF:-1," + std::string(270000, 'x') + "\nudp://a\n", {"udp://a"},
                  {"2: the line is longer than 262144 bytes; it is skipped"});
}

TEST(M3u, WithoutAServiceIsRefused) {
    EXPECT_EQ(ReadingOfText("#EXTM3U\n").refusal, "/nowhere/f:1: the playlist has no service");
    EXPECT_EQ(ReadingOfText("#EXTM3U\n#EXTINF:-1,A\nfilm.ts\n").refusal, "/nowhere/f:3: the playlist has no service");
}

TEST(M3u, IsRefusedIfItIsOneStream) {
    const std::string refusal = "/nowhere/f:3: the playlist is a stream, not a list of services";
    EXPECT_EQ(ReadingOfText("#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nhttp://a/1.ts\n").refusal,
              refusal);
    EXPECT_EQ(ReadingOfText("#EXTM3U\n\n#EXT-X-STREAM-INF:BANDWIDTH=1\nhttp://a/low.m3u8\n").refusal, refusal);
}

TEST(IpServices, AreNeverFoundByNumbers) {
    const LineUp lineUp = ReadingOfText(kPlaylist).lineUp;
    ASSERT_FALSE(lineUp.services.empty());
    EXPECT_EQ(lineUp.Find(0, 0, 0), nullptr);
    const StateStore nothingKept("");
    const Tv tv(lineUp, 1, nothingKept);
    for (const int any : {0, -1}) EXPECT_EQ(tv.channelList.All()->WithTriplet(any, any, 0, any), nullptr) << any;
}

TEST(IpServices, AreChannelsByTheirBroadcastId) {
    const StateStore nothingKept("");
    Tv tv(ReadingOfText(kPlaylist).lineUp, 1, nothingKept);
    Channel numbers;
    numbers.idType = static_cast<int>(IdType::IptvUri);
    numbers.ipBroadcastId = "https://radio.example/dlf.mp3";
    const auto channel = tv.MakeChannel(numbers);
    ASSERT_NE(channel->service, nullptr);
    EXPECT_EQ(channel->service->name, "Dlf");
    EXPECT_EQ(channel->idType, 41);
    EXPECT_EQ(channel->ipBroadcastId, "https://radio.example/dlf.mp3");
    EXPECT_EQ(tv.Refusal(*channel), std::nullopt);
    EXPECT_EQ(tv.MakeChannel(numbers), channel);
    numbers.idType = static_cast<int>(IdType::IptvSds);
    EXPECT_EQ(tv.MakeChannel(numbers)->service, nullptr) << "a URI is not a service provider's name";
    numbers.ipBroadcastId = "";
    numbers.idType = static_cast<int>(IdType::DvbS);
    EXPECT_EQ(tv.MakeChannel(numbers)->service, nullptr);
}

TEST(IpServices, HaveProgrammesOfTheirOwn) {
    const LineUp lineUp = ReadingOfText(kPlaylist).lineUp;
    Schedule schedule(1);
    for (const auto& service : lineUp.services) {
        EXPECT_EQ(schedule.NowAndNext(service, 1700000000)[0]->service, service) << service->name;
    }
}

}  // namespace
}  // namespace hbbtv::sim
