// Events and the library's side of them: it may be away, slow, die and come back.
#include "simulated_platform.h"

namespace hbbtv::test {
namespace {

class EventSocket : public SimulatedPlatform {
  protected:
    void SetUp() override { Start({"--tune-time", "0ms"}); }

    void FullScreen(const std::string& vb, bool full) {
        EXPECT_EQ(RetOf(vb, kSetFullScreen, {{"fullscreen", full}}), 0);
    }

    // How often the text is in what the simulator has said so far.
    int Said(const std::string& text) const {
        const std::string output = mSimulator->Output();
        int count = 0;
        for (size_t at = output.find(text); at != std::string::npos; at = output.find(text, at + 1)) ++count;
        return count;
    }
};

TEST_F(EventSocket, AnEventIsAOneWayMessageOfPort7WithTheRegisteredContext) {
    const std::string vb = NewObject("0xfedc1234");
    FullScreen(vb, true);
    const auto frame = mLibrary->Next();
    ASSERT_TRUE(frame.has_value());
    EXPECT_EQ(frame->type, 1);
    EXPECT_EQ(frame->port, 7);
    const Json::Value event = Parsed(frame->payload);
    EXPECT_EQ(event.getMemberNames(), (std::vector<std::string>{"context", "event", "isFullScreen", "type"}));
    EXPECT_EQ(event["type"], "videobroadcast");
    EXPECT_EQ(event["event"], 3);
    EXPECT_EQ(event["isFullScreen"], 1);
    EXPECT_EQ(event["context"], "0xfedc1234");
}

TEST_F(EventSocket, EventsAreDroppedWithOneLogLineWhileNobodyServesTheSocket) {
    StopServingEvents();
    const std::string vb = NewObject();
    for (int i = 0; i < 20; ++i) FullScreen(vb, i % 2 == 0);
    EXPECT_TRUE(mSimulator->WaitForOutput("dropped"));
    for (int i = 0; i < 20; ++i) FullScreen(vb, i % 2 == 0);
    EXPECT_EQ(Said("dropped"), 1);
}

TEST_F(EventSocket, ALibraryThatComesLateGetsTheLaterEvents) {
    StopServingEvents();
    const std::string vb = NewObject();
    FullScreen(vb, true);
    ASSERT_TRUE(mSimulator->WaitForOutput("dropped"));
    ServeEvents();
    FullScreen(vb, false);
    EXPECT_EQ(NextEvent(), "FullScreen 0");
    EXPECT_TRUE(mSimulator->WaitForOutput("served again"));
}

TEST_F(EventSocket, ALibraryThatDiesAndComesBackGetsTheNextEvent) {
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

TEST_F(EventSocket, AConnectionThatEndsWhileTheSocketStaysIsMadeAgain) {
    const std::string vb = NewObject();
    FullScreen(vb, true);
    EXPECT_EQ(NextEvent(), "FullScreen 1");
    mLibrary->Disconnect();
    FullScreen(vb, false);
    EXPECT_EQ(NextEvent(), "FullScreen 0");
}

TEST_F(EventSocket, ALibraryThatDoesNotReadHoldsUpNobodyAndGetsAllInOrderLater) {
    const std::string vb = NewObject();
    constexpr int kEvents = 3000;  // more than a socket holds
    for (int i = 0; i < kEvents; ++i) FullScreen(vb, i % 2 == 0);
    for (int i = 0; i < kEvents; ++i) ASSERT_EQ(NextEvent(), i % 2 == 0 ? "FullScreen 1" : "FullScreen 0") << i;
}

TEST_F(EventSocket, APathThatIsNoSocketIsNobody) {
    StopServingEvents();
    WriteFile(mEventSocket, "no socket");
    const std::string vb = NewObject();
    FullScreen(vb, true);
    EXPECT_TRUE(mSimulator->WaitForOutput("dropped"));
    EXPECT_EQ(State(vb), 0);
}

}  // namespace
}  // namespace hbbtv::test
