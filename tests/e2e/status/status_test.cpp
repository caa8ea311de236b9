// What a running service answers to HIDL's debug: while requests are open, while all families are silent, while clients
// do not return, and after restarts.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <iterator>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "common/text/json.h"
#include "event_connection.h"
#include "finished_run.h"
#include "package/debug.h"
#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "silence/family_calls.h"
#include "system.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLimit{5000};
constexpr char kReply0[] = R"({"ret": 0})";

const FamilyCall& CallOf(const std::string& family) {
    for (const FamilyCall& call : kFamilyCalls) {
        if (call.family == family) return call;
    }
    throw std::logic_error(family);
}

// The service's report of a family.
Json::Value StatusOf(const std::string& interface) {
    const ServiceCaller service(Package::Get().FindInterface(interface), kLimit);
    return ParseJson(Debug(service, {"--json"}, kLimit))["families"][0];
}

// The text, with all families.
std::string Text() {
    return Debug(AnyService(kLimit), {"--all"}, kLimit);
}

class Status : public testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(FindVideoBroadcast(), nullptr); }

    // Joins its threads, so a platform must answer before.
    class Callers {
      public:
        ~Callers() {
            for (std::thread& thread : mThreads) thread.join();
        }
        void Call(const FamilyCall& call) {
            mThreads.emplace_back([call] { Make(call); });
        }

      private:
        std::vector<std::thread> mThreads;
    };

    const ScratchDirectory mDirectory;
    ServiceProcess mService;
};

TEST_F(Status, OfEachInterfaceIsThatOfItsFamily) {
    for (const auto& [name, binding] : AllBindings()) {
        const ServiceCaller service(Package::Get().FindInterface(name), kLimit);
        const Json::Value report = ParseJson(Debug(service, {"--json"}, kLimit));
        EXPECT_EQ(report["process"].asInt(), mService.Pid());
        ASSERT_EQ(report["families"].size(), 1u);
        EXPECT_EQ(report["families"][0]["family"].asString(), name);
    }
    const Json::Value all = ParseJson(Debug(AnyService(kLimit), {"--all", "--json"}, kLimit));
    EXPECT_EQ(all["families"].size(), AllBindings().size());
    const Json::Value two = ParseJson(Debug(AnyService(kLimit), {"IMtm", "IChannel", "--json"}, kLimit));
    ASSERT_EQ(two["families"].size(), 2u);
    EXPECT_EQ(two["families"][1]["family"].asString(), "IChannel");
}

TEST_F(Status, RefusesAnUnknownOption) {
    const std::string text = Debug(AnyService(kLimit), {"IChannels"}, kLimit);
    EXPECT_EQ(text.rfind("unknown option \"IChannels\"\noptions:\n", 0), 0u) << text;
}

TEST_F(Status, ShowsTheOpenRequestAndTheCallersThatWait) {
    std::atomic<bool> answers{false};
    FakePlatform platform("service_plugin_to_hbbtv_vb", [&](const Frame&) -> std::optional<std::string> {
        if (!WaitFor([&] { return answers.load(); })) return std::nullopt;
        return kReply0;
    });
    Callers callers;
    for (int i = 0; i < 3; ++i) callers.Call(CallOf("video_broadcast"));
    EXPECT_TRUE(WaitFor([] { return StatusOf("IVideoBroadcast")["requests"]["waiting"].size() == 2; }));
    const Json::Value requests = StatusOf("IVideoBroadcast")["requests"];
    EXPECT_EQ(requests["open"]["operation"].asString(), "NextChannel");
    EXPECT_EQ(requests["open"]["code"].asInt(),
              (*FindFamily("video_broadcast").Operation("NextChannel"))["code"].asInt());
    EXPECT_EQ(requests["open"]["process"].asInt(), getpid());
    EXPECT_EQ(requests["waiting"][0].asInt(), getpid());
    EXPECT_EQ(requests["connected_to"].asInt(), getpid());
    const int age = requests["open"]["age_ms"].asInt();
    EXPECT_TRUE(WaitFor([&] { return StatusOf("IVideoBroadcast")["requests"]["open"]["age_ms"].asInt() > age; }));
    EXPECT_NE(Text().find("  open         NextChannel ("), std::string::npos);
    EXPECT_TRUE(mService.WaitForOutput(" (IVideoBroadcast.NextChannel) of process " + std::to_string(getpid()) +
                                       " has been open for "));
    answers = true;
    EXPECT_TRUE(WaitFor([] { return StatusOf("IVideoBroadcast")["requests"]["answered"].asInt() == 3; }));
    EXPECT_TRUE(StatusOf("IVideoBroadcast")["requests"]["open"].isNull());
}

