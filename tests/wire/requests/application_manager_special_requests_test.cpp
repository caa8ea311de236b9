// What sets single operations of the application manager's adaptor apart from the rows of its table: lists, refusals,
// and lines in the log.

#include <android/log.h>
#include <gtest/gtest.h>

#include "ipc/src/plugin/tolm_apm_adaptor_ipc.h"
#include "lenient_readings.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "wire_texts.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Apm = TolmApmAdaptorIpc;
using Pairs = std::vector<std::pair<int, int>>;

constexpr char kTag[] = "[ipc_apm]";

class ApplicationManagerRequests : public ::testing::Test {
  protected:
    ~ApplicationManagerRequests() override { Apm::DeleteInstance(); }

    Apm& Adaptor() { return *Apm::GetInstance(); }

    // "priority operation message" of the adaptor's lines.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != kTag) continue;
            EXPECT_EQ(line.file, "tolm_apm_adaptor_ipc.cpp");
            lines.push_back(std::to_string(line.priority) + " " + line.function + " " + line.message);
        }
        return lines;
    }

    // The children that a reply with these members gives, behind the one that was there.
    std::string ChildrenOf(const std::string& members) {
        mPlatform.SetReply("{\"ret\": 0" + members + "}");
        Pairs apps{{7, 8}};
        const int status = Adaptor().GetChildApps(1, 2, apps);
        return std::to_string(status) + " " + Show(apps);
    }

    // The keys that a reply with these members gives, behind the one that was there.
    std::string KeysOf(const std::string& members) {
        mPlatform.SetReply("{\"ret\": 0" + members + "}");
        std::vector<int> keys{7};
        const int status = Adaptor().GetOtherKeys(1, 2, keys);
        std::vector<int> most{7};
        EXPECT_EQ(Adaptor().GetMaxiMumOtherKeys(1, 2, most), status);
        EXPECT_EQ(most, keys);
        return std::to_string(status) + " " + Show(keys);
    }

    // The request by which keys are asked for.
    std::string SetValueOf(const std::vector<int>& keys) {
        mPlatform.ForgetFrames();
        EXPECT_EQ(Adaptor().SetValue(1, 2, 3, keys), 0);
        EXPECT_TRUE(mPlatform.WaitForFrames(1));
        return mPlatform.Frames().at(0).payload;
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

std::string Member(const std::string& key, const std::string& json) {
    return ", \"" + key + "\": " + json;
}

std::string Children(int count, const std::string& appIds, const std::string& orgIds) {
    return Member("appNum", std::to_string(count)) + Member("appidArray", "\"" + appIds + "\"") +
           Member("orgidArray", "\"" + orgIds + "\"");
}

using ApplicationManagerChildren = ApplicationManagerRequests;
using ApplicationManagerKeys = ApplicationManagerRequests;

}  // namespace

TEST_F(ApplicationManagerChildren, StandInFieldsOfSixteenCharacters) {
    EXPECT_EQ(ChildrenOf(Children(3, "0000000000000001               2-3              ",
                                  "              +4 5              2147483647      ")),
              "0 [7/8 1/4 2/5 -3/2147483647]");
}

TEST_F(ApplicationManagerChildren, AreCutOutBeforeTheyAreRead) {
    // Sixteen digits side by side, and a field of blanks before a number that belongs to the next one.
    EXPECT_EQ(ChildrenOf(Children(2, "00000000000000110000000000000022", "                0000000000000033")),
              "0 [7/8 11/0 22/33]");
}

TEST_F(ApplicationManagerChildren, ThatCannotBeReadAreZero) {
    EXPECT_EQ(ChildrenOf(
                  Children(3, "            text              12             0x1", "1a              - 1             +")),
              "0 [7/8 0/1 12/0 0/0]");
    // Beyond the range of an id.
    EXPECT_EQ(ChildrenOf(Children(4, "      2147483648     -2147483649      2147483647     -2147483648",
                                  "9999999999999999-999999999999999               1               1")),
              "0 [7/8 0/0 0/0 2147483647/1 -2147483648/1]");
    EXPECT_EQ(ChildrenOf(Children(1, "\\u00001", "1\\u00002")), "0 [7/8 0/1]");
}

