// Channel lists and the channel configuration: items, searches, filters, lists of clients, the list in use,
// and the event for changes.
#include "television/channels/channel_lists.h"

#include "channels/channel_fixture.h"
#include "television/channels/service_channels.h"

namespace hbbtv::test {
namespace {

class ChannelLists : public ChannelFixture {
  protected:
    ChannelLists() { mFamily = "channel_config"; }

    void SetUp() override {
        Start();
        ServeEvents("channel_config");
    }

    // Returns the name of the channel that the operation of the list finds.
    std::string Find(const std::string& list, const std::string& operation, const Members& members) {
        const std::string channel = HandleOf(list, operation, members);
        return channel.empty() ? "none" : NameOf(channel);
    }

    std::string Triplet(const std::string& list, int onid, int tsid, int sid, int nid) {
        return Find(list, "channel_list.GetChannelByTriplet",
                    {{"onid", onid}, {"tsid", tsid}, {"sid", sid}, {"nid", nid}});
    }

    std::string WithId(const std::string& list, const std::string& id) {
        return Find(list, "channel_list.GetChannel", {{"channelID", id}});
    }

    std::string CurrentChannelName() { return NameOf(Handle("GetCurrentChannel")); }

    // Members for every operation of a list.
    const Members mAnyMembers{
        {"index", 0}, {"channelID", "ccid:1.1.1"}, {"onid", 1}, {"tsid", 1}, {"sid", 1}, {"nid", -1}, {"sourceID", 1}};
};

TEST_F(ChannelLists, TheListOfAllHoldsTheListedServicesInOrder) {
    const std::string list = GetChannelList();
    EXPECT_EQ(GetOf(list, "channel_list.GetLength"), 7);
    EXPECT_EQ(Names(list), "One Two Scrambled Dark Locked Shy Wave");
    EXPECT_EQ(GetChannelList(), list) << "one object, one handle";
    for (const int index : {-1, 7, 2147483647}) {
        EXPECT_EQ(RetOf(list, "channel_list.Item", {{"index", index}}), -1) << index;
    }
}

TEST_F(ChannelLists, FindAChannelByItsId) {
    const std::string list = GetChannelList();
    EXPECT_EQ(WithId(list, "ccid:1.1.2"), "Two");
    EXPECT_EQ(WithId(list, "ccid:1.1.9"), "none") << "on air, but not in the list";
    EXPECT_EQ(WithId(list, "Two"), "none");
    EXPECT_EQ(WithId(list, ""), "none");
}

TEST_F(ChannelLists, FindAChannelByItsTripletWithNegativeNumbersAsWildcards) {
    const std::string list = GetChannelList();
    EXPECT_EQ(Triplet(list, 1, 1, 2, 133), "Two");
    EXPECT_EQ(Triplet(list, 1, 1, 2, -1), "Two");
    EXPECT_EQ(Triplet(list, 1, 1, 2, 200), "none") << "another network's id";
    EXPECT_EQ(Triplet(list, 2, 1, 7, 200), "Wave");
    EXPECT_EQ(Triplet(list, 1, 1, 7, -1), "none");
    EXPECT_EQ(Triplet(list, -1, -1, 7, -1), "Wave");
    EXPECT_EQ(Triplet(list, -1, 1, 7, 133), "none");
    EXPECT_EQ(Triplet(list, 1, 1, -1, -1), "none") << "the service id has to be given";
    EXPECT_EQ(Triplet(list, 1, 1, 9, -1), "none") << "on air, but not in the list";
}

TEST_F(ChannelLists, FindAChannelByItsSourceId) {
    const std::string vb = NewObject();
    const std::string made = CreateChannel(vb, 30, 0, 0, 0, 77);
    const std::string list = CreateList({ChannelOf(1), made});
    const auto find = [&](const std::string& where, int sourceId) {
        return HandleOf(where, "channel_list.GetChannelBySourceID", {{"sourceID", sourceId}});
    };
    EXPECT_EQ(find(list, 77), made);
    EXPECT_EQ(find(list, 78), "");
    EXPECT_EQ(find(list, 0), "") << "no source id";
    EXPECT_EQ(find(GetChannelList(), 77), "");
}

TEST_F(ChannelLists, OfAClientHoldTheirChannelsEvenTwice) {
    EXPECT_EQ(Names(CreateList({})), "");
    const std::string list = CreateList({ChannelOf(7), ChannelOf(1), ChannelOf(7)});
    EXPECT_EQ(Names(list), "Wave One Wave");
    EXPECT_EQ(WithId(list, "ccid:1.1.1"), "One");
    EXPECT_EQ(WithId(list, "ccid:1.1.2"), "none");
    EXPECT_EQ(Triplet(list, 2, 1, 7, -1), "Wave");
    EXPECT_NE(CreateList({}), CreateList({})) << "each one is new";
}

TEST_F(ChannelLists, OfAClientNeedEveryChannelThatTheyAnnounce) {
    const std::string one = ChannelOf(1);
    const std::vector<Members> wrong{{{"size", 2u}, {"channel0", one}},
                                     {{"size", 4294967295u}, {"channel0", one}},
                                     {{"size", 1u}, {"channel0", ""}},
                                     {{"size", 1u}, {"channel0", "0x1"}},
                                     {{"size", 1u}, {"channel0", GetChannelList()}},
                                     {{"size", -1}},
                                     {}};
    for (size_t i = 0; i < wrong.size(); ++i) EXPECT_EQ(AskRaw("CreateChannelList", wrong[i])["ret"], -1) << i;
}

TEST_F(ChannelLists, AreLimitedInNumber) {
    constexpr size_t kLength = 99999;
    const std::string one = ChannelOf(1);  // from the list of all, which holds 7
    const Members members{{"channel", List(std::vector<std::string>(kLength, one))}};
    std::string list;
    for (int i = 0; i < 10; ++i) list = Handle("CreateChannelList", members);
    EXPECT_EQ(GetOf(list, "channel_list.GetLength"), 99999);
    EXPECT_NE(CreateList({one, one, one}), "");
    EXPECT_EQ(Ret("CreateChannelList", {{"channel", List(std::vector<std::string>{one})}}), -1);
    EXPECT_EQ(RetOf(list, "channel_list.Release"), 0);
    EXPECT_EQ(Ret("CreateChannelList", members), 0);
}

TEST_F(ChannelLists, FilteredHoldTheChannelsThatMatchEveryFlag) {
    EXPECT_EQ(Names(Filtered(false, false, false)), "Scrambled Dark Wave");
    EXPECT_EQ(Names(Filtered(false, true, false)), "One Two");
    EXPECT_EQ(Names(Filtered(true, true, false)), "Locked");
    EXPECT_EQ(Names(Filtered(true, false, false)), "");
    EXPECT_EQ(Names(Filtered(false, true, true)), "Shy");
    EXPECT_EQ(Names(Filtered(false, true, false, "fav:a")), "Two");
    EXPECT_EQ(Names(Filtered(false, true, false, "fav:b")), "One Two");
    EXPECT_EQ(Names(Filtered(true, true, false, "fav:b")), "");
    EXPECT_EQ(Names(Filtered(false, false, false, "fav:a")), "Scrambled Dark Wave")
        << "without favourites the list is ignored";
    const Members unknown{{"blocked", false}, {"favourite", true}, {"hidden", false}, {"favouriteListID", "fav:z"}};
    EXPECT_EQ(Ret("CreateFilteredList", unknown), -1);
    EXPECT_EQ(Ret("CreateFilteredList", {{"blocked", false}, {"favourite", true}, {"hidden", false}}), -1);
}

TEST_F(ChannelLists, FilteredReflectWhatClientsSetWhileEarlierOnesStay) {
    const std::string before = Filtered(false, false, false);
    EXPECT_EQ(RetOf(ChannelOf(7), "channel.SetHidden", {{"hidden", true}}), 0);
    EXPECT_EQ(RetOf(ChannelOf(6), "channel.SetHidden", {{"hidden", false}}), 0);
    EXPECT_EQ(RetOf(ChannelOf(4), "channel.SetName", {{"name", "Dim"}}), 0);
    EXPECT_EQ(Names(Filtered(false, false, true)), "Wave");
    EXPECT_EQ(Names(Filtered(false, true, false)), "One Two Shy");
    EXPECT_EQ(Names(Filtered(false, false, false)), "Scrambled Dim");
    EXPECT_EQ(Names(before), "Scrambled Dim Wave");
    const std::string tea = FavouriteListOf("fav:b");
    EXPECT_EQ(RetOf(tea, "favourite_list.InsertBefore", {{"index", 0}, {"ccid", "ccid:1.1.4"}}), 0);
    EXPECT_EQ(Names(Filtered(false, true, false, "fav:b")), "One Two Dim") << "in the order of the channel list";
}

TEST_F(ChannelLists, AreRefusedOnceReleased) {
    const std::string all = GetChannelList();
    EXPECT_EQ(RetOf(all, "channel_list.Release"), 0);
    ExpectRefused(OperationsOf("channel_list"), {all}, mAnyMembers);
    EXPECT_EQ(SetList(all), -1);
    const std::string again = GetChannelList();
    EXPECT_NE(again, all);
    EXPECT_EQ(Names(again), "One Two Scrambled Dark Locked Shy Wave");
}

TEST_F(ChannelLists, OfOtherKindsAreRefused) {
    for (const std::string& handle :
         {ChannelOf(1), FavouriteListOf("fav:a"), Collection(), std::string("0x1"), std::string()}) {
        ExpectRefused(OperationsOf("channel_list"), {handle}, mAnyMembers);
        EXPECT_EQ(SetList(handle), handle.empty() ? 0 : -1) << "the null handle stands for the list of all";
    }
    ExpectOtherCodesRefused("channel_list", GetChannelList());
    ExpectOtherCodesRefused("channel_config");
}

TEST_F(ChannelLists, InUseAreReturnedByGetChannelListAndUsedByZapping) {
    const std::string all = GetChannelList();
    const std::string list = CreateList({ChannelOf(7), ChannelOf(6), ChannelOf(2), ChannelOf(7), ChannelOf(1)});
    EXPECT_EQ(SetList(list), 0);
    EXPECT_EQ(GetChannelList(), list);
    EXPECT_EQ(Tell("zap next"), "ok Wave") << "behind One, which is on";
    EXPECT_EQ(Tell("zap next"), "ok Two") << "Shy is hidden";
    EXPECT_EQ(Tell("zap next"), "ok One") << "Wave came already";
    EXPECT_EQ(Tell("zap previous"), "ok Two");
    EXPECT_EQ(Tell("zap 5"), "error: there is no such channel in the list");
    EXPECT_EQ(Tell("zap 6"), "ok Shy") << "hidden channels have a number";

    const std::string vb = NewObject();
    EXPECT_NE(Handle("GetCurrentChannel"), "");
    EXPECT_NE(GetOf(vb, "video_broadcast.BindToCurrentChannel"), "");
    EXPECT_EQ(RetOf(vb, "video_broadcast.NextChannel"), 0);
    EXPECT_EQ(CurrentChannelName(), "Two");
    EXPECT_EQ(RetOf(vb, "video_broadcast.PrevChannel"), 0);
    EXPECT_EQ(CurrentChannelName(), "Wave");

    EXPECT_EQ(RetOf(list, "channel_list.Release"), 0);
    EXPECT_EQ(Names(GetChannelList()), "Wave Shy Two Wave One") << "it stays in use when its handle goes";
    EXPECT_EQ(SetList(""), 0) << "back to the list of all";
    EXPECT_EQ(GetChannelList(), all);
}

TEST_F(ChannelLists, CanBeInUseWhileEmpty) {
    EXPECT_EQ(SetList(CreateList({})), 0);
    EXPECT_EQ(Names(GetChannelList()), "");
    EXPECT_EQ(Tell("zap next"), "error: there is no such channel in the list");
}

TEST_F(ChannelLists, ReportAnErrorWhenZappingToAChannelThatIsNotReceived) {
    const std::string vb = NewObject();
    const std::string nowhere = CreateChannel(vb, 11, 9, 9, 9);
    EXPECT_EQ(SetList(CreateList({ChannelOf(1), nowhere})), 0);
    EXPECT_EQ(RetOf(vb, "video_broadcast.BindToCurrentChannel"), 0);
    EXPECT_EQ(NextEvent(), "PlayState 2 0");
    EXPECT_EQ(RetOf(vb, "video_broadcast.NextChannel"), 0);
    EXPECT_EQ(NextMembers()["errorState"], 5);
    EXPECT_EQ(RetOf(vb, "video_broadcast.Destroy"), 0);
    EXPECT_EQ(Tell("zap next"), "error: the channel is not received");
}

TEST_F(ChannelLists, TheBroadcastSupervisorIsAVideoBroadcastObjectOfTheTelevision) {
    const std::string supervisor = Handle("GetBroadcastSupervisor");
    EXPECT_NE(supervisor, "");
    EXPECT_EQ(Handle("GetBroadcastSupervisor"), supervisor);
    EXPECT_EQ(RetOf(supervisor, "video_broadcast.RegisterCallback", {{"context", "0x5"}}), 0);
    EXPECT_EQ(SetChannel(supervisor, ChannelOf(2)), 0);
    EXPECT_EQ(NextEvent(), "PlayState 1 0");
    EXPECT_EQ(RetOf(supervisor, "video_broadcast.Destroy"), -1);
    EXPECT_EQ(Handle("GetBroadcastSupervisor"), supervisor);
    EXPECT_EQ(CurrentChannelName(), "Two");
}

TEST_F(ChannelLists, SendAnEventWhenAnotherListIsInUse) {
    Register();
    const std::string list = CreateList({ChannelOf(1)});
    EXPECT_EQ(SetList(list), 0);
    EXPECT_EQ(NextChange(), "L");
    EXPECT_EQ(SetList(list), 0) << "nothing changes, so there is no event";
    EXPECT_EQ(SetList("0x1"), -1);
    EXPECT_EQ(RetOf(Collection(), "favourite_list_collection.ActivateFavouriteList", {{"favId", "fav:b"}}), 0);
    EXPECT_EQ(NextChange(), "F");
    EXPECT_EQ(SetList(""), 0);
    EXPECT_EQ(NextChange(), "L");
}

TEST_F(ChannelLists, SendNoEventsBeforeARegistrationAndAfterItsEnd) {
    const std::string list = CreateList({ChannelOf(1)});
    EXPECT_EQ(SetList(list), 0);
    Register();
    EXPECT_EQ(Ret("UnregisterCallback"), 0);
    EXPECT_EQ(SetList(""), 0);
    EXPECT_EQ(Ret("UnregisterCallback"), 0) << "also without one";
    Register();
    EXPECT_EQ(RetOf(Collection(), "favourite_list_collection.ActivateFavouriteList", {{"favId", "fav:b"}}), 0);
    EXPECT_EQ(NextChange(), "F") << "the first event of all";
    EXPECT_EQ(Ret("RegisterCallback"), -1) << "without a context";
}

TEST_F(ChannelLists, SendAnEventForEveryChangeAtTheTelevision) {
    Register();
    const std::string all = GetChannelList();
    const std::string own = CreateList({ChannelOf(2)});
    EXPECT_EQ(Tell("remove 2"), "ok Two");
    EXPECT_EQ(NextChange(), "L");
    EXPECT_EQ(GetChannelList(), all) << "the same list";
    EXPECT_EQ(Names(all), "One Scrambled Dark Locked Shy Wave");
    EXPECT_EQ(WithId(all, "ccid:1.1.2"), "none");
    EXPECT_EQ(Names(own), "Two") << "a client's own list stays";
    EXPECT_EQ(Names(Filtered(false, true, false)), "One");
    EXPECT_EQ(Tell("zap next"), "ok Scrambled");
    EXPECT_EQ(Tell("remove 2"), "error: there is no such channel in the list");
    EXPECT_EQ(Tell("restore 2"), "ok Two");
    EXPECT_EQ(NextChange(), "L");
    EXPECT_EQ(Names(all), "One Two Scrambled Dark Locked Shy Wave");
    EXPECT_EQ(Tell("restore 2"), "error: no removed channel has this number");

    EXPECT_EQ(Tell("hide 7"), "ok Wave");
    EXPECT_EQ(NextChange(), "L");
    EXPECT_EQ(Names(Filtered(false, false, true)), "Wave");
    EXPECT_EQ(Tell("hide 7"), "error: the channel is already hidden");
    EXPECT_EQ(Tell("show 7"), "ok Wave");
    EXPECT_EQ(NextChange(), "L");
    EXPECT_EQ(Tell("show 7"), "error: the channel is not hidden");
    EXPECT_EQ(Tell("hide 77"), "error: there is no such channel in the list");
    for (const std::string command : {"hide", "show", "remove", "restore"}) {
        EXPECT_EQ(Tell(command), "error: usage: " + command + " NUMBER");
    }
}

TEST_F(ChannelLists, SendEventsAgainWhenTheLibraryIsBack) {
    Register();
    StopServingEvents("channel_config");
    EXPECT_EQ(Tell("hide 1"), "ok One");
    EXPECT_TRUE(mSimulator->WaitForOutput("dropped"));
    ServeEvents("channel_config");
    EXPECT_EQ(Tell("show 1"), "ok One");
    EXPECT_EQ(NextChange(), "L");
}

class LongChannelLists : public ChannelLists {
  protected:
    static constexpr int kServices = 5000;

