// Every method of IVideoBroadcast: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "VideoBroadcast.h"
#include "method_rows.h"
#include "recording_video_broadcast_callback.h"

namespace hbbtv::test {

namespace {

using android::sp;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;
using vantorel::hardware::hbbtv::V1_0::TolmHbbtvAVComponentType;
using vantorel::hardware::hbbtv::V1_0::TolmVBPlayState;

// Handles as a client may give them: the platform gets the low half.
constexpr int64_t kVb = 0x7777777780001000;
constexpr int64_t kChannel = -1;  // low half 0xffffffff
constexpr int64_t kComponent = 0x11112000;

struct Rows : ServiceOf<&HIDL_FETCH_IVideoBroadcast> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Create", Result<int64_t>([](auto& s, auto cb) { return s.Create(0x1234567889abcdef, cb); }), 0,
             R"({"context": "0x89abcdef"})", R"({"vb_handle": "0x80001000"})", "0 0x80001000", "-1 0x0"},
            {"Destroy", Status([](auto& s) { return s.Destroy(kVb); }), 2, R"({"vb_handle": "0x80001000"})", "{}", "0",
             "-1"},
            {"Release", Status([](auto& s) { return s.Release(kVb); }), 1, R"({"vb_handle": "0x80001000"})", "{}", "0",
             "-1"},
            {"RegisterCallback",
             Status([](auto& s) { return s.RegisterCallback(kVb, new RecordingVideoBroadcastCallback, 0x5ffffffff); }),
             3, R"({"vb_handle": "0x80001000", "context": "0xffffffff"})", "{}", "0", "-1"},
            {"UnregisterCallback", Status([](auto& s) { return s.UnregisterCallback(kVb); }), 4,
             R"({"vb_handle": "0x80001000"})", "{}", "0", "-1"},
            {"SetWindow", Status([](auto& s) {
                 return s.SetWindow(kVb, {-1, 2, 1280, 720});
             }),
             5, R"({"vb_handle": "0x80001000", "rect_x": -1, "rect_y": 2, "rect_w": 1280, "rect_h": 720})", "{}", "0",
             "-1"},
            {"GetFullScreen", Result<bool>([](auto& s, auto cb) { return s.GetFullScreen(kVb, cb); }), 6,
             R"({"vb_handle": "0x80001000"})", R"({"fullscreen": true})", "0 1", "-1 0"},
            {"SetFullScreen", Status([](auto& s) { return s.SetFullScreen(kVb, true); }), 14,
             R"({"vb_handle": "0x80001000", "fullscreen": true})", "{}", "0", "-1"},
            {"GetPlayState", Result<TolmVBPlayState>([](auto& s, auto cb) { return s.GetPlayState(kVb, cb); }), 7,
             R"({"vb_handle": "0x80001000"})", R"({"state": 2})", "0 2", "-1 0"},
            {"BindToCurrentChannel", Result<int64_t>([](auto& s, auto cb) { return s.BindToCurrentChannel(kVb, cb); }),
             8, R"({"vb_handle": "0x80001000"})", R"({"channel": "0xf0000001"})", "0 0xf0000001", "-1 0x0"},
            {"CreateChannel_1",
             Result<int64_t>([](auto& s, auto cb) { return s.CreateChannel_1(kVb, 13, "d\"sd", 10301, cb); }), 9,
             R"({"vb_handle": "0x80001000", "idType": 13, "dsd": "d\"sd", "sid": 10301})", R"({"channel": "0x2000"})",
             "0 0x2000", "-1 0x0"},
            {"CreateChannel_2",
             Result<int64_t>([](auto& s, auto cb) { return s.CreateChannel_2(kVb, 11, 1, 1019, 10301, 5, "ip", cb); }),
             10,
             R"({"vb_handle": "0x80001000", "idType": 11, "onid": 1, "tsid": 1019, "sid": 10301, "sourceId": 5,)"
             R"( "ipBroadcastId": "ip"})",
             R"({"channel": "0x2000"})", "0 0x2000", "-1 0x0"},
            {"SetChannel", Status([](auto& s) { return s.SetChannel(kVb, kChannel, true, "u"); }), 11,
             R"({"vb_handle": "0x80001000", "channel": "0xffffffff", "trickPlay": true, "url": "u"})", "{}", "0", "-1"},
            {"SetChannel_Quiet", Status([](auto& s) { return s.SetChannel_Quiet(kVb, kChannel, false, "", 2); }), 35,
             R"({"vb_handle": "0x80001000", "channel": "0xffffffff", "trickPlay": false, "url": "", "quiet": 2})", "{}",
             "0", "-1"},
            {"PrevChannel", Status([](auto& s) { return s.PrevChannel(kVb); }), 12, R"({"vb_handle": "0x80001000"})",
             "{}", "0", "-1"},
            {"NextChannel", Status([](auto& s) { return s.NextChannel(kVb); }), 13, R"({"vb_handle": "0x80001000"})",
             "{}", "0", "-1"},
            {"Stop", Status([](auto& s) { return s.Stop(kVb); }), 17, R"({"vb_handle": "0x80001000"})", "{}", "0",
             "-1"},
            {"SetVolume", Status([](auto& s) { return s.SetVolume(kVb, 4000000000u); }), 15,
             R"({"vb_handle": "0x80001000", "volume": 4000000000})", "{}", "0", "-1"},
            {"GetVolume", Result<uint32_t>([](auto& s, auto cb) { return s.GetVolume(kVb, cb); }), 16,
             R"({"vb_handle": "0x80001000"})", R"({"volume": 4000000000})", "0 4000000000", "-1 0"},
            {"GetProgrammeNum", Result<uint32_t>([](auto& s, auto cb) { return s.GetProgrammeNum(kVb, cb); }), 36,
             R"({"vb_handle": "0x80001000"})", R"({"num": 2})", "0 2", "-1 0"},
            {"GetProgrammeByIndex", Result<int64_t>([](auto& s, auto cb) { return s.GetProgrammeByIndex(kVb, 1, cb); }),
             37, R"({"vb_handle": "0x80001000", "index": 1})", R"({"programme": "0x3000"})", "0 0x3000", "-1 0x0"},
            {"GetCurrentChannel", Result<int64_t>([](auto& s, auto cb) { return s.GetCurrentChannel(kVb, cb); }), 38,
             R"({"vb_handle": "0x80001000"})", R"({"channel": "0x2000"})", "0 0x2000", "-1 0x0"},
            {"GetAVComponentNumByType", Result<uint32_t>([](auto& s, auto cb) {
                 return s.GetAVComponentNumByType(kVb, TolmHbbtvAVComponentType::AUDIO, cb);
             }),
             39, R"({"vb_handle": "0x80001000", "comType": 1})", R"({"num": 3})", "0 3", "-1 0"},
            {"GetSpecificTypeAVComponentByIndex", Result<int64_t>([](auto& s, auto cb) {
                 return s.GetSpecificTypeAVComponentByIndex(kVb, TolmHbbtvAVComponentType::SUBTITLE, 7, cb);
             }),
             40, R"({"vb_handle": "0x80001000", "comType": 2, "index": 7})", R"({"component": "0x4000"})", "0 0x4000",
             "-1 0x0"},
            {"GetCurrentActiveAVComponentNumByType", Result<uint32_t>([](auto& s, auto cb) {
                 return s.GetCurrentActiveAVComponentNumByType(kVb, TolmHbbtvAVComponentType::AUDIO, cb);
             }),
             41, R"({"vb_handle": "0x80001000", "comType": 1})", R"({"num": 1})", "0 1", "-1 0"},
            {"GetSpecificTypeCurrentActiveAVComponentByIndex", Result<int64_t>([](auto& s, auto cb) {
                 return s.GetSpecificTypeCurrentActiveAVComponentByIndex(kVb, TolmHbbtvAVComponentType::AUDIO, 2, cb);
             }),
             42, R"({"vb_handle": "0x80001000", "index": 2})", R"({"component": "0x4000"})", "0 0x4000", "-1 0x0"},
            {"SelectComponent", Status([](auto& s) { return s.SelectComponent(kVb, kComponent); }), 43,
             R"({"vb_handle": "0x80001000", "component": "0x11112000"})", "{}", "0", "-1"},
            {"UnselectComponent", Status([](auto& s) { return s.UnselectComponent(kVb, kComponent); }), 44,
             R"({"vb_handle": "0x80001000", "component": "0x11112000"})", "{}", "0", "-1"},
            {"SelectComponentByType",
             Status([](auto& s) { return s.SelectComponentByType(kVb, TolmHbbtvAVComponentType::AUDIO); }), 45,
             R"({"vb_handle": "0x80001000", "comType": 1})", "{}", "0", "-1"},
            {"UnselectComponentByType",
             Status([](auto& s) { return s.UnselectComponentByType(kVb, TolmHbbtvAVComponentType::SUBTITLE); }), 46,
             R"({"vb_handle": "0x80001000", "comType": 2})", "{}", "0", "-1"},
            {"CreateAudioComponent", Result<int64_t>([](auto& s, auto cb) {
                 return s.CreateAudioComponent(kVb, 9, "deu", true, 2, "HEAAC", cb);
             }),
             47,
             R"({"vb_handle": "0x80001000", "componentTag": 9, "language": "deu", "audioDescription": true,)"
             R"( "channels": 2, "encoding": "HEAAC"})",
             R"({"component": "0x4000"})", "0 0x4000", "-1 0x0"},
            {"CreateVideoComponent",
             Result<int64_t>([](auto& s, auto cb) { return s.CreateVideoComponent(kVb, 9, 1.78, "AVC_HD_25", cb); }),
             48, R"({"vb_handle": "0x80001000", "componentTag": 9, "aspectRatio": 1.78, "encoding": "AVC_HD_25"})",
             R"({"component": "0x4000"})", "0 0x4000", "-1 0x0"},
            {"CreateAVComponentList", Result<int64_t>([](auto& s, auto cb) {
                 return s.CreateAVComponentList(true, TolmHbbtvAVComponentType::AUDIO, cb);
             }),
             49, R"({"is_active": true, "avcmp_type": 1})", R"({"avcmp_coll": "0x5000"})", "0 0x5000", "-1 0x0"},
            {"CreateProgrammeList", Result<int64_t>([](auto& s, auto cb) { return s.CreateProgrammeList(cb); }), 50,
             "{}", R"({"prog_coll": "0x5000"})", "0 0x5000", "-1 0x0"},
            {"AddStreamEventListener",
             Status([](auto& s) { return s.AddStreamEventListener("a", "dvb://1.3fb.283d", "go"); }), 64,
             R"({"strurl": "a", "dvburl": "dvb://1.3fb.283d", "event_name": "go"})", "{}", "0", "-1"},
            {"RemoveStreamEventListener",
             Status([](auto& s) { return s.RemoveStreamEventListener("a", "dvb://1.3fb.283d", "go"); }), 65,
             R"({"strurl": "a", "dvburl": "dvb://1.3fb.283d", "event_name": "go"})", "{}", "0", "-1"},
            {"ChangeDisplaySource", Status([](auto& s) { return s.ChangeDisplaySource(-3); }), 63, R"({"source": -3})",
             "{}", "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_vb", 7, 3};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(VideoBroadcast, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(VideoBroadcastMethodTable, HasARowForEveryMethodButTheOneThatAsksNothing) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()) + 1);
}

