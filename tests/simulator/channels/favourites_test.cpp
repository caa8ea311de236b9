// Favourite lists and their collection: reading, changing, committing, and what survives a restart.
#include <signal.h>

#include <filesystem>

#include "channels/channel_fixture.h"

namespace hbbtv::test {
namespace {

class FavouriteLists : public ChannelFixture {
  protected:
    FavouriteLists() { mFamily = "favourite_list"; }

    void SetUp() override {
        StartRemembering();
        ServeEvents("channel_config");
    }

    int Insert(const std::string& list, int index, const std::string& ccid) {
        return RetOf(list, "InsertBefore", {{"index", index}, {"ccid", ccid}});
    }

    int RemoveFrom(const std::string& list, int index) { return RetOf(list, "Remove", {{"index", index}}); }
    int Commit(const std::string& list) { return RetOf(list, "Commit"); }
    int Rename(const std::string& list, const std::string& name) { return RetOf(list, "SetName", {{"name", name}}); }
    std::string ListName(const std::string& list) { return HandleOf(list, "GetName"); }
    std::string IdOf(const std::string& list) { return HandleOf(list, "GetFavID"); }

    // Returns the name of the channel that the operation of the list finds.
    std::string Find(const std::string& list, const std::string& operation, const Members& members) {
        const std::string channel = HandleOf(list, operation, members);
        return channel.empty() ? "none" : NameOf(channel);
    }

    std::string Create(const std::string& name) {
        return HandleOf(Collection(), "favourite_list_collection.CreateFavouriteList", {{"name", name}});
    }

    int RemoveList(int index) { return RetOf(Collection(), "favourite_list_collection.Remove", {{"index", index}}); }

    int CommitCollection() { return RetOf(Collection(), "favourite_list_collection.Commit"); }

    int Activate(const std::string& favId) {
        return RetOf(Collection(), "favourite_list_collection.ActivateFavouriteList", {{"favId", favId}});
    }

