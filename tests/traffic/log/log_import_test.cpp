// Logs of the library, in the formats of logcat and of a Linux host, whole and damaged.
#include "traffic/log/log_import.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "common/failure.h"
#include "scratch_directory.h"
#include "traffic/view/line.h"

namespace hbbtv::traffic::test {
namespace {

constexpr const char* kGetName =
    "[tolm](tolm_base_client.cpp:75) SendIpc: send msg:{\n"
    "\t\"c_handle\" : \"0x1000\",\n"
    "\t\"method\" : 13,\n"
    "\t\"type\" : 12\n"
    "}\n"
    ", out_msg:{\n"
    "\t\"name\" : \"Das Erste HD\",\n"
    "\t\"ret\" : 0\n"
    "}";

constexpr const char* kChanged =
    "[tolm](tolm_base_server.cpp:45) OnRecv: recv msg:{\n"
    "\t\"event\" : 0,\n"
    "\t\"reserved\" : \"A\"\n"
    "}\n"
    " in m_ipc_id(35) port(3)";

// A line of a log for each of a message, in a format whose "%" is the text.
std::string InFormat(const std::string& format, const std::string& message) {
    std::istringstream lines(message);
    std::string log;
    for (std::string line; std::getline(lines, line);) {
        std::string whole = format;
        log += whole.replace(whole.find('%'), 1, line) + "\n";
    }
    return log;
}

struct LogImportTest : testing::Test {
    void Import(const std::string& log, const LogSettings& settings = {"", "+01:00", 2026}) {
        LogSettings here = settings;
        here.path = directory.Path() + "/log.txt";
        std::ofstream(here.path) << log;
        import.emplace(here, [this](const Record& record) { records.push_back(record);
    });
    import->Run();
}

std::string
Line(size_t i) const {
    return traffic::Line(records.at(i), Names(), import->Zone());
}

::hbbtv::test::ScratchDirectory directory;
std::vector<Record> records;
std::optional<LogImport> import;
};  // namespace

const char* const kExchangeText = R"(   channel.GetName c_handle=0x00001000 -> 0 name="Das Erste HD")";
const char* const kEventText = R"( * channel_config.changed reserved="A")";

class Formats : public LogImportTest, public testing::WithParamInterface<const char*> {};

TEST_P(Formats, HaveTheMessagesOfTheLibrary) {
    const std::string format = GetParam();
    const bool heads = format[0] == '[' && format[1] == ' ';
    std::string log = "--------- beginning of main\n";
    for (const char* message : {kGetName, kChanged}) {
        log += heads ? format + "\n" + message + "\n\n" : InFormat(format, message);
    }
    Import(log);
    ASSERT_EQ(records.size(), 2u);
    const bool timed = format.find("12:47:25") != std::string::npos;
    const std::string time = timed ? "12:47:25.458000" : Line(0).substr(0, 15);
    EXPECT_EQ(Line(0), time + kExchangeText);
    EXPECT_EQ(Line(1), time + kEventText);
    EXPECT_EQ(records[0].library.pid, format.find("4711") != std::string::npos ? 4711 : 0);
    EXPECT_EQ(records[0].socket, "service_plugin_to_hbbtv_vb_chn");
    EXPECT_EQ(records[0].message.port, 2);
    EXPECT_EQ(records[0].message.type, kRequest);
    EXPECT_EQ(records[1].message.type, kOneWay);
    EXPECT_EQ(records[0].time.Wall(), timed || format.find("1795348045") != std::string::npos ? 1795348045458000u : 0u);
    EXPECT_EQ(import->Counts().exchanges, 1u);
    EXPECT_EQ(import->Counts().events, 1u);
    EXPECT_EQ(import->Counts().cut + import->Counts().mixed + import->Counts().unknown, 0u);
    EXPECT_TRUE(import->Problems().empty()) << import->Problems()[0];
}

INSTANTIATE_TEST_SUITE_P(Of, Formats,
                         testing::Values("D/[ipc_base]( 4711): %", "D( 4711) %  ([ipc_base])", "D/[ipc_base]: %",
                                         "D( 4711: 4712) %", "%", "11-22 12:47:25.458 D/[ipc_base]( 4711): %",
                                         "11-22 12:47:25.458  4711  4712 D [ipc_base]: %",
                                         "11-22 12:47:25.458  4711  4712 D [ipc_base]: %\r",
                                         "2026-11-22 12:47:25.458000 +0100  4711  4712 D [ipc_base]: %",
                                         "11-22 12:47:25.458  1000  4711  4712 D [ipc_base]: %",
                                         "11-22 12:47:25.458 system  4711  4712 D [ipc_base]: %",
                                         "         1795348045.458  4711  4712 D [ipc_base]: %",
                                         "\x1b[38;5;75m11-22 12:47:25.458  4711  4712 D [ipc_base]: %\x1b[0m",
                                         "[ 11-22 12:47:25.458  4711: 4712 D/[ipc_base] ]",
                                         "[ipc_base] D 11-22 12:47:25.458  4711  4712 %"));

TEST_F(LogImportTest, PutsLinesOfThreadsThatAlternateTogether) {
    std::istringstream first(InFormat("11-22 12:47:25.458  4711  4712 D [ipc_base]: %", kGetName));
    std::istringstream second(InFormat("11-22 12:47:25.459  4711  4799 D [ipc_base]: %", kChanged));
    std::string log;
    std::string line;
    while (first || second) {
        if (std::getline(first, line)) log += line + "\n11-22 12:47:25.458  900  900 I other: {\n";
        if (std::getline(second, line)) log += line + "\n";
    }
    Import(log);
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(import->Counts().mixed, 0u);
    EXPECT_EQ(records[0].operation, "changed") << "which ended first";
    EXPECT_EQ(records[1].operation, "GetName");
}

TEST_F(LogImportTest, KeepsWhatIsLeftOfACutMessageAndSaysSo) {
    std::string message = kGetName;
    message.replace(message.find("Das Erste HD"), 12, std::string(1100, 'x'));
    message.resize(1023);
    Import(InFormat("11-22 12:47:25.458  4711  4712 D [ipc_base]: %", message + "\n" + kChanged));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].operation, "GetName");
    EXPECT_EQ(records[0].message.json["method"].asInt(), 13);
    ASSERT_TRUE(records[0].reply);
    EXPECT_FALSE(records[0].reply->Readable());
    EXPECT_FALSE(records[0].status);
    EXPECT_EQ(records[0].note, "the log has cut this after 1023 bytes");
    EXPECT_EQ(import->Counts().cut, 1u);
    ASSERT_EQ(import->Problems().size(), 1u);
    EXPECT_EQ(import->Problems()[0], directory.Path() + "/log.txt:1: the log has cut channel.GetName");
    EXPECT_EQ(records[1].operation, "changed");
}