// One-way messages are written until the socket is full.
TEST_F(Status, ShowsTheOneWayMessageThatThePlatformDoesNotRead) {
    RawListener listener(mDirectory / RequestsOf(FindFamily(kOneWayCall.family)).socket);
    const auto requests = [] { return StatusOf(kOneWayCall.interface)["requests"]; };
    std::atomic<bool> done{false};
    std::vector<std::thread> callers;
    for (int i = 0; i < 2; ++i) {
        callers.emplace_back([&done] {
            while (!done) Make(kOneWayCall);
        });
    }
    // Watched for a second, for which the service logs it.
    EXPECT_TRUE(WaitFor([&] { return requests()["sending"]["age_ms"].asInt() >= 1000; }));
    const Json::Value blocked = requests();
    EXPECT_EQ(blocked["sending"]["operation"].asString(), kOneWayCall.method);
    EXPECT_EQ(blocked["sending"]["process"].asInt(), getpid());
    ASSERT_EQ(blocked["waiting_to_send"].size(), 1u);
    EXPECT_EQ(blocked["waiting_to_send"][0].asInt(), getpid());
    EXPECT_TRUE(blocked["open"].isNull());
    EXPECT_NE(Text().find("  sending      ComponentUpdate (0) of process "), std::string::npos) << Text();
    EXPECT_TRUE(mService.WaitForOutput(" (IAVControl.ComponentUpdate) of process " + std::to_string(getpid()) +
                                       " has been in the middle of being sent for "));
    const FinishedRun doctor = RunToEnd({HBBTVCTL_PROGRAM, "doctor"});
    const std::string self = "[^;]*\\(" + std::to_string(getpid()) + "\\)";
    const std::regex trouble(
        "PROBLEM  requests     IAVControl.ComponentUpdate has been in the middle of being sent for [0-9.]+ s, "
        "1 caller waits \\(" +
        self + "\\);" + self + " does not read; ");
    EXPECT_TRUE(std::regex_search(doctor.output, trouble)) << doctor.Text();
    done = true;
    { const RawConnection closed = listener.Accept(); }
    for (std::thread& caller : callers) caller.join();
    EXPECT_TRUE(requests()["sending"].isNull());
    EXPECT_TRUE(requests()["waiting_to_send"].empty());
}

// Many more callers than threads: those above the limits are refused, and the pool is as full as it becomes.
TEST_F(Status, IsAnsweredWhileAllFamiliesAreFilledToTheirLimits) {
    constexpr int kCallers = 20;
    constexpr size_t kWaiting = 15;
    std::atomic<bool> answers{false};
    std::vector<std::unique_ptr<FakePlatform>> platforms;
    for (const FamilyCall& call : kFamilyCalls) {
        platforms.push_back(std::make_unique<FakePlatform>(RequestsOf(FindFamily(call.family)).socket,
                                                           [&](const Frame&) -> std::optional<std::string> {
                                                               if (!WaitFor([&] { return answers.load(); })) return {};
                                                               return kReply0;
                                                           }));
    }
    Callers callers;
    for (const FamilyCall& call : kFamilyCalls) {
        for (int i = 0; i < kCallers; ++i) callers.Call(call);
    }
    // Of a client that registers, too, one waits for the family and others for it.
    for (int i = 0; i < kCallers; ++i) {
        callers.Call({"video_broadcast", "IVideoBroadcast", "UnregisterCallback", "[4096]"});
        callers.Call({"channel_config", "IChannelConfig", "UnregisterCallback", "[]"});
    }
    const auto full = [&] {
        const Json::Value report = ParseJson(Debug(AnyService(kLimit), {"--all", "--json"}, kLimit));
        size_t filled = 0;
        for (const Json::Value& family : report["families"]) {
            const Json::Value& requests = family["requests"];
            if (!requests["open"].isNull() && requests["waiting"].size() == kWaiting &&
                requests["failed"].asInt() > 0) {
                ++filled;
            }
        }
        return filled == std::size(kFamilyCalls);
    };
    EXPECT_TRUE(WaitFor(full)) << Text();
    EXPECT_TRUE(full());
    answers = true;
}

