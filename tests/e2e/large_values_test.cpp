// Long lists and names, from a client's process through the service to the simulated platform and back.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteList.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <string>
#include <vector>

#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;

class LargeValues : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(mPlatform.Ready()) << mPlatform.Output();
        ASSERT_NE(FindVideoBroadcast(), nullptr);
    }

    // The only result of a successful call.
    template <typename Value, typename Interface, typename Method, typename... Arguments>
    static Value Get(const sp<Interface>& service, Method method, const Arguments&... arguments) {
        Value value{};
        const auto keep = [&](int32_t status, const auto& result) {
            EXPECT_EQ(status, 0);
            value = result;
        };
        EXPECT_TRUE(((*service).*method)(arguments..., keep).isOk());
        return value;
    }

    ScratchDirectory mDirectory;
    SimulatedPlatform mPlatform;
    ServiceProcess mService;
};

TEST_F(LargeValues, ThousandsOfChannelsAreOneList) {
    constexpr int32_t kChannels = 10000;
    const sp<IVideoBroadcast> video = FindVideoBroadcast();
    const sp<IChannelConfig> config = Find<IChannelConfig>();
    const sp<IChannelList> lists = Find<IChannelList>();
    const auto vb = Get<int64_t>(video, &IVideoBroadcast::Create, 1);
    std::vector<int64_t> channels;
    for (int32_t i = 0; i < kChannels; ++i) {
        channels.push_back(Get<int64_t>(video, &IVideoBroadcast::CreateChannel_2, vb, 11, 200, 1, i, 0, ""));
    }
    const auto list =
        Get<int64_t>(config, &IChannelConfig::CreateChannelList, android::hardware::hidl_vec<int64_t>(channels));
    EXPECT_EQ(Get<uint32_t>(lists, &IChannelList::GetLength, list), static_cast<uint32_t>(kChannels));
    for (int32_t i = 0; i < kChannels; ++i) {
        ASSERT_EQ(Get<int64_t>(lists, &IChannelList::Item, list, i), channels[static_cast<size_t>(i)]) << i;
    }
}

TEST_F(LargeValues, NamesOf64KibibytesComeBackUnchanged) {
    const sp<IChannelConfig> config = Find<IChannelConfig>();
    const sp<IChannel> channels = Find<IChannel>();
    const sp<IFavouriteList> favourites = Find<IFavouriteList>();
    std::string name;
    for (int i = 0; name.size() < 65536; ++i) {
        name += "\"\\/'" + std::string(1, static_cast<char>(1 + i % 31)) + "\x7f K\xc3\xb6ln \xf0\x9f\x93\xba";
    }
    const auto channel = Get<int64_t>(config, &IChannelConfig::GetCurrentChannel);
    ASSERT_EQ(static_cast<int32_t>(channels->SetName(channel, name)), 0);
    EXPECT_EQ(Get<std::string>(channels, &IChannel::GetName, channel), name);
    const auto list = Get<int64_t>(config, &IChannelConfig::GetCurrentFavouriteList);
    ASSERT_EQ(static_cast<int32_t>(favourites->SetName(list, name)), 0);
    EXPECT_EQ(Get<std::string>(favourites, &IFavouriteList::GetName, list), name);
}

}  // namespace

}  // namespace hbbtv::test
