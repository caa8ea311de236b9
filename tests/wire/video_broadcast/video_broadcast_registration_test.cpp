// Who receives video/broadcast events, and from when to when.

#include <future>

#include "rows.h"
#include "video_broadcast_events_fixture.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using Lines = std::vector<std::string>;

constexpr char kEvent[] = "{\"type\": \"videobroadcast\", \"event\": 4, \"context\": \"0xabcd\"}";

std::atomic<int> gFirst{0};
std::atomic<int> gSecond{0};

void First(const TolmVideoBroadcastEvent&, const TolmVideoBroadcastEventInfo&, const void*) {
    ++gFirst;
}

void Second(const TolmVideoBroadcastEvent&, const TolmVideoBroadcastEventInfo&, const void*) {
    ++gSecond;
}

std::atomic<int> gStateInHandler{-1};

void AskInHandler(const TolmVideoBroadcastEvent&, const TolmVideoBroadcastEventInfo&, const void*) {
    int state = -1;
    TolmVideoBroadcastAdaptorIpc::GetInstance()->GetPlayState(nullptr, state);
    gStateInHandler = state;
}

std::atomic<int> gMediaSync{0};

void MediaSync(const TolmMediaSyncEvent&, const TolmMediaSyncEventInfo&, const void*) {
    ++gMediaSync;
}

class VideoBroadcastRegistration : public EventsFixture {
  protected:
    // For the platform's threads.
    std::string AskOverAnotherConnection() const {
        RawConnection connection = RawConnection::To(mDirectory / EventsOf(UnderTest().Wire()).socket);
        connection.Write(FrameBytes(kRequest, 7, kEvent));
        const std::optional<Frame> reply = connection.ReadFrame();
        return reply ? reply->payload : "no reply";
    }
};

}  // namespace

TEST_F(VideoBroadcastRegistration, OfAnotherObjectReplacesTheFirst) {
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &First, Pointer(0x1111)), 0);
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(2), &Second, Pointer(0xabcd)), 0);
    SendEvent(kEvent);
    EXPECT_EQ(Ask(kEvent), "{\n\t\"ret\" : 0\n}\n");
    EXPECT_EQ(gFirst, 0);
    EXPECT_EQ(gSecond, 2);
}

TEST_F(VideoBroadcastRegistration, WithoutAFunctionIsNone) {
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &First, Pointer(0xabcd)), 0);
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), nullptr, Pointer(0xabcd)), 0);
    AdaptorLines();
    SendEvent(kEvent);
    EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "5 m_cb is null"}));
    EXPECT_EQ(Ask(kEvent), "null\n");
    EXPECT_EQ(gFirst, 0);
}

TEST_F(VideoBroadcastRegistration, EndsWithUnregisterCallbackOfAnyObject) {
    Register(Pointer(0xabcd));
    EXPECT_EQ(Adaptor().UnregisterCallback(Pointer(0x99)), 0);
    AdaptorLines();
    SendEvent(kEvent);
    EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "5 m_cb is null"}));
    EXPECT_EQ(Ask(kEvent), "null\n");
    EXPECT_TRUE(Received().empty());
}

TEST_F(VideoBroadcastRegistration, EndsWithClearCallback) {
    Register(Pointer(0xabcd));
    Adaptor().ClearCallback();
    AdaptorLines();
    SendEvent(kEvent);
    EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "5 m_cb is null"}));
    EXPECT_EQ(Ask(kEvent), "null\n");
    EXPECT_TRUE(Received().empty());
    // Once more, after it.
    Register(Pointer(0xabcd));
    SendEvent(kEvent);
    EXPECT_EQ(Received().size(), 1u);
}

