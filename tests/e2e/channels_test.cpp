// The interfaces around channels across processes: the service publishes them all, the channel configuration's event
// reaches a client's process until that ends, and the simulated platform's channels and lists reach the client.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteList.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteListCollection.h>

#include <memory>
#include <string>
#include <vector>

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

// A client of the service, in front of the simulated platform with its own line-up.
class SimulatedChannels : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
        mChannel = Find<IChannel>();
        mList = Find<IChannelList>();
        mConfig = Find<IChannelConfig>();
        mFavourites = Find<IFavouriteList>();
        mCollection = Find<IFavouriteListCollection>();
        ASSERT_TRUE(mChannel != nullptr && mList != nullptr && mConfig != nullptr && mFavourites != nullptr &&
                    mCollection != nullptr);
    }

    void RestartPlatform() {
        mPlatform->Kill();
        mPlatform = std::make_unique<SimulatedPlatform>(mOptions);
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
        // A family's first request meets the connection to the one that was killed.
        EXPECT_EQ(-1, StatusOf(mChannel->Release(0)));
        EXPECT_EQ(-1, StatusOf(mConfig->UnregisterCallback()));
        EXPECT_EQ(-1, StatusOf(mFavourites->Release(0)));
        EXPECT_EQ(-1, StatusOf(mCollection->Release(0)));
    }

    // The one result of a method that ends well.
    template <typename Value, typename Interface, typename Method, typename... Arguments>
    static Value Get(const sp<Interface>& service, Method method, const Arguments&... arguments) {
        Value value{};
        const auto keep = [&](int32_t status, const auto& result) {
            EXPECT_EQ(0, status);
            value = result;
        };
        EXPECT_TRUE(((*service).*method)(arguments..., keep).isOk());
        return value;
    }

    static int32_t StatusOf(const android::hardware::Return<int32_t>& status) {
        return status.isOk() ? static_cast<int32_t>(status) : -1000;
    }

    std::string NameOf(int64_t channel) { return Get<std::string>(mChannel, &IChannel::GetName, channel); }

    std::vector<std::string> Names(int64_t list) {
        std::vector<std::string> names;
        const uint32_t length = Get<uint32_t>(mList, &IChannelList::GetLength, list);
        for (uint32_t i = 0; i < length; ++i) {
            names.push_back(NameOf(Get<int64_t>(mList, &IChannelList::Item, list, static_cast<int32_t>(i))));
        }
        return names;
    }

    std::vector<std::string> Favourites(int64_t list) {
        std::vector<std::string> names;
        const uint32_t length = Get<uint32_t>(mFavourites, &IFavouriteList::GetLength, list);
        for (uint32_t i = 0; i < length; ++i) {
            names.push_back(NameOf(Get<int64_t>(mFavourites, &IFavouriteList::Item, list, static_cast<int32_t>(i))));
        }
        return names;
    }

    int64_t FavouriteListOf(const std::string& favId) {
        const auto collection = Get<int64_t>(mConfig, &IChannelConfig::GetFavouriteListCollection);
        return Get<int64_t>(mCollection, &IFavouriteListCollection::GetFavouriteList, collection, favId);
    }

    ScratchDirectory mDirectory;
    std::vector<std::string> mOptions{"--state", mDirectory / "state"};
    std::unique_ptr<SimulatedPlatform> mPlatform = std::make_unique<SimulatedPlatform>(mOptions);
    ServiceProcess mService;
    sp<IChannel> mChannel;
    sp<IChannelList> mList;
    sp<IChannelConfig> mConfig;
    sp<IFavouriteList> mFavourites;
    sp<IFavouriteListCollection> mCollection;
};

