// The programme family: every operation against an XMLTV file, what clients set, and the descriptors on the wire.
#include "av_platform.h"
#include "wait_for.h"

namespace hbbtv::test {
namespace {

class Programmes : public AvPlatform {
  protected:
    Json::Value Get(const std::string& programme, int method, const char* member) {
        const Json::Value reply = AskAt(kToProgramme, method, {{"handle", programme}});
        EXPECT_EQ(reply["ret"], 0) << method;
        return reply[member];
    }

    int Set(const std::string& programme, int method, const char* member, const Json::Value& value) {
        return RetAt(kToProgramme, method, {{"handle", programme}, {member, value}});
    }

    int Want(const std::string& programme, int tag) {
        return RetAt(kToProgramme, 79,
                     {{"handle", programme}, {"in_descTag", tag}, {"in_descTagExt", 0}, {"in_priDataSpec", 0}});
    }

    std::string Descriptor(const std::string& programme, unsigned index) {
        const Json::Value reply = AskAt(kToProgramme, 78, {{"handle", programme}, {"in_index", index}});
        EXPECT_EQ(reply["ret"], 0);
        const unsigned length = reply["length"].asUInt();
        EXPECT_EQ(reply.size(), length + 2) << "ret, length and a member for each byte";
        std::string bytes;
        for (unsigned i = 0; i < length; ++i) {
            const int byte = reply["k" + std::to_string(i)].asInt();
            EXPECT_TRUE(byte >= 0 && byte <= 255) << byte;
            bytes += static_cast<char>(byte);
        }
        return bytes;
    }
};

// So many services, 1.1.1 and on.
std::string LineUpOf(int services) {
    std::string list;
    for (int sid = 1; sid <= services; ++sid) {
        const std::string number = std::to_string(sid);
        list += std::string(sid == 1 ? "" : ",") + R"({"name": "S)" + number +
                R"(", "network": "sat", "onid": 1, "tsid": 1, "sid": )" + number + R"(, "type": "TV", "number": )" +
                number + R"(, "components": [{"type": "video", "tag": 1, "pid": 101, "encoding": "MPEG2_SD_25"}]})";
    }
    return R"({"networks": [{"id": "sat", "name": "Satellite", "delivery": "DVB_S", "nid": 1}], "services": [)" + list +
           "]}";
}

TEST_F(Programmes, TellWhatTheFileSays) {
    Begin();
    const std::string programme = ProgrammeOf(Presenting(1), 0);
    EXPECT_EQ(Get(programme, 1, "out_name"), "Long Day - The Start");
    EXPECT_EQ(Get(programme, 7, "out_desc"), "It begins.");
    EXPECT_EQ(Get(programme, 10, "out_longDesc"), "It begins.");
    EXPECT_EQ(Get(programme, 13, "out_startTime"), 1577836800);
    EXPECT_EQ(Get(programme, 16, "out_duration"), 536544000);
    EXPECT_EQ(Get(programme, 19, "out_channelID"), "ccid:1.1.1");
    // 1577836800 / 60 = 26297280 = 401 * 65536 + 17344, and 17344 is 43c0.
    EXPECT_EQ(Get(programme, 28, "out_programID"), "dvb://1.1.1;43c0");
    EXPECT_EQ(Get(programme, 31, "out_programIDType"), 1);
    EXPECT_EQ(Get(programme, 34, "out_handle").asString().substr(0, 2), "0x");
    EXPECT_EQ(Get(programme, 34, "out_handle"), Get(programme, 34, "out_handle"));
}

TEST_F(Programmes, AreNowAndNextOfTheirServiceAsFarAsTheFileHasThem) {
    Begin();
    const std::string vb = Presenting(1);
    EXPECT_EQ(AskOf(vb, kGetProgrammeNum)["num"], 2);
    EXPECT_EQ(Get(ProgrammeOf(vb, 1), 1, "out_name"), "The End");
    Tune(vb, 2);
    EXPECT_EQ(AskOf(vb, kGetProgrammeNum)["num"], 1);
    EXPECT_EQ(Get(ProgrammeOf(vb, 0), 1, "out_name"), "Later");
    Tune(vb, 9);
    EXPECT_EQ(AskOf(vb, kGetProgrammeNum)["num"], 0) << "the file has nothing for it";
}

