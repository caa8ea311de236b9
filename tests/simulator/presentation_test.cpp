// Window, volume, speeds, time shift, components, programmes and stream events of a video/broadcast object.
#include "simulated_platform.h"

namespace hbbtv::test {
namespace {

using Events = std::vector<std::string>;

class Presentation : public SimulatedPlatform {
  protected:
    void SetUp() override { Start({"--tune-time", "0ms", "--stream-event-interval", "0"}); }

    // An object that presents Two, with all events read.
    std::string ObjectOnTwo() {
        const std::string vb = ObjectIn("unrealized");
        EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
        EventsUntil("PlayState 2 0");
        return vb;
    }

    std::string Component(const std::string& vb, int type, int index) {
        return AskOf(vb, kGetComponent, {{"comType", type}, {"index", index}})["component"].asString();
    }

    std::string Active(const std::string& vb, int index) {
        return AskOf(vb, kGetActiveComponent, {{"index", index}})["component"].asString();
    }

    unsigned Count(const std::string& vb, int method, int type) {
        return AskOf(vb, method, {{"comType", type}})["num"].asUInt();
    }
};

TEST_F(Presentation, TheVolumeIsKeptPerObjectAndRefusedAbove100) {
    const std::string first = NewObject();
    const std::string second = NewObject();
    const unsigned before = AskOf(second, kGetVolume)["volume"].asUInt();
    EXPECT_EQ(RetOf(first, kSetVolume, {{"volume", 0}}), 0);
    EXPECT_EQ(AskOf(first, kGetVolume)["volume"], 0);
    EXPECT_EQ(RetOf(first, kSetVolume, {{"volume", 100}}), 0);
    EXPECT_EQ(RetOf(first, kSetVolume, {{"volume", 101}}), -1);
    EXPECT_EQ(RetOf(first, kSetVolume, {{"volume", -1}}), -1);
    EXPECT_EQ(AskOf(first, kGetVolume)["volume"], 100);
    EXPECT_EQ(AskOf(second, kGetVolume)["volume"].asUInt(), before);
}

TEST_F(Presentation, FullScreenIsKeptAndSaidOnceWhenItChanges) {
    const std::string vb = NewObject();
    EXPECT_EQ(AskOf(vb, kGetFullScreen)["fullscreen"], false);
    EXPECT_EQ(RetOf(vb, kSetFullScreen, {{"fullscreen", true}}), 0);
    EXPECT_EQ(RetOf(vb, kSetFullScreen, {{"fullscreen", true}}), 0);
    EXPECT_EQ(AskOf(vb, kGetFullScreen)["fullscreen"], true);
    EXPECT_EQ(RetOf(vb, kSetFullScreen, {{"fullscreen", false}}), 0);
    EXPECT_EQ(NextEvent(), "FullScreen 1");
    EXPECT_EQ(NextEvent(), "FullScreen 0");
}

TEST_F(Presentation, TheWindowMayLieOutsideTheScreenButHasNoNegativeSize) {
    const std::string vb = NewObject();
    EXPECT_EQ(RetOf(vb, kSetWindow, {{"rect_x", -10}, {"rect_y", -20}, {"rect_w", 640}, {"rect_h", 360}}), 0);
    EXPECT_EQ(RetOf(vb, kSetWindow, {{"rect_x", 0}, {"rect_y", 0}, {"rect_w", -1}, {"rect_h", 360}}), -1);
    EXPECT_EQ(RetOf(vb, kSetWindow, {{"rect_x", 0}, {"rect_y", 0}, {"rect_w", 640}}), -1);
}

TEST_F(Presentation, TheDisplaySourceTakesAnyNumber) {
    EXPECT_EQ(Ret(kChangeDisplaySource, {{"source", 3}}), 0);
    EXPECT_EQ(Ret(kChangeDisplaySource, {{"source", "3"}}), -1);
}

TEST_F(Presentation, TheListOfSpeedsHoldsPauseAndNormalAndEndsAtItsNumber) {
    const std::string vb = NewObject();
    const unsigned count = AskOf(vb, kGetPlaySpeedNum)["num"].asUInt();
    std::vector<double> speeds;
    for (unsigned i = 0; i < count; ++i) {
        speeds.push_back(AskOf(vb, kGetPlaySpeedByIndex, {{"index", i}})["speed"].asDouble());
    }
    EXPECT_EQ(speeds, (std::vector<double>{-8, -4, -2, 0, 0.5, 1, 2, 4, 8}));
    EXPECT_EQ(RetOf(vb, kGetPlaySpeedByIndex, {{"index", count}}), -1);
    EXPECT_EQ(RetOf(vb, kGetPlaySpeedByIndex, {{"index", -1}}), -1);
}

TEST_F(Presentation, PauseBeginsTimeShiftAndStopTimeShiftGoesBackToLive) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(AskOf(vb, kGetPlaySpeed)["speed"].asDouble(), 1.0);
    EXPECT_EQ(AskOf(vb, kGetCurrentTimeShiftMode)["mode"], 0);
    EXPECT_EQ(AskOf(vb, kGetPlaybackOffset)["offset"], 0);
    EXPECT_EQ(RetOf(vb, kResume), -1);
    EXPECT_EQ(RetOf(vb, kStopTimeShift), -1);
    EXPECT_EQ(RetOf(vb, kPause), 0);
    EXPECT_EQ(NextEvent(), "Recording 11");
    EXPECT_EQ(NextEvent(), "PlaySpeed 0");
    EXPECT_EQ(AskOf(vb, kGetPlaySpeed)["speed"].asDouble(), 0.0);
    EXPECT_EQ(AskOf(vb, kGetCurrentTimeShiftMode)["mode"], 1);
    EXPECT_EQ(AskOf(vb, kGetRecordingState)["state"], 11);
    EXPECT_TRUE(WaitFor([&] { return AskOf(vb, kGetPlaybackOffset)["offset"].asUInt() > 50; }));
    EXPECT_EQ(AskOf(vb, kGetPlayPosition)["position"], 0);
    EXPECT_EQ(RetOf(vb, kResume), 0);
    EXPECT_EQ(NextEvent(), "PlaySpeed 1");
    EXPECT_TRUE(WaitFor([&] { return AskOf(vb, kGetPlayPosition)["position"].asUInt() > 0; }));
    EXPECT_GT(AskOf(vb, kGetPlaybackOffset)["offset"].asUInt(), 50u);
    EXPECT_EQ(RetOf(vb, kStopTimeShift), 0);
    EXPECT_EQ(AskOf(vb, kGetPlaybackOffset)["offset"], 0);
    EXPECT_EQ(AskOf(vb, kGetRecordingState)["state"], 0);
    EXPECT_EQ(State(vb), 2);
    EXPECT_EQ(EventsSoFar(vb), Events{});
}

TEST_F(Presentation, SeekStaysWithinTheBuffer) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", 0}, {"reference", 0}}), -1) << "there is no buffer yet";
    EXPECT_EQ(RetOf(vb, kPause), 0);
    ASSERT_TRUE(WaitFor([&] { return AskOf(vb, kGetPlaybackOffset)["offset"].asUInt() > 100; }));
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", 60}, {"reference", 0}}), 0);
    EXPECT_EQ(AskOf(vb, kGetPlayPosition)["position"], 60);
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", -20}, {"reference", 1}}), 0);
    EXPECT_EQ(AskOf(vb, kGetPlayPosition)["position"], 40);
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", -41}, {"reference", 1}}), -1);
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", 1}, {"reference", 2}}), -1);
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", -1}, {"reference", 0}}), -1);
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", 2147483647}, {"reference", 0}}), -1);
    EXPECT_EQ(RetOf(vb, kSeek, {{"offset", 0}, {"reference", 3}}), -1);
    EXPECT_EQ(AskOf(vb, kGetPlayPosition)["position"], 40);
    EXPECT_EQ(EventsUntil("event 7").back(), "event 7");
}

