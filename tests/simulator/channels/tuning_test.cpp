// Channels, tuning and several objects, beyond the rows of the state table.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

class Tuning : public VideoBroadcastFixture {
  protected:
    void SetUp() override { Start(); }
};

using TuningWithOptions = VideoBroadcastFixture;

TEST_F(Tuning, NextWrapsAroundTheListAndSkipsUnlistedServices) {
    const std::string vb = ObjectIn("presenting");
    const std::string one = Channel(vb, 1);
    Channel(vb, 2), Channel(vb, 5);
    EXPECT_EQ(RetOf(vb, "PrevChannel"), 0);
    EXPECT_EQ(EventsUntil("PlayState 1 3"), (Events{"PlayState 1 0", "ChannelChanged Locked 0", "PlayState 1 3"}));
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (Events{"PlayState 1 0", "ChannelChanged One 0", "PlayState 2 0"}));
    EXPECT_EQ(RetOf(vb, "NextChannel"), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (Events{"PlayState 1 0", "ChannelChanged Two 0", "PlayState 2 0"}));
    EXPECT_EQ(RetOf(vb, "PrevChannel"), 0);
    EventsUntil("PlayState 2 0");
    EXPECT_EQ(CurrentChannel(vb), one);
}

TEST_F(Tuning, AQuietChangePassesItsNumberOn) {
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(RetOf(vb, "SetChannel_Quiet",
                    {{"channel", Channel(vb, 2)}, {"trickPlay", true}, {"url", "http://a.test"}, {"quiet", 2}}),
              0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (Events{"PlayState 1 0", "ChannelChanged Two 2", "PlayState 2 0"}));
}

TEST_F(Tuning, AChannelByDescriptorIsFoundByItsServiceIdAndOtherwiseGivesError12) {
    const std::string vb = ObjectIn("unrealized");
    const auto create = [&](int sid) {
        return HandleOf(vb, "CreateChannel_1", {{"idType", 13}, {"dsd", "C\x01\x02"}, {"sid", sid}});
    };
    EXPECT_EQ(create(2), Channel(vb, 2));
    EXPECT_EQ(SetChannel(vb, create(77)), 0);
    EXPECT_EQ(NextMembers()["errorState"], 12);
}

TEST_F(Tuning, AnIpChannelCannotBeResolved) {
    const std::string vb = ObjectIn("unrealized");
    const std::string channel = CreateChannel(vb, 41, 0, 0, 0, 0, "udp://239.0.0.1:5000");
    EXPECT_EQ(SetChannel(vb, channel), 0);
    EXPECT_EQ(NextMembers()["errorState"], 8);
}

TEST_F(Tuning, AServiceHasTheSameHandleHoweverItIsAskedFor) {
    const std::string vb = ObjectIn("presenting");
    const std::string one = Channel(vb, 1);
    EXPECT_EQ(Channel(vb, 1), one);
    EXPECT_EQ(CurrentChannel(vb), one);
    EXPECT_EQ(HandleOf(vb, "BindToCurrentChannel"), one);
    EXPECT_NE(Channel(vb, 2), one);
}

TEST_F(Tuning, TwoObjectsHaveTwoStatesAndTheirEventsTwoContexts) {
    const std::string first = ObjectIn("presenting", "0x1000");
    const std::string second = NewObject("0x2000");
    EXPECT_NE(first, second);
    EXPECT_EQ(State(first), 2);
    EXPECT_EQ(State(second), 0);
    EXPECT_EQ(SetChannel(second, Channel(second, 2)), 0);
    const Event error = NextEventOf("video_broadcast");
    EXPECT_EQ(error.name, "TOLM_VB_EVENT_CHANNEL_ERROR");
    EXPECT_EQ(error.members["context"], "0x2000");
    EXPECT_EQ(error.members["errorState"], 2) << "the first object uses the only tuner";
    EXPECT_EQ(State(first), 2);
    EXPECT_EQ(RetOf(first, "Stop"), 0);
    const Json::Value stopped = NextMembers();
    EXPECT_EQ(stopped["context"], "0x1000");
    EXPECT_EQ(stopped["state"], 3);
    EXPECT_EQ(SetChannel(second, Channel(second, 2)), 0);
    EXPECT_EQ(NextMembers()["context"], "0x2000");
    EventsUntil("PlayState 2 0");
    EXPECT_EQ(State(first), 3);
    EXPECT_EQ(State(second), 2);
    EXPECT_EQ(RetOf(first, "NextChannel"), 0);
    EXPECT_EQ(NextEvent(), "ChannelError Two 2");
    EXPECT_EQ(CurrentChannel(first), Channel(first, 1));
    EXPECT_EQ(HandleOf(first, "BindToCurrentChannel"), "");
    EXPECT_EQ(NextEvent(), "PlayState 3 11");
}

