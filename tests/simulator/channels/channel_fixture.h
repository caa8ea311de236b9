// The simulator with a line-up in which channels differ in every property, and the requests of the families around
// channels in words.
#pragma once

#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {

// Channels 1 One, 2 Two, 3 Scrambled, 4 Dark (no signal), 5 Locked, 6 Shy (hidden), 7 Wave (radio, by cable); and
// Spare, on air but not in the list. The triplets are 1.1.<number>, Wave is 2.1.7 and Spare 1.1.9. The favourite
// list "fav:a", All mine, holds Two, Locked and Shy; "fav:b", Tea, holds One and Two.
extern const std::string kChannelLineUp;

class ChannelFixture : public VideoBroadcastFixture {
  protected:
    ChannelFixture() { mLineUp = kChannelLineUp; }

    std::string GetChannelList() { return Handle("channel_config.GetChannelList"); }
    std::string CurrentFavourites() { return Handle("channel_config.GetCurrentFavouriteList"); }
    std::string Collection() { return Handle("channel_config.GetFavouriteListCollection"); }
    std::string FavouriteListOf(const std::string& favId) {
        return HandleOf(Collection(), "favourite_list_collection.GetFavouriteList", {{"favId", favId}});
    }
    std::string CreateList(const std::vector<std::string>& channels);
    std::string Filtered(bool blocked, bool favourite, bool hidden, const std::string& favouriteListId = "");
    int SetList(const std::string& list) { return Ret("channel_config.SetChannelList", {{"list", list}}); }

    // Asks for the events of the channel configuration.
    void Register() { EXPECT_EQ(Ret("channel_config.RegisterCallback", {{"context", "0xabc"}}), 0); }

    // Returns what the next one is about: "L" for the channel list, "F" for the favourite list.
    std::string NextChange() { return NextEventOf("channel_config").members["reserved"].asString(); }

    // Returns the channel with this service id in the list in use.
    std::string ChannelOf(int sid);
    std::string NameOf(const std::string& channel) { return HandleOf(channel, "channel.GetName"); }

    // Returns the names of a list's channels in order: "One Two".
    std::string Names(const std::string& channelList) { return NamesOf("channel_list", channelList); }
    std::string Favourites(const std::string& list) { return NamesOf("favourite_list", list); }

    // Returns the ids of the favourite lists of the collection in order.
    std::string FavouriteIds();

  private:
    std::string NamesOf(const std::string& family, const std::string& list);
};

}  // namespace hbbtv::test
