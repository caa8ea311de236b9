// The television that the families share: line-up, channel and favourite lists, tuner, programme guide, applications
// and their tabs, parental control, device, preferences, and the handles of objects that several families use.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/handles.h"
#include "television/applications/applications.h"
#include "television/applications/tabs.h"
#include "television/channels/channel_lists.h"
#include "television/channels/favourites.h"
#include "television/channels/service_channels.h"
#include "television/channels/tuner.h"
#include "television/device/device.h"
#include "television/device/parental_control.h"
#include "television/device/preferences.h"
#include "television/device/state_store.h"
#include "television/line_up/line_up.h"
#include "television/programmes/guide.h"

namespace hbbtv::sim {

// Why a channel cannot be presented; values of OIPF DAE volume 5.
enum class ChannelError {
    NotSupported = 0,
    CannotTune = 1,
    TunerLocked = 2,
    ParentalLock = 3,
    Encrypted = 4,
    UnknownChannel = 5,
    Interrupted = 6,
    BeingRecorded = 7,
    CannotResolveUri = 8,
    NotEnoughBandwidth = 9,
    NoNextOrPrevious = 10,
    NotEnoughResources = 11,
    NotInTransportStream = 12,
    Unidentified = 100
};

class Tv {
  public:
    // Without a seed the handles differ from run to run, but the schedule does not. The store must outlive the object.
    // Without a guide programmes are generated.
    Tv(LineUp theLineUp, std::optional<uint32_t> seed, const StateStore& theState,
       std::unique_ptr<Guide> theGuide = nullptr);
    Tv(const Tv&) = delete;
    Tv& operator=(const Tv&) = delete;

    // Creates a channel from numbers, or for IP from its broadcast id, which is the service's URI. If they name a
    // service of the line-up, it returns that service's channel.
    std::shared_ptr<Channel> MakeChannel(Channel numbers);

    // Returns why tuning is impossible.
    std::optional<ChannelError> Refusal(const Channel& channel) const;

    // Returns the problem found after tuning; nothing if the channel can be presented.
    static std::optional<ChannelError> Obstacle(const Channel& channel);

    const StateStore& state;
    LineUp lineUp;
    ServiceChannels serviceChannels;
    ChannelLists channelList;
    std::shared_ptr<Favourites> favourites;
    Preferences preferences;
    std::unique_ptr<Guide> guide;  // never null
    ParentalControl parentalControl;
    Device device;
    HandleSource handleSource;
    HandleTable<Channel> channels;
    HandleTable<ChannelList> channelLists;
    HandleTable<FavouriteList> favouriteLists;
    HandleTable<Favourites> favouriteCollections;
    HandleTable<Component> components;
    HandleTable<ComponentList> componentLists;
    HandleTable<Programme> programmes;
    HandleTable<ProgrammeList> programmeLists;
    HandleTable<RatingCollection> ratingCollections;
    Tuner tuner;
    Applications applications;
    Tabs tabs;
    int displaySource = 0;
    struct {
        unsigned width = 1920, height = 1080;
    } resolution;

    // Set by the video/broadcast family, for families that return its handle.
    std::function<Handle()> broadcastSupervisor = [] { return Handle{0}; };

  private:
    bool Receives(int idType) const;

    unsigned mMadeChannels = 0;
};

}  // namespace hbbtv::sim
