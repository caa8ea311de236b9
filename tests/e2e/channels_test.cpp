// The interfaces around channels across processes: the service publishes them all, and the channel configuration's
// event reaches a client's process until that ends.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteList.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteListCollection.h>

#include <string>

#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::hidl_string;

TEST(Channels, AreAskedAcrossProcesses) {
    ScratchDirectory directory;
    FakePlatform channelPlatform("service_plugin_to_hbbtv_vb_chn", R"({"ret": 0, "name": "K\u00f6ln \"1\""})");
    FakePlatform listPlatform("service_plugin_to_hbbtv_vb_chn_list", R"({"ret": 0, "channel": "0xf0000001"})");
    FakePlatform configPlatform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "list": "0xf0000002"})");
    FakePlatform favouritePlatform("service_plugin_to_hbbtv_vb_fav_list", R"({"ret": 0, "favId": "fav:1"})");
    FakePlatform collectionPlatform("service_plugin_to_hbbtv_vb_fav_list_collect", R"({"ret": 0, "len": 3})");
    ServiceProcess service;

    const sp<IChannel> channel = Find<IChannel>();
    const sp<IChannelList> list = Find<IChannelList>();
    const sp<IChannelConfig> config = Find<IChannelConfig>();
    const sp<IFavouriteList> favourite = Find<IFavouriteList>();
    const sp<IFavouriteListCollection> collection = Find<IFavouriteListCollection>();
    ASSERT_NE(nullptr, channel);
    ASSERT_NE(nullptr, list);
    ASSERT_NE(nullptr, config);
    ASSERT_NE(nullptr, favourite);
    ASSERT_NE(nullptr, collection);

    std::string answer;
    ASSERT_TRUE(channel->GetName(1, [&](int32_t, const hidl_string& name) { answer = name; }).isOk());
    EXPECT_EQ("K\xc3\xb6ln \"1\"", answer);
    ASSERT_TRUE(favourite->GetFavID(1, [&](int32_t, const hidl_string& favId) { answer = favId; }).isOk());
    EXPECT_EQ("fav:1", answer);
    int64_t number = 0;
    ASSERT_TRUE(list->GetChannelByTriplet(1, 2, 3, 4, 5, [&](int32_t, int64_t found) { number = found; }).isOk());
    EXPECT_EQ(0xf0000001, number);
    ASSERT_TRUE(config->CreateChannelList({1, 2}, [&](int32_t, int64_t made) { number = made; }).isOk());
    EXPECT_EQ(0xf0000002, number);
    ASSERT_TRUE(collection->GetLength(1, [&](int32_t, uint32_t length) { number = length; }).isOk());
    EXPECT_EQ(3, number);
}

TEST(Channels, TellARegisteredClientOfChangesUntilItsProcessEnds) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0})");
    ServiceProcess service;
    ASSERT_NE(nullptr, Find<IChannelConfig>());
    RegisteredClient client("channel_config");
    ASSERT_TRUE(client.Registered()) << client.Output();

    RawConnection events = RawConnection::To(directory / "service_hbbtv_to_plugin_vb_chn_config");
    ASSERT_TRUE(events.Write(FrameBytes(kOneWay, 3, R"({"event": 0, "reserved": "A"})")));
    EXPECT_TRUE(client.WaitForOutput("channel configuration 0 65 2748\n")) << client.Output();

    ASSERT_EQ(1u, platform.Frames().size());
    client.Kill();
    ASSERT_TRUE(platform.WaitForFrames(2));
    EXPECT_EQ("{\n\t\"method\" : 1,\n\t\"type\" : 19\n}\n", platform.Frames()[1].payload);
    // The service lives on, and drops the event.
    ASSERT_TRUE(events.Write(FrameBytes(kOneWay, 3, R"({"event": 0, "reserved": "A"})")));
    ASSERT_TRUE(events.Write(FrameBytes(kRequest, 3, "{}")));
    EXPECT_TRUE(events.ReadFrame().has_value());
}

}  // namespace

}  // namespace hbbtv::test
