// Every operation of the channel configuration adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmChannelConfigAdaptorIpc;

void* Mutable(uint32_t bits) {
    return const_cast<void*>(Handle(bits));
}

void Receive(const TolmChannelConfigEvent&, const TolmChannelConfigEventInfo&, const void*) {}

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"RegisterCallback",
         Tell<Adaptor>(&Adaptor::RegisterCallback, &Receive, Handle(0xcafe0000)),
         R"({"type": 19, "method": 0, "context": "0xcafe0000"})",
         {}},
        {"UnregisterCallback", Tell<Adaptor>(&Adaptor::UnregisterCallback), R"({"type": 19, "method": 1})", {}},
        {"GetCurrentChannel",
         Ask<Adaptor, void*>(&Adaptor::GetCurrentChannel),
         R"({"type": 19, "method": 2})",
         {{"handle", "pointer", R"("0xfeed0002")", "0xfeed0002"}}},
        {"GetChannelList",
         Ask<Adaptor, void*>(&Adaptor::GetChannelList),
         R"({"type": 19, "method": 3})",
         {{"handle", "pointer", R"("0xfeed0003")", "0xfeed0003"}}},
        {"GetBroadcastSupervisor",
         Ask<Adaptor, void*>(&Adaptor::GetBroadcastSupervisor),
         R"({"type": 19, "method": 4})",
         {{"handle", "pointer", R"("0xfeed0004")", "0xfeed0004"}}},
        {"GetFavouriteListCollection",
         Ask<Adaptor, void*>(&Adaptor::GetFavouriteListCollection),
         R"({"type": 19, "method": 5})",
         {{"handle", "pointer", R"("0xfeed0005")", "0xfeed0005"}}},
        {"GetCurrentFavouriteList",
         Ask<Adaptor, void*>(&Adaptor::GetCurrentFavouriteList),
         R"({"type": 19, "method": 6})",
         {{"handle", "pointer", R"("0xfeed0006")", "0xfeed0006"}}},
        {"SetChannelList",
         Tell<Adaptor>(&Adaptor::SetChannelList, Handle(0xcafe0007)),
         R"({"type": 19, "method": 7, "list": "0xcafe0007"})",
         {}},
        {"CreateChannelList",
         Ask<Adaptor, void*>(&Adaptor::CreateChannelList,
                             std::vector<void*>{Mutable(0xcafe0001), Mutable(0xcafe0002), Mutable(0xcafe0003)}),
         R"({"type": 19, "method": 8, "size": 3, "channel0": "0xcafe0001", )"
         R"("channel1": "0xcafe0002", "channel2": "0xcafe0003"})",
         {{"list", "pointer", R"("0xfeed0008")", "0xfeed0008"}}},
        {"CreateFilteredList",
         Ask<Adaptor, void*>(&Adaptor::CreateFilteredList, true, false, true, std::string("text 9 of favouriteListID")),
         R"({"type": 19, "method": 9, "blocked": true, "favourite": false, "hidden": true, )"
         R"("favouriteListID": "text 9 of favouriteListID"})",
         {{"handle", "pointer", R"("0xfeed0009")", "0xfeed0009"}}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"CreateFilteredList",
     [](const std::string& text) {
         void* handle = nullptr;
         Adaptor::GetInstance()->CreateFilteredList(true, true, true, text, handle);
     },
     R"({"type": 19, "method": 9, "blocked": true, "favourite": true, "hidden": true, "favouriteListID": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"channel_config", "[ipc_videobroadcast]", "tolm_channel_config_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ChannelConfigRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelConfigRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelConfigRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ChannelConfigRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(ChannelConfigProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ChannelConfigProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 31, "service_plugin_to_hbbtv_vb_chn_config", 3, "platform");
    ExpectTheProtocolsEndpoint("events", 53, "service_hbbtv_to_plugin_vb_chn_config", 3, "library");
}

TEST(ChannelConfigProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(19, Codes(0, 9));
}

TEST(ChannelConfigProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample(
        "CreateChannelList",
        Ask<Adaptor, void*>(&Adaptor::CreateChannelList, std::vector<void*>{Mutable(0x4f10), Mutable(0x4f20)}),
        R"({"type": 19, "method": 8, "size": 2, "channel0": "0x4f10", "channel1": "0x4f20"})", {"0x5a20"});
}

}  // namespace hbbtv::test
