// Lists of channels: iterating and searching.
#include "family/family_setup.h"

#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

class ChannelListFamily : public ObjectFamily<ChannelList> {
  public:
    explicit ChannelListFamily(const FamilySetup& setup);
};

ChannelListFamily::ChannelListFamily(const FamilySetup& setup)
    : ObjectFamily("channel_list", setup.tv.channelLists, "channel list") {
    const auto look = [&](const char* name, auto search) { Look(name, "channel", setup.tv.channels, search); };
    Row("Release", &ChannelListFamily::Release);
    Get("GetLength", "len", [](const ChannelList& list) { return static_cast<unsigned>(list.Channels().size()); });
    look("Item", [](const ChannelList& list, In in) { return At(list.Channels(), in.Int("index")); });
    look("GetChannel", [](const ChannelList& list, In in) { return list.WithId(in.Text("channelID")); });
    look("GetChannelByTriplet", [](const ChannelList& list, In in) {
        return list.WithTriplet(in.Int("onid"), in.Int("tsid"), in.Int("sid"), in.Int("nid"));
    });
    look("GetChannelBySourceID", [](const ChannelList& list, In in) { return list.WithSourceId(in.Int("sourceID")); });
}

}  // namespace

std::unique_ptr<Family> MakeChannelListFamily(const FamilySetup& setup) {
    return std::make_unique<ChannelListFamily>(setup);
}

}  // namespace hbbtv::sim
