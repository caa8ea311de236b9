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

}  // namespace hbbtv::test
