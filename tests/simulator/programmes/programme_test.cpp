// The programme family: every operation against an XMLTV file, what clients set, and the descriptors on the wire.
#include "programmes/bytes.h"
#include "programmes/programme_fixture.h"
#include "wait_for.h"

namespace hbbtv::test {
namespace {

class Programmes : public ProgrammeFixture {
  protected:
    Programmes() { mFamily = "programme"; }

    // Asks for the descriptors of this tag only.
    int Want(const std::string& programme, int tag) {
        return RetOf(programme, "GetSIDescriptorByEventId",
                     {{"in_descTag", tag}, {"in_descTagExt", 0}, {"in_priDataSpec", 0}});
    }

    std::string Descriptor(const std::string& programme, unsigned index) {
        const Json::Value reply = AskOf(programme, "GetSIDescriptorByIndex", {{"in_index", index}});
        EXPECT_EQ(reply["ret"], 0);
        std::string bytes;
        for (unsigned i = 0; i < reply["length"].asUInt(); ++i) {
            const int byte = reply["k" + std::to_string(i)].asInt();
            EXPECT_TRUE(byte >= 0 && byte <= 255) << byte;
            bytes += static_cast<char>(byte);
        }
        return bytes;
    }
};

TEST_F(Programmes, ReturnWhatTheFileSays) {
    StartWith(kProgrammes);
    const std::string programme = ProgrammeOf(Presenting(1), 0);
    ExpectValues(programme, R"({"GetName": "Long Day - The Start", "GetDescription": "It begins.",
                                "GetLongDescription": "It begins.", "GetStartTime": 1577836800,
                                "GetDuration": 536544000, "GetChannelID": "ccid:1.1.1"})");
    // 1577836800 / 60 = 26297280 = 401 * 65536 + 17344, and 17344 is 43c0.
    EXPECT_EQ(GetOf(programme, "GetProgramID"), "dvb://1.1.1;43c0");
    EXPECT_EQ(GetOf(programme, "GetProgramIDType"), 1);
    EXPECT_EQ(HandleOf(programme, "GetParentalRatings").substr(0, 2), "0x");
    EXPECT_EQ(GetOf(programme, "GetParentalRatings"), GetOf(programme, "GetParentalRatings"));
}

TEST_F(Programmes, AreNowAndNextOfTheirServiceAsFarAsTheFileHasThem) {
    StartWith(kProgrammes);
    const std::string vb = Presenting(1);
    EXPECT_EQ(GetOf(vb, "video_broadcast.GetProgrammeNum"), 2);
    EXPECT_EQ(GetOf(ProgrammeOf(vb, 1), "GetName"), "The End");
    Tune(vb, 2);
    EXPECT_EQ(GetOf(vb, "video_broadcast.GetProgrammeNum"), 1);
    EXPECT_EQ(GetOf(ProgrammeOf(vb, 0), "GetName"), "Later");
    Tune(vb, 9);
    EXPECT_EQ(GetOf(vb, "video_broadcast.GetProgrammeNum"), 0) << "the file has nothing for it";
}

TEST_F(Programmes, WithoutAFileAreMadeUpAndTheSameForTheSameSeed) {
    std::string names[2];
    for (std::string& name : names) {
        Start({"--seed", "7"});
        const std::string vb = Presenting(1);
        name = HandleOf(ProgrammeOf(vb, 0), "GetName") + HandleOf(ProgrammeOf(vb, 0), "GetProgramID");
        EXPECT_EQ(Stop(), 0);
    }
    EXPECT_EQ(names[0], names[1]);
    EXPECT_NE(names[0], "");
}

TEST_F(Programmes, KeepWhatClientsSetAndStayWhereTheyAre) {
    StartWith(kProgrammes);
    const std::string vb = Presenting(1);
    const std::string programme = ProgrammeOf(vb, 0);
    const std::string odd = std::string("\"\\\n\x01 K\xc3\xb6ln \xf0\x9f\x93\xba\0.", 17);
    EXPECT_EQ(RetOf(programme, "SetName", {{"in_name", odd}}), 0);
    ExpectTaken(programme, R"({"SetDescription": "short", "SetLongDescription": "", "SetStartTime": -5,
                               "SetDuration": 2147483647, "SetChannelID": "ccid:9", "SetProgramID": "crid://a/b",
                               "SetProgramIDType": 2})");
    EXPECT_EQ(RetOf(programme, "Release"), 0);
    const std::string again = ProgrammeOf(vb, 0);
    EXPECT_NE(again, programme);
    EXPECT_EQ(GetOf(again, "GetName"), odd);
    ExpectValues(again, R"({"GetDescription": "short", "GetLongDescription": "", "GetStartTime": -5,
                            "GetDuration": 2147483647, "GetChannelID": "ccid:9", "GetProgramID": "crid://a/b",
                            "GetProgramIDType": 2})");
}

