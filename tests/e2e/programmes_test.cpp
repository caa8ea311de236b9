// Programmes, components, AV control and searches across processes: the service publishes their interfaces, and events
// reach a client's process until that ends; and the simulated platform's programmes and components reach the client.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IAVComponent.h>
#include <vantorel/hardware/hbbtv/1.0/IAVControl.h>
#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>
#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "event_connection.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::hidl_string;

TEST(Programmes, AreAskedAcrossProcesses) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_program",
                          R"({"ret": 0, "out_name": "K\u00f6ln", "length": 4, "k0": 77, "k1": 0, "k2": 255, "k3": 0})");
    ServiceProcess service;
    const sp<IProgramme> programme = Find<IProgramme>();
    ASSERT_NE(nullptr, programme);
    std::string answer;
    const auto keep = [&](int32_t, const hidl_string& text) { answer.assign(text.c_str(), text.size()); };
    ASSERT_TRUE(programme->GetName(1, keep).isOk());
    EXPECT_EQ("K\xc3\xb6ln", answer);
    ASSERT_TRUE(programme->GetSIDescriptorByIndex(1, 0, keep).isOk());
    EXPECT_EQ(std::string("M\0\xff\0", 4), answer);
    EXPECT_EQ(0, static_cast<int32_t>(programme->Release(1)));
    ASSERT_TRUE(platform.WaitForFrames(3));
    EXPECT_EQ(kOneWay, platform.Frames()[2].type);
}

TEST(AVComponents, AreAskedAcrossProcesses) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_av_com", R"({"ret": 0, "aspect_ratio": 1.78, "type": 2})");
    ServiceProcess service;
    const sp<IAVComponent> component = Find<IAVComponent>();
    ASSERT_NE(nullptr, component);
    double aspectRatio = 0;
    const auto keepRatio = [&](int32_t, double ratio) { aspectRatio = ratio; };
    ASSERT_TRUE(component->GetAspectRatio(1, keepRatio).isOk());
    EXPECT_EQ(1.78, aspectRatio);
    auto type = TolmHbbtvAVComponentType::VIDEO;
    const auto keepType = [&](int32_t, TolmHbbtvAVComponentType given) { type = given; };
    ASSERT_TRUE(component->GetType(1, keepType).isOk());
    EXPECT_EQ(TolmHbbtvAVComponentType::SUBTITLE, type);
}

TEST(AVControl, TellsTheComponentsAndIsToldWhichToPresentUntilTheClientsProcessEnds) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_av_ctrl", R"({"ret": 0})");
    ServiceProcess service;
    const sp<IAVControl> control = Find<IAVControl>();
    ASSERT_NE(nullptr, control);
    const TolmAvComponentData component{true, 3, TolmHbbtvAVComponentType::AUDIO, "HEAAC", "deu", 2, false, false};
    const auto status = control->ComponentUpdate({}, TolmHbbtvAVComponentType::AUDIO, {component}, 0);
    EXPECT_EQ(0, static_cast<int32_t>(status));
    ASSERT_TRUE(platform.WaitForFrames(1));
    EXPECT_NE(std::string::npos, platform.Frames()[0].payload.find("\"language\" : \"deu\""));

    RegisteredClient client("av_control");
    ASSERT_TRUE(client.Registered()) << client.Output();
    EventConnection events(directory / "service_hbbtv_to_plugin_av_ctrl", 19);
    ASSERT_TRUE(events.Send({R"({"method": 1, "component_type": 1, "component_index": 5})"}));
    EXPECT_TRUE(client.WaitForOutput("component 1 1 5\n")) << client.Output();
    client.Kill();
    // The service lives on.
    ASSERT_TRUE(events.Send({R"({"method": 1, "component_type": 1, "component_index": 6})"}));
    RegisteredClient next("av_control");
    ASSERT_TRUE(next.Registered()) << next.Output();
    ASSERT_TRUE(events.Send({R"({"method": 1, "component_type": 1, "component_index": 7})"}));
    EXPECT_TRUE(next.WaitForOutput("component 1 1 7\n")) << next.Output();
}

TEST(Searches, AreMadeAcrossProcessesAndTellTheirClientUntilItsProcessEnds) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_sm", R"({"ret": 0, "out_handle": "0xf0000001"})");
    ServiceProcess service;
    const sp<ISearchManager> searches = Find<ISearchManager>();
    ASSERT_NE(nullptr, searches);
    int64_t query = 0;
    ASSERT_TRUE(searches
                    ->MetaSearch_CreateQuery(1, "Programme.name", TolmQueryComparisonType::CONTAINS, "news",
                                             [&](int32_t, int64_t made) { query = made; })
                    .isOk());
    EXPECT_EQ(0xf0000001, query);

    RegisteredClient client("search_manager");
    ASSERT_TRUE(client.Registered()) << client.Output();
    EventConnection events(directory / "service_hbbtv_to_plugin_sm", 8);
    ASSERT_TRUE(events.Send({R"({"event": 0, "state": 3, "searchHandle": "0x9d20"})"}));
    EXPECT_TRUE(client.WaitForOutput("search 0 3 40224 2748\n")) << client.Output();
    client.Kill();
    // The platform is not told, and the service lives on.
    ASSERT_TRUE(events.Send({R"({"event": 0, "state": 0})"}));
    EXPECT_EQ(2u, platform.Frames().size());
    RegisteredClient next("search_manager");
    ASSERT_TRUE(next.Registered()) << next.Output();
    ASSERT_TRUE(events.Send({R"({"event": 0, "state": 4})"}));
    EXPECT_TRUE(next.WaitForOutput("search 0 4 0 2748\n")) << next.Output();
}