TEST_F(Status, CountsReconnectsAndKeepsTheLastError) {
    EXPECT_EQ(Make(CallOf("channel")), -1);
    EXPECT_EQ(StatusOf("IChannel")["last_error"]["error"].asString(), "cannot connect: No such file or directory");
    for (int i = 0; i < 3; ++i) {
        const FakePlatform platform("service_plugin_to_hbbtv_vb_chn", R"({"ret": 0, "name": ""})");
        // The first request after a restart may find out that the connection has ended.
        EXPECT_TRUE(WaitFor([] { return Make(CallOf("channel")) == 0; }));
    }
    const Json::Value requests = StatusOf("IChannel")["requests"];
    EXPECT_EQ(requests["reconnects"].asInt(), 2);
    EXPECT_EQ(requests["answered"].asInt(), 3);
    EXPECT_GE(requests["failed"].asInt(), 1);
}

class StatusOfEvents : public Status {
  protected:
    static Json::Value Events() { return StatusOf("IChannelConfig")["events"]; }

    static constexpr char kRequests[] = "service_plugin_to_hbbtv_vb_chn_config";
    static constexpr char kReplyWithoutHandle[] = R"({"ret": 0, "handle": ""})";

    std::unique_ptr<FakePlatform> mPlatform = std::make_unique<FakePlatform>(kRequests, kReplyWithoutHandle);
    const std::string mSocket = mDirectory / "service_hbbtv_to_plugin_vb_chn_config";
};

TEST_F(StatusOfEvents, CountsWhatClientsReceive) {
    {
        RegisteredClient client("channel_config");
        ASSERT_TRUE(client.Registered());
        const Json::Value clients = StatusOf("IChannelConfig")["clients"];
        ASSERT_EQ(clients.size(), 1u);
        EXPECT_EQ(clients[0].asInt(), client.Pid());
        EventConnection connection(mSocket, 3);
        EXPECT_TRUE(
            connection.Send({R"({"event": 0, "reserved": "A"})", R"({"event": 0, "reserved": "A"})", "damaged"}));
        const Json::Value events = Events();
        EXPECT_EQ(events["sent"].asInt(), 2);
        EXPECT_EQ(events["received"].asInt(), 3);  // and the request, which this family does not take
        EXPECT_EQ(events["dropped"].asInt(), 1);
        EXPECT_EQ(events["refused"].asInt(), 1);
        EXPECT_EQ(events["connections"].asInt(), 1);
    }
    EXPECT_TRUE(WaitFor([] { return StatusOf("IChannelConfig")["clients"].empty(); }));
    EXPECT_TRUE(WaitFor([] { return Events()["connections"].asInt() == 0; }));
    EventConnection connection(mSocket, 3);
    EXPECT_TRUE(connection.Send({R"({"event": 0, "reserved": "A"})"}));
    EXPECT_EQ(Events()["dropped"].asInt(), 3);
    EXPECT_EQ(Events()["connections_total"].asInt(), 2);
}

// The service keeps its client, but the platform that was restarted does not know it.
TEST_F(StatusOfEvents, NeedARegistrationAfterARestartOfThePlatform) {
    RegisteredClient client("channel_config");
    ASSERT_TRUE(client.Registered());
    mPlatform.reset();
    mPlatform = std::make_unique<FakePlatform>(kRequests, kReplyWithoutHandle);
    EXPECT_TRUE(WaitFor([] { return Make(CallOf("channel_config")) == 0; }));
    for (const Frame& frame : mPlatform->Frames()) {
        EXPECT_NE(ParseJson(frame.payload)["method"].asInt(), 0) << "a registration";
    }
    EventConnection connection(mSocket, 3);
    EXPECT_TRUE(connection.Send({R"({"event": 0, "reserved": "A"})"}));
    EXPECT_EQ(Events()["sent"].asInt(), 1);

    mPlatform->ForgetFrames();
    RegisteredClient again("channel_config");
    ASSERT_TRUE(again.Registered());
    ASSERT_EQ(mPlatform->Frames().size(), 1u);
    EXPECT_EQ(ParseJson(mPlatform->Frames()[0].payload)["method"].asInt(), 0);
}

