// What is worth a look at single operations of the AV component adaptor, beside the rows of its table.

#include <gtest/gtest.h>

#include "ipc/src/plugin/tolm_av_component_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmAVComponentAdaptorIpc;

const void* const kComponent = reinterpret_cast<const void*>(0x8000f7a8);

class AVComponentRequests : public ::testing::Test {
  protected:
    ~AVComponentRequests() override { Adaptor::DeleteInstance(); }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

}  // namespace

TEST_F(AVComponentRequests, GetAudioChannelNumGivesANegativeNumberAsAnUnsignedOne) {
    const std::pair<const char*, unsigned> numbers[] = {
        {"-1", 4294967295u}, {"-2147483648", 2147483648u}, {"2", 2}, {"2147483647", 2147483647}, {"2147483648", 0},
        {"4294967295", 0},
    };
    for (const auto& [json, expected] : numbers) {
        mPlatform.SetReply(std::string("{\"ret\": 0, \"num\": ") + json + "}");
        unsigned num = 7;
        EXPECT_EQ(Adaptor::GetInstance()->GetAudioChannelNum(kComponent, num), 0);
        EXPECT_EQ(num, expected) << json;
    }
}

TEST_F(AVComponentRequests, ReleaseGoesBesideARequestThatIsWaitedFor) {
    // The platform answers the request once the release is there.
    mPlatform.SetAnswer([](const Frame&) -> std::optional<std::string> {
        EXPECT_EQ(Adaptor::GetInstance()->Release(kComponent), 0);
        return "{\"ret\": 0, \"pid\": 257}";
    });
    int pid = 0;
    EXPECT_EQ(Adaptor::GetInstance()->GetPid(kComponent, pid), 0);
    EXPECT_EQ(pid, 257);
    ASSERT_TRUE(mPlatform.WaitForFrames(2));
    EXPECT_EQ(mPlatform.Frames()[0].type, kRequest);
    EXPECT_EQ(mPlatform.Frames()[1].type, kOneWay);
}

}  // namespace hbbtv::test
