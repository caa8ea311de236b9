// The fixture around the families of channels: see channel_platform.h.
#include "channel_platform.h"

namespace hbbtv::test {

const std::string kChannelLineUp = R"({
    "networks": [{"id": "sat", "name": "Satellite", "position": "19.2E", "delivery": "DVB_S", "nid": 133},
                 {"id": "cable", "name": "Cable", "delivery": "DVB_C", "nid": 200}],
    "services": [
        {"name": "One", "network": "sat", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1, "provider": "ARD",
         "longName": "Number One", "description": "The first.", "genres": ["News", "Sport"], "definition": "HD",
         "logo": "http://logos/one.png", "frequency": 11493750, "programmeId": "one.tv",
         "components": [{"type": "video", "tag": 1, "pid": 101, "encoding": "AVC_HD_25"}]},
        {"name": "Two", "network": "sat", "onid": 1, "tsid": 1, "sid": 2, "type": "TV", "number": 2,
         "components": [{"type": "video", "tag": 1, "pid": 201, "encoding": "MPEG2_SD_25"}]},
        )" + std::string(kOddServices) +
                                   R"(
        {"name": "Shy", "network": "sat", "onid": 1, "tsid": 1, "sid": 6, "type": "OTHER", "number": 6, "hidden": true,
         "components": [{"type": "video", "tag": 1, "pid": 601, "encoding": "MPEG2_SD_25"}]},
        {"name": "Wave", "network": "cable", "onid": 2, "tsid": 1, "sid": 7, "type": "RADIO", "number": 7,
         "components": [{"type": "audio", "tag": 1, "pid": 701, "encoding": "MPEG1_L2", "language": "deu"}]},
        {"name": "Spare", "network": "sat", "onid": 1, "tsid": 1, "sid": 9, "type": "TV", "listed": false,
         "components": [{"type": "video", "tag": 1, "pid": 901, "encoding": "MPEG2_SD_25"}]}
    ],
    "favouriteLists": [
        {"id": "fav:a", "name": "All mine", "services": [{"onid": 1, "tsid": 1, "sid": 2},
            {"onid": 1, "tsid": 1, "sid": 5}, {"onid": 1, "tsid": 1, "sid": 6}]},
        {"id": "fav:b", "name": "Tea", "services": [{"onid": 1, "tsid": 1, "sid": 1}, {"onid": 1, "tsid": 1, "sid": 2}]}
    ]
})";

void ChannelPlatform::Begin(std::vector<std::string> options) {
    options.insert(options.end(), {"--tune-time", "0ms"});
    Start(options);
    if (!mConfigEvents) {
        mConfigEvents = std::make_unique<LibraryStandIn>(mDirectory / "service_hbbtv_to_plugin_vb_chn_config");
    }
}

void ChannelPlatform::RestartRemembering() {
    EXPECT_EQ(Stop(), 0) << mSimulator->Output();
    BeginRemembering();
}

std::string ChannelPlatform::FavouriteListOf(const std::string& favId) {
    return HandleAt(kToCollection, 15, "list", {{"flc_handle", Collection()}, {"favId", favId}});
}

std::string ChannelPlatform::CreateList(const std::vector<std::string>& channels) {
    Members members{{"size", static_cast<unsigned>(channels.size())}};
    for (size_t i = 0; i < channels.size(); ++i) members["channel" + std::to_string(i)] = channels[i];
    return HandleAt(kToChannelConfig, 8, "list", members);
}

std::string ChannelPlatform::Filtered(bool blocked, bool favourite, bool hidden, const std::string& favouriteListId) {
    return HandleAt(
        kToChannelConfig, 9, "handle",
        {{"blocked", blocked}, {"favourite", favourite}, {"hidden", hidden}, {"favouriteListID", favouriteListId}});
}

std::string ChannelPlatform::ChannelOf(int sid) {
    return HandleAt(kToChannelList, 4, "channel",
                    {{"cl_handle", GetChannelList()}, {"onid", -1}, {"tsid", 1}, {"sid", sid}, {"nid", -1}});
}

std::string ChannelPlatform::NamesOf(const Endpoint& family, const char* handleMember, int itemMethod,
                                     const std::string& list) {
    const unsigned length = AskAt(family, 1, {{handleMember, list}})["len"].asUInt();
    std::string names;
    for (unsigned i = 0; i < length; ++i) {
        const int index = static_cast<int>(i);
        names += (i == 0 ? "" : " ") +
                 NameOf(HandleAt(family, itemMethod, "channel", {{handleMember, list}, {"index", index}}));
    }
    return names;
}

std::string ChannelPlatform::FavouriteIds() {
    const std::string collection = Collection();
    const unsigned length = AskAt(kToCollection, 13, {{"flc_handle", collection}})["len"].asUInt();
    std::string ids;
    for (unsigned i = 0; i < length; ++i) {
        const std::string list =
            HandleAt(kToCollection, 14, "list", {{"flc_handle", collection}, {"index", static_cast<int>(i)}});
        ids += (i == 0 ? "" : " ") + AskAt(kToFavouriteList, 2, {{"fl_handle", list}})["favId"].asString();
    }
    return ids;
}

std::string ChannelPlatform::NextChange() {
    const Json::Value event = NextEventOf(*mConfigEvents, 3);
    EXPECT_EQ(event["event"], 0);
    EXPECT_EQ(event.getMemberNames(), (std::vector<std::string>{"event", "reserved"}));
    return event["reserved"].asString();
}

}  // namespace hbbtv::test
