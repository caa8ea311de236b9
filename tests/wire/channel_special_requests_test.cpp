// What is worth a look at single operations of the channel adaptor, beside the rows of its table.

#include <gtest/gtest.h>

#include <thread>

#include "ipc/src/plugin/tolm_channel_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Channel = TolmChannelAdaptorIpc;

const void* const kChannel = reinterpret_cast<const void*>(0x8000a1b2);

class ChannelRequests : public ::testing::Test {
  protected:
    ~ChannelRequests() override { Channel::DeleteInstance(); }

    Channel& Adaptor() { return *Channel::GetInstance(); }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

}  // namespace

TEST_F(ChannelRequests, GetOnidGivesThePlatformsNumber) {
    mPlatform.SetReply("{\"ret\": 0, \"onid\": 8442}");
    int onid = -1;
    EXPECT_EQ(Adaptor().GetOnid(kChannel, onid), 0);
    EXPECT_EQ(onid, 8442);
}

TEST_F(ChannelRequests, GetOnidGivesZeroWhenTheReplyLacksIt) {
    int onid = -1;
    EXPECT_EQ(Adaptor().GetOnid(kChannel, onid), 0);
    EXPECT_EQ(onid, 0);
}

TEST_F(ChannelRequests, SetGenreByIndexSendsFiveMembers) {
    EXPECT_EQ(Adaptor().SetGenreByIndex(kChannel, 2, "news"), 0);
    ASSERT_EQ(mPlatform.Frames().size(), 1u);
    EXPECT_EQ(mPlatform.Frames()[0].payload,
              "{\n\t\"c_handle\" : \"0x8000a1b2\",\n\t\"genre\" : \"news\",\n\t\"index\" : 2,\n\t\"method\" : 32,\n"
              "\t\"type\" : 12\n}\n");
}

TEST_F(ChannelRequests, GetLogoSendsTheSizeAndReplacesTheText) {
    mPlatform.SetReply("{\"ret\": 0, \"logo\": \"new\"}");
    std::string logo = "a longer text that was there before";
    EXPECT_EQ(Adaptor().GetLogo(kChannel, 64, 48, logo), 0);
    EXPECT_EQ(logo, "new");
    ASSERT_EQ(mPlatform.Frames().size(), 1u);
    EXPECT_EQ(mPlatform.Frames()[0].payload,
              "{\n\t\"c_handle\" : \"0x8000a1b2\",\n\t\"height\" : 48,\n\t\"method\" : 40,\n\t\"type\" : 12,\n"
              "\t\"width\" : 64\n}\n");
}

TEST_F(ChannelRequests, ReleaseReadsNothingOfItsReply) {
    mPlatform.SetReply("{\"ret\": 0, \"c_handle\": 5, \"name\": [1, 2], \"handle\": null}");
    EXPECT_EQ(Adaptor().Release(kChannel), 0);
    mPlatform.SetReply("{\"ret\": 4, \"c_handle\": 5}");
    EXPECT_EQ(Adaptor().Release(kChannel), 4);
    EXPECT_EQ(mPlatform.Connections(), 1);
}

TEST_F(ChannelRequests, AReleasedOrNullChannelIsThePlatformsBusiness) {
    mPlatform.SetReply("{\"ret\": -7}");
    std::string name = "before";
    EXPECT_EQ(Adaptor().Release(kChannel), -7);
    EXPECT_EQ(Adaptor().GetName(kChannel, name), -7);
    EXPECT_EQ(Adaptor().GetName(nullptr, name), -7);
    EXPECT_EQ(name, "before");
    ASSERT_EQ(mPlatform.Frames().size(), 3u);
    EXPECT_EQ(mPlatform.Frames()[2].payload, "{\n\t\"c_handle\" : \"\",\n\t\"method\" : 13,\n\t\"type\" : 12\n}\n");
}

TEST_F(ChannelRequests, OfManyThreadsEachGetTheirOwnReply) {
    // Gives back the index that it was asked for.
    mPlatform.SetAnswer([](const Frame& request) {
        const std::string key = "\"index\" : ";
        const size_t at = request.payload.find(key) + key.size();
        return "{\"ret\": 0, \"genre\": \"" + request.payload.substr(at, request.payload.find(',', at) - at) + "\"}";
    });
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (unsigned i = 10 * t; i < 10 * t + 10; ++i) {
                std::string genre;
                if (Adaptor().GetGenreByIndex(kChannel, i, genre) != 0 || genre != std::to_string(i)) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(mPlatform.Frames().size(), 80u);
    EXPECT_EQ(mPlatform.Connections(), 1);
}

TEST(ChannelWithoutPlatform, LeavesATextAsItWas) {
    const ScratchDirectory directory;
    std::string name = "before";
    EXPECT_EQ(Channel::GetInstance()->GetName(kChannel, name), -1);
    EXPECT_EQ(name, "before");
    Channel::DeleteInstance();
}

}  // namespace hbbtv::test
