// Every method of IChannelConfig: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include <cstdio>

#include "ChannelConfig.h"
#include "method_rows.h"
#include "recording_channel_config_callback.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IChannelConfig;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IChannelConfig> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"RegisterCallback",
             Status([](auto& s) { return s.RegisterCallback(new RecordingChannelConfigCallback, 0x5ffffffff); }), 0,
             R"({"context": "0xffffffff"})", "{}", "0", "-1"},
            {"UnregisterCallback", Status([](auto& s) { return s.UnregisterCallback(); }), 1, "{}", "{}", "0", "-1"},
            {"GetCurrentChannel", Result<int64_t>([](auto& s, auto cb) { return s.GetCurrentChannel(cb); }), 2, "{}",
             R"({"handle": "0xf0000002"})", "0 0xf0000002", "-1 0x0"},
            {"GetChannelList", Result<int64_t>([](auto& s, auto cb) { return s.GetChannelList(cb); }), 3, "{}",
             R"({"handle": "0xf0000003"})", "0 0xf0000003", "-1 0x0"},
            {"GetBroadcastSupervisor", Result<int64_t>([](auto& s, auto cb) { return s.GetBroadcastSupervisor(cb); }),
             4, "{}", R"({"handle": "0xf0000004"})", "0 0xf0000004", "-1 0x0"},
            {"GetFavouriteListCollection",
             Result<int64_t>([](auto& s, auto cb) { return s.GetFavouriteListCollection(cb); }), 5, "{}",
             R"({"handle": "0xf0000005"})", "0 0xf0000005", "-1 0x0"},
            {"GetCurrentFavouriteList", Result<int64_t>([](auto& s, auto cb) { return s.GetCurrentFavouriteList(cb); }),
             6, "{}", R"({"handle": "0xf0000006"})", "0 0xf0000006", "-1 0x0"},
            {"SetChannelList", Status([](auto& s) { return s.SetChannelList(-1); }), 7, R"({"list": "0xffffffff"})",
             "{}", "0", "-1"},
            {"CreateChannelList", Result<int64_t>([](auto& s, auto cb) {
                 return s.CreateChannelList({kObject, 0x2000, -1}, cb);
             }),
             8, R"({"size": 3, "channel0": "0x80001000", "channel1": "0x2000", "channel2": "0xffffffff"})",
             R"({"list": "0xf0000008"})", "0 0xf0000008", "-1 0x0"},
            {"CreateFilteredList", Result<int64_t>([](auto& s, auto cb) {
                 return s.CreateFilteredList(true, false, true, "favouriteListID 9", cb);
             }),
             9, R"({"blocked": true, "favourite": false, "hidden": true, "favouriteListID": "favouriteListID 9"})",
             R"({"handle": "0xf0000009"})", "0 0xf0000009", "-1 0x0"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_vb_chn_config", 3, 19};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(ChannelConfig, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(ChannelConfigMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

TEST(ChannelConfig, GivesHandlesWithAZeroHighHalf) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "handle": "0x12345678f0000001"})");
    int64_t channel = -1;
    ASSERT_TRUE(Rows::Make()->GetCurrentChannel([&](int32_t, int64_t handle) { channel = handle; }).isOk());
    EXPECT_EQ(0xf0000001, channel);
}

TEST(ChannelConfig, MakesListsOfAnyLength) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0, "list": "0x5a20"})");
    const auto service = Rows::Make();
    for (const int length : {0, 1, 11, 10000}) {
        SCOPED_TRACE(length);
        std::vector<int64_t> channels;
        for (int i = 0; i < length; ++i) channels.push_back(0x100000000 * i + 1 + i);
        int64_t list = 0;
        platform.ForgetFrames();
        ASSERT_TRUE(service->CreateChannelList(channels, [&](int32_t, int64_t handle) { list = handle; }).isOk());
        EXPECT_EQ(0x5a20, list);
        ASSERT_EQ(1u, platform.Frames().size());
        const Json::Value request = Parsed(platform.Frames()[0].payload);
        EXPECT_EQ(length, request["size"].asInt());
        ASSERT_EQ(static_cast<size_t>(length) + 3, request.size());
        for (int i = 0; i < length; ++i) {
            char handle[32];
            snprintf(handle, sizeof(handle), "0x%x", 1 + i);
            EXPECT_EQ(handle, request["channel" + std::to_string(i)].asString());
        }
    }
}

}  // namespace hbbtv::test