TEST_F(SimulatedChannels, AreWalkedFoundAndFiltered) {
    const auto all = Get<int64_t>(mConfig, &IChannelConfig::GetChannelList);
    const std::vector<std::string> names = Names(all);
    ASSERT_EQ(35u, names.size());
    EXPECT_EQ("Das Erste HD", names[0]);
    EXPECT_EQ("KiKA HD", names[5]);
    EXPECT_EQ("1LIVE", names[34]);

    const auto zdf = Get<int64_t>(mList, &IChannelList::GetChannelByTriplet, all, 1, 1011, 11110, 1);
    EXPECT_EQ("ZDF HD", NameOf(zdf));
    EXPECT_EQ(2, Get<int32_t>(mChannel, &IChannel::GetMajorChannel, zdf));
    EXPECT_EQ("Zweites Deutsches Fernsehen HD", Get<std::string>(mChannel, &IChannel::GetLongName, zdf));
    const auto ccid = Get<std::string>(mChannel, &IChannel::GetCcid, zdf);
    EXPECT_EQ(zdf, Get<int64_t>(mList, &IChannelList::GetChannel, all, ccid));
    EXPECT_EQ(0, Get<int64_t>(mList, &IChannelList::GetChannel, all, "ccid:none"));

    const auto children =
        Get<int64_t>(mConfig, &IChannelConfig::CreateFilteredList, false, true, false, "fav:children");
    EXPECT_EQ((std::vector<std::string>{"KiKA HD", "CBBC"}), Names(children));
    const auto hidden = Get<int64_t>(mConfig, &IChannelConfig::CreateFilteredList, false, false, true, "");
    EXPECT_EQ(std::vector<std::string>{"Irish terrestrial service"}, Names(hidden));
    EXPECT_EQ(0, StatusOf(mChannel->SetHidden(zdf, true)));
    const auto more = Get<int64_t>(mConfig, &IChannelConfig::CreateFilteredList, false, false, true, "");
    EXPECT_EQ((std::vector<std::string>{"ZDF HD", "Irish terrestrial service"}), Names(more));
    EXPECT_EQ(0, StatusOf(mList->Release(more)));
    EXPECT_EQ(-1, StatusOf(mList->Release(more)));
}

TEST_F(SimulatedChannels, InTheirThousandsMakeAListThatHoldsThemAll) {
    const sp<IVideoBroadcast> vb = FindVideoBroadcast();
    ASSERT_NE(nullptr, vb);
    const auto object = Get<int64_t>(vb, &IVideoBroadcast::Create, 1);
    std::vector<int64_t> channels;
    for (int i = 0; i < 10000; ++i) {
        channels.push_back(Get<int64_t>(vb, &IVideoBroadcast::CreateChannel_2, object, 11, 200, 1, i, 0, ""));
    }
    const auto list =
        Get<int64_t>(mConfig, &IChannelConfig::CreateChannelList, android::hardware::hidl_vec<int64_t>(channels));
    EXPECT_EQ(10000u, Get<uint32_t>(mList, &IChannelList::GetLength, list));
    for (int32_t i = 0; i < 10000; ++i) {
        ASSERT_EQ(channels[static_cast<size_t>(i)], Get<int64_t>(mList, &IChannelList::Item, list, i)) << i;
    }
}

TEST_F(SimulatedChannels, TakeAndGiveNamesOf64KibibytesUnchanged) {
    std::string name;
    for (int i = 0; name.size() < 65536; ++i) {
        name += "\"\\/'" + std::string(1, static_cast<char>(1 + i % 31)) + "\x7f K\xc3\xb6ln \xf0\x9f\x93\xba";
    }
    const auto channel = Get<int64_t>(mConfig, &IChannelConfig::GetCurrentChannel);
    ASSERT_EQ(0, StatusOf(mChannel->SetName(channel, name)));
    EXPECT_EQ(name, NameOf(channel));
    const int64_t list = FavouriteListOf("fav:news");
    ASSERT_EQ(0, StatusOf(mFavourites->SetName(list, name)));
    EXPECT_EQ(name, Get<std::string>(mFavourites, &IFavouriteList::GetName, list));
}

