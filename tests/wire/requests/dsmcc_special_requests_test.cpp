// The operations of the DSM-CC adaptor: the release of a file, which is answered, and the request for one, which is
// not.

#include <android/log.h>
#include <gtest/gtest.h>

#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmDsmccAdaptorIpc;

class FileRequest : public ::testing::Test {
  protected:
    ~FileRequest() override { Adaptor::DeleteInstance(); }

    int Ask(const std::string& url, const void* context) { return Adaptor::GetInstance()->RequestFile(url, context); }

    // Lines of the adaptor, as "priority function message".
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != UnderTest().tag) continue;
            EXPECT_EQ(line.file, UnderTest().sourceFile);
            lines.push_back(std::to_string(line.priority) + " " + line.function + " " + line.message);
        }
        return lines;
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
};

const std::vector<std::string> kEnterAndLeave = {"2 RequestFile ENTER", "2 RequestFile LEAVE"};

}  // namespace

TEST_F(FileRequest, FailsWithoutALineOfTheAdaptorWhileThePlatformIsDown) {
    EXPECT_EQ(Ask("u", Handle(7)), -1);
    EXPECT_EQ(Lines(), kEnterAndLeave);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "SendIpc failed 0 1 1"), 0);
    {
        FakePlatform platform(UnderTest().Socket(), "");
        EXPECT_EQ(Ask("u", Handle(7)), 0);
        EXPECT_TRUE(platform.WaitForFrames(1));
    }
}

TEST_F(FileRequest, AndReleaseKeepTheirOrderOnOneConnection) {
    FakePlatform platform(UnderTest().Socket(), "{\"ret\": 5}");
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