TEST_F(ApplicationManagerChildren, AreZeroIfMissing) {
    EXPECT_EQ(ChildrenOf(Children(2, "               1", "")), "0 [7/8 1/0 0/0]");
    EXPECT_EQ(ChildrenOf(Children(3, "               1       2", "               3               4       5")),
              "0 [7/8 1/3 2/4 0/5]");
    EXPECT_EQ(ChildrenOf(Children(2, "               1               2", "               3               4")),
              "0 [7/8 1/3 2/4]");
    EXPECT_EQ(ChildrenOf(Member("appNum", "2")), "0 [7/8 0/0 0/0]");
    EXPECT_EQ(ChildrenOf(Member("appNum", "1") + Member("appidArray", "[1]") + Member("orgidArray", "null")),
              "0 [7/8 0/0]");
    // A number for a text reads as its digits.
    EXPECT_EQ(ChildrenOf(Member("appNum", "1") + Member("appidArray", "5") + Member("orgidArray", "true")),
              "0 [7/8 5/0]");
}

TEST_F(ApplicationManagerChildren, AreAsManyAsTheNumberSays) {
    const std::string texts =
        Member("appidArray", "\"               1\"") + Member("orgidArray", "\"               2\"");
    for (const char* number : {"0", "-1", "-2147483648", "null", "\"1\"", "[1]", "2147483648", "0.5"}) {
        EXPECT_EQ(ChildrenOf(Member("appNum", number) + texts), "0 [7/8]") << number;
    }
    EXPECT_EQ(ChildrenOf(texts), "0 [7/8]");
    EXPECT_EQ(ChildrenOf(Member("appNum", "1") + texts), "0 [7/8 1/2]");
    EXPECT_EQ(ChildrenOf(Member("appNum", "1.5") + texts), "0 [7/8 1/2]");
}

TEST_F(ApplicationManagerChildren, OfMoreThanASensibleNumberAreAFailure) {
    for (const char* number : {"65537", "2147483647"}) {
        EXPECT_EQ(ChildrenOf(Member("appNum", number)), "-1 [7/8]") << number;
    }
    mPlatform.SetReply("{\"ret\": 0, \"appNum\": 65536, \"appidArray\": \"5\"}");
    Pairs apps;
    EXPECT_EQ(Adaptor().GetChildApps(1, 2, apps), 0);
    ASSERT_EQ(apps.size(), 65536u);
    EXPECT_EQ(apps[0], std::make_pair(5, 0));
    EXPECT_EQ(apps[65535], std::make_pair(0, 0));
}

TEST_F(ApplicationManagerChildren, OfNoApplicationAreNotAskedFor) {
    Pairs apps{{7, 8}};
    EXPECT_EQ(Adaptor().GetChildApps(-1, -1, apps), -1);
    EXPECT_EQ(Show(apps), "[7/8]");
    EXPECT_TRUE(mPlatform.Frames().empty());
    EXPECT_EQ(Lines(),
              (std::vector<std::string>{"2 GetChildApps ENTER", "5 GetChildApps TRACE", "2 GetChildApps LEAVE"}));
}

TEST_F(ApplicationManagerChildren, AreAskedForWhenOnlyOneIdIsMinusOne) {
    Pairs apps;
    EXPECT_EQ(Adaptor().GetChildApps(-1, 5, apps), 0);
    EXPECT_EQ(Adaptor().GetChildApps(5, -1, apps), 0);
    ASSERT_EQ(mPlatform.Frames().size(), 2u);
    EXPECT_EQ(mPlatform.Frames()[0].payload, "{\n\t\"appid\" : -1,\n\t\"orgid\" : 5,\n\t\"t\" : 205\n}\n");
    EXPECT_EQ(mPlatform.Frames()[1].payload, "{\n\t\"appid\" : 5,\n\t\"orgid\" : -1,\n\t\"t\" : 205\n}\n");
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, kTag, "TRACE"), 0);
}

