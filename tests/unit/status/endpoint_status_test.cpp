// What an endpoint counts, the report of it, and the lines about what stays open.
#include <android/log.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <thread>

#include "ipc/src/tolm_status_report.h"
#include "ipc/src/tolm_watcher.h"
#include "ipc/status/tolm_endpoint_status.h"
#include "log_capture.h"

namespace hbbtv::test {

namespace {

using tolm::EndpointStatus;
using tolm::families::kVideoBroadcast;
using Clock = EndpointStatus::Clock;

EndpointStatus& Requests() {
    return EndpointStatus::Of(kVideoBroadcast.requests);
}

EndpointStatus& Events() {
    return EndpointStatus::Of(*kVideoBroadcast.events);
}

Json::Value Report() {
    return tolm::StatusReport({&kVideoBroadcast})["families"][0];
}

TEST(EndpointStatusOf, AKeyIsOneObject) {
    EXPECT_EQ(&EndpointStatus::Of(kVideoBroadcast.requests), &Requests());
    EXPECT_NE(&Events(), &Requests());
    EXPECT_EQ(&EndpointStatus::Of(static_cast<TolmIpcKeyId>(-1)), &EndpointStatus::Of(static_cast<TolmIpcKeyId>(999)));
}

TEST(StatusOfRequests, NamesTheOpenOneAndTheCallersThatWait) {
    EndpointStatus::Request first(Requests(), {11, "SetChannel"}, 100);
    first.Begin(Clock::now() - std::chrono::seconds(3));
    EndpointStatus::Request second(Requests(), {}, 200);
    second.Waits();
    EndpointStatus::Request third(Requests(), {}, 300);
    third.Waits();
    const Json::Value requests = Report()["requests"];
    EXPECT_EQ(requests["open"]["operation"].asString(), "SetChannel");
    EXPECT_EQ(requests["open"]["code"].asInt(), 11);
    EXPECT_EQ(requests["open"]["process"].asInt(), 100);
    EXPECT_GE(requests["open"]["age_ms"].asInt(), 3000);
    ASSERT_EQ(requests["waiting"].size(), 2u);
    EXPECT_EQ(requests["waiting"][0].asInt(), 200);
    EXPECT_EQ(requests["waiting"][1].asInt(), 300);
    const std::string text = tolm::StatusText(tolm::StatusReport({&kVideoBroadcast}));
    EXPECT_NE(text.find("IVideoBroadcast\n  open         SetChannel (11) of process 100 for 3."), std::string::npos)
        << text;
    EXPECT_NE(text.find("  waiting      2 callers, of processes 200, 300\n"), std::string::npos) << text;
}

TEST(StatusOfRequests, NamesTheOneWayMessageThatIsBeingSentBesideTheOpenRequest) {
    EndpointStatus::Request request(Requests(), {11, "SetChannel"}, 100);
    request.Begin(Clock::now());
    EndpointStatus::Request oneWay(Requests(), {12, "Post"}, 200, EndpointStatus::Form::kOneWay);
    oneWay.Begin(Clock::now() - std::chrono::seconds(3));
    EndpointStatus::Request next(Requests(), {}, 300, EndpointStatus::Form::kOneWay);
    next.Waits();
    const Json::Value requests = Report()["requests"];
    EXPECT_EQ(requests["open"]["operation"].asString(), "SetChannel");
    EXPECT_TRUE(requests["waiting"].empty());
    EXPECT_EQ(requests["sending"]["operation"].asString(), "Post");
    EXPECT_EQ(requests["sending"]["code"].asInt(), 12);
    EXPECT_EQ(requests["sending"]["process"].asInt(), 200);
    EXPECT_GE(requests["sending"]["age_ms"].asInt(), 3000);
    ASSERT_EQ(requests["waiting_to_send"].size(), 1u);
    EXPECT_EQ(requests["waiting_to_send"][0].asInt(), 300);
    const std::string text = tolm::StatusText(tolm::StatusReport({&kVideoBroadcast}));
    EXPECT_NE(text.find("\n  sending      Post (12) of process 200 for 3."), std::string::npos) << text;
    EXPECT_NE(text.find(" s\n  waiting      1 caller, of process 300\n"), std::string::npos) << text;
}

// A turn ends before what was done in it.
TEST(StatusOfRequests, KeepTheNextOneWhenOneEndsAfterItsTurn) {
    auto first = std::make_unique<EndpointStatus::Request>(Requests(), EndpointStatus::Operation{1, "First"}, 100);
    first->Begin(Clock::now());
    EndpointStatus::Request next(Requests(), {2, "Next"}, 200);
    next.Begin(Clock::now());
    first.reset();
    EXPECT_EQ(Report()["requests"]["open"]["operation"].asString(), "Next");
}

TEST(StatusOfRequests, CountsAnsweredAndFailedOnes) {
    {
        EndpointStatus::Request answered(Requests(), {}, 1);
        answered.Begin(Clock::now());
        answered.Succeeded();
        const EndpointStatus::Request refused(Requests(), {}, 2);
    }
    {
        EndpointStatus::Request failed(Requests(), {}, 1);
        failed.Begin(Clock::now());
    }
    {
        EndpointStatus::Request sent(Requests(), {}, 1, EndpointStatus::Form::kOneWay);
        sent.Begin(Clock::now());
        sent.Succeeded();
        const EndpointStatus::Request notSent(Requests(), {}, 2, EndpointStatus::Form::kOneWay);
    }
    const Json::Value requests = Report()["requests"];
    EXPECT_TRUE(requests["open"].isNull());
    EXPECT_TRUE(requests["waiting"].empty());
    EXPECT_TRUE(requests["sending"].isNull());
    EXPECT_TRUE(requests["waiting_to_send"].empty());
    EXPECT_EQ(requests["answered"].asInt(), 1);
    EXPECT_EQ(requests["failed"].asInt(), 3);
    EXPECT_EQ(requests["one_way"].asInt(), 1);
}

TEST(StatusOfConnections, CountsReconnects) {
    EXPECT_TRUE(Report()["requests"]["connected_to"].isNull());
    Requests().Connected(900);
    EXPECT_EQ(Report()["requests"]["connected_to"].asInt(), 900);
    EXPECT_EQ(Report()["requests"]["reconnects"].asInt(), 0);
    Requests().Disconnected();
    Requests().Connected(901);
    EXPECT_EQ(Report()["requests"]["connected_to"].asInt(), 901);
    EXPECT_EQ(Report()["requests"]["reconnects"].asInt(), 1);
}

TEST(StatusOfEvents, CountsThoseThatAClientReceivedAndTheOthers) {
    {
        const EndpointStatus::Event event(Events());
        EndpointStatus::Event::Received();
        EndpointStatus::Event::Received();  // by another client
        EXPECT_FALSE(Report()["events"]["open_ms"].isNull());
    }
    { const EndpointStatus::Event withoutClient(Events()); }
    {
        const EndpointStatus::Event event(Events());
        EndpointStatus::Event::NotReceived("the client has died");
    }
    Events().Refused("a message that is not a JSON object");
    const Json::Value events = Report()["events"];
    EXPECT_TRUE(events["open_ms"].isNull());
    EXPECT_EQ(events["received"].asInt(), 3);
    EXPECT_EQ(events["sent"].asInt(), 2);
    EXPECT_EQ(events["dropped"].asInt(), 2);
    EXPECT_EQ(events["refused"].asInt(), 1);
    EXPECT_EQ(Report()["last_error"]["error"].asString(), "a message that is not a JSON object");
}

TEST(StatusOfEvents, AreTheSameForAThreadThatWorksForOne) {
    EndpointStatus::Event::Reference late;
    {
        const EndpointStatus::Event event(Events());
        late = EndpointStatus::Event::OfThisThread();
        std::thread([late] {
            EndpointStatus::Event::WorkFor(late);
            EndpointStatus::Event::Received();
        }).join();
    }
    EXPECT_EQ(EndpointStatus::Event::OfThisThread().status, nullptr);
    EXPECT_EQ(Events().Get().sent, 1u);
    // Its event has ended.
    std::thread([late] {
        EndpointStatus::Event::WorkFor(late);
        EndpointStatus::Event::Received();
    }).join();
    EXPECT_EQ(Events().Get().sent, 1u);
    EXPECT_EQ(Events().Get().dropped, 0u);
}

TEST(StatusOfClients, IsTheirProcesses) {
    Events().AddClient(7);
    Events().AddClient(8);
    Events().AddClient(7);
    Events().RemoveClient(7);
    EXPECT_EQ(Events().Get().clients, (std::vector<pid_t>{8, 7}));
}

TEST(StatusReport, HasAllFamiliesAndTheLimits) {
    std::vector<const tolm::Family*> all(std::begin(tolm::families::kAll), std::end(tolm::families::kAll));
    const Json::Value report = tolm::StatusReport(all);
    EXPECT_EQ(report["process"].asInt(), getpid());
    EXPECT_EQ(report["families"].size(), 18u);
    EXPECT_EQ(report["limits"]["waiting_callers"].asInt(), 15);
    EXPECT_EQ(report["limits"]["patience_ms"].asInt(), 5000);
    EXPECT_EQ(report["limits"]["reply_timeout_ms"].asInt(), 0);
    EXPECT_EQ(report["limits"]["message_bytes"].asInt(), 16 << 20);
    EXPECT_EQ(report["limits"]["connections_of_process"].asInt(), 256);
    for (const tolm::Family* family : all) EXPECT_EQ(tolm::FindFamily(family->interface), family);
    EXPECT_EQ(tolm::FindFamily("IChannelFoo"), nullptr);
}

// Returns the lines of the watcher.
std::vector<std::string> LinesOf(const LogCapture& log) {
    std::vector<std::string> lines;
    for (const LogLine& line : log.Lines()) {
        if (line.file == "tolm_watcher.cpp")
            lines.push_back(std::to_string(line.priority) + " " + line.tag + " " + line.message);
    }
    return lines;
}

TEST(Watcher, LogsARequestThatStaysOpenOnce) {
    const LogCapture log;
    Requests().Connected(900);
    EndpointStatus::Request first(Requests(), {11, "SetChannel"}, 100);
    EndpointStatus::Request second(Requests(), {}, 200);
    second.Waits();
    const Clock::time_point begin = Clock::now();
    first.Begin(begin);
    tolm::Watcher::Wake();
    ASSERT_TRUE(WaitFor([&] { return !LinesOf(log).empty(); }));
    EXPECT_GE(Clock::now() - begin, std::chrono::seconds(1));
    // A request of another family that becomes old shows that the watcher has looked again.
    EndpointStatus& others = EndpointStatus::Of(tolm::families::kChannel.requests);
    EndpointStatus::Request other(others, {}, 300);
    other.Begin(begin);
    ASSERT_TRUE(WaitFor([&] { return LinesOf(log).size() == 2; }));
    const std::string line = LinesOf(log)[0];
    EXPECT_EQ(line.rfind("5 [ipc_base] request 11 (IVideoBroadcast.SetChannel) of process 100 has been open for 1", 0),
              0u)
        << line;
    EXPECT_NE(line.find(" ms, the platform is process 900, callers of processes 200 wait"), std::string::npos) << line;
}

TEST(Watcher, LogsAnEventWithWhichAClientDoesNotReturnOnce) {
    const LogCapture log;
    Events().AddClient(4711);
    const EndpointStatus::Event event(Events());
    tolm::Watcher::Wake();
    ASSERT_TRUE(WaitFor([&] { return !LinesOf(log).empty(); }));
    const std::string line = LinesOf(log)[0];
    EXPECT_EQ(
        line.rfind("5 [ipc_base] the client of IVideoBroadcast, process 4711, has not returned from an event for 1", 0),
        0u)
        << line;
}

TEST(Watcher, LogsAOneWayMessageThatIsNotRead) {
    const LogCapture log;
    EndpointStatus::Request message(Requests(), {12, "Post"}, 100, EndpointStatus::Form::kOneWay);
    message.Begin(Clock::now() - std::chrono::seconds(2));
    tolm::Watcher::Wake();
    ASSERT_TRUE(WaitFor([&] { return !LinesOf(log).empty(); }));
    const std::string line = LinesOf(log)[0];
    EXPECT_EQ(
        line.rfind("5 [ipc_base] request 12 (IVideoBroadcast.Post) of process 100 has been in the middle of being "
                   "sent for 2",
                   0),
        0u)
        << line;
    EXPECT_NE(line.find(", no callers wait"), std::string::npos) << line;
}

// It sleeps after a few seconds without work.
TEST(Watcher, IsWokenByTheNextRequest) {
    const LogCapture log;
    for (const size_t lines : {size_t{1}, size_t{2}}) {
        {
            EndpointStatus::Request request(Requests(), {}, 100);
            request.Begin(Clock::now() - std::chrono::seconds(2));
            tolm::Watcher::Wake();
            ASSERT_TRUE(WaitFor([&] { return LinesOf(log).size() == lines; }));
        }
        ASSERT_TRUE(WaitFor([] { return tolm::Watcher::Sleeps(); }));
    }
}

}  // namespace

}  // namespace hbbtv::test