TEST_F(Programmes, WithoutAFileAreMadeUpAndTheSameForTheSameSeed) {
    std::string names[2];
    for (std::string& name : names) {
        Begin("", {"--seed", "7"});
        const std::string vb = Presenting(1);
        name =
            Get(ProgrammeOf(vb, 0), 1, "out_name").asString() + Get(ProgrammeOf(vb, 0), 28, "out_programID").asString();
        EXPECT_EQ(Stop(), 0);
    }
    EXPECT_EQ(names[0], names[1]);
    EXPECT_NE(names[0], "");
}

TEST_F(Programmes, KeepWhatClientsSetAndStayWhereTheyAre) {
    Begin();
    const std::string vb = Presenting(1);
    const std::string programme = ProgrammeOf(vb, 0);
    const std::string odd = std::string("\"\\\n\x01 K\xc3\xb6ln \xf0\x9f\x93\xba\0.", 17);
    EXPECT_EQ(Set(programme, 3, "in_name", odd), 0);
    EXPECT_EQ(Set(programme, 9, "in_desc", "short"), 0);
    EXPECT_EQ(Set(programme, 12, "in_longDesc", ""), 0);
    EXPECT_EQ(Set(programme, 15, "in_startTime", -5), 0);
    EXPECT_EQ(Set(programme, 18, "in_duration", 2147483647), 0);
    EXPECT_EQ(Set(programme, 21, "in_channelID", "ccid:9"), 0);
    EXPECT_EQ(Set(programme, 30, "in_programID", "crid://a/b"), 0);
    EXPECT_EQ(Set(programme, 33, "in_programIDType", 2), 0);
    EXPECT_EQ(RetAt(kToProgramme, 0, {{"handle", programme}}), 0);
    const std::string again = ProgrammeOf(vb, 0);
    EXPECT_NE(again, programme);
    EXPECT_EQ(Get(again, 1, "out_name"), odd);
    EXPECT_EQ(Get(again, 7, "out_desc"), "short");
    EXPECT_EQ(Get(again, 10, "out_longDesc"), "");
    EXPECT_EQ(Get(again, 13, "out_startTime"), -5);
    EXPECT_EQ(Get(again, 16, "out_duration"), 2147483647);
    EXPECT_EQ(Get(again, 19, "out_channelID"), "ccid:9");
    EXPECT_EQ(Get(again, 28, "out_programID"), "crid://a/b");
    EXPECT_EQ(Get(again, 31, "out_programIDType"), 2);
}

// Those that nobody has changed are forgotten in the meantime, and made again when they are asked for.
TEST_F(Programmes, KeepWhatClientsSetWhenThousandsOfDaysAreMadeUp) {
    constexpr int kServices = 500;
    mLineUp = LineUpOf(kServices);
    Begin("");
    const std::string programme = ProgrammeOf(Presenting(kServices), 0);
    EXPECT_EQ(Set(programme, 3, "in_name", "kept"), 0);
    EXPECT_EQ(RetAt(kToProgramme, 0, {{"handle", programme}}), 0);

    const std::string manager = HandleAt(kToSearchManager, 1, "out_handle");
    const std::string search = HandleAt(kToSearchManager, 5, "out_handle", {{"in_handle", manager}, {"target", 1u}});
    const std::string query =
        HandleAt(kToSearchManager, 8, "out_handle",
                 {{"in_handle", search}, {"field", "Programme.name"}, {"comp", 0}, {"value", "kept"}});
    const std::string results = HandleAt(kToSearchManager, 10, "out_handle", {{"in_handle", search}});
    EXPECT_EQ(RetAt(kToSearchManager, 14, {{"search_handle", search}, {"query_handle", query}}), 0);
    EXPECT_EQ(RetAt(kToSearchManager, 26, {{"in_handle", results}, {"offset", 0u}, {"count", 9u}}), 0);
    const auto found = [&] { return AskAt(kToSearchManager, 22, {{"in_handle", results}})["size"].asUInt(); };
    EXPECT_TRUE(WaitFor([&] { return found() == 1; }));
}

