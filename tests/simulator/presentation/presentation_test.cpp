// Window, volume, speeds, time shift, components, programmes and stream events of a video/broadcast object.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

class Presentation : public VideoBroadcastFixture {
  protected:
    void SetUp() override { Start({"--stream-event-interval", "0"}); }

    std::string Active(const std::string& vb, unsigned index) {
        return HandleOf(vb, "GetSpecificTypeCurrentActiveAVComponentByIndex", {{"index", index}});
    }

    int Count(const std::string& vb, int type) {
        return GetOf(vb, "GetAVComponentNumByType", {{"comType", type}}).asInt();
    }

    int CountActive(const std::string& vb, int type) {
        return GetOf(vb, "GetCurrentActiveAVComponentNumByType", {{"comType", type}}).asInt();
    }

    int Select(const std::string& vb, const std::string& component) {
        return RetOf(vb, "SelectComponent", {{"component", component}});
    }

    int Unselect(const std::string& vb, const std::string& component) {
        return RetOf(vb, "UnselectComponent", {{"component", component}});
    }

    int Seek(const std::string& vb, int offset, int reference) {
        return RetOf(vb, "Seek", {{"offset", offset}, {"reference", reference}});
    }
};

TEST_F(Presentation, TheVolumeIsKeptPerObjectAndRefusedAbove100) {
    const std::string first = NewObject();
    const std::string second = NewObject();
    const unsigned before = GetOf(second, "GetVolume").asUInt();
    EXPECT_EQ(RetOf(first, "SetVolume", {{"volume", 0}}), 0);
    EXPECT_EQ(GetOf(first, "GetVolume"), 0);
    EXPECT_EQ(RetOf(first, "SetVolume", {{"volume", 100}}), 0);
    EXPECT_EQ(RetOf(first, "SetVolume", {{"volume", 101}}), -1);
    EXPECT_EQ(RetOf(first, "SetVolume", {{"volume", -1}}), -1);
    EXPECT_EQ(GetOf(first, "GetVolume"), 100);
    EXPECT_EQ(GetOf(second, "GetVolume").asUInt(), before);
}

TEST_F(Presentation, FullScreenIsStoredAndReportedOnceWhenItChanges) {
    const std::string vb = NewObject();
    EXPECT_EQ(GetOf(vb, "GetFullScreen"), false);
    EXPECT_EQ(RetOf(vb, "SetFullScreen", {{"fullscreen", true}}), 0);
    EXPECT_EQ(RetOf(vb, "SetFullScreen", {{"fullscreen", true}}), 0);
    EXPECT_EQ(GetOf(vb, "GetFullScreen"), true);
    EXPECT_EQ(RetOf(vb, "SetFullScreen", {{"fullscreen", false}}), 0);
    EXPECT_EQ(NextEvent(), "FullScreen 1");
    EXPECT_EQ(NextEvent(), "FullScreen 0");
}

TEST_F(Presentation, TheWindowMayLieOutsideTheScreenButHasNoNegativeSize) {
    const std::string vb = NewObject();
    EXPECT_EQ(RetOf(vb, "SetWindow", {{"rect_x", -10}, {"rect_y", -20}, {"rect_w", 640}, {"rect_h", 360}}), 0);
    EXPECT_EQ(RetOf(vb, "SetWindow", {{"rect_x", 0}, {"rect_y", 0}, {"rect_w", -1}, {"rect_h", 360}}), -1);
    EXPECT_EQ(RetOf(vb, "SetWindow", {{"rect_x", 0}, {"rect_y", 0}, {"rect_w", 640}}), -1);
}

TEST_F(Presentation, TheDisplaySourceTakesAnyNumber) {
    EXPECT_EQ(Ret("ChangeDisplaySource", {{"source", 3}}), 0);
    EXPECT_EQ(Ret("ChangeDisplaySource", {{"source", "3"}}), -1);
}