TEST_F(Presentation, FastForwardGoesOnAtNormalSpeedWhenItMeetsTheLivePicture) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(RetOf(vb, kPause), 0);
    EXPECT_EQ(RetOf(vb, kSetSpeed, {{"speed", 8.0}}), 0);
    EXPECT_EQ(EventsUntil("PlaySpeed 1"), (Events{"Recording 11", "PlaySpeed 0", "PlaySpeed 8", "PlaySpeed 1"}));
    EXPECT_EQ(AskOf(vb, kGetPlaySpeed)["speed"].asDouble(), 1.0);
    EXPECT_EQ(RetOf(vb, kSetSpeed, {{"speed", -2.0}}), 0);
    EXPECT_EQ(EventsUntil("PlaySpeed 1"), (Events{"PlaySpeed -2", "PlaySpeed 1"}));
}

TEST_F(Presentation, OnlySpeedsOfTheListAreTaken) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(RetOf(vb, kSetSpeed, {{"speed", 3.0}}), -1);
    EXPECT_EQ(RetOf(vb, kSetSpeed, {{"speed", 1}}), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{});
    EXPECT_EQ(AskOf(vb, kGetCurrentTimeShiftMode)["mode"], 0);
}

TEST_F(Presentation, TheTimeShiftModeIsAPreferenceFrom0To3) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(AskOf(vb, kGetTimeShiftMode)["mode"], 1);
    EXPECT_EQ(RetOf(vb, kSetTimeShiftMode, {{"mode", 4}}), -1);
    EXPECT_EQ(RetOf(vb, kSetTimeShiftMode, {{"mode", -1}}), -1);
    EXPECT_EQ(RetOf(vb, kSetTimeShiftMode, {{"mode", 0}}), 0);
    EXPECT_EQ(AskOf(vb, kGetTimeShiftMode)["mode"], 0);
    EXPECT_EQ(AskOf(vb, kGetMaxOffset)["offset"], 0);
    EXPECT_EQ(RetOf(vb, kPause), -1);
    EXPECT_EQ(RetOf(vb, kSetTimeShiftMode, {{"mode", 2}}), 0);
    EXPECT_EQ(RetOf(vb, kPause), 0);
    EXPECT_EQ(AskOf(vb, kGetCurrentTimeShiftMode)["mode"], 2);
    EXPECT_EQ(AskOf(vb, kGetMaxOffset)["offset"], 1800000);
}