// Unchanged programmes are discarded in the meantime and generated again when they are requested.
TEST_F(Programmes, KeepWhatClientsSetWhenThousandsOfDaysAreMadeUp) {
    constexpr int kServices = 500;
    mLineUp = LineUpOf(kServices);
    Start();
    const std::string programme = ProgrammeOf(Presenting(kServices), 0);
    EXPECT_EQ(RetOf(programme, "SetName", {{"in_name", "kept"}}), 0);
    EXPECT_EQ(RetOf(programme, "Release"), 0);

    const std::string manager = Handle("search_manager.SearchManager_Create");
    const std::string search = HandleOf(manager, "search_manager.SearchManager_CreateSearch", {{"target", 1u}});
    const std::string query = HandleOf(search, "search_manager.MetaSearch_CreateQuery",
                                       {{"field", "Programme.name"}, {"comp", 0}, {"value", "kept"}});
    const std::string results = HandleOf(search, "search_manager.MetaSearch_GetResult");
    EXPECT_EQ(RetOf(search, "search_manager.MetaSearch_SetQuery", {{"query_handle", query}}), 0);
    EXPECT_EQ(RetOf(results, "search_manager.SearchResults_GetResults", {{"offset", 0u}, {"count", 9u}}), 0);
    EXPECT_TRUE(WaitFor([&] { return GetOf(results, "search_manager.SearchResults_GetTotalSize") == 1; }));
}

TEST_F(Programmes, RefuseInvalidValues) {
    StartWith(kProgrammes);
    const std::string programme = ProgrammeOf(Presenting(1), 0);
    EXPECT_EQ(RetOf(programme, "SetDuration", {{"in_duration", -1}}), -1);
    EXPECT_EQ(RetOf(programme, "SetProgramIDType", {{"in_programIDType", 3}}), -1);
    EXPECT_EQ(RetOf(programme, "SetProgramIDType", {{"in_programIDType", -1}}), -1);
    EXPECT_EQ(RetOf(programme, "SetName", {{"in_name", 5}}), -1);
    EXPECT_EQ(RetOf(programme, "SetName", {{"in_name", std::string(262145, 'x')}}), -1);
    EXPECT_EQ(RetOf(programme, "SetStartTime", {{"in_startTime", 2147483648u}}), -1);
    ExpectRefused({"SetName", "SetDescription", "SetLongDescription", "SetStartTime", "SetDuration", "SetChannelID",
                   "SetProgramID", "SetProgramIDType", "GetSIDescriptorByIndex", "GetSIDescriptorByEventId"},
                  {programme});
    ExpectOtherCodesRefused("programme", programme);
    EXPECT_EQ(GetOf(programme, "GetName"), "Long Day - The Start");
}

TEST_F(Programmes, AreReleasedByEitherFormAndRefusedThen) {
    StartWith(kProgrammes);
    const std::string vb = Presenting(1);
    const std::string asked = ProgrammeOf(vb, 0);
    const std::string sent = ProgrammeOf(vb, 1);
    EXPECT_EQ(ProgrammeOf(vb, 0), asked) << "one handle for as long as it has any";
    EXPECT_EQ(RetOf(asked, "Release"), 0);
    SendOf(sent, "Release");
    const Members members{{"in_name", "x"},   {"in_desc", "x"},      {"in_longDesc", "x"},  {"in_startTime", 1},
                          {"in_duration", 1}, {"in_channelID", "x"}, {"in_programID", "x"}, {"in_programIDType", 1},
                          {"in_index", 0u},   {"in_descTag", 0x4d},  {"in_descTagExt", 0},  {"in_priDataSpec", 0}};
    ExpectRefused(OperationsOf("programme"), {asked, sent, vb, "0x1", ""}, members);
    EXPECT_EQ(GetOf(ProgrammeOf(vb, 0), "GetName"), "Long Day - The Start");
}