TEST_F(Presentation, TheListOfSpeedsHoldsPauseAndNormalAndEndsAtItsNumber) {
    const std::string vb = NewObject();
    const unsigned count = GetOf(vb, "GetPlaySpeedNum").asUInt();
    std::vector<double> speeds;
    for (unsigned i = 0; i < count; ++i) {
        speeds.push_back(GetOf(vb, "GetPlaySpeedByIndex", {{"index", i}}).asDouble());
    }
    EXPECT_EQ(speeds, (std::vector<double>{-8, -4, -2, 0, 0.5, 1, 2, 4, 8}));
    EXPECT_EQ(RetOf(vb, "GetPlaySpeedByIndex", {{"index", count}}), -1);
    EXPECT_EQ(RetOf(vb, "GetPlaySpeedByIndex", {{"index", -1}}), -1);
}

TEST_F(Presentation, PauseBeginsTimeShiftAndStopTimeShiftGoesBackToLive) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(GetOf(vb, "GetPlaySpeed").asDouble(), 1.0);
    EXPECT_EQ(GetOf(vb, "GetCurrentTimeShiftMode"), 0);
    EXPECT_EQ(GetOf(vb, "GetPlaybackOffset"), 0);
    EXPECT_EQ(RetOf(vb, "Resume"), -1);
    EXPECT_EQ(RetOf(vb, "StopTimeShift"), -1);
    EXPECT_EQ(RetOf(vb, "Pause"), 0);
    EXPECT_EQ(NextEvent(), "Recording 11");
    EXPECT_EQ(NextEvent(), "PlaySpeed 0");
    EXPECT_EQ(GetOf(vb, "GetPlaySpeed").asDouble(), 0.0);
    EXPECT_EQ(GetOf(vb, "GetCurrentTimeShiftMode"), 1);
    EXPECT_EQ(GetOf(vb, "GetRecordingState"), 11);
    EXPECT_TRUE(WaitFor([&] { return GetOf(vb, "GetPlaybackOffset").asUInt() > 50; }));
    EXPECT_EQ(GetOf(vb, "GetPlayPosition"), 0);
    EXPECT_EQ(RetOf(vb, "Resume"), 0);
    EXPECT_EQ(NextEvent(), "PlaySpeed 1");
    EXPECT_TRUE(WaitFor([&] { return GetOf(vb, "GetPlayPosition").asUInt() > 0; }));
    EXPECT_GT(GetOf(vb, "GetPlaybackOffset").asUInt(), 50u);
    EXPECT_EQ(RetOf(vb, "StopTimeShift"), 0);
    EXPECT_EQ(GetOf(vb, "GetPlaybackOffset"), 0);
    EXPECT_EQ(GetOf(vb, "GetRecordingState"), 0);
    EXPECT_EQ(State(vb), 2);
    EXPECT_EQ(EventsSoFar(vb), Events{});
}

TEST_F(Presentation, SeekStaysWithinTheBuffer) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(Seek(vb, 0, 0), -1) << "there is no buffer yet";
    EXPECT_EQ(RetOf(vb, "Pause"), 0);
    ASSERT_TRUE(WaitFor([&] { return GetOf(vb, "GetPlaybackOffset").asUInt() > 100; }));
    EXPECT_EQ(Seek(vb, 60, 0), 0);
    EXPECT_EQ(GetOf(vb, "GetPlayPosition"), 60);
    EXPECT_EQ(Seek(vb, -20, 1), 0);
    EXPECT_EQ(GetOf(vb, "GetPlayPosition"), 40);
    for (const auto& [offset, reference] : std::map<int, int>{{-41, 1}, {1, 2}, {-1, 0}, {2147483647, 0}, {0, 3}}) {
        EXPECT_EQ(Seek(vb, offset, reference), -1) << offset;
    }
    EXPECT_EQ(GetOf(vb, "GetPlayPosition"), 40);
    EXPECT_EQ(EventsUntil("PlayPosition").back(), "PlayPosition");
}

TEST_F(Presentation, FastForwardGoesOnAtNormalSpeedWhenItMeetsTheLivePicture) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(RetOf(vb, "Pause"), 0);
    EXPECT_EQ(RetOf(vb, "SetSpeed", {{"speed", 8.0}}), 0);
    EXPECT_EQ(EventsUntil("PlaySpeed 1"), (Events{"Recording 11", "PlaySpeed 0", "PlaySpeed 8", "PlaySpeed 1"}));
    EXPECT_EQ(GetOf(vb, "GetPlaySpeed").asDouble(), 1.0);
    EXPECT_EQ(RetOf(vb, "SetSpeed", {{"speed", -2.0}}), 0);
    EXPECT_EQ(EventsUntil("PlaySpeed 1"), (Events{"PlaySpeed -2", "PlaySpeed 1"}));
}