    std::string StateFile() const { return StateDirectory() + "/favourites.json"; }
};

TEST_F(FavouriteLists, AreThoseOfTheLineUpAtFirst) {
    EXPECT_EQ(RetOf(Collection(), "favourite_list_collection.GetLength"), 0);
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
    EXPECT_EQ(ListName(FavouriteListOf("fav:a")), "All mine");
    EXPECT_EQ(Favourites(FavouriteListOf("fav:a")), "Two Locked Shy");
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "One Two");
    EXPECT_EQ(CurrentFavourites(), FavouriteListOf("fav:a")) << "the first one is in use";
    EXPECT_EQ(FavouriteListOf("fav:z"), "") << "no such list";
    for (const int index : {-1, 2})
        EXPECT_EQ(RetOf(Collection(), "favourite_list_collection.Item", {{"index", index}}), -1);
}

TEST_F(FavouriteLists, FindTheirChannels) {
    const std::string list = FavouriteListOf("fav:a");
    EXPECT_EQ(Find(list, "GetChannel", {{"channelID", "ccid:1.1.5"}}), "Locked");
    EXPECT_EQ(Find(list, "GetChannel", {{"channelID", "ccid:1.1.1"}}), "none");
    EXPECT_EQ(Find(list, "GetChannelByTriplet", {{"onid", 1}, {"tsid", 1}, {"sid", 6}}), "Shy");
    EXPECT_EQ(Find(list, "GetChannelByTriplet", {{"onid", 1}, {"tsid", -1}, {"sid", 6}}), "Shy");
    EXPECT_EQ(Find(list, "GetChannelByTriplet", {{"onid", 2}, {"tsid", 1}, {"sid", 6}}), "none");
    EXPECT_EQ(Find(list, "GetChannelBySourceID", {{"sourceID", 0}}), "none");
    EXPECT_EQ(Find(list, "GetChannelBySourceID", {{"sourceID", 5}}), "none");
    for (const int index : {-1, 3}) EXPECT_EQ(RetOf(list, "Item", {{"index", index}}), -1);
}

TEST_F(FavouriteLists, AcceptChannelsAtAnyPositionAndRemoveThem) {
    const std::string list = FavouriteListOf("fav:b");
    EXPECT_EQ(Insert(list, 0, "ccid:2.1.7"), 0);
    EXPECT_EQ(Insert(list, 3, "ccid:1.1.4"), 0);
    EXPECT_EQ(Insert(list, 1, "ccid:1.1.9"), 0);
    EXPECT_EQ(Favourites(list), "Wave Spare One Two Dark");
    EXPECT_EQ(Find(list, "GetChannel", {{"channelID", "ccid:1.1.4"}}), "Dark");
    EXPECT_EQ(Insert(list, 6, "ccid:1.1.3"), -1);
    EXPECT_EQ(Insert(list, -1, "ccid:1.1.3"), -1);
    EXPECT_EQ(Insert(list, 0, "ccid:1.1.77"), -1) << "no such channel";
    EXPECT_EQ(RemoveFrom(list, 4), 0);
    EXPECT_EQ(RemoveFrom(list, 1), 0);
    EXPECT_EQ(Favourites(list), "Wave One Two");
    EXPECT_EQ(Find(list, "GetChannel", {{"channelID", "ccid:1.1.4"}}), "none");
    EXPECT_EQ(RemoveFrom(list, 3), -1);
    EXPECT_EQ(RemoveFrom(list, -1), -1);
}

TEST_F(FavouriteLists, AreRenamedForEverybody) {
    EXPECT_EQ(Rename(FavouriteListOf("fav:b"), "T\n\"5\""), 0);
    EXPECT_EQ(RetOf(FavouriteListOf("fav:b"), "Release"), 0);
    EXPECT_EQ(ListName(FavouriteListOf("fav:b")), "T\n\"5\"");
    EXPECT_EQ(Rename(FavouriteListOf("fav:b"), std::string(262145, 'x')), -1);
}

TEST_F(FavouriteLists, OfAClientAreEmptyAtFirstAndComeLast) {
    const std::string list = Create("Sport");
    EXPECT_EQ(ListName(list), "Sport");
    EXPECT_EQ(Favourites(list), "");
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b " + IdOf(list));
    EXPECT_EQ(FavouriteListOf(IdOf(list)), list);
    EXPECT_NE(IdOf(Create("Sport")), IdOf(list)) << "names may be the same";
}

TEST_F(FavouriteLists, AreNotFoundOnceRemovedAndCannotBeCommitted) {
    const std::string list = FavouriteListOf("fav:b");
    EXPECT_EQ(RemoveList(2), -1);
    EXPECT_EQ(RemoveList(-1), -1);
    EXPECT_EQ(RemoveList(1), 0);
    EXPECT_EQ(FavouriteIds(), "fav:a");
    EXPECT_EQ(FavouriteListOf("fav:b"), "");
    EXPECT_EQ(Activate("fav:b"), -1);
    EXPECT_EQ(Commit(list), -1);
    EXPECT_EQ(Favourites(list), "One Two") << "who holds it can still read it";
    EXPECT_EQ(GetOf(ChannelOf(1), "channel.GetFavourite"), false);
}

TEST_F(FavouriteLists, InUseSendAnEventForChangedChannelsAndNames) {
    const std::string inUse = CurrentFavourites();
    const std::string other = FavouriteListOf("fav:b");
    EXPECT_EQ(RetOf("0x1", "channel_config.RegisterCallback"), 0);
    EXPECT_EQ(Rename(other, "another"), 0) << "not the one in use";
    EXPECT_EQ(RemoveFrom(other, 0), 0);
    EXPECT_EQ(SetList(CreateList({})), 0);
    EXPECT_EQ(NextChange(), "L") << "the first event of all";
    EXPECT_EQ(Insert(inUse, 0, "ccid:2.1.7"), 0);
    EXPECT_EQ(NextChange(), "F");
    EXPECT_EQ(RemoveFrom(inUse, 0), 0);
    EXPECT_EQ(NextChange(), "F");
    EXPECT_EQ(Rename(inUse, "Evening"), 0);
    EXPECT_EQ(NextChange(), "F");
    EXPECT_EQ(Rename(inUse, "Evening"), 0) << "nothing changes, so there is no event";
    EXPECT_EQ(Insert(inUse, 99, "ccid:2.1.7"), -1);
    EXPECT_EQ(RemoveFrom(inUse, 99), -1);
    EXPECT_EQ(Commit(inUse), 0) << "of what is kept, and not of the list";
    EXPECT_EQ(SetList(""), 0);
    EXPECT_EQ(NextChange(), "L") << "the next event of all";
}

TEST_F(FavouriteLists, InUseFollowActivationAndRemoval) {
    EXPECT_EQ(RetOf("0x1", "channel_config.RegisterCallback"), 0);
    EXPECT_EQ(Activate("fav:b"), 0);
    EXPECT_EQ(NextChange(), "F");
    EXPECT_EQ(CurrentFavourites(), FavouriteListOf("fav:b"));
    EXPECT_EQ(Activate("fav:b"), 0) << "nothing changes, so there is no event";
    EXPECT_EQ(Activate("fav:z"), -1);
    EXPECT_EQ(RemoveList(0), 0) << "not the one in use";
    EXPECT_EQ(RemoveList(0), 0);
    EXPECT_EQ(NextChange(), "F");
    EXPECT_EQ(CurrentFavourites(), "") << "none is";
    const std::string fresh = Create("New");
    EXPECT_EQ(Activate(IdOf(fresh)), 0);
    EXPECT_EQ(NextChange(), "F");
    EXPECT_EQ(CurrentFavourites(), fresh);
}

TEST_F(FavouriteLists, AreRefusedOnceReleasedOrIfTheyAreOfAnotherKind) {
    const std::string list = FavouriteListOf("fav:a");
    const std::string collection = Collection();
    EXPECT_EQ(RetOf(list, "Release"), 0);
    EXPECT_EQ(RetOf(Collection(), "favourite_list_collection.Release"), 0);
    const Members members{{"name", "x"}, {"index", 0},    {"channelID", "x"},     {"onid", 1},       {"tsid", 1},
                          {"sid", 1},    {"sourceID", 1}, {"ccid", "ccid:1.1.1"}, {"favId", "fav:a"}};
    for (const char* family : {"favourite_list", "favourite_list_collection"}) {
        ExpectRefused(OperationsOf(family), {list, collection, GetChannelList(), ChannelOf(1), "0x1", ""}, members);
    }
    EXPECT_NE(Collection(), collection);
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
}

TEST_F(FavouriteLists, AndCollectionsShareATypeAndDivideItsCodes) {
    const std::string list = FavouriteListOf("fav:a");
    const std::string collection = Collection();
    const Members both{{Operation("favourite_list.Release").ObjectKey(), list},
                       {Operation("favourite_list_collection.Release").ObjectKey(), collection}};
    ExpectOtherCodesRefused("favourite_list", list, both);
    ExpectOtherCodesRefused("favourite_list_collection", collection, both);
    EXPECT_EQ(Favourites(list), "Two Locked Shy");
}

TEST_F(FavouriteLists, AreLimitedInNumber) {
    for (int i = 2; i < 1000; ++i) ASSERT_NE(Create("x"), "");
    EXPECT_EQ(RetOf(Collection(), "favourite_list_collection.CreateFavouriteList", {{"name", "x"}}), -1);
    EXPECT_EQ(RemoveList(999), 0);
    EXPECT_NE(Create("x"), "");
}

TEST_F(FavouriteLists, HoldAtMost20000Channels) {
    EXPECT_EQ(Stop(), 0);
    std::string ccids = "\"ccid:1.1.1\"";
    for (int i = 1; i < 20000; ++i) ccids += ", \"ccid:1.1.1\"";
    WriteFile(StateFile(), R"({"inUse": "", "lists": [{"id": "a", "name": "", "channels": [)" + ccids + "]}]}");
    StartRemembering();
    const std::string list = FavouriteListOf("a");
    EXPECT_EQ(GetOf(list, "GetLength"), 20000);
    EXPECT_EQ(Insert(list, 0, "ccid:1.1.2"), -1);
    EXPECT_EQ(RemoveFrom(list, 19999), 0);
    EXPECT_EQ(Insert(list, 19999, "ccid:1.1.2"), 0);
    EXPECT_EQ(Insert(list, 0, "ccid:1.1.2"), -1);
}

TEST_F(FavouriteLists, NeverReuseTheIdOfAStoredOne) {
    const std::string kept = Create("Sport");
    const std::string id = IdOf(kept);
    EXPECT_EQ(Commit(kept), 0);
    Restart();
    EXPECT_EQ(RemoveList(2), 0);
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b") << "removed, yet not committed";
    const std::string fresh = Create("News");
    EXPECT_NE(IdOf(fresh), id);
    EXPECT_EQ(Commit(fresh), 0);
    Restart();
    EXPECT_EQ(ListName(FavouriteListOf(id)), "Sport") << "what is kept was not overwritten";
}

TEST_F(FavouriteLists, CommittedSurviveARestart) {
    const std::string list = FavouriteListOf("fav:b");
    EXPECT_EQ(Rename(list, "Tea \"\x01\xc3\xa9"), 0);
    EXPECT_EQ(Insert(list, 0, "ccid:2.1.7"), 0);
    EXPECT_EQ(Commit(list), 0);
    Restart();
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
    EXPECT_EQ(ListName(FavouriteListOf("fav:b")), "Tea \"\x01\xc3\xa9");
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "Wave One Two");
    EXPECT_EQ(Favourites(FavouriteListOf("fav:a")), "Two Locked Shy");
    EXPECT_EQ(GetOf(ChannelOf(7), "channel.GetFavourite"), true);
}

