#include "channels/channel_fixture.h"

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

std::string ChannelFixture::CreateList(const std::vector<std::string>& channels) {
    return Handle("channel_config.CreateChannelList", {{"channel", List(channels)}});
}

std::string ChannelFixture::Filtered(bool blocked, bool favourite, bool hidden, const std::string& favouriteListId) {
    return Handle(
        "channel_config.CreateFilteredList",
        {{"blocked", blocked}, {"favourite", favourite}, {"hidden", hidden}, {"favouriteListID", favouriteListId}});
}

std::string ChannelFixture::ChannelOf(int sid) {
    return HandleOf(GetChannelList(), "channel_list.GetChannelByTriplet",
                    {{"onid", -1}, {"tsid", 1}, {"sid", sid}, {"nid", -1}});
}

std::string ChannelFixture::NamesOf(const std::string& family, const std::string& list) {
    const int length = GetOf(list, family + ".GetLength").asInt();
    std::string names;
    for (int i = 0; i < length; ++i) {
        names += (i == 0 ? "" : " ") + NameOf(HandleOf(list, family + ".Item", {{"index", i}}));
    }
    return names;
}

std::string ChannelFixture::FavouriteIds() {
    const std::string collection = Collection();
    const int length = GetOf(collection, "favourite_list_collection.GetLength").asInt();
    std::string ids;
    for (int i = 0; i < length; ++i) {
        const std::string list = HandleOf(collection, "favourite_list_collection.Item", {{"index", i}});
        ids += (i == 0 ? "" : " ") + HandleOf(list, "favourite_list.GetFavID");
    }
    return ids;
}

}  // namespace hbbtv::test
