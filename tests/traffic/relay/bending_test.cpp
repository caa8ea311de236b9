// Rules in a running relay: the messages that arrive, and the connections after them.
#include <linux/sockios.h>
#include <sys/ioctl.h>

#include "common/failure.h"
#include "running_relay.h"

namespace hbbtv::traffic {
namespace {

constexpr char kGetName[] = R"({"c_handle":"0x1","method":13,"type":12})";

// Returns whether the other end has read all that was written.
bool IsRead(const RawConnection& connection) {
    int unread = -1;
    return ioctl(connection.Fd(), SIOCOUTQ, &unread) == 0 && unread == 0;
}

struct Bending : RelayTest {
    RelaySettings With(const std::string& rule) const {
        RelaySettings settings = Here();
        settings.rules = {rule};
        return settings;
    }

    RawConnection Asking(const std::string& text = kGetName) const {
        RawConnection connection = Connect(kChannel);
        connection.Write(FrameBytes(test::kRequest, 2, text));
        return connection;
    }

    FakePlatform platform{kChannel, R"({"name":"arte","ret":0})"};
};

TEST_F(Bending, AnAnswerComesFromTheRelay) {
    RunningRelay relay(With("op:GetName answer={\"ret\":-7}"));
    RawConnection connection = Asking();
    EXPECT_EQ(connection.ReadFrame()->payload, "{\n\t\"ret\" : -7\n}\n");
    connection.Write(FrameBytes(test::kRequest, 2, R"({"method":1,"type":12})"));
    EXPECT_EQ(connection.ReadFrame()->payload, R"({"name":"arte","ret":0})") << "others are of the platform";
    ASSERT_TRUE(relay.WaitForExchanges(2));
    EXPECT_EQ(relay.Exchanges()[0].rule, "answer={\"ret\":-7}");
    EXPECT_EQ(relay.Exchanges()[0].status, -7);
    EXPECT_EQ(platform.Frames().size(), 1u);
}

// As no library does, but what is recorded and what the caller takes for the reply must not depend on it.
TEST_F(Bending, AnAnswerComesAfterTheRepliesToTheRequestsBeforeIt) {
    RawListener listener(directory / "service_plugin_to_hbbtv_cap");
    RunningRelay relay(Here(), listener);
    RawConnection caller = Connect("service_plugin_to_hbbtv_cap");
    RawConnection server = listener.Accept();
    const auto request = [](int method) {
        return FrameBytes(test::kRequest, 2, R"({"method":)" + std::to_string(method) + R"(,"type":7})");
    };
    caller.Write(request(1));  // before there are rules
    ASSERT_TRUE(server.ReadFrame().has_value());
    relay.Of().Tell("request.method:3 answer={\"ret\":3}");
    relay.Of().Tell("request.method:5 answer={\"ret\":5}");
    caller.Write(request(2) + request(3) + request(4) + request(5));
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(server.ReadFrame().has_value());
    relay.Of().Tell("remove all");
    for (const char* reply : {"1", "2", "4"}) server.Write(FrameBytes(test::kReply, 2, reply));
    for (const char* reply : {"1", "2", "{\n\t\"ret\" : 3\n}\n", "4", "{\n\t\"ret\" : 5\n}\n"}) {
        const auto frame = caller.ReadFrame();
        ASSERT_TRUE(frame.has_value()) << reply;
        EXPECT_EQ(frame->payload, reply);
    }
    ASSERT_TRUE(relay.WaitForExchanges(5));
    for (int i = 0; i < 5; ++i) EXPECT_EQ(relay.Exchanges()[i].message.json["method"], i + 1);
    EXPECT_EQ(relay.Exchanges()[4].status, 5);
    caller.Write(request(6));
    ASSERT_TRUE(server.ReadFrame().has_value());
    server.Write(FrameBytes(test::kReply, 2, "6"));
    EXPECT_EQ(caller.ReadFrame()->payload, "6");
}

TEST_F(Bending, ADelayedMessageComesLaterAndInOrder) {
    RunningRelay relay(With("op:GetName delay=150ms count=1"));
    const auto start = std::chrono::steady_clock::now();
    RawConnection connection = Asking();
    connection.Write(FrameBytes(test::kRequest, 2, R"({"method":1,"type":12})"));
    ASSERT_TRUE(connection.ReadFrame().has_value());
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
    ASSERT_TRUE(connection.ReadFrame().has_value());
    EXPECT_EQ(platform.Frames().at(0).payload, kGetName);
    ASSERT_TRUE(relay.WaitForExchanges(2));
    EXPECT_EQ(relay.Exchanges()[0].rule, "delay=150ms");
    EXPECT_GE(*relay.Exchanges()[0].duration, 150000u);
}

TEST_F(Bending, AHeldMessageComesWhenItIsLetGo) {
    RunningRelay relay(With("op:GetName hold"));
    RawConnection connection = Asking();
    ASSERT_TRUE(WaitFor([&] { return relay.Of().Open().size() == 1; }));
    EXPECT_EQ(platform.Frames().size(), 0u);
    EXPECT_EQ(relay.Of().Tell("go"), "1 message let go\n");
    EXPECT_TRUE(connection.ReadFrame().has_value());
}

TEST_F(Bending, ADroppedReplyLeavesTheRequestOpenForTheCallerOnly) {
    RunningRelay relay(With("on=reply drop count=1"));
    RawConnection connection = Asking();
    ASSERT_TRUE(relay.WaitForExchanges(1));
    EXPECT_EQ(relay.Exchanges()[0].rule, "reply: drop");
    connection.Write(FrameBytes(test::kRequest, 2, kGetName));
    EXPECT_TRUE(connection.ReadFrame().has_value());
    EXPECT_EQ(platform.Frames().size(), 2u);
}

TEST_F(Bending, ACutMessageIsTheEndOfTheConnection) {
    RunningRelay relay(With("on=reply cut=15 count=1"));
    RawConnection connection = Asking();
    EXPECT_EQ(connection.Read(100), FrameBytes(test::kReply, 2, R"({"name":"arte","ret":0})").substr(0, 15));
    EXPECT_TRUE(connection.PeerCloses());
    EXPECT_TRUE(relay.WaitForNote("by a rule"));
    RawConnection next = Asking();
    EXPECT_TRUE(next.ReadFrame().has_value());
}

TEST_F(Bending, ADuplicateArrivesTwiceAndItsSecondReplyWasNotAskedFor) {
    RunningRelay relay(With("op:GetName duplicate"));
    RawConnection connection = Asking();
    EXPECT_TRUE(connection.ReadFrame().has_value());
    EXPECT_TRUE(connection.ReadFrame().has_value());
    EXPECT_TRUE(relay.WaitForNote("which was not asked"));
}

TEST_F(Bending, ASlowReaderTakesItsTime) {
    RunningRelay relay(With("slow=1000"));
    const std::string text = R"({"method":1,"type":12,"more":")" + std::string(170, 'x') + "\"}";
    const auto start = std::chrono::steady_clock::now();
    RawConnection connection = Asking(text);
    ASSERT_TRUE(connection.ReadFrame().has_value());
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150)) << "200 bytes";
    EXPECT_EQ(platform.Frames().at(0).payload, text);
}

