// Lists of channels: walking and searching them.
#include "family/family_setup.h"

#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

class ChannelListFamily : public ObjectFamily<ChannelList> {
  public:
    explicit ChannelListFamily(const FamilySetup& setup);
};

ChannelListFamily::ChannelListFamily(const FamilySetup& setup)
    : ObjectFamily({"channel_list", "service_plugin_to_hbbtv_vb_chn_list", "", 4, "method", 14}, setup.tv.channelLists,
                   "cl_handle", "channel list") {
    const auto look = [&](int code, const char* name, auto search) {
        Look(code, name, "channel", setup.tv.channels, search);
    };
    Row(0, "Release", &ChannelListFamily::Release);
    Get(1, "GetLength", "len", [](const ChannelList& list) { return static_cast<unsigned>(list.Channels().size()); });
    look(2, "Item", [](const ChannelList& list, In in) { return At(list.Channels(), in.Int("index")); });
    look(3, "GetChannel", [](const ChannelList& list, In in) { return list.WithId(in.Text("channelID")); });
    look(4, "GetChannelByTriplet", [](const ChannelList& list, In in) {
        return list.WithTriplet(in.Int("onid"), in.Int("tsid"), in.Int("sid"), in.Int("nid"));
    });
    look(5, "GetChannelBySourceID",
         [](const ChannelList& list, In in) { return list.WithSourceId(in.Int("sourceID")); });
}

}  // namespace

std::unique_ptr<Family> MakeChannelListFamily(const FamilySetup& setup) {
    return std::make_unique<ChannelListFamily>(setup);
}

}  // namespace hbbtv::sim