TEST_F(Presentation, OnlySpeedsOfTheListAreTaken) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(RetOf(vb, "SetSpeed", {{"speed", 3.0}}), -1);
    EXPECT_EQ(RetOf(vb, "SetSpeed", {{"speed", 1}}), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{});
    EXPECT_EQ(GetOf(vb, "GetCurrentTimeShiftMode"), 0);
}

TEST_F(Presentation, TheTimeShiftModeIsAPreferenceFrom0To3) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(GetOf(vb, "GetTimeShiftMode"), 1);
    EXPECT_EQ(RetOf(vb, "SetTimeShiftMode", {{"mode", 4}}), -1);
    EXPECT_EQ(RetOf(vb, "SetTimeShiftMode", {{"mode", -1}}), -1);
    EXPECT_EQ(RetOf(vb, "SetTimeShiftMode", {{"mode", 0}}), 0);
    EXPECT_EQ(GetOf(vb, "GetTimeShiftMode"), 0);
    EXPECT_EQ(GetOf(vb, "GetMaxOffset"), 0);
    EXPECT_EQ(RetOf(vb, "Pause"), -1);
    EXPECT_EQ(RetOf(vb, "SetTimeShiftMode", {{"mode", 2}}), 0);
    EXPECT_EQ(RetOf(vb, "Pause"), 0);
    EXPECT_EQ(GetOf(vb, "GetCurrentTimeShiftMode"), 2);
    EXPECT_EQ(GetOf(vb, "GetMaxOffset"), 1800000);
}

TEST_F(Presentation, TheTimeShiftModeOfANewObjectIsThePreferredOne) {
    const std::string before = NewObject();
    EXPECT_EQ(Tell("set time-shift-mode 3"), "ok");
    EXPECT_EQ(GetOf(NewObject(), "GetTimeShiftMode"), 3);
    EXPECT_EQ(GetOf(before, "GetTimeShiftMode"), 1);
}

TEST_F(Presentation, AChangeOfChannelEndsTimeShift) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(RetOf(vb, "Pause"), 0);
    Tune(vb, 1);
    EXPECT_EQ(GetOf(vb, "GetCurrentTimeShiftMode"), 0);
    EXPECT_EQ(GetOf(vb, "GetPlaySpeed").asDouble(), 1.0);
}

TEST_F(Presentation, NothingIsPausedWhileNothingIsPresented) {
    const std::string vb = NewObject();
    EXPECT_EQ(RetOf(vb, "Pause"), -1);
    EXPECT_EQ(RetOf(vb, "SetSpeed", {{"speed", 2.0}}), -1);
    EXPECT_EQ(GetOf(vb, "GetPlaySpeed").asDouble(), 0.0);
}

TEST_F(Presentation, TheComponentsAreThoseOfTheTunedService) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(Count(vb, kVideo), 1);
    EXPECT_EQ(Count(vb, kAudio), 3);
    EXPECT_EQ(Count(vb, kSubtitle), 1);
    EXPECT_EQ(CountActive(vb, kVideo), 1);
    EXPECT_EQ(CountActive(vb, kAudio), 1);
    EXPECT_EQ(CountActive(vb, kSubtitle), 0);
    EXPECT_EQ(Active(vb, 0), Component(vb, kVideo, 0));
    EXPECT_EQ(Active(vb, 1), Component(vb, kAudio, 0));
    EXPECT_EQ(RetOf(vb, "GetSpecificTypeAVComponentByIndex", {{"comType", kAudio}, {"index", 3}}), -1);
    EXPECT_EQ(RetOf(vb, "GetSpecificTypeCurrentActiveAVComponentByIndex", {{"index", 2}}), -1);
    EXPECT_EQ(RetOf(vb, "GetAVComponentNumByType", {{"comType", 3}}), -1);
    EXPECT_EQ(RetOf(vb, "Stop"), 0);
    EXPECT_EQ(Count(vb, kAudio), 0);
}