TEST_F(Tuning, ASecondObjectCannotBindWhileTheFirstPresents) {
    ObjectIn("presenting");
    const std::string second = NewObject();
    EXPECT_EQ(HandleOf(second, "BindToCurrentChannel"), "");
    EXPECT_EQ(NextEvent(), "PlayState 0 11");
}

TEST_F(Tuning, AnObjectWithoutARegisteredCallbackIsSilent) {
    const std::string silent = HandleOf("0x1", "Create");
    EXPECT_EQ(RetOf(silent, "BindToCurrentChannel"), 0);
    EXPECT_EQ(RetOf(silent, "Release"), 0);
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(EventsSoFar(vb), Events{});
    EXPECT_EQ(RetOf(vb, "UnregisterCallback"), 0);
    EXPECT_EQ(RetOf(vb, "BindToCurrentChannel"), 0);
    EXPECT_EQ(RetOf(vb, "RegisterCallback", {{"context", "0xabc"}}), 0);
    EXPECT_EQ(RetOf(vb, "Stop"), 0);
    const Json::Value event = NextMembers();
    EXPECT_EQ(event["state"], 3);
    EXPECT_EQ(event["context"], "0xabc");
}

TEST_F(Tuning, ANullContextIsReturnedAsTheEmptyString) {
    const std::string vb = NewObject("");
    EXPECT_EQ(RetOf(vb, "BindToCurrentChannel"), 0);
    EXPECT_EQ(NextMembers()["context"], "");
}

TEST_F(Tuning, ReleaseKeepsTheObjectAndDestroyEndsIt) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(RetOf(vb, "Release"), 0);
    EXPECT_EQ(RetOf(vb, "GetPlayState"), 0);
    EXPECT_EQ(RetOf(vb, "Destroy"), 0);
    ExpectRefused({"Release", "Destroy", "GetPlayState", "Stop", "GetVolume", "BindToCurrentChannel"}, {vb});
}

TEST_F(Tuning, DestroyOfAPresentingObjectFreesTheTunerWithoutAnEvent) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(RetOf(vb, "Destroy"), 0);
    const std::string other = NewObject("0x2");
    EXPECT_EQ(RetOf(other, "BindToCurrentChannel"), 0);
    const Json::Value event = NextMembers();
    EXPECT_EQ(event["context"], "0x2");
    EXPECT_EQ(event["state"], 2);
}

TEST_F(Tuning, AHandleOfTheWrongKindIsRefused) {
    const std::string vb = ObjectIn("presenting");
    const std::string channel = Channel(vb, 2);
    const std::string component = Component(vb, kVideo, 0);
    ASSERT_NE(component, "");
    EXPECT_EQ(RetOf(channel, "GetPlayState"), -1);
    EXPECT_EQ(RetOf(component, "Stop"), -1);
    EXPECT_EQ(RetOf("", "Stop"), -1);
    EXPECT_EQ(RetOf("0x12345", "Stop"), -1);
    for (const std::string& wrong : {vb, component, std::string("0x12345")})
        EXPECT_EQ(SetChannel(vb, wrong), -1) << wrong;
    EXPECT_EQ(RetOf(vb, "SelectComponent", {{"component", channel}}), -1);
    EXPECT_EQ(EventsSoFar(vb), Events{}) << "what is refused causes no event";
    EXPECT_EQ(State(vb), 2);
}

TEST_F(Tuning, AHandleIsReadInEveryFormThatCReads) {
    const std::string vb = ObjectIn("presenting");
    std::string upper = vb.substr(2);
    for (char& c : upper) c = static_cast<char>(toupper(c));
    EXPECT_EQ(GetOf("0X" + upper, "GetPlayState"), 2);
    EXPECT_EQ(GetOf("  " + vb + " and more", "GetPlayState"), 2);
    EXPECT_EQ(GetOf(vb.substr(2), "GetPlayState"), 2);
    EXPECT_EQ(RetOf("0x1" + std::string(8 - upper.size(), '0') + upper, "GetPlayState"), -1)
        << "33 bits are not a handle of this platform";
    EXPECT_EQ(SetChannel(vb, "(nil)"), 0);
    EXPECT_EQ(State(vb), 0);
}