TEST_F(Bending, RulesBeginAndEndBetweenTwoMessages) {
    RunningRelay relay(Here());
    RawConnection connection = Connect(kChannel);
    const std::string first = FrameBytes(test::kRequest, 2, kGetName);
    connection.Write(first.substr(0, 20));
    ASSERT_TRUE(WaitFor([&] { return IsRead(connection); }));
    relay.Of().Tell("op:GetName answer={}");
    connection.Write(first.substr(20));
    EXPECT_EQ(connection.ReadFrame()->payload, R"({"name":"arte","ret":0})") << "began before the rule";
    connection.Write(first);
    EXPECT_EQ(connection.ReadFrame()->payload, "{}\n");
    connection.Write(first.substr(0, 20));
    ASSERT_TRUE(WaitFor([&] { return IsRead(connection); }));
    relay.Of().Tell("remove all");
    connection.Write(first.substr(20) + first);
    EXPECT_EQ(connection.ReadFrame()->payload, R"({"name":"arte","ret":0})");
    EXPECT_EQ(connection.ReadFrame()->payload, R"({"name":"arte","ret":0})");
}

TEST_F(Bending, WhatIsNotAMessageIsPassedOnDespiteRules) {
    RunningRelay relay(With("duplicate"));
    RawListener other(directory / "service_of_another_family");
    ASSERT_TRUE(Taken("service_of_another_family"));
    other.Accept();
    RawConnection caller = Connect("service_of_another_family");
    RawConnection server = other.Accept();
    caller.Write("these are not messages of the wire");
    EXPECT_EQ(server.Read(34), "these are not messages of the wire");
    caller.Write("12345");
    EXPECT_EQ(server.Read(5), "12345");
    RawConnection second = Connect("service_of_another_family");
    RawConnection its = other.Accept();
    second.Write("12345");
    second.Close();
    EXPECT_EQ(its.Read(5), "12345") << "a part of a message, at the end";
}

TEST_F(Bending, AWrongRuleIsRefused) {
    EXPECT_THROW(Relay(With("delay"), [](const Record&) {}), Failure);
    RunningRelay relay(Here());
    EXPECT_THROW(relay.Of().Tell("delay"), Failure);
}

}  // namespace
}  // namespace hbbtv::traffic
