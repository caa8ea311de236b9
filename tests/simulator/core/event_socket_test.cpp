// Events while the library is away, slow, dies and comes back.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

class EventSockets : public VideoBroadcastFixture {
  protected:
    void SetUp() override { Start(); }

    void FullScreen(const std::string& vb, bool full) {
        EXPECT_EQ(RetOf(vb, "SetFullScreen", {{"fullscreen", full}}), 0);
    }
};

TEST_F(EventSockets, AnEventIsAOneWayMessageWithTheRegisteredContext) {
    const std::string vb = NewObject("0xfedc1234");
    FullScreen(vb, true);
    EXPECT_EQ(NextEventOf("video_broadcast").Text(), "TOLM_VB_EVENT_FULL_SCREEN context=\"0xfedc1234\" isFullScreen=1");
}

TEST_F(EventSockets, EventsAreDroppedWithOneLogLineWithoutAServerOnTheSocket) {
    StopServingEvents();
    const std::string vb = NewObject();
    for (int i = 0; i < 20; ++i) FullScreen(vb, i % 2 == 0);
    EXPECT_TRUE(mSimulator->WaitForOutput("dropped"));
    for (int i = 0; i < 20; ++i) FullScreen(vb, i % 2 == 0);
    ExpectSaid("dropped", 1);
}

TEST_F(EventSockets, ALibraryThatComesLateGetsTheLaterEvents) {
    StopServingEvents();
    const std::string vb = NewObject();
    FullScreen(vb, true);
    ASSERT_TRUE(mSimulator->WaitForOutput("dropped"));
    ServeEvents();
    FullScreen(vb, false);
    EXPECT_EQ(NextEvent(), "FullScreen 0");
    EXPECT_TRUE(mSimulator->WaitForOutput("served again"));
}

TEST_F(EventSockets, ALibraryThatDiesAndComesBackGetsTheNextEvent) {
    const std::string vb = NewObject();
    for (int round = 0; round < 5; ++round) {
        FullScreen(vb, true);
        EXPECT_EQ(NextEvent(), "FullScreen 1");
        FullScreen(vb, false);
        EXPECT_EQ(NextEvent(), "FullScreen 0");
        StopServingEvents();
        ServeEvents();
    }
}

TEST_F(EventSockets, AConnectionThatEndsWhileTheSocketStaysIsRestored) {
    const std::string vb = NewObject();
    FullScreen(vb, true);
    EXPECT_EQ(NextEvent(), "FullScreen 1");
    LibraryOf("video_broadcast").Disconnect();
    FullScreen(vb, false);
    EXPECT_EQ(NextEvent(), "FullScreen 0");
}

TEST_F(EventSockets, ALibraryThatDoesNotReadGetsAllEventsInOrderLater) {
    const std::string vb = NewObject();
    constexpr int kEvents = 3000;  // more than a socket holds
    for (int i = 0; i < kEvents; ++i) FullScreen(vb, i % 2 == 0);
    for (int i = 0; i < kEvents; ++i) ASSERT_EQ(NextEvent(), i % 2 == 0 ? "FullScreen 1" : "FullScreen 0") << i;
}

TEST_F(EventSockets, APathThatIsNotASocketIsNotServed) {
    StopServingEvents();
    WriteFile(EventSocket(), "not a socket");
    const std::string vb = NewObject();
    FullScreen(vb, true);
    EXPECT_TRUE(mSimulator->WaitForOutput("dropped"));
    EXPECT_EQ(State(vb), 0);
}

}  // namespace
}  // namespace hbbtv::test