TEST_F(Programmes, ReturnTheirDescriptorsByteByByte) {
    StartWith(kProgrammes);
    const std::string programme = ProgrammeOf(Presenting(1), 0);
    ASSERT_EQ(GetOf(programme, "GetSIDescriptorNum"), 6);
    EXPECT_EQ(Descriptor(programme, 0), Bytes("\x4d\x23", "deu", "\x14", "Long Day - The Start", "\x0a", "It begins."));
    EXPECT_EQ(Descriptor(programme, 1), Bytes("\x4e\x10\x00", "deu", "\x00\x0a", "It begins."));
    EXPECT_EQ(Descriptor(programme, 2), Bytes("\x50\x06\xf1\x03\x01", "und")) << "MPEG-2, 16:9, 25 Hz";
    EXPECT_EQ(Descriptor(programme, 3), Bytes("\x50\x06\xf2\x03\x02", "deu")) << "MPEG-1 layer 2, stereo";
    EXPECT_EQ(Descriptor(programme, 4), std::string("\x54\x02\x20\x00", 4)) << "news";
    EXPECT_EQ(Descriptor(programme, 5), Bytes("\x55\x04", "DEU", "\x09")) << "from 12";
    EXPECT_EQ(RetOf(programme, "GetSIDescriptorByIndex", {{"in_index", 6u}}), -1);
    EXPECT_EQ(RetOf(programme, "GetSIDescriptorByIndex", {{"in_index", 4294967295u}}), -1);
}

TEST_F(Programmes, ReturnOnlyTheDescriptorsOfARequestedTag) {
    StartWith(kProgrammes);
    const std::string vb = Presenting(1);
    const std::string programme = ProgrammeOf(vb, 0);
    EXPECT_EQ(Want(programme, 0x50), 0);
    EXPECT_EQ(GetOf(programme, "GetSIDescriptorNum"), 2);
    EXPECT_EQ(Descriptor(programme, 1), Bytes("\x50\x06\xf2\x03\x02", "deu"));
    EXPECT_EQ(RetOf(programme, "GetSIDescriptorByIndex", {{"in_index", 2u}}), -1);
    SendOf(programme, "GetSIDescriptorByEventId", {{"in_descTag", 0x55}, {"in_descTagExt", -1}, {"in_priDataSpec", 9}});
    EXPECT_EQ(GetOf(programme, "GetSIDescriptorNum"), 1);
    EXPECT_EQ(Descriptor(programme, 0), Bytes("\x55\x04", "DEU", "\x09"));
    EXPECT_EQ(Want(programme, 0x7f), 0);
    EXPECT_EQ(GetOf(programme, "GetSIDescriptorNum"), 0);
    EXPECT_EQ(Want(programme, 256), -1);
    EXPECT_EQ(GetOf(programme, "GetSIDescriptorNum"), 0);
    EXPECT_EQ(GetOf(ProgrammeOf(vb, 1), "GetSIDescriptorNum"), 3) << "another programme";
    EXPECT_EQ(Want(programme, -1), 0);
    EXPECT_EQ(GetOf(programme, "GetSIDescriptorNum"), 6);
    EXPECT_EQ(Want(programme, 0x50), 0);
    EXPECT_EQ(RetOf(programme, "Release"), 0);
    EXPECT_EQ(GetOf(ProgrammeOf(vb, 0), "GetSIDescriptorNum"), 6) << "it was asked with a handle that is gone";
}

TEST_F(Programmes, BuildTheirDescriptorsFromWhatClientsSet) {
    StartWith(kProgrammes);
    const std::string programme = ProgrammeOf(Presenting(1), 1);
    EXPECT_EQ(RetOf(programme, "SetName", {{"in_name", "\xc3\xa9"}}), 0);
    EXPECT_EQ(Descriptor(programme, 0), Bytes("\x4d\x08", "und", "\x03\x15\xc3\xa9\x00")) << "UTF-8";
    EXPECT_EQ(RetOf(programme, "SetLongDescription", {{"in_longDesc", std::string(1000000 / 4, 'x')}}), 0);
    EXPECT_EQ(Want(programme, 0x4e), 0);
    ASSERT_EQ(GetOf(programme, "GetSIDescriptorNum"), 16);
    const std::string last = Descriptor(programme, 15);
    EXPECT_EQ(last.size(), 256u);
    EXPECT_EQ(last.substr(0, 8), Bytes("\x4e\xfe\xff", "und", "\x00\xf8"));
}

class ProgrammeFiles : public SimulatorFixture {
  protected:
    std::string Refusal(const std::string& path) {
        const Outcome outcome = Run({"--programmes", path});
        EXPECT_EQ(outcome.exitCode, 3);
        return outcome.output;
    }
};

TEST_F(ProgrammeFiles, EndTheProgramWithCode3AndAReasonIfInvalid) {
    const std::string path = mDirectory / "guide.xml";
    WriteFile(path, "<tv>\n<programme>\n</tv>\n");
    EXPECT_EQ(Refusal(path), "hbbtv-sim: cannot read " + path + ":3: is not valid XML: Start-end tags mismatch\n");
    EXPECT_EQ(Refusal(mDirectory / "none.xml"), "hbbtv-sim: cannot read " + (mDirectory / "none.xml") +
                                                    ": cannot be opened: No such file or directory\n");
}

}  // namespace
}  // namespace hbbtv::test