TEST_F(Presentation, ThePreferencesChooseTheComponentsOfAServiceWhenItIsTuned) {
    EXPECT_EQ(Tell("set audio-language ita,fra"), "ok");
    EXPECT_EQ(Tell("set subtitles on"), "ok");
    const std::string vb = Presenting(2);
    EXPECT_EQ(Active(vb, 1), Component(vb, kAudio, 1)) << "the French one";
    EXPECT_EQ(Active(vb, 2), Component(vb, kSubtitle, 0));
    EXPECT_EQ(Tell("set audio-language deu"), "ok");
    EXPECT_EQ(Tell("set audio-description on"), "ok");
    EXPECT_EQ(Tell("set subtitles off"), "ok");
    EXPECT_EQ(Active(vb, 1), Component(vb, kAudio, 1)) << "until the service is tuned again";
    EXPECT_EQ(EventsSoFar(vb), Events{});
    Tune(vb, 2);
    EXPECT_EQ(Active(vb, 1), Component(vb, kAudio, 2)) << "German, with audio description";
    EXPECT_EQ(CountActive(vb, kSubtitle), 0);
}

TEST_F(Presentation, SelectingAComponentReplacesTheOneOfItsType) {
    const std::string vb = Presenting(2);
    const std::string french = Component(vb, kAudio, 1);
    EXPECT_EQ(Select(vb, french), 0);
    EXPECT_EQ(Select(vb, french), 0);
    EXPECT_EQ(Active(vb, 1), french);
    EXPECT_EQ(CountActive(vb, kAudio), 1);
    EXPECT_EQ(Unselect(vb, Component(vb, kAudio, 0)), -1) << "it is not selected";
    EXPECT_EQ(Unselect(vb, french), 0);
    EXPECT_EQ(CountActive(vb, kAudio), 0);
    EXPECT_EQ(EventsSoFar(vb), (Events{"SelectedComponent 1", "SelectedComponent 1"}));
}

TEST_F(Presentation, SelectingByTypeTakesTheUsualOne) {
    const std::string vb = Presenting(2);
    EXPECT_EQ(RetOf(vb, "SelectComponentByType", {{"comType", kSubtitle}}), 0);
    EXPECT_EQ(Active(vb, 2), Component(vb, kSubtitle, 0));
    EXPECT_EQ(RetOf(vb, "UnselectComponentByType", {{"comType", kSubtitle}}), 0);
    EXPECT_EQ(RetOf(vb, "UnselectComponentByType", {{"comType", kSubtitle}}), 0);
    EXPECT_EQ(RetOf(vb, "SelectComponentByType", {{"comType", kVideo}}), 0) << "it is selected already";
    EXPECT_EQ(EventsSoFar(vb), (Events{"SelectedComponent 2", "SelectedComponent 2"}));
    Tune(vb, 1);
    EXPECT_EQ(RetOf(vb, "SelectComponentByType", {{"comType", kSubtitle}}), -1) << "One has no subtitles";
}

TEST_F(Presentation, ACreatedComponentSelectsTheOneThatItDescribes) {
    const std::string vb = Presenting(2);
    const auto sound = [&](int tag, const char* language, bool described, int channels) {
        return HandleOf(vb, "CreateAudioComponent",
                        {{"componentTag", tag},
                         {"language", language},
                         {"audioDescription", described},
                         {"channels", channels},
                         {"encoding", ""}});
    };
    EXPECT_EQ(Select(vb, sound(-1, "fra", false, 0)), 0);
    EXPECT_EQ(Active(vb, 1), Component(vb, kAudio, 1));
    EXPECT_EQ(Select(vb, sound(-1, "deu", true, 0)), 0);
    EXPECT_EQ(Active(vb, 1), Component(vb, kAudio, 2));
    EXPECT_EQ(Select(vb, sound(2, "", false, 0)), 0);
    EXPECT_EQ(Active(vb, 1), Component(vb, kAudio, 0));
    EXPECT_EQ(Select(vb, sound(-1, "ita", false, 0)), -1);
    const std::string picture =
        HandleOf(vb, "CreateVideoComponent", {{"componentTag", 1}, {"aspectRatio", 1.78}, {"encoding", "AVC_HD_25"}});
    EXPECT_EQ(Unselect(vb, picture), 0);
    EXPECT_EQ(CountActive(vb, kVideo), 0);
}