TEST_F(Presentation, TheTimeShiftModeOfANewObjectIsThePreferredOne) {
    const std::string before = NewObject();
    EXPECT_EQ(Tell("set time-shift-mode 3"), "ok");
    EXPECT_EQ(AskOf(NewObject(), kGetTimeShiftMode)["mode"], 3);
    EXPECT_EQ(AskOf(before, kGetTimeShiftMode)["mode"], 1);
}

TEST_F(Presentation, AChangeOfChannelEndsTimeShift) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(RetOf(vb, kPause), 0);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 1)), 0);
    EventsUntil("PlayState 2 0");
    EXPECT_EQ(AskOf(vb, kGetCurrentTimeShiftMode)["mode"], 0);
    EXPECT_EQ(AskOf(vb, kGetPlaySpeed)["speed"].asDouble(), 1.0);
}

TEST_F(Presentation, NothingIsPausedWhileNothingIsPresented) {
    const std::string vb = NewObject();
    EXPECT_EQ(RetOf(vb, kPause), -1);
    EXPECT_EQ(RetOf(vb, kSetSpeed, {{"speed", 2.0}}), -1);
    EXPECT_EQ(AskOf(vb, kGetPlaySpeed)["speed"].asDouble(), 0.0);
}

TEST_F(Presentation, TheComponentsAreThoseOfTheTunedService) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(Count(vb, kGetComponentNum, 0), 1u);
    EXPECT_EQ(Count(vb, kGetComponentNum, 1), 3u);
    EXPECT_EQ(Count(vb, kGetComponentNum, 2), 1u);
    EXPECT_EQ(Count(vb, kGetActiveComponentNum, 0), 1u);
    EXPECT_EQ(Count(vb, kGetActiveComponentNum, 1), 1u);
    EXPECT_EQ(Count(vb, kGetActiveComponentNum, 2), 0u);
    EXPECT_EQ(Active(vb, 0), Component(vb, 0, 0));
    EXPECT_EQ(Active(vb, 1), Component(vb, 1, 0));
    EXPECT_EQ(RetOf(vb, kGetComponent, {{"comType", 1}, {"index", 3}}), -1);
    EXPECT_EQ(RetOf(vb, kGetActiveComponent, {{"index", 2}}), -1);
    EXPECT_EQ(RetOf(vb, kGetComponentNum, {{"comType", 3}}), -1);
    EXPECT_EQ(RetOf(vb, kStop), 0);
    EXPECT_EQ(Count(vb, kGetComponentNum, 1), 0u);
}

TEST_F(Presentation, ThePreferencesChooseTheComponentsOfAServiceWhenItIsTuned) {
    EXPECT_EQ(Tell("set audio-language ita,fra"), "ok");
    EXPECT_EQ(Tell("set subtitles on"), "ok");
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(Active(vb, 1), Component(vb, 1, 1)) << "the French one";
    EXPECT_EQ(Active(vb, 2), Component(vb, 2, 0));
    EXPECT_EQ(Tell("set audio-language deu"), "ok");
    EXPECT_EQ(Tell("set audio-description on"), "ok");
    EXPECT_EQ(Tell("set subtitles off"), "ok");
    EXPECT_EQ(Active(vb, 1), Component(vb, 1, 1)) << "until the service is tuned again";
    EXPECT_EQ(EventsSoFar(vb), Events{});
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EventsUntil("PlayState 2 0");
    EXPECT_EQ(Active(vb, 1), Component(vb, 1, 2)) << "German, with audio description";
    EXPECT_EQ(Count(vb, kGetActiveComponentNum, 2), 0u);
}

