// Every row of the state table of the video/broadcast object, with its events in order. State numbers: 0 unrealized,
// 1 connecting, 2 presenting, 3 stopped. Values and rows are those of OIPF DAE volume 5.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

class StateTable : public VideoBroadcastFixture {
  protected:
    void SetUp() override { Start(); }
};

using StateTableWithOptions = VideoBroadcastFixture;

class StateTableFrom : public StateTable, public testing::WithParamInterface<const char*> {};

std::string StateName(const testing::TestParamInfo<const char*>& info) {
    return info.param;
}

class StateTableFromAny : public StateTableFrom {};
INSTANTIATE_TEST_SUITE_P(Every, StateTableFromAny, testing::Values("unrealized", "connecting", "presenting", "stopped"),
                         StateName);

TEST_P(StateTableFromAny, SetChannelConnectsAndThenPresents) {
    const std::string vb = ObjectIn(GetParam());
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (Events{"PlayState 1 0", "ChannelChanged Two 0", "PlayState 2 0"}));
    EXPECT_EQ(State(vb), 2);
    EXPECT_EQ(EventsSoFar(vb), Events{});
}

TEST_P(StateTableFromAny, SetChannelToAnUnknownServiceOnlyReportsError5) {
    const std::string vb = ObjectIn(GetParam());
    const int before = State(vb);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 77)), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{"ChannelError Unknown 5"});
    EXPECT_EQ(State(vb), before);
}

TEST_P(StateTableFromAny, SetChannelWithoutAFreeTunerOnlyReportsError2) {
    const std::string vb = ObjectIn(GetParam());
    const int before = State(vb);
    ASSERT_EQ(Tell("tuner taken"), "ok");
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{"ChannelError Two 2"});
    EXPECT_EQ(State(vb), before);
}

TEST_P(StateTableFromAny, AZapOfTheViewerDoesWhatSetChannelDoes) {
    const std::string vb = ObjectIn(GetParam());
    Channel(vb, 2);
    EXPECT_EQ(Tell("zap 2"), "ok Two");
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (Events{"PlayState 1 0", "ChannelChanged Two 0", "PlayState 2 0"}));
    EXPECT_EQ(State(vb), 2);
}

TEST_F(StateTable, SetChannelOfATypeThatTheTunerDoesNotHaveReportsError0) {
    const std::string vb = ObjectIn("presenting");
    const std::string created = CreateChannel(vb, 22, 1, 1, 1);
    EXPECT_EQ(SetChannel(vb, created), 0);
    EXPECT_EQ(NextEvent(), "ChannelError ?" + created + " 0");
    EXPECT_EQ(State(vb), 2);
}

class StateTableFromTuned : public StateTableFrom {};
INSTANTIATE_TEST_SUITE_P(Every, StateTableFromTuned, testing::Values("connecting", "presenting", "stopped"), StateName);

TEST_P(StateTableFromTuned, NextChannelConnectsToTheNeighbour) {
    const std::string vb = ObjectIn(GetParam());
    const bool onTheLast = std::string(GetParam()) == "connecting";  // Locked, so the next one is One
    Channel(vb, 2);
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"),
              (Events{"PlayState 1 0", onTheLast ? "ChannelChanged One 0" : "ChannelChanged Two 0", "PlayState 2 0"}));
}

TEST_P(StateTableFromTuned, NextAndPreviousWithoutAFreeTunerOnlyReportError2) {
    const std::string vb = ObjectIn(GetParam());
    const int before = State(vb);
    const bool onTheLast = std::string(GetParam()) == "connecting";
    Channel(vb, 2), Channel(vb, 4), Channel(vb, 5);
    ASSERT_EQ(Tell("tuner taken"), "ok");
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(RetOf(vb, "PrevChannel"), 0);
    EXPECT_EQ(EventsSoFar(vb), (onTheLast ? Events{"ChannelError One 2", "ChannelError Dark 2"}
                                          : Events{"ChannelError Two 2", "ChannelError Locked 2"}));
    EXPECT_EQ(State(vb), before);
}