TEST_F(Programmes, RefuseWhatMakesNoSense) {
    Begin();
    const std::string programme = ProgrammeOf(Presenting(1), 0);
    EXPECT_EQ(Set(programme, 18, "in_duration", -1), -1);
    EXPECT_EQ(Set(programme, 33, "in_programIDType", 3), -1);
    EXPECT_EQ(Set(programme, 33, "in_programIDType", -1), -1);
    EXPECT_EQ(Set(programme, 3, "in_name", 5), -1);
    EXPECT_EQ(Set(programme, 3, "in_name", std::string(262145, 'x')), -1);
    EXPECT_EQ(Set(programme, 15, "in_startTime", 2147483648u), -1);
    for (const int method : {3, 9, 12, 15, 18, 21, 30, 33, 78, 79}) {
        EXPECT_EQ(RetAt(kToProgramme, method, {{"handle", programme}}), -1) << method;
    }
    for (const int method : {2, 4, 8, 11, 14, 17, 20, 22, 27, 29, 32, 35, 75, 77, 80}) {
        EXPECT_EQ(RetAt(kToProgramme, method, {{"handle", programme}}), -1) << "no operation " << method;
    }
    EXPECT_EQ(Get(programme, 1, "out_name"), "Long Day - The Start");
}

TEST_F(Programmes, AreReleasedByEitherFormAndRefusedThen) {
    Begin();
    const std::string vb = Presenting(1);
    const std::string asked = ProgrammeOf(vb, 0);
    const std::string sent = ProgrammeOf(vb, 1);
    EXPECT_EQ(ProgrammeOf(vb, 0), asked) << "one handle for as long as it has any";
    EXPECT_EQ(RetAt(kToProgramme, 0, {{"handle", asked}}), 0);
    SendAt(kToProgramme, 0, {{"handle", sent}});
    const Members members{{"in_name", "x"},   {"in_desc", "x"},      {"in_longDesc", "x"},  {"in_startTime", 1},
                          {"in_duration", 1}, {"in_channelID", "x"}, {"in_programID", "x"}, {"in_programIDType", 1},
                          {"in_index", 0u},   {"in_descTag", 0x4d},  {"in_descTagExt", 0},  {"in_priDataSpec", 0}};
    for (const int method : {0, 1, 3, 7, 9, 10, 12, 13, 15, 16, 18, 19, 21, 28, 30, 31, 33, 34, 76, 78, 79}) {
        for (const std::string& handle : {asked, sent, vb, std::string("0x1"), std::string()}) {
            Members all = members;
            all["handle"] = handle;
            EXPECT_EQ(RetAt(kToProgramme, method, all), -1) << method << " " << handle;
        }
    }
    EXPECT_EQ(Get(ProgrammeOf(vb, 0), 1, "out_name"), "Long Day - The Start");
}

TEST_F(Programmes, GiveTheirDescriptorsByteByByte) {
    Begin();
    const std::string programme = ProgrammeOf(Presenting(1), 0);
    ASSERT_EQ(Get(programme, 76, "out_num"), 6);
    EXPECT_EQ(Descriptor(programme, 0),
              "\x4d\x23"
              "deu"
              "\x14"
              "Long Day - The Start"
              "\x0a"
              "It begins.");
    EXPECT_EQ(Descriptor(programme, 1), std::string("\x4e\x10\x00"
                                                    "deu"
                                                    "\x00\x0a"
                                                    "It begins.",
                                                    18));
    EXPECT_EQ(Descriptor(programme, 2),
              "\x50\x06\xf1\x03\x01"
              "und")
        << "MPEG-2, 16:9, 25 Hz";
    EXPECT_EQ(Descriptor(programme, 3),
              "\x50\x06\xf2\x03\x02"
              "deu")
        << "MPEG-1 layer 2, stereo";
    EXPECT_EQ(Descriptor(programme, 4), std::string("\x54\x02\x20\x00", 4)) << "news";
    EXPECT_EQ(Descriptor(programme, 5),
              "\x55\x04"
              "DEU"
              "\x09")
        << "from 12";
    EXPECT_EQ(RetAt(kToProgramme, 78, {{"handle", programme}, {"in_index", 6u}}), -1);
    EXPECT_EQ(RetAt(kToProgramme, 78, {{"handle", programme}, {"in_index", 4294967295u}}), -1);
}