TEST_F(Tuning, ARecordedChannelCannotBeLeft) {
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(RetOf(vb, "StopRecording"), -1);
    ASSERT_EQ(Tell("record"), "ok");
    EXPECT_EQ(NextEvent(), "Recording 4");
    EXPECT_EQ(GetOf(vb, "GetRecordingState"), 4);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EXPECT_EQ(NextEvent(), "ChannelError Two 7");
    EXPECT_EQ(State(vb), 2);
    EXPECT_EQ(RetOf(vb, "StopRecording"), 0);
    EXPECT_EQ(NextEvent(), "Recording 6");
    EXPECT_EQ(GetOf(vb, "GetRecordingState"), 0);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0").size(), 3u);
}

TEST_F(TuningWithOptions, ASecondTuneWhileConnectingReplacesTheFirst) {
    Start({"--tune-time", "200ms"});
    const std::string vb = NewObject();
    const std::string one = Channel(vb, 1);
    const std::string two = Channel(vb, 2);
    EXPECT_EQ(SetChannel(vb, one), 0);
    EXPECT_EQ(State(vb), 1);
    EXPECT_EQ(SetChannel(vb, two), 0);
    EXPECT_EQ(CurrentChannel(vb), two);
    EXPECT_EQ(EventsUntil("PlayState 2 0"),
              (Events{"PlayState 1 0", "PlayState 1 0", "ChannelChanged Two 0", "PlayState 2 0"}));
    EXPECT_EQ(EventsSoFar(vb), Events{});
}

TEST_F(TuningWithOptions, StopAndReleaseWhileConnectingEndTheTuning) {
    Start({"--tune-time", "50ms"});
    const std::string vb = NewObject();
    EXPECT_EQ(SetChannel(vb, Channel(vb, 1)), 0);
    EXPECT_EQ(RetOf(vb, "Stop"), 0);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 1)), 0);
    EXPECT_EQ(RetOf(vb, "Release"), 0);
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (Events{"PlayState 1 0", "PlayState 3 0", "PlayState 1 0", "PlayState 0 0",
                                                    "PlayState 1 0", "ChannelChanged Two 0", "PlayState 2 0"}));
}

TEST_F(TuningWithOptions, TuningTakesTheGivenTime) {
    Start({"--tune-time", "300ms"});
    const std::string vb = NewObject();
    const auto start = std::chrono::steady_clock::now();
    Tune(vb, 1);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
}

TEST_F(TuningWithOptions, AnEventLeavesAfterTheReplyThatCausedIt) {
    Start({"--trace"});
    const std::string vb = NewObject();
    Tune(vb, 2);
    ASSERT_TRUE(mSimulator->WaitForOutput("* TOLM_VB_EVENT_CHANNEL_CHANGED ")) << mSimulator->Output();
    const std::string trace = mSimulator->Output();
    EXPECT_LT(trace.find("> SetChannel "), trace.find("* TOLM_VB_EVENT_CHANNEL_CHANGED ")) << trace;
}

TEST_F(TuningWithOptions, TheSameSeedGivesTheSameHandles) {
    std::vector<std::string> handles;
    for (int run = 0; run < 2; ++run) {
        Start({"--seed", "7"});
        const std::string vb = NewObject();
        handles.push_back(vb + " " + Channel(vb, 1));
        EXPECT_EQ(Stop(), 0);
    }
    EXPECT_EQ(handles[0], handles[1]);
}

TEST_F(TuningWithOptions, WithoutASeedTheHandlesDifferFromRunToRun) {
    std::vector<std::string> handles;
    for (int run = 0; run < 2; ++run) {
        Start();
        handles.push_back(NewObject());
        EXPECT_EQ(Stop(), 0);
    }
    EXPECT_NE(handles[0], handles[1]);
}

TEST_F(TuningWithOptions, SomeHandlesHaveTheTopBitSetAndAllAreDifferent) {
    Start();
    std::map<std::string, int> handles;
    int large = 0;
    for (int i = 0; i < 64; ++i) {
        const std::string vb = HandleOf("0x1", "Create");
        EXPECT_EQ(vb.rfind("0x", 0), 0u);
        EXPECT_EQ(vb.find_first_not_of("0123456789abcdef", 2), std::string::npos);
        EXPECT_LE(vb.size(), 10u);
        large += vb.size() == 10 && vb[2] >= '8' ? 1 : 0;
        handles[vb] = i;
        EXPECT_EQ(RetOf(vb, "Destroy"), 0);
    }
    EXPECT_EQ(handles.size(), 64u);
    EXPECT_GT(large, 0);
    EXPECT_LT(large, 64);
}

}  // namespace
}  // namespace hbbtv::test
