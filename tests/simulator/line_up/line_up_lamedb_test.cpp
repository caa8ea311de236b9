// A receiver's lamedb and bouquets: what is read from them, the defaults, and the warnings about
// odd lines. The numbers are those of real services, in hexadecimal as receivers write them.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "build_kind.h"
#include "line_up/line_up_reading.h"
#include "scratch_directory.h"

namespace hbbtv::sim {
namespace {

const char* const kTransponders =
    "eDVB services /4/\n"
    "transponders\n"
    "00c00000:03fb:0001\n"
    "\ts 11493750:22000000:1:4:192:2:0:1:2:0:2\n"
    "/\n"
    "00c00000:0441:0001\n"
    "\ts 12187500:27500000:0:3:192:2:0\n"
    "/\n"
    "eeee0000:1050:233a\n"
    "\tt 490000000:0:5:5:2:1:0:0:0:0:0:0\n"
    "/\n"
    "ffff0000:0019:f001\n"
    "\tc 394000:6900:2:5:0:0:0\n"
    "/\n"
    "end\n"
    "services\n";

const char* const kServices =
    "283d:00c00000:03fb:0001:25:0\n"
    "Das Erste HD\n"
    "p:ARD,c:0013ed,c:0113ee,c:0213f0,c:0313ed,c:0413f2,c:050001,f:40\n"
    "2ee3:00c00000:0441:0001:1:0\n"
    "RTL\n"
    "p:RTL World,c:00a3,c:01a4\n"
    "28d3:00c00000:040f:0001:2:0\n"
    "1LIVE\n"
    "p:ARD\n"
    "0d49:00820000:1450:013e:25:0\n"
    "Rai 1 HD\n"
    "p:RAI,C:0500,C:0100\n"
    "1045:eeee0000:1050:233a:1:0\n"
    "BBC One\n"
    "p:BBC\n"
    "0007:ffff0000:0019:f001:31:0:1\n"
    "\n"
    "p:Stadtnetz, Region Nord,f:4\n"
    "end\n"
    "Have a lot of bugs!\n";

Reading ReadingOfServices(const std::string& services) {
    return ReadingOfText(kTransponders + services);
}

// Returns the favourite lists: "id, name: One, Two".
Texts ListsOf(const LineUp& lineUp) {
    Texts lists;
    for (const auto& list : lineUp.favouriteLists) {
        lists.push_back(list.id + ", " + list.name + ":");
        for (const auto& service : list.services) {
            lists.back() += (service == list.services.front() ? " " : ", ") + service->name;
        }
    }
    return lists;
}

class Receiver : public testing::Test {
  protected:
    void Write(const std::string& file, const std::string& text) {
        std::ofstream(mDirectory / file, std::ios::binary) << text;
    }

    // Returns the services with these texts in bouquets.tv and userbouquet.a.tv.
    Reading ReadingWithBouquet(const std::string& text) {
        Write("lamedb", std::string(kTransponders) + kServices);
        Write("bouquets.tv", "#NAME Bouquets (TV)\n" + Listed("userbouquet.a.tv"));
        Write("userbouquet.a.tv", text);
        return ReadingOfFile(mDirectory / "lamedb");
    }

    static std::string Listed(const std::string& file) {
        return "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"" + file + "\" ORDER BY bouquet\n";
    }

    // Returns the warning about a line of the bouquet.
    std::string AtLine(int line, const std::string& what) const {
        return mDirectory / ("userbouquet.a.tv:" + std::to_string(line) + ": " + what);
    }

