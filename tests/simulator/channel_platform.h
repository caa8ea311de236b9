// The simulator for tests of the families around channels: a line-up with everything that a channel can tell, and the
// requests of the five families in words.
#pragma once

#include "simulated_platform.h"

namespace hbbtv::test {

// Channels 1 One, 2 Two, 3 Scrambled, 4 Dark (no signal), 5 Locked, 6 Shy (hidden), 7 Wave (radio, by cable); and
// Spare, on air without being in the list. The triplets are 1.1.<number>, Wave is 2.1.7 and Spare 1.1.9. The favourite
// list "fav:a", All mine, holds Two, Locked and Shy; "fav:b", Tea, holds One and Two.
extern const std::string kChannelLineUp;

class ChannelPlatform : public SimulatedPlatform {
  protected:
    ChannelPlatform() { mLineUp = kChannelLineUp; }

    // Starts the simulator, with the state directory "state" when it is to remember.
    void Begin(std::vector<std::string> options = {});
    void BeginRemembering() { Begin({"--state", StateDirectory()}); }
    void RestartRemembering();

    std::string StateDirectory() const { return mDirectory / "state"; }

    std::string GetChannelList() { return HandleAt(kToChannelConfig, 3, "handle"); }
    std::string CurrentFavourites() { return HandleAt(kToChannelConfig, 6, "handle"); }
    std::string Collection() { return HandleAt(kToChannelConfig, 5, "handle"); }
    std::string FavouriteListOf(const std::string& favId);
    std::string CreateList(const std::vector<std::string>& channels);
    std::string Filtered(bool blocked, bool favourite, bool hidden, const std::string& favouriteListId = "");

    // The channel with this service id in the list of all channels.
    std::string ChannelOf(int sid);

    // The names of a list's channels, in their order: "One Two".
    std::string Names(const std::string& channelList) { return NamesOf(kToChannelList, "cl_handle", 2, channelList); }
    std::string Favourites(const std::string& list) { return NamesOf(kToFavouriteList, "fl_handle", 5, list); }

    // The ids of the favourite lists of the collection, in their order.
    std::string FavouriteIds();

    std::string NameOf(const std::string& channel) {
        return AskAt(kToChannel, 13, {{"c_handle", channel}})["name"].asString();
    }

    // What the next event of the channel configuration says: "L" or "F".
    std::string NextChange();

    std::unique_ptr<LibraryStandIn> mConfigEvents;

  private:
    std::string NamesOf(const Endpoint& family, const char* handleMember, int itemMethod, const std::string& list);
};

}  // namespace hbbtv::test
