// Every operation of the video/broadcast adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Vb = TolmVideoBroadcastAdaptorIpc;

constexpr uint32_t kVbBits = 0x8000a1b2;

const void* const kVb = Handle(kVbBits);

void Receiver(const TolmVideoBroadcastEvent&, const TolmVideoBroadcastEventInfo&, const void*) {}

template <typename... Arguments>
auto TellVb(Arguments... arguments) {
    return Tell<Vb>(arguments...);
}

template <typename T, typename... Arguments>
auto AskVb(Arguments... arguments) {
    return Ask<Vb, T>(arguments...);
}

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Create",
         AskVb<void*>(&Vb::Create, Handle(0x80c0ffee)),
         R"({"type": 3, "method": 0, "context": "0x80c0ffee"})",
         {{"vb_handle", "pointer", R"("0xfeed0001")", "0xfeed0001"}}},
        {"Release", TellVb(&Vb::Release, kVb), R"({"type": 3, "method": 1, "vb_handle": "0x8000a1b2"})", {}},
        {"Destroy", TellVb(&Vb::Destroy, kVb), R"({"type": 3, "method": 2, "vb_handle": "0x8000a1b2"})", {}},
        {"RegisterCallback",
         TellVb(&Vb::RegisterCallback, kVb, &Receiver, Handle(0x80c0ffee)),
         R"({"type": 3, "method": 3, "vb_handle": "0x8000a1b2", "context": "0x80c0ffee"})",
         {}},
        {"UnregisterCallback",
         TellVb(&Vb::UnregisterCallback, kVb),
         R"({"type": 3, "method": 4, "vb_handle": "0x8000a1b2"})",
         {}},
        {"SetWindow",
         TellVb(&Vb::SetWindow, kVb, -11, -22, -33, -44),
         R"({"type": 3, "method": 5, "vb_handle": "0x8000a1b2",)"
         R"( "rect_x": -11, "rect_y": -22, "rect_w": -33, "rect_h": -44})",
         {}},
        {"GetFullScreen",
         AskVb<bool>(&Vb::GetFullScreen, kVb),
         R"({"type": 3, "method": 6, "vb_handle": "0x8000a1b2"})",
         {{"fullscreen", "bool", "false", "false"}}},
        {"GetPlayState",
         AskVb<int>(&Vb::GetPlayState, kVb),
         R"({"type": 3, "method": 7, "vb_handle": "0x8000a1b2"})",
         {{"state", "int", "-2", "-2"}}},
        {"BindToCurrentChannel",
         AskVb<void*>(&Vb::BindToCurrentChannel, kVb),
         R"({"type": 3, "method": 8, "vb_handle": "0x8000a1b2"})",
         {{"channel", "pointer", R"("0xfeed0008")", "0xfeed0008"}}},
        {"CreateChannel_1",
         AskVb<void*>(&Vb::CreateChannel_1, kVb, -12, std::string("a dsd"), -28106),
         R"({"type": 3, "method": 9, "vb_handle": "0x8000a1b2", "idType": -12, "dsd": "a dsd", "sid": -28106})",
         {{"channel", "pointer", R"("0xfeed0009")", "0xfeed0009"}}},
        {"CreateChannel_2",
         AskVb<void*>(&Vb::CreateChannel_2, kVb, -13, -9018, -4176, -4165, -31, std::string("an id")),
         R"({"type": 3, "method": 10, "vb_handle": "0x8000a1b2", "idType": -13, "onid": -9018, "tsid": -4176,)"
         R"( "sid": -4165, "sourceId": -31, "ipBroadcastId": "an id"})",
         {{"channel", "pointer", R"("0xfeed0010")", "0xfeed0010"}}},
        {"SetChannel",
         TellVb(&Vb::SetChannel, kVb, Handle(0xcafe0011), true, std::string("dvb://1.3fb.283d")),
         R"({"type": 3, "method": 11, "vb_handle": "0x8000a1b2", "channel": "0xcafe0011", "trickPlay": true,)"
         R"( "url": "dvb://1.3fb.283d"})",
         {}},
        {"PrevChannel", TellVb(&Vb::PrevChannel, kVb), R"({"type": 3, "method": 12, "vb_handle": "0x8000a1b2"})", {}},
        {"NextChannel", TellVb(&Vb::NextChannel, kVb), R"({"type": 3, "method": 13, "vb_handle": "0x8000a1b2"})", {}},
        {"SetFullScreen",
         TellVb(&Vb::SetFullScreen, kVb, true),
         R"({"type": 3, "method": 14, "vb_handle": "0x8000a1b2", "fullscreen": true})",
         {}},
        {"SetVolume",
         TellVb(&Vb::SetVolume, kVb, 4000000015u),
         R"({"type": 3, "method": 15, "vb_handle": "0x8000a1b2", "volume": 4000000015})",
         {}},
        {"GetVolume",
         AskVb<unsigned>(&Vb::GetVolume, kVb),
         R"({"type": 3, "method": 16, "vb_handle": "0x8000a1b2"})",
         {{"volume", "uint", "4000000016", "4000000016"}}},
        {"Stop", TellVb(&Vb::Stop, kVb), R"({"type": 3, "method": 17, "vb_handle": "0x8000a1b2"})", {}},
        {"GetPlaybackOffset",
         AskVb<unsigned>(&Vb::GetPlaybackOffset, kVb),
         R"({"type": 3, "method": 18, "vb_handle": "0x8000a1b2"})",
         {{"offset", "uint", "4000000018", "4000000018"}}},
        {"GetMaxOffset",
         AskVb<unsigned>(&Vb::GetMaxOffset, kVb),
         R"({"type": 3, "method": 19, "vb_handle": "0x8000a1b2"})",
         {{"offset", "uint", "4000000019", "4000000019"}}},
        {"GetRecordingState",
         AskVb<int>(&Vb::GetRecordingState, kVb),
         R"({"type": 3, "method": 20, "vb_handle": "0x8000a1b2"})",
         {{"state", "int", "-11", "-11"}}},
        {"GetPlayPosition",
         AskVb<unsigned>(&Vb::GetPlayPosition, kVb),
         R"({"type": 3, "method": 21, "vb_handle": "0x8000a1b2"})",
         {{"position", "uint", "4000000021", "4000000021"}}},
        {"GetPlaySpeed",
         AskVb<double>(&Vb::GetPlaySpeed, kVb),
         R"({"type": 3, "method": 22, "vb_handle": "0x8000a1b2"})",
         {{"speed", "double", "-2.25", "-2.25"}}},
        {"GetPlaySpeedNum",
         AskVb<unsigned>(&Vb::GetPlaySpeedNum, kVb),
         R"({"type": 3, "method": 23, "vb_handle": "0x8000a1b2"})",
         {{"num", "uint", "4000000023", "4000000023"}}},
        {"GetPlaySpeedByIndex",
         AskVb<double>(&Vb::GetPlaySpeedByIndex, kVb, 4000000024u),
         R"({"type": 3, "method": 24, "vb_handle": "0x8000a1b2", "index": 4000000024})",
         {{"speed", "double", "16.5", "16.5"}}},
        {"SetTimeShiftMode",
         TellVb(&Vb::SetTimeShiftMode, kVb, -25),
         R"({"type": 3, "method": 25, "vb_handle": "0x8000a1b2", "mode": -25})",
         {}},
        {"GetTimeShiftMode",
         AskVb<int>(&Vb::GetTimeShiftMode, kVb),
         R"({"type": 3, "method": 26, "vb_handle": "0x8000a1b2"})",
         {{"mode", "int", "-26", "-26"}}},
        {"GetCurrentTimeShiftMode",
         AskVb<int>(&Vb::GetCurrentTimeShiftMode, kVb),
         R"({"type": 3, "method": 27, "vb_handle": "0x8000a1b2"})",
         {{"mode", "int", "-27", "-27"}}},
        {"StopRecording",
         TellVb(&Vb::StopRecording, kVb),
         R"({"type": 3, "method": 28, "vb_handle": "0x8000a1b2"})",
         {}},
        {"Pause", TellVb(&Vb::Pause, kVb), R"({"type": 3, "method": 29, "vb_handle": "0x8000a1b2"})", {}},
        {"Resume", TellVb(&Vb::Resume, kVb), R"({"type": 3, "method": 30, "vb_handle": "0x8000a1b2"})", {}},
        {"SetSpeed",
         TellVb(&Vb::SetSpeed, kVb, -0.5),
         R"({"type": 3, "method": 31, "vb_handle": "0x8000a1b2", "speed": -0.5})",
         {}},
        {"Seek",
         TellVb(&Vb::Seek, kVb, -90000, -2),
         R"({"type": 3, "method": 32, "vb_handle": "0x8000a1b2", "offset": -90000, "reference": -2})",
         {}},
        {"StopTimeShift",
         TellVb(&Vb::StopTimeShift, kVb),
         R"({"type": 3, "method": 33, "vb_handle": "0x8000a1b2"})",
         {}},
        {"SetChannel_Quiet",
         TellVb(&Vb::SetChannel_Quiet, kVb, Handle(0xcafe0035), true, std::string("dvb://1.3fb.283e"), -35),
         R"({"type": 3, "method": 35, "vb_handle": "0x8000a1b2", "channel": "0xcafe0035", "trickPlay": true,)"
         R"( "url": "dvb://1.3fb.283e", "quiet": -35})",
         {}},
        {"GetProgrammeNum",
         AskVb<unsigned>(&Vb::GetProgrammeNum, kVb),
         R"({"type": 3, "method": 36, "vb_handle": "0x8000a1b2"})",
         {{"num", "few", "436", "436"}}},
        {"GetProgrammeByIndex",
         AskVb<void*>(&Vb::GetProgrammeByIndex, kVb, 4000000037u),
         R"({"type": 3, "method": 37, "vb_handle": "0x8000a1b2", "index": 4000000037})",
         {{"programme", "pointer", R"("0xfeed0037")", "0xfeed0037"}}},
        {"GetCurrentChannel",
         AskVb<void*>(&Vb::GetCurrentChannel, kVb),
         R"({"type": 3, "method": 38, "vb_handle": "0x8000a1b2"})",
         {{"channel", "pointer", R"("0xfeed0038")", "0xfeed0038"}}},
        {"GetAVComponentNumByType",
         AskVb<unsigned>(&Vb::GetAVComponentNumByType, kVb, -39),
         R"({"type": 3, "method": 39, "vb_handle": "0x8000a1b2", "comType": -39})",
         {{"num", "uint", "4000000039", "4000000039"}}},
        {"GetSpecificTypeAVComponentByIndex",
         AskVb<void*>(&Vb::GetSpecificTypeAVComponentByIndex, kVb, -40, 4000000040u),
         R"({"type": 3, "method": 40, "vb_handle": "0x8000a1b2", "comType": -40, "index": 4000000040})",
         {{"component", "pointer", R"("0xfeed0040")", "0xfeed0040"}}},
        {"GetCurrentActiveAVComponentNumByType",
         AskVb<unsigned>(&Vb::GetCurrentActiveAVComponentNumByType, kVb, -41),
         R"({"type": 3, "method": 41, "vb_handle": "0x8000a1b2", "comType": -41})",
         {{"num", "uint", "4000000041", "4000000041"}}},
        {"GetSpecificTypeCurrentActiveAVComponentByIndex",
         AskVb<void*>(&Vb::GetSpecificTypeCurrentActiveAVComponentByIndex, kVb, -42, 4000000042u),
         R"({"type": 3, "method": 42, "vb_handle": "0x8000a1b2", "index": 4000000042})",
         {{"component", "pointer", R"("0xfeed0042")", "0xfeed0042"}}},
        {"SelectComponent",
         TellVb(&Vb::SelectComponent, kVb, Handle(0xcafe0043)),
         R"({"type": 3, "method": 43, "vb_handle": "0x8000a1b2", "component": "0xcafe0043"})",
         {}},
        {"UnselectComponent",
         TellVb(&Vb::UnselectComponent, kVb, Handle(0xcafe0044)),
         R"({"type": 3, "method": 44, "vb_handle": "0x8000a1b2", "component": "0xcafe0044"})",
         {}},
        {"SelectComponentByType",
         TellVb(&Vb::SelectComponentByType, kVb, -45),
         R"({"type": 3, "method": 45, "vb_handle": "0x8000a1b2", "comType": -45})",
         {}},
        {"UnselectComponentByType",
         TellVb(&Vb::UnselectComponentByType, kVb, -46),
         R"({"type": 3, "method": 46, "vb_handle": "0x8000a1b2", "comType": -46})",
         {}},
        {"CreateAudioComponent",
         AskVb<void*>(&Vb::CreateAudioComponent, kVb, -470, std::string("deu"), true, -5, std::string("HEAAC")),
         R"({"type": 3, "method": 47, "vb_handle": "0x8000a1b2", "componentTag": -470, "language": "deu",)"
         R"( "audioDescription": true, "channels": -5, "encoding": "HEAAC"})",
         {{"component", "pointer", R"("0xfeed0047")", "0xfeed0047"}}},
        {"CreateVideoComponent",
         AskVb<void*>(&Vb::CreateVideoComponent, kVb, -480, 1.75, std::string("AVC_HD_25")),
         R"({"type": 3, "method": 48, "vb_handle": "0x8000a1b2", "componentTag": -480, "aspectRatio": 1.75,)"
         R"( "encoding": "AVC_HD_25"})",
         {{"component", "pointer", R"("0xfeed0048")", "0xfeed0048"}}},
        {"CreateAVComponentList",
         AskVb<void*>(&Vb::CreateAVComponentList, true, -49),
         R"({"type": 3, "method": 49, "is_active": true, "avcmp_type": -49})",
         {{"avcmp_coll", "pointer", R"("0xfeed0049")", "0xfeed0049"}}},
        {"CreateProgrammeList",
         AskVb<void*>(&Vb::CreateProgrammeList),
         R"({"type": 3, "method": 50})",
         {{"prog_coll", "pointer", R"("0xfeed0050")", "0xfeed0050"}}},
        {"ChangeDisplaySource",
         TellVb(&Vb::ChangeDisplaySource, -63),
         R"({"type": 3, "method": 63, "source": -63})",
         {}},
        {"AddStreamEventListener",
         TellVb(&Vb::AddStreamEventListener, std::string("one"), std::string("two"), std::string("three")),
         R"({"type": 3, "method": 64, "strurl": "one", "dvburl": "two", "event_name": "three"})",
         {}},
        {"RemoveStreamEventListener",
         TellVb(&Vb::RemoveStreamEventListener, std::string("four"), std::string("five"), std::string("six")),
         R"({"type": 3, "method": 65, "strurl": "four", "dvburl": "five", "event_name": "six"})",
         {}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"SetChannel", [](const std::string& text) { Vb::GetInstance()->SetChannel(kVb, Handle(2), false, text); },
     R"({"type": 3, "method": 11, "vb_handle": "0x8000a1b2", "channel": "0x2", "trickPlay": false, "url": ""})"},
    {"AddStreamEventListener",
     [](const std::string& text) { Vb::GetInstance()->AddStreamEventListener(text, text, text); },
     R"({"type": 3, "method": 64, "strurl": "", "dvburl": "", "event_name": ""})"},
    {"CreateAudioComponent",
     [](const std::string& text) {
         void* component = nullptr;
         Vb::GetInstance()->CreateAudioComponent(kVb, 2, text, false, 3, text, component);
     },
     R"({"type": 3, "method": 47, "vb_handle": "0x8000a1b2", "componentTag": 2, "language": "",)"
     R"( "audioDescription": false, "channels": 3, "encoding": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"video_broadcast", "[ipc_vb]", "tolm_video_broadcast_adaptor_ipc.cpp",
                                        &Vb::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(VideoBroadcastRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(VideoBroadcastRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(VideoBroadcastRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(VideoBroadcastRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(VideoBroadcastProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(VideoBroadcastProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 28, "service_plugin_to_hbbtv_vb", 7, "platform");
    ExpectTheProtocolsEndpoint("events", 50, "service_hbbtv_to_plugin_vb", 7, "library");
}

TEST(VideoBroadcastProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    std::vector<int> codes;
    for (int code = 0; code <= 65; ++code) {
        if (code != 34 && (code <= 50 || code >= 63)) codes.push_back(code);
    }
    ExpectTheProtocolsCodes(3, codes);
}

TEST(VideoBroadcastProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample(
        "SetChannel", Tell<Vb>(&Vb::SetChannel, Handle(0x8001a2b0), Handle(0x4f10), false, std::string()),
        R"({"type": 3, "method": 11, "vb_handle": "0x8001a2b0", "channel": "0x4f10", "trickPlay": false, "url": ""})",
        {});
}

}  // namespace hbbtv::test