TEST_F(SimulatedChannels, FavouritesThatWereCommittedAreThereAfterARestartOfThePlatform) {
    const int64_t news = FavouriteListOf("fav:news");
    EXPECT_EQ((std::vector<std::string>{"tagesschau24 HD", "France 24 (en) HD", "BBC News"}), Favourites(news));
    const auto zdf = Get<int64_t>(mList, &IChannelList::GetChannelByTriplet,
                                  Get<int64_t>(mConfig, &IChannelConfig::GetChannelList), 1, 1011, 11110, -1);
    EXPECT_FALSE(Get<bool>(mChannel, &IChannel::GetFavourite, zdf));
    EXPECT_EQ(0, StatusOf(mFavourites->InsertBefore(news, 1, Get<std::string>(mChannel, &IChannel::GetCcid, zdf))));
    EXPECT_EQ(0, StatusOf(mFavourites->Commit(news)));
    EXPECT_EQ(0, StatusOf(mFavourites->Remove(news, 0))) << "not committed";
    EXPECT_TRUE(Get<bool>(mChannel, &IChannel::GetFavourite, zdf));

    const auto collection = Get<int64_t>(mConfig, &IChannelConfig::GetFavouriteListCollection);
    const auto sport = Get<int64_t>(mCollection, &IFavouriteListCollection::CreateFavouriteList, collection, "Sport");
    const auto sportId = Get<std::string>(mFavourites, &IFavouriteList::GetFavID, sport);
    EXPECT_EQ(0, StatusOf(mCollection->ActivateFavouriteList(collection, sportId)));
    EXPECT_EQ(sport, Get<int64_t>(mConfig, &IChannelConfig::GetCurrentFavouriteList));
    EXPECT_EQ(0, StatusOf(mCollection->Remove(collection, 1)));
    EXPECT_EQ(0, StatusOf(mCollection->Commit(collection)));

    RestartPlatform();
    EXPECT_EQ((std::vector<std::string>{"tagesschau24 HD", "ZDF HD", "France 24 (en) HD", "BBC News"}),
              Favourites(FavouriteListOf("fav:news")));
    EXPECT_EQ(0, FavouriteListOf("fav:children"));
    const auto current = Get<int64_t>(mConfig, &IChannelConfig::GetCurrentFavouriteList);
    EXPECT_EQ("Sport", Get<std::string>(mFavourites, &IFavouriteList::GetName, current));
}

TEST_F(SimulatedChannels, TellARegisteredClientOfChangesByOtherClientsAndAtTheTelevision) {
    RegisteredClient client("channel_config");
    ASSERT_TRUE(client.Registered()) << client.Output();
    const auto list = Get<int64_t>(mConfig, &IChannelConfig::CreateFilteredList, false, true, false, "");
    EXPECT_EQ(0, StatusOf(mConfig->SetChannelList(list)));
    EXPECT_EQ(list, Get<int64_t>(mConfig, &IChannelConfig::GetChannelList));
    EXPECT_TRUE(client.WaitForOutput("channel configuration 0 76 2748\n")) << client.Output();
    const auto collection = Get<int64_t>(mConfig, &IChannelConfig::GetFavouriteListCollection);
    EXPECT_EQ(0, StatusOf(mCollection->ActivateFavouriteList(collection, "fav:children")));
    EXPECT_TRUE(client.WaitForOutput("channel configuration 0 70 2748\n")) << client.Output();

    ChildProcess viewer({HBBTV_SIM_PROGRAM, "--tell", "remove 3"});
    EXPECT_EQ(0, viewer.WaitForExit()) << viewer.Output();
    EXPECT_EQ("ok arte HD\n", viewer.Output());
    EXPECT_TRUE(client.WaitForOutput("70 2748\nchannel configuration 0 76 2748\n")) << client.Output();
}

}  // namespace

}  // namespace hbbtv::test