TEST_F(Presentation, SelectingAComponentReplacesTheOneOfItsType) {
    const std::string vb = ObjectOnTwo();
    const std::string french = Component(vb, 1, 1);
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", french}}), 0);
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", french}}), 0);
    EXPECT_EQ(Active(vb, 1), french);
    EXPECT_EQ(Count(vb, kGetActiveComponentNum, 1), 1u);
    EXPECT_EQ(RetOf(vb, kUnselectComponent, {{"component", Component(vb, 1, 0)}}), -1) << "it is not selected";
    EXPECT_EQ(RetOf(vb, kUnselectComponent, {{"component", french}}), 0);
    EXPECT_EQ(Count(vb, kGetActiveComponentNum, 1), 0u);
    EXPECT_EQ(EventsSoFar(vb), (Events{"SelectedComponent 1", "SelectedComponent 1"}));
}

TEST_F(Presentation, SelectingByTypeTakesTheUsualOne) {
    const std::string vb = ObjectOnTwo();
    EXPECT_EQ(RetOf(vb, kSelectComponentByType, {{"comType", 2}}), 0);
    EXPECT_EQ(Active(vb, 2), Component(vb, 2, 0));
    EXPECT_EQ(RetOf(vb, kUnselectComponentByType, {{"comType", 2}}), 0);
    EXPECT_EQ(RetOf(vb, kUnselectComponentByType, {{"comType", 2}}), 0);
    EXPECT_EQ(RetOf(vb, kSelectComponentByType, {{"comType", 0}}), 0) << "it is selected already";
    EXPECT_EQ(EventsSoFar(vb), (Events{"SelectedComponent 2", "SelectedComponent 2"}));
    EXPECT_EQ(SetChannel(vb, Channel(vb, 1)), 0);
    EventsUntil("PlayState 2 0");
    EXPECT_EQ(RetOf(vb, kSelectComponentByType, {{"comType", 2}}), -1) << "One has no subtitles";
}

TEST_F(Presentation, ACreatedComponentSelectsTheOneThatItDescribes) {
    const std::string vb = ObjectOnTwo();
    const auto sound = [&](int tag, const char* language, bool described, int channels) {
        return AskOf(vb, kCreateAudioComponent,
                     {{"componentTag", tag},
                      {"language", language},
                      {"audioDescription", described},
                      {"channels", channels},
                      {"encoding", ""}})["component"]
            .asString();
    };
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", sound(-1, "fra", false, 0)}}), 0);
    EXPECT_EQ(Active(vb, 1), Component(vb, 1, 1));
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", sound(-1, "deu", true, 0)}}), 0);
    EXPECT_EQ(Active(vb, 1), Component(vb, 1, 2));
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", sound(2, "", false, 0)}}), 0);
    EXPECT_EQ(Active(vb, 1), Component(vb, 1, 0));
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", sound(-1, "ita", false, 0)}}), -1);
    const Json::Value picture =
        AskOf(vb, kCreateVideoComponent,
              {{"componentTag", 1}, {"aspectRatio", 1.78}, {"encoding", "AVC_HD_25"}})["component"];
    EXPECT_EQ(RetOf(vb, kUnselectComponent, {{"component", picture}}), 0);
    EXPECT_EQ(Count(vb, kGetActiveComponentNum, 0), 0u);
}

TEST_F(Presentation, AComponentOfAnotherServiceIsRefused) {
    const std::string vb = ObjectOnTwo();
    const std::string german = Component(vb, 1, 0);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 1)), 0);
    EventsUntil("PlayState 2 0");
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", german}}), -1);
}

TEST_F(Presentation, TheSelectionOutlivesADisturbance) {
    const std::string vb = ObjectOnTwo();
    const std::string french = Component(vb, 1, 1);
    EXPECT_EQ(RetOf(vb, kSelectComponent, {{"component", french}}), 0);
    EXPECT_EQ(Tell("signal lost"), "ok");
    EXPECT_EQ(Count(vb, kGetComponentNum, 1), 0u);
    EXPECT_EQ(Tell("signal back"), "ok");
    EXPECT_EQ(Active(vb, 1), french);
}

