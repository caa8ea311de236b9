// The operations of the DSM-CC adaptor: the release of a file, which is answered, and the request for one, which is
// not.

#include <android/log.h>

#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "log_capture.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmDsmccAdaptorIpc;

constexpr char kTag[] = "[ipc_dsmcc]";

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"RequestFile",
         Tell<Adaptor>(&Adaptor::RequestFile, std::string("text 0 of url"), Handle(0xcafe0000)),
         R"({"type": 20, "method": 0, "url": "text 0 of url", "context": "0xcafe0000"})",
         {},
         "one-way"},
        {"ReleaseFile",
         Tell<Adaptor>(&Adaptor::ReleaseFile, std::string("text 1 of url"), Handle(0xcafe0001)),
         R"({"type": 20, "method": 1, "url": "text 1 of url", "context": "0xcafe0001"})",
         {}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"RequestFile", [](const std::string& text) { Adaptor::GetInstance()->RequestFile(text, Handle(7)); },
     R"({"type": 20, "method": 0, "url": "", "context": "0x7"})"},
    {"ReleaseFile", [](const std::string& text) { Adaptor::GetInstance()->ReleaseFile(text, Handle(7)); },
     R"({"type": 20, "method": 1, "url": "", "context": "0x7"})"},
};

class FileRequest : public ::testing::Test {
  protected:
    ~FileRequest() override { Adaptor::DeleteInstance(); }

    int Ask(const std::string& url, const void* context) { return Adaptor::GetInstance()->RequestFile(url, context); }

    // Lines of the adaptor, as "priority function message".
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != kTag) continue;
            EXPECT_EQ(line.file, "tolm_dsmcc_adaptor_ipc.cpp");
            lines.push_back(std::to_string(line.priority) + " " + line.function + " " + line.message);
        }
        return lines;
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
};

const std::vector<std::string> kEnterAndLeave = {"2 RequestFile ENTER", "2 RequestFile LEAVE"};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"dsmcc", kTag, "tolm_dsmcc_adaptor_ipc.cpp", &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(DsmccRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(DsmccRows, Reply, ::testing::ValuesIn(RowsOf(Rows(), "request")), NameOf);
INSTANTIATE_TEST_SUITE_P(DsmccRows, OneWay, ::testing::ValuesIn(RowsOf(Rows(), "one-way")), NameOf);
INSTANTIATE_TEST_SUITE_P(DsmccRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(DsmccRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(DsmccProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(DsmccProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 57, "service_dsmcc_to_hbbtv", 2, "platform");
    ExpectTheProtocolsEndpoint("events", 58, "service_hbbtv_to_dsmcc", 2, "library");
}

TEST(DsmccProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(20, Codes(0, 1));
}

TEST(DsmccProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample(
        "ReleaseFile",
        Tell<Adaptor>(&Adaptor::ReleaseFile, std::string("dvb://1.3fb.283d.17/index.html"), Handle(0x5a10)),
        R"({"type": 20, "method": 1, "url": "dvb://1.3fb.283d.17/index.html", "context": "0x5a10"})", {});
}

TEST_F(FileRequest, WithoutAContextHasAnEmptyOne) {
    FakePlatform platform("service_dsmcc_to_hbbtv", "");
    EXPECT_EQ(Ask("u", nullptr), 0);
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_EQ(platform.Frames()[0].payload,
              "{\n\t\"context\" : \"\",\n\t\"method\" : 0,\n\t\"type\" : 20,\n\t\"url\" : \"u\"\n}\n");
}

TEST_F(FileRequest, FailsWithoutALineOfTheAdaptorWhileThePlatformIsDown) {
    EXPECT_EQ(Ask("u", Handle(7)), -1);
    EXPECT_EQ(Lines(), kEnterAndLeave);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "SendIpc failed 0 1 1"), 0);
    {
        FakePlatform platform("service_dsmcc_to_hbbtv", "");
        EXPECT_EQ(Ask("u", Handle(7)), 0);
        EXPECT_TRUE(platform.WaitForFrames(1));
    }
}

TEST_F(FileRequest, AndReleaseKeepTheirOrderOnOneConnection) {
    FakePlatform platform("service_dsmcc_to_hbbtv", "{\"ret\": 5}");
    EXPECT_EQ(Ask("first", Handle(1)), 0);
    EXPECT_EQ(Adaptor::GetInstance()->ReleaseFile("first", Handle(1)), 5);
    EXPECT_EQ(Ask("second", Handle(2)), 0);
    EXPECT_EQ(Adaptor::GetInstance()->ReleaseFile("second", Handle(2)), 5);
    std::vector<int> types;
    for (const Frame& frame : platform.Frames()) types.push_back(frame.type);
    EXPECT_EQ(types, (std::vector<int>{kOneWay, kRequest, kOneWay, kRequest}));
    EXPECT_EQ(platform.Connections(), 1);
}

}  // namespace hbbtv::test