TEST_F(ApplicationManagerKeys, ComeInTheOrderOfTheirNumbers) {
    EXPECT_EQ(KeysOf(R"(, "num": 3, "k2": 413, "k0": 415, "k1": -19)"), "0 [7 415 -19 413]");
    // A member beyond the number is nobody's.
    EXPECT_EQ(KeysOf(R"(, "num": 1, "k0": 415, "k1": 19)"), "0 [7 415]");
}

TEST_F(ApplicationManagerKeys, AreZeroIfMissingOrNotNumbers) {
    EXPECT_EQ(KeysOf(R"(, "num": 5, "k1": "19", "k2": null, "k3": [1], "k4": 2147483648)"), "0 [7 0 0 0 0 0]");
    EXPECT_EQ(KeysOf(R"(, "num": 2, "k0": true, "k1": 2.5)"), "0 [7 1 2]");
}

TEST_F(ApplicationManagerKeys, OfNoSensibleNumberAreNone) {
    for (const char* number : {"0", "-1", "-2147483648", "null", "\"1\"", "[1]", "2147483648"}) {
        EXPECT_EQ(KeysOf(std::string(", \"k0\": 415, \"num\": ") + number), "0 [7]") << number;
    }
    EXPECT_EQ(KeysOf(", \"k0\": 415"), "0 [7]");
}

TEST_F(ApplicationManagerKeys, OfMoreThanASensibleNumberAreAFailure) {
    EXPECT_EQ(KeysOf(R"(, "num": 65537, "k0": 415)"), "-1 [7]");
    EXPECT_EQ(KeysOf(R"(, "num": 2147483647, "k0": 415)"), "-1 [7]");
    mPlatform.SetReply(R"({"ret": 0, "num": 65536, "k0": 415, "k65": 5})");
    std::vector<int> keys;
    EXPECT_EQ(Adaptor().GetOtherKeys(1, 2, keys), 0);
    ASSERT_EQ(keys.size(), 65536u);
    EXPECT_EQ(keys[0], 415);
    EXPECT_EQ(keys[65], 5);
    EXPECT_EQ(keys[66], 0);
    EXPECT_EQ(keys[65535], 5);
}

TEST_F(ApplicationManagerKeys, HaveNamesOfThreeCharactersWhenTheyAreRead) {
    std::string members = ", \"num\": 121, \"k100\": 1, \"k119\": 2, \"k120\": 3";
    for (int i = 0; i < 100; ++i) members += ", \"k" + std::to_string(i) + "\": " + std::to_string(1000 + i);
    std::string expected = "0 [7";
    for (int i = 0; i < 100; ++i) expected += " " + std::to_string(1000 + i);
    for (int i = 0; i < 10; ++i) expected += " 1010";  // 100 to 109
    for (int i = 0; i < 10; ++i) expected += " 1011";  // 110 to 119
    EXPECT_EQ(KeysOf(members), expected + " 1012]");
}

TEST_F(ApplicationManagerKeys, HaveNamesOfThreeCharactersWhenTheyAreWritten) {
    std::vector<int> keys;
    for (int i = 0; i < 1001; ++i) keys.push_back(i);
    WrittenMembers members{{"t", "232"}, {"appid", "1"}, {"orgid", "2"}, {"value", "3"}, {"keynum", "1001"}};
    for (int i = 0; i < 10; ++i) members.emplace_back("k" + std::to_string(i), std::to_string(i));
    // The last one of those with the same name stays: 100 to 109 for k10, but 1000 comes after them.
    members.emplace_back("k10", "1000");
    for (int i = 11; i < 100; ++i) members.emplace_back("k" + std::to_string(i), std::to_string(10 * i + 9));
    EXPECT_EQ(SetValueOf(keys), Styled(ObjectOf(members)));

    keys.resize(105);
    members = {{"t", "232"}, {"appid", "1"}, {"orgid", "2"}, {"value", "3"}, {"keynum", "105"}};
    for (int i = 0; i < 100; ++i) members.emplace_back("k" + std::to_string(i), std::to_string(i == 10 ? 104 : i));
    EXPECT_EQ(SetValueOf(keys), Styled(ObjectOf(members)));
}