TEST_F(LogImportTest, IdentifiesACutMessageByTheMembersThatAreLeft) {
    std::string message =
        "[tolm](a.cpp:1) SendIpc: send msg:{\n\t\"method\" : 8,\n\t\"size\" : 1,\n\t\"type\" : 19,\n\t\"x\" : \"";
    message += std::string(1023 - message.size(), 'x');
    Import(InFormat("11-22 12:47:25.458  4711  4712 D [ipc_base]: %", message));
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].operation, "CreateChannelList");
    EXPECT_FALSE(records[0].message.Readable());
    EXPECT_EQ(records[0].message.type, kRequest);
    std::string reply =
        "[tolm](a.cpp:1) SendIpc: send msg:{\n\t\"method\" : 3,\n\t\"type\" : 19\n}\n, out_msg:{\n\t\"ret\" : "
        "-1,\n\t\"x\" : \"";
    Import(InFormat("11-22 12:47:25.458  4711  4712 D [ipc_base]: %", reply + std::string(1023 - reply.size(), 'x')));
    EXPECT_EQ(records.back().status, -1);
}

TEST_F(LogImportTest, IdentifiesACutMessageByItsKeysIfOnlyOneOperationHasThem) {
    const auto cut = [](const std::string& members) {
        std::string message = "[tolm](a.cpp:1) SendIpc: send msg:{\n" + members;
        return InFormat("11-22 12:47:25.458  4711  4712 D [ipc_base]: %",
                        message + std::string(1023 - message.size(), 'x'));
    };
    Import(cut("\t\"channel0\" : \"0x1\",\n\t\"channel1\" : \"0x2\",\n\t\"channel2\" : \"0x") +
           cut("\t\"c_handle\" : \"0x1\",\n\t\"de\" : \"") + cut("\t\"unheard\" : 1,\n\t\"of\" : \""));
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].operation, "CreateChannelList");
    EXPECT_EQ(records[1].operation, "") << "many have this handle";
    EXPECT_EQ(records[2].operation, "");
    EXPECT_EQ(import->Counts().cut, 3u);
}

TEST_F(LogImportTest, CountsLinesThatAreMissingMixedOrLost) {
    std::string log = InFormat("11-22 12:47:25.458  4711  4712 D [ipc_base]: %", kGetName);
    log.erase(log.rfind("11-22"));  // the last line, with the brace
    log += "11-22 12:47:25.500  4711  4712 I chatty  : uid=1000(system) Binder:4711_2 expire 12 lines\n";
    log += InFormat("11-22 12:47:25.600  4711  4712 D [ipc_base]: %", kChanged);
    log += "11-22 12:47:25.700  4711  4713 D [ipc_base]: \t\"type\" : 12\n";
    Import(log);
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].note, "lines of this are missing in the log");
    EXPECT_EQ(import->Counts().mixed, 2u);
    EXPECT_EQ(import->Counts().lost, 12u);
    ASSERT_EQ(import->Problems().size(), 3u);
    EXPECT_NE(import->Problems()[0].find(":9: the log has dropped 12 lines"), std::string::npos);
    EXPECT_NE(import->Problems()[1].find(":1: lines of channel.GetName are missing"), std::string::npos);
    EXPECT_NE(import->Problems()[2].find(":15: a line of a message whose beginning is missing"), std::string::npos)
        << import->Problems()[2];
}

