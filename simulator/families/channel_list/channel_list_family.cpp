// Requests of the channel list family: see channel_list_family.h.
#include "families/channel_list/channel_list_family.h"

#include "families/members.h"

namespace hbbtv::sim {

namespace {

class ChannelListFamily : public Family {
  public:
    explicit ChannelListFamily(const FamilySetup& setup);

  private:
    using In = const Arguments&;
    using Out = Json::Value&;

    std::shared_ptr<ChannelList> Named(In in) const { return Find(mTv.channelLists, in, "cl_handle", "channel list"); }

    // A row that finds a channel of the list, or the null handle.
    template <typename Search>
    void Look(int code, const char* name, Search search) {
        Row(code, name,
            [this, search](In in, Out out) { out["channel"] = Text(mTv.channels, search(*Named(in), in)); });
    }

    Tv& mTv;
};

ChannelListFamily::ChannelListFamily(const FamilySetup& setup)
    : Family({"channel_list", "service_plugin_to_hbbtv_vb_chn_list", "", 4, "method", 14}), mTv(setup.tv) {
    Row(0, "Release", [this](In in, Out) { Remove(mTv.channelLists, in, "cl_handle", "channel list"); });
    Row(1, "GetLength", [this](In in, Out out) { out["len"] = static_cast<unsigned>(Named(in)->Channels().size()); });
    Look(2, "Item", [](const ChannelList& list, In in) { return At(list.Channels(), in.Int("index")); });
    Look(3, "GetChannel", [](const ChannelList& list, In in) { return list.WithId(in.Text("channelID")); });
    Look(4, "GetChannelByTriplet", [](const ChannelList& list, In in) {
        return list.WithTriplet(in.Int("onid"), in.Int("tsid"), in.Int("sid"), in.Int("nid"));
    });
    Look(5, "GetChannelBySourceID",
         [](const ChannelList& list, In in) { return list.WithSourceId(in.Int("sourceID")); });
}

}  // namespace

std::unique_ptr<Family> MakeChannelListFamily(const FamilySetup& setup) {
    return std::make_unique<ChannelListFamily>(setup);
}

}  // namespace hbbtv::sim