TEST_F(FavouriteLists, NotCommittedAreAsBeforeAfterARestart) {
    const std::string list = FavouriteListOf("fav:b");
    EXPECT_EQ(Insert(list, 0, "ccid:2.1.7"), 0);
    EXPECT_EQ(Rename(list, "Coffee"), 0);
    EXPECT_NE(Create("Sport"), "");
    EXPECT_EQ(RemoveList(0), 0);
    EXPECT_EQ(Activate("fav:b"), 0);
    Restart();
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
    EXPECT_EQ(ListName(FavouriteListOf("fav:b")), "Tea");
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "One Two");
    EXPECT_EQ(CurrentFavourites(), FavouriteListOf("fav:a"));
}

TEST_F(FavouriteLists, CommittedOneByOneKeepOnlyTheirOwnChanges) {
    const std::string mine = FavouriteListOf("fav:a");
    const std::string tea = FavouriteListOf("fav:b");
    EXPECT_EQ(RemoveFrom(mine, 0), 0);
    EXPECT_EQ(RemoveFrom(tea, 0), 0);
    EXPECT_EQ(Activate("fav:b"), 0);
    EXPECT_EQ(Commit(tea), 0);
    EXPECT_EQ(RemoveFrom(tea, 0), 0) << "after the commit";
    Restart();
    EXPECT_EQ(Favourites(FavouriteListOf("fav:a")), "Two Locked Shy");
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "Two");
    EXPECT_EQ(CurrentFavourites(), FavouriteListOf("fav:a"));
}