TEST_F(Presentation, ListsAreHandlesOfTheirOwn) {
    ObjectOnTwo();
    const Json::Value all = Ask(kCreateComponentList, {{"is_active", false}, {"avcmp_type", 1}});
    const Json::Value active = Ask(kCreateComponentList, {{"is_active", true}, {"avcmp_type", 1}});
    const Json::Value programmes = Ask(kCreateProgrammeList);
    EXPECT_EQ(all["ret"], 0);
    EXPECT_EQ(programmes["ret"], 0);
    EXPECT_EQ(all["avcmp_coll"].asString().substr(0, 2), "0x");
    EXPECT_EQ(programmes["prog_coll"].asString().substr(0, 2), "0x");
    EXPECT_NE(all["avcmp_coll"], active["avcmp_coll"]);
    EXPECT_EQ(Ret(kCreateComponentList, {{"is_active", 1}, {"avcmp_type", 1}}), -1);
}

TEST_F(Presentation, APresentedChannelHasAProgrammeNowAndOneNext) {
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(AskOf(vb, kGetProgrammeNum)["num"], 0);
    EXPECT_EQ(RetOf(vb, kGetProgrammeByIndex, {{"index", 0}}), -1);
    EXPECT_EQ(RetOf(vb, kBindToCurrentChannel), 0);
    EXPECT_EQ(AskOf(vb, kGetProgrammeNum)["num"], 2);
    const Json::Value now = AskOf(vb, kGetProgrammeByIndex, {{"index", 0}})["programme"];
    const Json::Value next = AskOf(vb, kGetProgrammeByIndex, {{"index", 1}})["programme"];
    EXPECT_EQ(now.asString().substr(0, 2), "0x");
    EXPECT_NE(now, next);
    EXPECT_EQ(RetOf(vb, kGetProgrammeByIndex, {{"index", 2}}), -1);
}

class StreamEvents : public SimulatedPlatform {
  protected:
    void SetUp() override { Start({"--tune-time", "0ms", "--stream-event-interval", "20ms"}); }

    int Listen(int method, const std::string& name) {
        return Ret(method, {{"strurl", "dvb://1.1.1/sevent"}, {"dvburl", "dvb://1.1.1.13"}, {"event_name", name}});
    }
};

TEST_F(StreamEvents, AListenerGetsEventsWithDataInHexadecimalAndTextInBytes) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Listen(kAddStreamEventListener, "quiz"), 0);
    const Json::Value event = NextEventJson();
    EXPECT_EQ(event["event"], 16);
    EXPECT_EQ(event["url"], "dvb://1.1.1/sevent");
    EXPECT_EQ(event["eventName"], "quiz");
    EXPECT_EQ(event["status"], "trigger");
    EXPECT_EQ(event["data"], "73747265616d206576656e742031");
    const std::string text = "stream event 1";
    ASSERT_EQ(event["textLen"].asUInt(), text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        EXPECT_EQ(event["text" + std::to_string(i)].asUInt(), static_cast<unsigned>(text[i])) << i;
    }
    EXPECT_EQ(NextEvent(), "StreamEvent quiz trigger");
}

TEST_F(StreamEvents, ARemovedListenerGetsNoMoreAndTheOthersGoOn) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Listen(kAddStreamEventListener, "a"), 0);
    EXPECT_EQ(Listen(kAddStreamEventListener, "a"), 0) << "the same listener once more";
    EXPECT_EQ(Listen(kAddStreamEventListener, "b"), 0);
    EventsUntil("StreamEvent b trigger");
    EXPECT_EQ(Listen(kRemoveStreamEventListener, "a"), 0);
    EXPECT_EQ(Listen(kRemoveStreamEventListener, "a"), -1);
    EventsSoFar(vb);
    EXPECT_EQ(NextEvent(), "StreamEvent b trigger");
    EXPECT_EQ(NextEvent(), "StreamEvent b trigger");
}

TEST_F(StreamEvents, AChangeOfChannelEndsEveryListenerWithOneErrorEvent) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Listen(kAddStreamEventListener, "a"), 0);
    EXPECT_EQ(Listen(kAddStreamEventListener, "b"), 0);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EventsUntil("PlayState 1 0");
    EXPECT_EQ(EventsUntil("PlayState 2 0"),
              (Events{"StreamEvent a error", "StreamEvent b error", "ChannelChanged Two 0", "PlayState 2 0"}));
    EXPECT_EQ(Listen(kRemoveStreamEventListener, "a"), -1);
}

TEST_F(StreamEvents, NobodyCanListenWhileNoServiceIsTuned) {
    EXPECT_EQ(Listen(kAddStreamEventListener, "a"), -1);
    ObjectIn("unrealized");
    EXPECT_EQ(Listen(kAddStreamEventListener, "a"), -1);
}

}  // namespace
}  // namespace hbbtv::test