TEST_F(ApplicationManagerKeys, OfAnEmptyListAreANumberAlone) {
    EXPECT_EQ(SetValueOf({}),
              "{\n\t\"appid\" : 1,\n\t\"keynum\" : 0,\n\t\"orgid\" : 2,\n\t\"t\" : 232,\n\t\"value\" : 3\n}\n");
}

TEST_F(ApplicationManagerRequests, CreateAppWithoutAUrlIsRefused) {
    int appId = 7;
    int orgId = 8;
    EXPECT_EQ(Adaptor().CreateApp(1, 2, nullptr, true, true, appId, orgId), -1);
    EXPECT_EQ(appId, 7);
    EXPECT_EQ(orgId, 8);
    EXPECT_TRUE(mPlatform.Frames().empty());
    EXPECT_EQ(Lines(), (std::vector<std::string>{"2 CreateApp ENTER", "5 CreateApp TRACE", "2 CreateApp LEAVE"}));
}

TEST(ApplicationManagerWithoutPlatform, SaysWhereItCouldNotTellTheResolutionOrAFile) {
    const ScratchDirectory directory;
    const LogCapture log;
    EXPECT_EQ(Apm::GetInstance()->SetDeviceResolution(1280, 720), -1);
    EXPECT_EQ(Apm::GetInstance()->NotifyDSMCCResponseToAPM("u", "p"), -1);
    EXPECT_EQ(Apm::GetInstance()->ShowApp(1, 2), -1);
    std::vector<std::string> lines;
    for (const LogLine& line : log.Lines()) {
        if (line.tag != kTag) continue;
        lines.push_back(line.function + " " + line.message);
        if (line.message != "TRACE") continue;
        EXPECT_EQ(line.priority, ANDROID_LOG_WARN);
        EXPECT_EQ(line.text,
                  "[tolm](tolm_apm_adaptor_ipc.cpp:" + std::to_string(line.line) + ") " + line.function + ": TRACE");
    }
    EXPECT_EQ(lines, (std::vector<std::string>{"SetDeviceResolution ENTER", "SetDeviceResolution TRACE",
                                               "SetDeviceResolution LEAVE", "NotifyDSMCCResponseToAPM ENTER",
                                               "NotifyDSMCCResponseToAPM TRACE", "NotifyDSMCCResponseToAPM LEAVE",
                                               "ShowApp ENTER", "ShowApp LEAVE"}));
    Apm::DeleteInstance();
}

TEST_F(ApplicationManagerRequests, OfBothFormsTravelOnOneConnectionInTheirOrder) {
    int value = 0;
    EXPECT_EQ(Adaptor().ShowApp(1, 2), 0);
    EXPECT_EQ(Adaptor().GetValue(1, 2, value), 0);
    EXPECT_EQ(Adaptor().HideApp(1, 2), 0);
    ASSERT_TRUE(mPlatform.WaitForFrames(3));
    EXPECT_EQ(mPlatform.Frames()[0].type, kOneWay);
    EXPECT_EQ(mPlatform.Frames()[1].type, kRequest);
    EXPECT_EQ(mPlatform.Frames()[2].type, kOneWay);
    EXPECT_EQ(mPlatform.Connections(), 1);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, kTag, "TRACE"), 0);
}

}  // namespace hbbtv::test