TEST_F(FavouriteLists, LastFromTheirFirstCommitOn) {
    const std::string list = Create("Sport");
    const std::string id = IdOf(list);
    EXPECT_EQ(Insert(list, 0, "ccid:1.1.4"), 0);
    EXPECT_EQ(Commit(list), 0);
    Restart();
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b " + id);
    EXPECT_EQ(ListName(FavouriteListOf(id)), "Sport");
    EXPECT_EQ(Favourites(FavouriteListOf(id)), "Dark");
    EXPECT_NE(IdOf(Create("Other")), id) << "no id is given out twice";
}

TEST_F(FavouriteLists, LastAsTheCollectionIsCommitted) {
    const std::string fresh = Create("Sport");
    const std::string id = IdOf(fresh);
    EXPECT_EQ(Insert(fresh, 0, "ccid:1.1.4"), 0);
    EXPECT_EQ(RemoveFrom(FavouriteListOf("fav:b"), 0), 0);
    EXPECT_EQ(RemoveList(0), 0);
    EXPECT_EQ(Activate("fav:b"), 0);
    EXPECT_EQ(CommitCollection(), 0);
    Restart();
    EXPECT_EQ(FavouriteIds(), "fav:b " + id);
    EXPECT_EQ(Favourites(FavouriteListOf(id)), "Dark") << "a new list as it was";
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "One Two") << "another list's changes need its own commit";
    EXPECT_EQ(CurrentFavourites(), FavouriteListOf("fav:b"));
    EXPECT_EQ(RemoveList(0), 0);
    EXPECT_EQ(RemoveList(0), 0);
    EXPECT_EQ(CommitCollection(), 0);
    Restart();
    EXPECT_EQ(FavouriteIds(), "") << "that there are none is remembered too";
    EXPECT_EQ(CurrentFavourites(), "");
}