// Of Das Erste HD, which is on at the start, from 2020 to 2037, and one behind it.
const char* const kGuide = R"(<tv>
<programme channel="daserste.de" start="20200101000000 +0000" stop="20370101000000 +0000">
<title lang="de">Köln</title><desc>Ein Tag.</desc><category>News</category>
<rating system="FSK"><value>12</value></rating></programme>
<programme channel="daserste.de" start="20370101000000 +0000"><title>Ende</title></programme>
</tv>
)";

// A client of the service, in front of the simulated platform with its own line-up, presenting its first channel.
class SimulatedProgrammes : public testing::Test {
  protected:
    void SetUp() override {
        std::ofstream(mDirectory / "guide.xml") << kGuide;
        mPlatform =
            std::make_unique<SimulatedPlatform>(std::vector<std::string>{"--programmes", mDirectory / "guide.xml"});
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
        mVideoBroadcast = Find<IVideoBroadcast>();
        mProgrammes = Find<IProgramme>();
        mComponents = Find<IAVComponent>();
        mControl = Find<IAVControl>();
        ASSERT_TRUE(mVideoBroadcast != nullptr && mProgrammes != nullptr && mComponents != nullptr &&
                    mControl != nullptr);
        mVb = Get<int64_t>(mVideoBroadcast, &IVideoBroadcast::Create, 1);
        EXPECT_NE(0, Get<int64_t>(mVideoBroadcast, &IVideoBroadcast::BindToCurrentChannel, mVb));
    }

    // The one result of a method that ends well.
    template <typename Value, typename Interface, typename Method, typename... Arguments>
    static Value Get(const sp<Interface>& service, Method method, const Arguments&... arguments) {
        Value value{};
        const auto keep = [&](int32_t status, const auto& result) {
            EXPECT_EQ(0, status);
            value = result;
        };
        EXPECT_TRUE(((*service).*method)(arguments..., keep).isOk());
        return value;
    }

    static int32_t StatusOf(const android::hardware::Return<int32_t>& status) {
        return status.isOk() ? static_cast<int32_t>(status) : -1000;
    }

    int64_t ProgrammeOf(uint32_t index) {
        return Get<int64_t>(mVideoBroadcast, &IVideoBroadcast::GetProgrammeByIndex, mVb, index);
    }

    std::string NameOf(int64_t programme) { return Get<hidl_string>(mProgrammes, &IProgramme::GetName, programme); }

    std::string Descriptor(int64_t programme, uint32_t index) {
        const auto bytes = Get<hidl_string>(mProgrammes, &IProgramme::GetSIDescriptorByIndex, programme, index);
        return std::string(bytes.c_str(), bytes.size());
    }

    static std::string Tell(const std::string& line) {
        ChildProcess viewer({HBBTV_SIM_PROGRAM, "--tell", line});
        EXPECT_TRUE(viewer.WaitForExit().has_value());
        return viewer.Output();
    }

    ScratchDirectory mDirectory;
    std::unique_ptr<SimulatedPlatform> mPlatform;
    ServiceProcess mService;
    sp<IVideoBroadcast> mVideoBroadcast;
    sp<IProgramme> mProgrammes;
    sp<IAVComponent> mComponents;
    sp<IAVControl> mControl;
    int64_t mVb = 0;
};

TEST_F(SimulatedProgrammes, AreNowAndNextAndKeepWhatIsSet) {
    EXPECT_EQ(2u, Get<uint32_t>(mVideoBroadcast, &IVideoBroadcast::GetProgrammeNum, mVb));
    const int64_t now = ProgrammeOf(0);
    EXPECT_EQ("K\xc3\xb6ln", NameOf(now));
    EXPECT_EQ("Ende", NameOf(ProgrammeOf(1)));
    EXPECT_EQ(1577836800, Get<int32_t>(mProgrammes, &IProgramme::GetStartTime, now));
    EXPECT_EQ(536544000, Get<int32_t>(mProgrammes, &IProgramme::GetDuration, now));
    EXPECT_EQ("ccid:1.1019.10301", std::string(Get<hidl_string>(mProgrammes, &IProgramme::GetChannelID, now)));
    EXPECT_EQ("dvb://1.3fb.283d;43c0", std::string(Get<hidl_string>(mProgrammes, &IProgramme::GetProgramID, now)));
    EXPECT_NE(0, Get<int64_t>(mProgrammes, &IProgramme::GetParentalRatings, now));
    EXPECT_EQ(0, StatusOf(mProgrammes->SetName(now, "Bonn")));
    EXPECT_EQ(0, StatusOf(mProgrammes->Release(now)));
    int32_t status = 0;
    ASSERT_TRUE(mProgrammes->GetName(now, [&](int32_t given, const hidl_string&) { status = given; }).isOk());
    EXPECT_EQ(-1, status) << "it was released";
    EXPECT_EQ("Bonn", NameOf(ProgrammeOf(0)));
}