    test::ScratchDirectory mDirectory;
};

TEST(Lamedb, HoldsNumbersNamesKindsAndProviders) {
    const Reading reading = ReadingOfServices(kServices);
    EXPECT_EQ(reading.refusal, "");
    EXPECT_EQ(reading.warnings, Texts());
    EXPECT_EQ(reading.Names(), (Texts{"Das Erste HD", "RTL", "1LIVE", "Rai 1 HD", "BBC One", "Service 7"}));
    EXPECT_EQ(reading.Numbers(), (std::vector<int>{1, 2, 3, 4, 5, 6}));
    const auto erste = reading.lineUp.Find(1, 1019, 10301);
    ASSERT_NE(erste, nullptr);
    EXPECT_EQ(erste->name, "Das Erste HD");
    EXPECT_EQ(erste->provider, "ARD");
    EXPECT_EQ(erste->type, ChannelType::Tv);
    EXPECT_TRUE(erste->highDefinition);
    EXPECT_EQ(erste->access, Access::Free);
    EXPECT_TRUE(erste->listed);
    EXPECT_TRUE(erste->received);
    EXPECT_EQ(reading.lineUp.Find(1, 1039, 10451)->type, ChannelType::Radio);
    EXPECT_EQ(reading.lineUp.Find(318, 5200, 3401)->access, Access::Scrambled);
    EXPECT_FALSE(reading.lineUp.Find(9018, 4176, 4165)->highDefinition);
    EXPECT_EQ(reading.lineUp.Find(0xf001, 25, 7)->provider, "Stadtnetz, Region Nord");
    EXPECT_TRUE(reading.lineUp.favouriteLists.empty());
}

TEST(Lamedb, HoldsWhereAServiceIsReceived) {
    const LineUp lineUp = ReadingOfServices(kServices).lineUp;
    Texts places;
    for (const auto& service : lineUp.services) {
        const Network& network = *service->network;
        places.push_back(network.name + " (" + network.position + ") " + std::to_string(network.networkId) + " " +
                         std::to_string(service->frequency));
    }
    EXPECT_EQ(places, (Texts{"Satellite 19.2E (19.2E) 1 11493750", "Satellite 19.2E (19.2E) 1 12187500",
                             "Satellite 19.2E (19.2E) 1 0", "Satellite 13E (13E) 318 0", "Terrestrial () 9018 490000",
                             "Cable () 61441 394000"}));
    std::vector<IdType> deliveries;
    for (const auto& service : lineUp.services) deliveries.push_back(service->network->delivery);
    EXPECT_EQ(deliveries, (std::vector<IdType>{IdType::DvbS2, IdType::DvbS, IdType::DvbS, IdType::DvbS, IdType::DvbT,
                                               IdType::DvbC}));
    EXPECT_NE(lineUp.services[0]->network, lineUp.services[1]->network);
    EXPECT_EQ(lineUp.services[1]->network, lineUp.services[2]->network);
}

TEST(Lamedb, TakesTheSecondGenerationAndPlacesFromTheNumbers) {
    const LineUp lineUp =
        ReadingOfText(
            "eDVB services /4/\ntransponders\neeee0000:0001:0002\n\tt "
            "490000000:0:5:5:2:1:0:0:0:0:1:0\n/\nend\nservices\n"
            "1:eeee0000:1:2:25:0\nA\np:\n1:0e080000:1:1:25:0\nB\np:\n1:0e100000:1:3:25:0\nC\np:\n"
            "1:eeee0000:9:9:25:0\nD\np:\n1:ffff0000:9:8:25:0\nE\np:\n1:07080000:9:7:25:0\nF\np:\nend\n")
            .lineUp;
    ASSERT_EQ(lineUp.services.size(), 6u);
    EXPECT_EQ(lineUp.services[0]->network->delivery, IdType::DvbT2);
    EXPECT_EQ(lineUp.services[1]->network->position, "0.8W");
    EXPECT_EQ(lineUp.services[2]->network->position, "") << "a circle has 360 degrees";
    EXPECT_EQ(lineUp.services[2]->network->name, "Satellite");
    EXPECT_EQ(lineUp.services[3]->network->delivery, IdType::DvbT) << "by the name space alone";
    EXPECT_EQ(lineUp.services[4]->network->delivery, IdType::DvbC);
    EXPECT_EQ(lineUp.services[5]->network->position, "180E");
}

TEST(Lamedb, HoldsComponentsByCachedPidsAndByTheServiceType) {
    const LineUp lineUp = ReadingOfServices(kServices).lineUp;
    ASSERT_EQ(lineUp.services.size(), 6u);
    EXPECT_EQ(ComponentsOf(*lineUp.services[0]), (Texts{"video 1 5101 AVC_HD_25", "audio 2 5102 MPEG1_L2 und",
                                                        "audio 3 5106 AC3 und", "subtitle 4 5104 EBU-SUBT und"}));
    EXPECT_EQ(ComponentsOf(*lineUp.services[1]), (Texts{"video 1 163 MPEG2_SD_25", "audio 2 164 MPEG1_L2 und"}));
    EXPECT_EQ(ComponentsOf(*lineUp.services[2]), Texts{"audio 1 0 MPEG1_L2 und"});
    EXPECT_EQ(ComponentsOf(*lineUp.services[3]),
              (Texts{"video 1 0 AVC_HD_25 encrypted", "audio 2 0 MPEG1_L2 und encrypted"}));
    EXPECT_EQ(ComponentsOf(*lineUp.services[5]), (Texts{"video 1 0 HEVC_UHD_25", "audio 2 0 E-AC3 und"}));
}

TEST(Lamedb, KnowsTheServiceTypes) {
    struct Row {
        int serviceType;
        const char* properties;
        ChannelType type;
        bool highDefinition;
        Texts components;
    };
    const auto tv = ChannelType::Tv;
    const auto radio = ChannelType::Radio;
    const Row rows[] = {
        {1, "", tv, false, {"video 1 0 MPEG2_SD_25", "audio 2 0 MPEG1_L2 und"}},
        {2, "", radio, false, {"audio 1 0 MPEG1_L2 und"}},
        {10, "", radio, false, {"audio 1 0 HEAAC und"}},
        {17, "", tv, true, {"video 1 0 MPEG2_HD_25", "audio 2 0 MPEG1_L2 und"}},
        {22, "", tv, false, {"video 1 0 AVC_SD_25", "audio 2 0 MPEG1_L2 und"}},
        {25,
         ",c:100100,c:110101,c:120102",
         tv,
         true,
         {"video 1 0 AVC_HD_25", "audio 2 256 HEAAC und", "audio 3 258 HEAAC und", "audio 4 257 E-AC3 und"}},
        {28, "", tv, true, {"video 1 0 AVC_3D_25", "audio 2 0 MPEG1_L2 und"}},
        {31, "", tv, true, {"video 1 0 HEVC_UHD_25", "audio 2 0 E-AC3 und"}},
        {32, "", tv, true, {"video 1 0 HEVC_UHD_25", "audio 2 0 E-AC3 und"}},
        {134, ",c:000100", tv, false, {"video 1 256 MPEG2_SD_25", "audio 2 0 MPEG1_L2 und"}},
        {134, ",c:010100", radio, false, {"audio 1 256 MPEG1_L2 und"}},
        {12, "", ChannelType::Other, false, {}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.serviceType);
        const Reading reading =
            ReadingOfServices("1:00c00000:1:1:2:0\nRadio\np:\n2:00c00000:1:1:" + std::to_string(row.serviceType) +
                              ":0\nA\np:" + row.properties + "\nend\n");
        const auto service = reading.lineUp.Find(1, 1, 2);
        ASSERT_NE(service, nullptr);
        EXPECT_EQ(service->type, row.type);
        EXPECT_EQ(service->highDefinition, row.highDefinition);
        EXPECT_EQ(ComponentsOf(*service), row.components);
        const bool listed = row.type != ChannelType::Other;
        EXPECT_EQ(service->listed, listed);
        EXPECT_EQ(service->number, listed ? 2 : 0);
        EXPECT_EQ(reading.warnings, Texts());
    }
}

TEST(Lamedb, ShowsNamesInUtf8WithoutControlCharacters) {
    const Reading reading = ReadingOfServices(
        "1:00c00000:1:1:1:0\nM\xfcnchen\xc2\x86 TV\xc2\x87 "
        "\nf:0\n2:00c00000:1:1:1:0\n\xee\x82\x86K\xc3\xb6ln\x86\xee\x82\x87\n"
        "p:A\x05\xe9\nend\n");
    EXPECT_EQ(reading.Names(), (Texts{"M\xc3\xbcnchen TV", "K\xc3\xb6ln"}));
    EXPECT_EQ(reading.lineUp.services[1]->provider, "A\xc3\xa9");
}

TEST(Lamedb, OfVersion5HasOneLineAnItem) {
    const Reading reading = ReadingOfText(
        "eDVB services /5/\r\n"
        "# Use this file to copy service data\r\n"
        "t:00c00000:03fb:0001,s:11493750:22000000:1:4:192:2:0:1:2:0:2\r\n"
        "s:283d:00c00000:03fb:0001:25:0:0,\"Das Erste HD\",p:ARD,c:0013ed,c:0113ee\r\n"
        "s:1045:eeee0000:1050:233a:1:0:0,\"The \"One\", p:2\",p:BBC, One\r\n"
        "s:2ee3:00c00000:0441:0001:1:0,\"\"\r\n"
        "s:2ee4:00c00000:0441:0001:1:0,RTL\r\n"
        "s:zz:00c00000,\"A\",p:\r\n"
        "x:1\r\n");
    EXPECT_EQ(reading.refusal, "");
    EXPECT_EQ(reading.Names(), (Texts{"Das Erste HD", "The \"One\", p:2", "Service 12003"}));
    EXPECT_EQ(reading.lineUp.services[0]->network->delivery, IdType::DvbS2);
    EXPECT_EQ(reading.lineUp.services[0]->frequency, 11493750);
    EXPECT_EQ(ComponentsOf(*reading.lineUp.services[0]),
              (Texts{"video 1 5101 AVC_HD_25", "audio 2 5102 MPEG1_L2 und"}));
    EXPECT_EQ(reading.lineUp.services[1]->provider, "BBC, One");
    EXPECT_EQ(reading.warnings, (Texts{"/nowhere/f:7: the service has no quoted name; it is skipped",
                                       "/nowhere/f:8: \"zz:00c00000\" does not name a service; it is skipped",
                                       "/nowhere/f:9: \"x:1\" is neither a transponder nor a service; it is skipped"}));
}

const std::string kA = "1:00c00000:1:1:1:0\nA\np:\n";
const std::string kB = "2:00c00000:1:1:1:0\nB\np:\n";

// The list of services begins at line 17.
TEST(Lamedb, IsReadWithAWarningAboutEveryOddLineOfTheServices) {
    const std::string start = kTransponders;
    for (const std::string odd : {"1:00c0000g:1:1:1:0", "10000:00c00000:1:1:1:0"}) {
        ExpectReading(
            start + odd + "\nX\np:\n" + kA + "end\n", {"A"},
            {"17: \"" + odd +
             "\" does not begin a service (sid:namespace:tsid:onid:type:number); it is skipped up to the next "
             "one"});
    }
    const std::string noLine = ": the service has no name line or no provider line";
    const std::string third = start + "3:00c00000:1:1:1:0\n";
    ExpectReading(third + "p:X\n" + kA + "end\n", {"Service 3", "A"}, {"17" + noLine});
    ExpectReading(third + "X\n" + kA + "end\n", {"X", "A"}, {"17" + noLine});
    ExpectReading(third + kA + "4:00c00000:1:1:1:0\nend\n", {"Service 3", "A", "Service 4"},
                  {"17" + noLine, "21" + noLine});
    ExpectReading(third + "end\np:\n4:00c00000:1:1:1:0\np:\np:\nend\n", {"end", "p:"}, {});
    ExpectReading(start + kA + "1:00820000:1:1:1:0\nB\np:\nend\n", {"A"},
                  {"20: \"B\" has the onid, tsid and sid of line 17; the service is skipped"});
    ExpectReading(start + kA + "3:00c00000:1:1:1:0\nX\n", {"A", "X"},
                  {"21: the list of services has no end; the file is probably truncated"});
    ExpectReading(third + "X\nnone,p:,c:0a0100,c:001fff,c:,c:0090000,f:,q:1\nend\n", {"X"},
                  {"17: \"none\" is not a property of a service; it is skipped",
                   "17: \"c:0a0100\" is not a PID; it is skipped", "17: \"c:001fff\" is above 8190; it is skipped",
                   "17: \"c:\" is not a PID; it is skipped", "17: \"c:0090000\" is above 8190; it is skipped"});
    ExpectReading(start + kA + std::string(270000, '1') + "\n" + kB + "end\n", {"A", "B"},
                  {"20: the line is longer than 262144 bytes; it is skipped"});
}

TEST(Lamedb, IsReadWithAWarningAboutEveryOddTransponder) {
    const std::string tuning =
        " is not a satellite (s), cable (c) or terrestrial (t) tuning; the transponder is skipped";
    ExpectReading(
        "eDVB services /4/\ntransponders\nzz:1:1\n\ts 1:1\n/\n00c00000:0001:0001\n\ta 1:1\n/\n00c00000:0002:0001\n/\n"
        "00c00000:0003:0001\n\ts 11000000:1\n\tx\n/\n00c00000:0004:0001\n\ts fast\n/\nend\nservices\n" +
            kA + "end\n",
        {"A"},
        {"3: \"zz:1:1\" does not name a transponder (namespace:tsid:onid); the transponder is skipped",
         "6: \"a 1:1\"" + tuning, "9: \"\"" + tuning, "13: \".x\" is where \"/\" is expected; it is skipped",
         "15: \"s fast\"" + tuning});
}

TEST(Lamedb, ThatCannotBeUsedIsRefused) {
    const std::map<std::string, std::string> refused{
        {"eDVB services /3/\n", "/nowhere/f:1: unknown version of the lamedb; known are \"eDVB services /4/\" and /5/"},
        {"eDVB services /4/\n", "/nowhere/f:1: the list of transponders is missing"},
        {"eDVB services /4/\nservices\n", "/nowhere/f:2: the list of transponders is missing"},
        {"eDVB services /4/\ntransponders\nend\n", "/nowhere/f:3: the list of services is missing"},
        {"eDVB services /4/\ntransponders\nend\nservices\nend\n",
         "/nowhere/f:5: the lamedb has no service for the channel list"},
        {"eDVB services /4/\ntransponders\nend\nservices\n1:00c00000:1:1:12:0\nData\np:\nend\n",
         "/nowhere/f:8: the lamedb has no service for the channel list"},
        {"eDVB services /5/\n", "/nowhere/f:1: the lamedb has no service for the channel list"}};
    for (const auto& entry : refused) EXPECT_EQ(ReadingOfText(entry.first).refusal, entry.second);
}

TEST_F(Receiver, BouquetsGiveTheOrderAndTheListsOfFavourites) {
    Write("lamedb", std::string(kTransponders) + kServices);
    Write("bouquets.tv",
          "#NAME Bouquets (TV)\r\n#SERVICE: 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.tv\" "
          "ORDER BY bouquet\r\n" +
              Listed("userbouquet.second.tv"));
    Write("bouquets.radio", Listed("userbouquet.favourites.radio"));
    Write("userbouquet.favourites.tv",
          "#NAME Favourites (TV)\r\n"
          "#SERVICE 1:64:1:0:0:0:0:0:0:0::The best\r\n#DESCRIPTION The best\r\n"
          "#SERVICE 1:0:1:1045:1050:233A:EEEE0000:0:0:0:\r\n"
          "#SERVICE 1:832:D:0:0:0:0:0:0:0:\r\n"
          "#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0::My name\r\n#DESCRIPTION My name\r\n"
          "#SERVICE 1:0:1F:7:19:F001:FFFF0000:0:0:0:\r\n#DESCRIPTION UHD Demo\r\n");
    Write("userbouquet.second.tv", "#SERVICE 1:0:1:2EE3:441:1:C00000:0:0:0:\n#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0:");
    Write("userbouquet.favourites.radio", "#NAME H\xf6ren\n#SERVICE 1:0:2:28D3:40F:1:C00000:0:0:0:\n");
    const Reading reading = ReadingOfFile(mDirectory.Path());
    EXPECT_EQ(reading.refusal, "");
    EXPECT_EQ(reading.warnings, Texts());
    EXPECT_EQ(reading.Names(), (Texts{"BBC One", "Das Erste HD", "UHD Demo", "RTL", "1LIVE", "Rai 1 HD"}));
    EXPECT_EQ(reading.Numbers(), (std::vector<int>{1, 3, 4, 5, 6, 7})) << "2 is the numbered marker's";
    EXPECT_EQ(ListsOf(reading.lineUp),
              (Texts{"userbouquet.favourites.tv, Favourites (TV): BBC One, Das Erste HD, UHD Demo",
                     "userbouquet.second.tv, userbouquet.second.tv: RTL, Das Erste HD",
                     "userbouquet.favourites.radio, H\xc3\xb6ren: 1LIVE"}));
}

TEST_F(Receiver, ABouquetHasAReadableNameWhateverItsFileIsCalled) {
    Write("lamedb", std::string(kTransponders) + kA + "end\n");
    Write("bouquets.tv", Listed("userbouquet.\xfc.tv"));
    Write("userbouquet.\xfc.tv", "#SERVICE 1:0:1:1:1:1:C00000:0:0:0:\n");
    const Reading reading = ReadingOfFile(mDirectory / "lamedb");
    EXPECT_EQ(ListsOf(reading.lineUp), Texts{"userbouquet.\xc3\xbc.tv, userbouquet.\xc3\xbc.tv: A"});
}

TEST_F(Receiver, AServiceThatIsNeitherTelevisionNorRadioIsListedByABouquet) {
    Write("lamedb",
          std::string(kTransponders) + kA + "3:00c00000:1:1:12:0\nData\np:\n4:00c00000:1:1:12:0\nMore\np:\nend\n");
    Write("bouquets.tv", Listed("userbouquet.a.tv"));
    Write("userbouquet.a.tv", "#SERVICE 1:0:C:4:1:1:C00000:0:0:0:\n");
    const Reading reading = ReadingOfFile(mDirectory / "lamedb");
    EXPECT_EQ(reading.Names(), (Texts{"More", "A", "Data"}));
    EXPECT_EQ(reading.Numbers(), (std::vector<int>{1, 2, 0}));
    EXPECT_TRUE(reading.lineUp.services[0]->listed);
    EXPECT_FALSE(reading.lineUp.services[2]->listed);
}

TEST_F(Receiver, WhatABouquetNamesWithoutReasonIsSkippedWithItsPlace) {
    const Reading reading = ReadingWithBouquet(
        "#NAME Odd\n"
        "#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0:\n"
        "#SERVICE 1:0:19:283E:3FB:1:C00000:0:0:0:\n"
        "#SERVICE 1:0:19:283D:3FB:1:820000:0:0:0:\n"
        "#SERVICE 4097:0:1:0:0:0:0:0:0:0:http%3a//tv.example/a:A\n"
        "#SERVICE 1:0:1:1:1:1:C00000:0:0:0:http%3a//tv.example/b:B\n"
        "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.b.tv\" ORDER BY bouquet\n"
        "#SERVICE 1:32:1:0:0:0:0:0:0:0:\n"
        "#SERVICE 1:0:19:283D\n"
        "#SERVICE one\n"
        "#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0:\n"
        "#SORT\n"
        "what?\n"
        "#SERVICE 1:0:1:2EE3:441:1:C00000:0:0:0:\n");
    EXPECT_EQ(reading.refusal, "");
    EXPECT_EQ(reading.Names(), (Texts{"Das Erste HD", "RTL", "1LIVE", "Rai 1 HD", "BBC One", "Service 7"}));
    EXPECT_EQ(ListsOf(reading.lineUp), Texts{"userbouquet.a.tv, Odd: Das Erste HD, RTL"});
    EXPECT_EQ(
        reading.warnings,
        (Texts{
            AtLine(3, "\"1:0:19:283E:3FB:1:C00000:0:0:0:\" is not a service of the lamedb; it is skipped"),
            AtLine(4, "\"1:0:19:283D:3FB:1:820000:0:0:0:\" is not a service of the lamedb; it is skipped"),
            AtLine(5,
                   "\"4097:0:1:0:0:0:0:0:0:0:http%3a//tv.example/a:A\" is a stream, not a broadcast service; it is "
                   "skipped"),
            AtLine(6,
                   "\"1:0:1:1:1:1:C00000:0:0:0:http%3a//tv.example/b:B\" is a stream, not a broadcast service; it is "
                   "skipped"),
            AtLine(7,
                   "\"1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.b.tv\" ORDER BY...\" is a list inside a bouquet; "
                   "it is skipped"),
            AtLine(8, "\"1:32:1:0:0:0:0:0:0:0:\" is an unknown kind of reference; it is skipped"),
            AtLine(9, "\"1:0:19:283D\" is not a reference to a service; it is skipped"),
            AtLine(10, "\"one\" is not a reference to a service; it is skipped"),
            AtLine(11, "\"1:0:19:283D:3FB:1:C00000:0:0:0:\" is in this bouquet twice; it is skipped"),
            AtLine(13, "\"what?\" is not understood; it is skipped")}));
}

TEST_F(Receiver, BouquetsThatCannotBeReadAreSkippedWithTheirPlace) {
    Write("lamedb", std::string(kTransponders) + kServices);
    const std::string list = mDirectory / "bouquets.tv";
    Write("bouquets.tv",
          Listed("userbouquet.none.tv") + Listed("../secret.tv") + Listed("folder") +
              "#SERVICE 1:519:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.hidden.tv\" ORDER BY bouquet\n" +
              "#SERVICE 1:0:19:283D:3FB:1:C00000:0:0:0:\n" + Listed("userbouquet.none.tv") + "what?\n");
    std::filesystem::create_directory(mDirectory / "folder");
    std::filesystem::create_directory(mDirectory / "bouquets.radio");
    const Reading reading = ReadingOfFile(mDirectory / "lamedb");
    EXPECT_EQ(reading.refusal, "");
    EXPECT_EQ(reading.lineUp.services.size(), 6u);
    EXPECT_EQ(
        reading.warnings,
        (Texts{mDirectory / "userbouquet.none.tv: cannot be opened: No such file or directory; the bouquet is skipped",
               list + ":2: the bouquet \"../secret.tv\" is in another directory; it is skipped",
               mDirectory / "folder: is not a regular file; the bouquet is skipped",
               list + ":4: the bouquet \"userbouquet.hidden.tv\" is hidden on the receiver; it is skipped",
               list + ":5: \"1:0:19:283D:3FB:1:C00000:0:0:0:\" does not name a bouquet; it is skipped",
               list + ":6: the bouquet \"userbouquet.none.tv\" is listed twice; it is skipped",
               list + ":7: \"what?\" is not understood; it is skipped",
               mDirectory / "bouquets.radio: is not a regular file; the bouquet is skipped"}));
}

TEST_F(Receiver, ThousandsOfServicesAreReadWithinASecond) {
    constexpr int kServiceCount = 5000;
    std::string lamedb = kTransponders;
    std::string bouquet = "#NAME All\n";
    char line[200];
    for (int i = 0; i < kServiceCount; ++i) {
        std::snprintf(line, sizeof(line), "%04x:00c00000:%04x:0001:25:0\nService %d\np:P,c:00%04x,c:01%04x\n", i + 1,
                      i / 20 + 1, i + 1, i % 8000, i % 8000 + 1);
        lamedb += line;
        const int other = kServiceCount - 1 - i;
        std::snprintf(line, sizeof(line), "#SERVICE 1:0:19:%X:%X:1:C00000:0:0:0:\n", other + 1, other / 20 + 1);
        bouquet += line;
    }
    Write("lamedb", lamedb + "end\n");
    Write("bouquets.tv", Listed("userbouquet.a.tv"));
    Write("userbouquet.a.tv", bouquet);
    const auto start = std::chrono::steady_clock::now();
    const Reading reading = ReadingOfFile(mDirectory / "lamedb");
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(reading.warnings, Texts());
    ASSERT_EQ(reading.lineUp.services.size(), 5000u);
    EXPECT_EQ(reading.lineUp.services.front()->name, "Service 5000");
    EXPECT_EQ(reading.lineUp.services.back()->number, 5000);
    EXPECT_LT(time.count(), test::kSanitized ? 20.0 : 1.0);
}

TEST_F(Receiver, WarningsAreCountedWhenThereAreTooManyToRead) {
    std::string bouquet;
    for (int i = 0; i < 1500; ++i) bouquet += "#SERVICE one\n";
    const Reading reading = ReadingWithBouquet(bouquet);
    ASSERT_EQ(reading.warnings.size(), 1001u);
    EXPECT_EQ(reading.warnings.back(), mDirectory / "lamedb: there are 500 more warnings");
}

}  // namespace
}  // namespace hbbtv::sim