TEST_F(VideoBroadcastRegistration, OfMediaSynchronisationIsUntouchedByTheOthersEnd) {
    Register(Pointer(0xabcd));
    Adaptor().RegisterMediaSyncCallback(&MediaSync, nullptr);
    Adaptor().ClearCallback();
    Adaptor().UnregisterCallback(nullptr);
    SendEvent("{\"type\": \"mediasync\", \"event\": 4}");
    Received();
    EXPECT_EQ(gMediaSync, 1);
    Adaptor().RegisterMediaSyncCallback(nullptr, nullptr);
    AdaptorLines();
    SendEvent("{\"type\": \"mediasync\", \"event\": 4}");
    EXPECT_EQ(AdaptorLines(), (Lines{"2 ENTER", "5 m_cbMS is null"}));
    EXPECT_EQ(gMediaSync, 1);
}

TEST_F(VideoBroadcastRegistration, HoldsWhenThePlatformRefusesIt) {
    mPlatform.SetReply("{\"ret\": -3}");
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &First, Pointer(0xabcd)), -3);
    SendEvent(kEvent);
    Received();
    EXPECT_EQ(gFirst, 1);
    EXPECT_EQ(Adaptor().UnregisterCallback(Pointer(1)), -3);
    SendEvent(kEvent);
    Received();
    EXPECT_EQ(gFirst, 1);
}

TEST_F(VideoBroadcastRegistration, IsInPlaceBeforeThePlatformKnowsOfIt) {
    // The platform sends an event first and answers the request after that event was handled.
    std::promise<std::string> reply;
    mPlatform.SetAnswer([&](const Frame& request) {
        EXPECT_NE(request.payload.find("\"method\" : 3,"), std::string::npos);
        reply.set_value(AskOverAnotherConnection());
        return std::string("{\"ret\": 0}");
    });
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &First, Pointer(0xabcd)), 0);
    EXPECT_EQ(reply.get_future().get(), "{\n\t\"ret\" : 0\n}\n");
    EXPECT_EQ(gFirst, 1);
}

TEST_F(VideoBroadcastRegistration, IsGoneBeforeThePlatformKnowsOfIt) {
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &First, Pointer(0xabcd)), 0);
    std::promise<std::string> reply;
    mPlatform.SetAnswer([&](const Frame& request) {
        EXPECT_NE(request.payload.find("\"method\" : 4,"), std::string::npos);
        reply.set_value(AskOverAnotherConnection());
        return std::string("{\"ret\": 0}");
    });
    EXPECT_EQ(Adaptor().UnregisterCallback(Pointer(1)), 0);
    EXPECT_EQ(reply.get_future().get(), "null\n");
    EXPECT_EQ(gFirst, 0);
}

TEST_F(VideoBroadcastRegistration, LetsAReceiverMakeRequests) {
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &AskInHandler, Pointer(0xabcd)), 0);
    mPlatform.SetReply("{\"ret\": 0, \"state\": 2}");
    EXPECT_EQ(Ask(kEvent), "{\n\t\"ret\" : 0\n}\n");
    EXPECT_EQ(gStateInHandler, 2);
}

TEST_F(VideoBroadcastRegistration, MayChangeWhileEventsCome) {
    std::atomic<bool> stop{false};
    std::thread sender([&] {
        RawConnection connection = RawConnection::To(mDirectory / EventsOf(UnderTest().Wire()).socket);
        while (!stop) {
            connection.Write(FrameBytes(kOneWay, 7, kEvent));
            connection.Write(FrameBytes(kRequest, 7, kEvent));
            const std::optional<Frame> reply = connection.ReadFrame();
            EXPECT_TRUE(reply && (reply->payload == "null\n" || reply->payload == "{\n\t\"ret\" : 0\n}\n"));
        }
    });
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &First, Pointer(0xabcd)), 0);
        EXPECT_EQ(Adaptor().RegisterCallback(Pointer(2), &Second, Pointer(0xabce)), 0);
        Adaptor().ClearCallback();
        EXPECT_EQ(Adaptor().UnregisterCallback(Pointer(2)), 0);
    }
    EXPECT_EQ(Adaptor().RegisterCallback(Pointer(1), &First, Pointer(0xabcd)), 0);
    const int before = gFirst;
    EXPECT_TRUE(WaitFor([&] { return gFirst > before; }));
    stop = true;
    sender.join();
}

}  // namespace hbbtv::test