TEST_F(SimulatedProgrammes, GiveDescriptorsWithAnyBytesAndUpTo256OfThem) {
    const int64_t now = ProgrammeOf(0);
    EXPECT_EQ(
        "\x4d\x13"
        "deu"
        "\x06\x15"
        "K\xc3\xb6ln"
        "\x08"
        "Ein Tag.",
        Descriptor(now, 0));
    EXPECT_EQ(std::string("\x4e\x0e\x00"
                          "deu"
                          "\x00\x08"
                          "Ein Tag.",
                          16),
              Descriptor(now, 1));
    EXPECT_EQ(0, StatusOf(mProgrammes->SetLongDescription(now, std::string(300, 'x'))));
    EXPECT_EQ(0, StatusOf(mProgrammes->GetSIDescriptorByEventId(now, 0x4e, 0, 0)));
    EXPECT_EQ(2u, Get<uint32_t>(mProgrammes, &IProgramme::GetSIDescriptorNum, now));
    EXPECT_EQ(std::string("\x4e\xfe\x01"
                          "deu"
                          "\x00\xf8",
                          8) +
                  std::string(248, 'x'),
              Descriptor(now, 0));
    EXPECT_EQ(0, StatusOf(mProgrammes->GetSIDescriptorByEventId(now, 0x54, 0, 0)));
    EXPECT_EQ(std::string("\x54\x02\x20\x00", 4), Descriptor(now, 0));
}

TEST_F(SimulatedProgrammes, HaveTheComponentsOfTheirService) {
    const auto sound = Get<int64_t>(mVideoBroadcast, &IVideoBroadcast::GetSpecificTypeAVComponentByIndex, mVb,
                                    TolmHbbtvAVComponentType::AUDIO, 1u);
    EXPECT_EQ(3, Get<int32_t>(mComponents, &IAVComponent::GetComponentTag, sound));
    EXPECT_EQ(5103, Get<int32_t>(mComponents, &IAVComponent::GetPid, sound));
    EXPECT_EQ(TolmHbbtvAVComponentType::AUDIO,
              Get<TolmHbbtvAVComponentType>(mComponents, &IAVComponent::GetType, sound));
    EXPECT_EQ("MPEG1_L2", std::string(Get<hidl_string>(mComponents, &IAVComponent::GetEncoding, sound)));
    EXPECT_EQ("deu", std::string(Get<hidl_string>(mComponents, &IAVComponent::GetLanguage, sound)));
    EXPECT_TRUE(Get<bool>(mComponents, &IAVComponent::GetAudioDescription, sound));
    EXPECT_EQ(2u, Get<uint32_t>(mComponents, &IAVComponent::GetAudioChannelNum, sound));
    EXPECT_EQ("Audio description", std::string(Get<hidl_string>(mComponents, &IAVComponent::GetLabel, sound)));
    EXPECT_EQ(0, StatusOf(mComponents->Release(sound)));
    // The release is one-way, and not on the socket of the selection.
    EXPECT_TRUE(WaitFor([&] { return StatusOf(mVideoBroadcast->SelectComponent(mVb, sound)) == -1; }));
}

TEST_F(SimulatedProgrammes, AreSelectedByTheViewerAmongTheBrowsersComponents) {
    RegisteredClient client("av_control");
    ASSERT_TRUE(client.Registered()) << client.Output();
    const TolmAvComponentData german{true, 3, TolmHbbtvAVComponentType::AUDIO, "HEAAC", "deu", 2, false, false};
    const TolmAvComponentData french{false, 4, TolmHbbtvAVComponentType::AUDIO, "AC3", "fra", 5, false, false};
    EXPECT_EQ(0, StatusOf(mControl->ComponentUpdate({}, TolmHbbtvAVComponentType::AUDIO, {german, french}, 0)));
    ASSERT_TRUE(WaitFor([] { return Tell("components").rfind("ok audio 0", 0) == 0; }));
    EXPECT_EQ("ok audio 0: tag 3 HEAAC deu 2 channels active current; audio 1: tag 4 AC3 fra 5 channels\n",
              Tell("components"));
    EXPECT_EQ("ok tag 4 AC3 fra 5 channels\n", Tell("select audio 1"));
    EXPECT_TRUE(client.WaitForOutput("component 1 1 1\n")) << client.Output();
    EXPECT_EQ(0, StatusOf(mControl->ComponentUpdate({}, TolmHbbtvAVComponentType::AUDIO, {}, 0)));
    EXPECT_TRUE(WaitFor([] { return Tell("components") == "ok audio: none\n"; }));
}

}  // namespace

}  // namespace hbbtv::test