TEST_P(StateTableFromTuned, ReleaseLeadsToUnrealized) {
    const std::string vb = ObjectIn(GetParam());
    EXPECT_EQ(RetOf(vb, "Release"), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 0 0"});
    EXPECT_EQ(State(vb), 0);
    EXPECT_EQ(CurrentChannel(vb), "");
}

TEST_P(StateTableFromTuned, SetChannelWithTheNullChannelIsRelease) {
    const std::string vb = ObjectIn(GetParam());
    EXPECT_EQ(SetChannel(vb, ""), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 0 0"});
    EXPECT_EQ(State(vb), 0);
}

class StateTableFromWatched : public StateTableFrom {};
INSTANTIATE_TEST_SUITE_P(Every, StateTableFromWatched, testing::Values("presenting", "stopped"), StateName);

TEST_P(StateTableFromWatched, NextFromAServiceOutsideTheListOnlyReportsError10) {
    const std::string vb = ObjectIn("presenting");
    Tune(vb, 9);
    const bool stopped = std::string(GetParam()) == "stopped";
    if (stopped) {
        EXPECT_EQ(RetOf(vb, "Stop"), 0);
    }
    EventsSoFar(vb);
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(RetOf(vb, "PrevChannel"), 0);
    EXPECT_EQ(EventsSoFar(vb), (Events{"ChannelError none 10", "ChannelError none 10"}));
    EXPECT_EQ(State(vb), stopped ? 3 : 2);
}

TEST_P(StateTableFromWatched, APermanentErrorLeadsToUnrealizedWithTheErrorInPlayState) {
    const std::string vb = ObjectIn(GetParam());
    EXPECT_EQ(Tell("fail 1"), "ok");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 0 1"});
    EXPECT_EQ(State(vb), 0);
}

TEST_F(StateTable, NextWhileConnectingToAServiceOutsideTheListLeadsToUnrealized) {
    const std::string vb = ObjectIn("presenting");
    Tune(vb, 9);
    ASSERT_EQ(Tell("signal lost"), "ok");
    EXPECT_EQ(NextEvent(), "PlayState 1 1");
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(EventsSoFar(vb), (Events{"ChannelError none 10", "PlayState 0 10"}));
    EXPECT_EQ(State(vb), 0);
}

TEST_F(StateTable, BindFromUnrealizedPresentsAtOnceWhatIsOn) {
    const std::string vb = ObjectIn("unrealized");
    const std::string one = Channel(vb, 1);
    EXPECT_EQ(HandleOf(vb, "BindToCurrentChannel"), one);
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 2 0"});
    EXPECT_EQ(CurrentChannel(vb), one);
}

TEST_F(StateTable, BindFromUnrealizedWithoutResourcesStaysUnrealizedWithAnError) {
    const std::string vb = ObjectIn("unrealized");
    ASSERT_EQ(Tell("tuner taken"), "ok");
    EXPECT_EQ(HandleOf(vb, "BindToCurrentChannel"), "");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 0 11"});
}

TEST_F(StateTable, BindFromUnrealizedToAScrambledChannelStaysUnrealizedWithError4) {
    ASSERT_EQ(Tell("zap 3"), "ok Scrambled");
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(HandleOf(vb, "BindToCurrentChannel"), "");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 0 4"});
}

TEST_F(StateTable, BindFromStoppedConnects) {
    const std::string vb = ObjectIn("stopped");
    EXPECT_EQ(HandleOf(vb, "BindToCurrentChannel"), Channel(vb, 1));
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (Events{"PlayState 1 0", "ChannelChanged One 0", "PlayState 2 0"}));
}

TEST_F(StateTable, ConnectingToALockedChannelStaysConnectingUntilThePin) {
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(SetChannel(vb, Channel(vb, 5)), 0);
    EXPECT_EQ(EventsUntil("PlayState 1 3"), (Events{"PlayState 1 0", "ChannelChanged Locked 0", "PlayState 1 3"}));
    EXPECT_EQ(State(vb), 1);
    EXPECT_EQ(Tell("parental-lock pin"), "ok");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 2 0"});
    EXPECT_EQ(State(vb), 2);
}

TEST_F(StateTable, APassingDisturbanceLeadsToConnectingAndBack) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Tell("signal lost"), "ok");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 1 1"});
    EXPECT_EQ(State(vb), 1);
    EXPECT_EQ(Tell("signal back"), "ok");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 2 0"});
    EXPECT_EQ(State(vb), 2);
}

TEST_F(StateTable, AParentalLockWhilePresentingLeadsToConnecting) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(Tell("parental-lock on"), "ok");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 1 3"});
}

TEST_F(StateTable, AScrambledChannelEndsUnrealizedWithError4) {
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(SetChannel(vb, Channel(vb, 3)), 0);
    EXPECT_EQ(EventsUntil("PlayState 0 4"), (Events{"PlayState 1 0", "ChannelError Scrambled 4", "PlayState 0 4"}));
    EXPECT_EQ(State(vb), 0);
}

TEST_F(StateTable, AChannelWithoutSignalEndsUnrealizedWithError1) {
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(SetChannel(vb, Channel(vb, 4)), 0);
    EXPECT_EQ(EventsUntil("PlayState 0 1"), (Events{"PlayState 1 0", "ChannelError Dark 1", "PlayState 0 1"}));
}

TEST_F(StateTableWithOptions, ThePermanentErrorOptionPutsChannelChangedInFrontOfPlayState) {
    Start({"--permanent-error", "channel-changed"});
    const std::string vb = NewObject();
    EXPECT_EQ(SetChannel(vb, Channel(vb, 3)), 0);
    EXPECT_EQ(EventsUntil("PlayState 0 4"), (Events{"PlayState 1 0", "ChannelChanged Scrambled 0", "PlayState 0 4"}));
}

class StateTableStop : public StateTableFrom {};
INSTANTIATE_TEST_SUITE_P(Every, StateTableStop, testing::Values("connecting", "presenting"), StateName);

TEST_P(StateTableStop, StopLeadsToStoppedAndKeepsTheChannel) {
    const std::string vb = ObjectIn(GetParam());
    const std::string channel = CurrentChannel(vb);
    EXPECT_EQ(RetOf(vb, "Stop"), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 3 0"});
    EXPECT_EQ(State(vb), 3);
    EXPECT_EQ(CurrentChannel(vb), channel);
}

TEST_F(StateTable, WhatHasNoRowChangesNothingAndSendsNoEvent) {
    const std::string unrealized = ObjectIn("unrealized");
    EXPECT_EQ(RetOf(unrealized, "Stop"), 0);
    EXPECT_EQ(RetOf(unrealized, "Release"), 0);
    EXPECT_EQ(EventsSoFar(unrealized), Events{});
    EXPECT_EQ(State(unrealized), 0);
    const std::string stopped = ObjectIn("stopped");
    EXPECT_EQ(RetOf(stopped, "Stop"), 0);
    EXPECT_EQ(EventsSoFar(stopped), Events{});
    const std::string presenting = ObjectIn("presenting");
    EXPECT_EQ(HandleOf(presenting, "BindToCurrentChannel"), Channel(presenting, 1));
    EXPECT_EQ(EventsSoFar(presenting), Events{});
    EXPECT_EQ(State(presenting), 2);
}

TEST_F(StateTable, NextFromUnrealizedReportsError10) {
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(EventsSoFar(vb), Events{"ChannelError none 10"});
}

}  // namespace
}  // namespace hbbtv::test