TEST_F(Presentation, AComponentOfAnotherServiceIsRefused) {
    const std::string vb = Presenting(2);
    const std::string german = Component(vb, kAudio, 0);
    Tune(vb, 1);
    EXPECT_EQ(Select(vb, german), -1);
}

TEST_F(Presentation, TheSelectionOutlivesADisturbance) {
    const std::string vb = Presenting(2);
    const std::string french = Component(vb, kAudio, 1);
    EXPECT_EQ(Select(vb, french), 0);
    EXPECT_EQ(Tell("signal lost"), "ok");
    EXPECT_EQ(Count(vb, kAudio), 0);
    EXPECT_EQ(Tell("signal back"), "ok");
    EXPECT_EQ(Active(vb, 1), french);
}

TEST_F(Presentation, ListsAreHandlesOfTheirOwn) {
    Presenting(2);
    const std::string all = Handle("CreateAVComponentList", {{"is_active", false}, {"avcmp_type", kAudio}});
    const std::string active = Handle("CreateAVComponentList", {{"is_active", true}, {"avcmp_type", kAudio}});
    EXPECT_EQ(all.substr(0, 2), "0x");
    EXPECT_EQ(Handle("CreateProgrammeList").substr(0, 2), "0x");
    EXPECT_NE(all, active);
    EXPECT_EQ(Ret("CreateAVComponentList", {{"is_active", 1}, {"avcmp_type", 1}}), -1);
}

TEST_F(Presentation, APresentedChannelHasAProgrammeNowAndOneNext) {
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(GetOf(vb, "GetProgrammeNum"), 0);
    EXPECT_EQ(RetOf(vb, "GetProgrammeByIndex", {{"index", 0}}), -1);
    EXPECT_EQ(RetOf(vb, "BindToCurrentChannel"), 0);
    EXPECT_EQ(GetOf(vb, "GetProgrammeNum"), 2);
    const std::string now = HandleOf(vb, "GetProgrammeByIndex", {{"index", 0}});
    const std::string next = HandleOf(vb, "GetProgrammeByIndex", {{"index", 1}});
    EXPECT_EQ(now.substr(0, 2), "0x");
    EXPECT_NE(now, next);
    EXPECT_EQ(RetOf(vb, "GetProgrammeByIndex", {{"index", 2}}), -1);
}

class StreamEvents : public VideoBroadcastFixture {
  protected:
    void SetUp() override { Start({"--stream-event-interval", "20ms"}); }
};

TEST_F(StreamEvents, AListenerGetsEventsWithDataInHexadecimalAndTextInBytes) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Listen("quiz"), 0);
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent quiz [73747265616d206576656e742031] [stream event 1] trigger");
    EXPECT_EQ(NextEvent(), "StreamEvent quiz trigger");
}

TEST_F(StreamEvents, ARemovedListenerGetsNoMoreAndTheOthersGoOn) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Listen("a"), 0);
    EXPECT_EQ(Listen("a"), 0) << "the same listener once more";
    EXPECT_EQ(Listen("b"), 0);
    EventsUntil("StreamEvent b trigger");
    EXPECT_EQ(StopListening("a"), 0);
    EXPECT_EQ(StopListening("a"), -1);
    EventsSoFar(vb);
    EXPECT_EQ(NextEvent(), "StreamEvent b trigger");
    EXPECT_EQ(NextEvent(), "StreamEvent b trigger");
}

TEST_F(StreamEvents, AChangeOfChannelEndsEveryListenerWithOneErrorEvent) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Listen("a"), 0);
    EXPECT_EQ(Listen("b"), 0);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EventsUntil("PlayState 1 0");
    EXPECT_EQ(EventsUntil("PlayState 2 0"),
              (Events{"StreamEvent a error", "StreamEvent b error", "ChannelChanged Two 0", "PlayState 2 0"}));
    EXPECT_EQ(StopListening("a"), -1);
}

TEST_F(StreamEvents, ListeningFailsWhileNoServiceIsTuned) {
    EXPECT_EQ(Listen("a"), -1);
    ObjectIn("unrealized");
    EXPECT_EQ(Listen("a"), -1);
}

}  // namespace
}  // namespace hbbtv::test