TEST_F(FavouriteLists, WithoutAStateDirectoryAreNotStored) {
    EXPECT_EQ(Stop(), 0);
    Start();
    EXPECT_EQ(RemoveList(0), 0);
    EXPECT_EQ(CommitCollection(), 0);
    EXPECT_EQ(Stop(), 0);
    Start();
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
}

TEST_F(FavouriteLists, KeepChannelsThatTheLineUpLacksForALaterOne) {
    EXPECT_EQ(Commit(FavouriteListOf("fav:b")), 0);
    EXPECT_EQ(Stop(), 0);
    mLineUp = kSmallLineUp;
    const size_t two = mLineUp.find("\"sid\": 2");
    ASSERT_NE(two, std::string::npos);
    mLineUp.replace(two, 8, "\"sid\": 8");
    StartRemembering();
    EXPECT_TRUE(mSimulator->WaitForOutput("favourite list fav:b: the line-up lacks 1 of its channels"));
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "One");
    EXPECT_EQ(CommitCollection(), 0);
    EXPECT_EQ(Stop(), 0);
    mLineUp = kChannelLineUp;
    StartRemembering();
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "One Two");
}

TEST_F(FavouriteLists, WhoseStateIsDamagedComeFromTheLineUpAndNothingIsOverwritten) {
    EXPECT_EQ(RemoveList(0), 0);
    EXPECT_EQ(CommitCollection(), 0);
    EXPECT_EQ(Stop(), 0);
    const std::vector<std::string> damaged{
        "{ \"lists\": [",
        "",
        "[]",
        "{}",
        "{\"inUse\": \"\", \"lists\": {}}",
        "{\"inUse\": 3, \"lists\": []}",
        "{\"inUse\": \"x\", \"lists\": []}",
        "{\"inUse\": \"\", \"lists\": [3]}",
        "{\"inUse\": \"\", \"lists\": [{\"id\": \"\", \"name\": \"\", \"channels\": []}]}",
        "{\"inUse\": \"\", \"lists\": [{\"id\": \"a\", \"name\": 1, \"channels\": []}]}",
        "{\"inUse\": \"\", \"lists\": [{\"id\": \"a\", \"name\": \"\", \"channels\": \"\"}]}",
        "{\"inUse\": \"\", \"lists\": [{\"id\": \"a\", \"name\": \"\", \"channels\": [1]}]}",
        "{\"inUse\": \"\", \"lists\": [{\"id\": \"a\", \"name\": \"\", \"channels\": []},"
        " {\"id\": \"a\", \"name\": \"\", \"channels\": []}]}",
        std::string(100000, '[')};
    for (size_t i = 0; i < damaged.size(); ++i) {
        WriteFile(StateFile(), damaged[i]);
        StartRemembering();
        const std::string aside = "favourites.json.damaged-" + std::to_string(i + 1);
        EXPECT_TRUE(mSimulator->WaitForOutput("is damaged (")) << damaged[i].substr(0, 100);
        EXPECT_TRUE(mSimulator->WaitForOutput("it is now " + aside));
        EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
        EXPECT_FALSE(std::filesystem::exists(StateFile()));
        EXPECT_EQ(ContentOf(StateDirectory() + "/" + aside), damaged[i]);
        EXPECT_EQ(Stop(), 0);
    }
    StartRemembering();
    EXPECT_EQ(CommitCollection(), 0);
    Restart();
    EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
    EXPECT_EQ(mSimulator->Output().find("damaged"), std::string::npos);
}