// A packet of the tap, or an empty string when there is none.
std::string Packet(int fd) {
    char bytes[4096];
    const ssize_t size = recv(fd, bytes, sizeof(bytes), MSG_DONTWAIT);
    return std::string(bytes, size > 0 ? static_cast<size_t>(size) : 0);
}

TEST_F(StatusOfEvents, AreShownToAToolThatDelaysNoneByNotReading) {
    constexpr int kEvents = 2000;
    RegisteredClient client("channel_config");
    ASSERT_TRUE(client.Registered());
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    const ServiceCaller service = AnyService(kLimit);
    PassForDebug(service, ends[1], {"--all", "--events"}, kLimit);
    close(ends[1]);
    EventConnection connection(mSocket, 3);
    EXPECT_TRUE(connection.Send(std::vector<std::string>(kEvents, R"({"event": 0, "reserved": "A"})")));
    EXPECT_EQ(Events()["sent"].asInt(), kEvents);
    EXPECT_EQ(Packet(ends[0]), "{\"listening\":true}\n");
    int read = 0;
    while (!Packet(ends[0]).empty()) ++read;
    EXPECT_LT(read, kEvents);
    EXPECT_TRUE(connection.Send({}));
    EXPECT_EQ(Packet(ends[0]), "{\"lost\":" + std::to_string(kEvents + 1 - read) + "}\n");
    EXPECT_EQ(Packet(ends[0]), "{\"family\":\"IChannelConfig\",\"form\":\"request\",\"message\":{}}\n");
    close(ends[0]);
    EXPECT_TRUE(connection.Send({}));
}

TEST_F(StatusOfEvents, AreShownOnSocketsOfPacketsOnlyToEightTools) {
    const ServiceCaller service = AnyService(kLimit);
    EXPECT_EQ(Debug(service, {"--events"}, kLimit), "events need a socket of packets\n");
    std::vector<int> tools;
    for (int i = 0; i < 9; ++i) {
        int ends[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
        PassForDebug(service, ends[1], {"--events"}, kLimit);
        close(ends[1]);
        EXPECT_EQ(Packet(ends[0]), i < 8 ? "{\"listening\":true}\n" : "too many tools listen\n");
        tools.push_back(ends[0]);
    }
    // The place of one that has ended is free.
    for (const int tool : tools) close(tool);
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    PassForDebug(service, ends[1], {"--events"}, kLimit);
    EXPECT_EQ(Packet(ends[0]), "{\"listening\":true}\n");
    close(ends[0]);
    close(ends[1]);
}

// The events of its family wait, also for the client that takes its place, until the one that hangs ends.
TEST_F(StatusOfEvents, ShowsAClientThatDoesNotReturn) {
    RegisteredClient hanging("channel_config_hanging");
    ASSERT_TRUE(hanging.Registered());
    EventConnection connection(mSocket, 3);
    EventConnection other(mSocket, 3);
    std::thread events([&] { EXPECT_TRUE(connection.Send({R"({"event": 0, "reserved": "A"})"})); });
    EXPECT_TRUE(hanging.WaitForOutput("OnChannelConfigEvent"));
    std::thread later([&] { EXPECT_TRUE(other.Send({R"({"event": 0, "reserved": "B"})"})); });
    EXPECT_TRUE(WaitFor([] { return Events()["waiting"].asInt() == 1; }));
    EXPECT_FALSE(Events()["open_ms"].isNull());
    EXPECT_TRUE(mService.WaitForOutput("the client of IChannelConfig, process " + std::to_string(hanging.Pid()) +
                                       ", has not returned from an event for "));

    RegisteredClient next("channel_config");
    EXPECT_TRUE(next.Registered());
    EXPECT_EQ(StatusOf("IChannelConfig")["clients"][0].asInt(), next.Pid());
    // Requests of the family, and events of others, are as ever.
    EXPECT_EQ(Make(CallOf("channel_config")), 0);
    EXPECT_EQ(next.Output().find("OnChannelConfigEvent"), std::string::npos);
    EXPECT_EQ(Events()["waiting"].asInt(), 1);

    hanging.Kill();
    EXPECT_TRUE(next.WaitForOutput("OnChannelConfigEvent [0,{\"reserved\":66}")) << next.Output();
    events.join();
    later.join();
    EXPECT_TRUE(WaitFor([] { return Events()["open_ms"].isNull(); }));
}

}  // namespace

}  // namespace hbbtv::test