TEST(VideoBroadcast, SetChannelExtGivesZeroWithoutAskingThePlatform) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 5})");
    const sp<IVideoBroadcast> service = HIDL_FETCH_IVideoBroadcast("default");
    const auto status = service->SetChannel_Ext(kVb, kChannel, true, "url", 1);
    ASSERT_TRUE(status.isOk());
    EXPECT_EQ(0, static_cast<int32_t>(status));
    EXPECT_TRUE(platform.Frames().empty());
}

TEST(VideoBroadcast, GivesHandlesWithAZeroHighHalf) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0, "vb_handle": "0x12345678f0000001"})");
    const sp<IVideoBroadcast> service = HIDL_FETCH_IVideoBroadcast("default");
    int64_t vb = 0;
    ASSERT_TRUE(service->Create(0, [&](int32_t, int64_t handle) { vb = handle; }).isOk());
    EXPECT_EQ(0xf0000001, vb);
}

TEST(VideoBroadcast, ANullHandleGoesOutAsTheEmptyText) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    const sp<IVideoBroadcast> service = HIDL_FETCH_IVideoBroadcast("default");
    ASSERT_TRUE(service->SetChannel(kVb, 0x100000000, false, "").isOk());
    EXPECT_EQ("", Parsed(platform.Frames().at(0).payload)["channel"].asString());
}

}  // namespace hbbtv::test