TEST_F(FavouriteLists, KilledInTheMiddleOfACommitAreAsBeforeOrAfterIt) {
    for (int round = 0; round < 20; ++round) {
        RawClient client(RequestSocket("favourite_list"));
        const std::string list = FavouriteListOf("fav:a");
        const std::string commit = RequestText("Commit", {{Operation("favourite_list.Commit").ObjectKey(), list}});
        for (int i = 0; i < 20; ++i) client.Send(kRequest, RequestPort("favourite_list"), commit);
        ASSERT_TRUE(client.Receive().has_value());
        mSimulator->Kill();
        StartRemembering();
        EXPECT_EQ(FavouriteIds(), "fav:a fav:b");
        EXPECT_EQ(mSimulator->Output().find("damaged"), std::string::npos) << mSimulator->Output();
    }
}

TEST_F(FavouriteLists, ThatCannotBeWrittenAreRefusedAndCanBeCommittedLater) {
    const std::string list = FavouriteListOf("fav:b");
    EXPECT_EQ(RemoveFrom(list, 0), 0);
    std::filesystem::create_directory(StateFile());
    EXPECT_EQ(Commit(list), -1);
    EXPECT_TRUE(mSimulator->WaitForOutput("favourites.json cannot be written: "));
    EXPECT_FALSE(std::filesystem::exists(StateFile() + ".new"));
    EXPECT_EQ(Favourites(list), "Two");
    std::filesystem::remove(StateFile());
    EXPECT_EQ(Commit(list), 0);
    Restart();
    EXPECT_EQ(Favourites(FavouriteListOf("fav:b")), "Two");
}

TEST_F(FavouriteLists, OfTwoSimulatorsNeedTwoStateDirectories) {
    const std::string sockets = mDirectory / "other";
    std::filesystem::create_directory(sockets);
    const auto second = Launch({"--directory", sockets, "--state", StateDirectory()});
    EXPECT_EQ(second->WaitForExit(), 5);
    EXPECT_NE(second->Output().find("cannot be used: another simulator uses it"), std::string::npos)
        << second->Output();
    EXPECT_TRUE(std::filesystem::is_empty(sockets));
    EXPECT_EQ(CommitCollection(), 0) << "the first one continues";
    mSimulator->Kill();
    const auto third = Launch({"--directory", sockets, "--state", StateDirectory()});
    EXPECT_TRUE(third->WaitForOutput("ready\n")) << "nothing is left of one that was killed";
}

}  // namespace
}  // namespace hbbtv::test