TEST_F(Programmes, GiveOnlyTheDescriptorsOfATagOnceItIsAskedFor) {
    Begin();
    const std::string vb = Presenting(1);
    const std::string programme = ProgrammeOf(vb, 0);
    EXPECT_EQ(Want(programme, 0x50), 0);
    EXPECT_EQ(Get(programme, 76, "out_num"), 2);
    EXPECT_EQ(Descriptor(programme, 1),
              "\x50\x06\xf2\x03\x02"
              "deu");
    EXPECT_EQ(RetAt(kToProgramme, 78, {{"handle", programme}, {"in_index", 2u}}), -1);
    SendAt(kToProgramme, 79,
           {{"handle", programme}, {"in_descTag", 0x55}, {"in_descTagExt", -1}, {"in_priDataSpec", 9}});
    EXPECT_EQ(Get(programme, 76, "out_num"), 1);
    EXPECT_EQ(Descriptor(programme, 0),
              "\x55\x04"
              "DEU"
              "\x09");
    EXPECT_EQ(Want(programme, 0x7f), 0);
    EXPECT_EQ(Get(programme, 76, "out_num"), 0);
    EXPECT_EQ(Want(programme, 256), -1);
    EXPECT_EQ(Get(programme, 76, "out_num"), 0);
    EXPECT_EQ(Get(ProgrammeOf(vb, 1), 76, "out_num"), 3) << "another programme";
    EXPECT_EQ(Want(programme, -1), 0);
    EXPECT_EQ(Get(programme, 76, "out_num"), 6);
    EXPECT_EQ(Want(programme, 0x50), 0);
    EXPECT_EQ(RetAt(kToProgramme, 0, {{"handle", programme}}), 0);
    EXPECT_EQ(Get(ProgrammeOf(vb, 0), 76, "out_num"), 6) << "it was asked with a handle that is gone";
}

TEST_F(Programmes, MakeTheirDescriptorsOfWhatClientsSet) {
    Begin();
    const std::string programme = ProgrammeOf(Presenting(1), 1);
    EXPECT_EQ(Set(programme, 3, "in_name", "\xc3\xa9"), 0);
    EXPECT_EQ(Descriptor(programme, 0), std::string("\x4d\x08"
                                                    "und"
                                                    "\x03\x15\xc3\xa9\x00",
                                                    10))
        << "UTF-8";
    EXPECT_EQ(Set(programme, 12, "in_longDesc", std::string(1000000 / 4, 'x')), 0);
    EXPECT_EQ(Want(programme, 0x4e), 0);
    ASSERT_EQ(Get(programme, 76, "out_num"), 16);
    const std::string last = Descriptor(programme, 15);
    EXPECT_EQ(last.size(), 256u);
    EXPECT_EQ(last.substr(0, 8), std::string("\x4e\xfe\xff"
                                             "und"
                                             "\x00\xf8",
                                             8));
}

class ProgrammeFiles : public AvPlatform {
  protected:
    std::string Refusal(const std::string& path) {
        const auto program = Launch({"--programmes", path});
        EXPECT_EQ(program->WaitForExit(), 3);
        return program->Output();
    }
};

TEST_F(ProgrammeFiles, ThatAreBrokenEndTheProgramWithCode3AndAReason) {
    const std::string path = mDirectory / "guide.xml";
    WriteFile(path, "<tv>\n<programme>\n</tv>\n");
    EXPECT_EQ(Refusal(path), "hbbtv-sim: cannot read " + path + ":3: is no XML: Start-end tags mismatch\n");
    EXPECT_EQ(Refusal(mDirectory / "none.xml"), "hbbtv-sim: cannot read " + (mDirectory / "none.xml") +
                                                    ": cannot be opened: No such file or directory\n");
}

}  // namespace
}  // namespace hbbtv::test