TEST_F(LogImportTest, HasDurationsIfTheLogHasTheBeginnings) {
    const std::string begin =
        "11-22 12:47:20.000  4711  4712 V [ipc_videobroadcast]: [tolm](tolm_channel_adaptor_ipc.cpp:31) GetName: "
        "ENTER\n";
    Import(begin + InFormat("11-22 12:47:25.458  4711  4712 D [ipc_base]: %", kGetName) +
           InFormat("11-22 12:47:26.458  4711  4712 D [ipc_base]: %", kGetName));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(Line(0), std::string("12:47:20.000000") + kExchangeText + "  5.458 s");
    EXPECT_EQ(Line(1), std::string("12:47:26.458000") + kExchangeText);
}

TEST_F(LogImportTest, KeepsTheWarningsOfTheLibrary) {
    Import(
        "11-22 12:47:25.458  4711  4712 W [ipc_base]: [tolm](tolm_base_client.cpp:70) SendIpc: SendIpc failed 0 1 1\n"
        "11-22 12:47:25.458  4711  4712 W other: [x] no warning of the library\n");
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(Line(0), "12:47:25.458000 #  # SendIpc: SendIpc failed 0 1 1");
    EXPECT_EQ(import->Counts().notes, 1u);
}

TEST_F(LogImportTest, ReadsOneWayMessagesAndEventsThatAreRequests) {
    Import(
        InFormat("D/[ipc_base]( 1): %",
                 "[tolm](a.cpp:1) SendIpcWithNoRet: send msg:{\n\t\"appid\" : 1,\n\t\"orgid\" : 2,\n\t\"t\" : 209\n}\n"
                 "[tolm](a.cpp:1) OnRecvSync: recv msg:{\n\t\"event\" : 0,\n\t\"reserved\" : \"A\"\n}\n"
                 " and out_msg:null\n in m_ipc_id(35) port(3)"));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].operation, "DestroyApp");
    EXPECT_EQ(records[0].message.type, kOneWay);
    EXPECT_EQ(records[1].operation, "changed");
    EXPECT_EQ(records[1].message.type, kRequest);
    EXPECT_EQ(PayloadOf(*records[1].reply), "null");
    EXPECT_EQ(import->Counts().mixed + import->Counts().cut, 0u);
}

TEST_F(LogImportTest, TellsFamiliesWithTheSameTypeApart) {
    const auto send = [](const std::string& members) {
        return "[tolm](a.cpp:1) SendIpc: send msg:{\n" + members + "\n}\n, out_msg:{\n\t\"ret\" : 0\n}\n";
    };
    Import(
        InFormat("D/[ipc_base]( 1): %", send("\t\"method\" : 1,\n\t\"tabid\" : 3,\n\t\"type\" : 0") +
                                            send("\t\"method\" : 3,\n\t\"in_handle\" : \"0x1\",\n\t\"type\" : 0") +
                                            send("\t\"fl_handle\" : \"0x1\",\n\t\"method\" : 4,\n\t\"type\" : 15") +
                                            send("\t\"flc_handle\" : \"0x1\",\n\t\"method\" : 12,\n\t\"type\" : 15") +
                                            send("\t\"method\" : 999,\n\t\"type\" : 15")));
    ASSERT_EQ(records.size(), 5u);
    EXPECT_EQ(records[0].family, "mtm");
    EXPECT_EQ(records[1].family, "search_manager");
    EXPECT_EQ(records[2].family, "favourite_list");
    EXPECT_EQ(records[3].family, "favourite_list_collection");
    EXPECT_EQ(records[4].family, "");
    EXPECT_EQ(import->Counts().unknown, 1u);
}

TEST_F(LogImportTest, ContinuesItsClockWhenTheTelevisionSetsItsOwn) {
    const auto at = [](const std::string& time) { return InFormat(time + "  4711  4712 D [ipc_base]: %", kChanged); };
    Import(at("12-31 23:59:59.000") + at("01-01 00:00:01.000") + at("01-01 00:00:00.500") + at("01-01 00:00:02.500"),
           {"", "", 2025});
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[1].time.Wall() - records[0].time.Wall(), 2000000u);
    EXPECT_EQ(records[0].time.Monotonic(), 0u);
    EXPECT_EQ(records[1].time.Monotonic(), 2000000u);
    EXPECT_EQ(records[2].time.Monotonic(), 2000000u);
    EXPECT_EQ(records[3].time.Monotonic(), 4000000u);
}

TEST_F(LogImportTest, FindsNothingInOtherFiles) {
    constexpr char kBytes[] = "\0\xff\x1b[[[{\n\n\t\"x\n[ \n[tolm](\nD/(:\n11-22 \n";
    Import(std::string(kBytes, sizeof(kBytes) - 1) + std::string(1u << 20, '{'));
    EXPECT_TRUE(records.empty());
    EXPECT_THROW(LogImport({directory.Path() + "/absent", "", {}}, [](const Record&) {}), Failure);
}

}  // namespace hbbtv::traffic::test
}  // namespace hbbtv::traffic::test