    void SetUp() override {
        mLineUp = LineUpOf(kServices);
        ChannelLists::SetUp();
    }
};

TEST_F(LongChannelLists, Of10000ChannelsHoldThemAll) {
    const std::string all = GetChannelList();
    std::vector<std::string> channels;
    for (int i = 0; i < kServices; ++i) {
        channels.push_back(HandleOf(all, "channel_list.Item", {{"index", i}}));
    }
    for (int i = kServices; i > 0; --i) channels.push_back(channels[static_cast<size_t>(i) - 1]);
    const std::string list = CreateList(channels);
    EXPECT_EQ(GetOf(list, "channel_list.GetLength"), 10000);
    for (int i = 0; i < 10000; ++i) {
        EXPECT_EQ(HandleOf(list, "channel_list.Item", {{"index", i}}), channels[static_cast<size_t>(i)]);
    }
    EXPECT_EQ(SetList(list), 0);
    EXPECT_EQ(Tell("zap previous"), "ok S5000");
}

// A search that walks through the list would take minutes here, beyond the test's time limit.
TEST(HugeChannelLists, FindEveryOneOfTheirChannels) {
    constexpr int kChannels = 200000;
    sim::LineUp lineUp;
    const auto network = std::make_shared<const sim::Network>();
    for (int i = 0; i < kChannels; ++i) {
        const auto service = std::make_shared<sim::Service>();
        service->network = network;
        service->onid = i / 1000;
        service->sid = i % 1000;
        service->tsid = 7;
        service->number = i + 1;
        ASSERT_EQ(lineUp.Find(service->onid, 7, service->sid), nullptr);
        lineUp.services.push_back(service);
    }
    const sim::ServiceChannels channels(lineUp);
    const sim::ChannelLists lists(channels.Listed());
    const sim::ChannelList& all = *lists.All();
    for (int i = 0; i < kChannels; ++i) {
        const auto& service = lineUp.services[static_cast<size_t>(i)];
        ASSERT_EQ(lineUp.Find(service->onid, 7, service->sid), service);
        const auto channel = channels.Of(service);
        ASSERT_EQ(all.WithTriplet(service->onid, 7, service->sid, 0), channel);
        ASSERT_EQ(all.WithId(channel->ccid), channel);
        const auto next = lineUp.services[static_cast<size_t>((i + 1) % kChannels)];
        ASSERT_EQ(lists.Neighbour(*channel, 1), channels.Of(next));
    }
}

}  // namespace
}  // namespace hbbtv::test
