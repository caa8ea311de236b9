// The whole package with a monitor whose rules make both sides misbehave: the service serves on, a call returns -1 or
// what the platform has replied, and when the rules end the next request of every family is answered.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "every_family.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

constexpr int kStatus = 5;  // of every reply of the platform

enum class Expected {
    Right,    // the platform's status
    Failure,  // -1
    Either,
    Any,  // of a reply that was changed
};

struct Bent {
    const char* rule;
    Expected expected;
};

constexpr Bent kBent[] = {
    {"drop", Expected::Failure},
    {"on=reply drop", Expected::Failure},
    {"cut", Expected::Failure},
    {"cut=5", Expected::Failure},
    {"on=reply cut", Expected::Failure},
    {"on=reply cut=12", Expected::Failure},
    {"on=reply cut=0", Expected::Failure},
    {"corrupt=7 seed=1", Expected::Right},
    {"on=reply corrupt=7 seed=1", Expected::Any},
    {"on=reply corrupt=1 seed=2", Expected::Any},
    {"set=type:\"none\"", Expected::Right},
    {"on=reply set=ret:77", Expected::Any},
    {"on=reply set=ret:\"none\"", Expected::Any},
    {"on=reply set=ret:null", Expected::Any},
    {"answer={}", Expected::Failure},
    {"answer=null", Expected::Failure},
    {"answer=[1,2,3]", Expected::Failure},
    {"answer={\"ret\":-7}", Expected::Any},
    {"delay=20ms", Expected::Right},
    {"delay=3s", Expected::Failure},
    {"on=reply delay=3s", Expected::Failure},
    {"hold", Expected::Failure},
    {"on=reply hold", Expected::Failure},
    {"close", Expected::Failure},
    {"on=reply close", Expected::Failure},
    {"slow=20", Expected::Failure},
    {"on=reply slow=20", Expected::Failure},
    {"p=0.5 seed=3 drop", Expected::Either},
    {"p=0.5 seed=4 on=reply close", Expected::Either},
    // Last: a second reply answers the next request of its connection, as long as that exists.
    {"duplicate", Expected::Right},
    {"on=reply duplicate", Expected::Right},
};

// Without a service that can be asked, this throws.
int StatusOfCall(const std::string& name, const std::string& arguments) {
    const auto [interface, method] = Package::Get().FindMethod(name);
    static NoEvents none;
    ServiceCaller service(*interface, std::chrono::seconds(20));
    return StatusOf(*method, service.Call(*method, ParseJson(arguments), none));
}

bool Allowed(Expected expected, int status) {
    switch (expected) {
        case Expected::Right:
            return status == kStatus;
        case Expected::Failure:
            return status == -1;
        case Expected::Either:
            return status == kStatus || status == -1;
        case Expected::Any:
            return true;
    }
    return false;
}

TEST(BentTraffic, DoesNotEndTheServiceAndTheNextRequestIsAnswered) {
    const ScratchDirectory directory;
    const EveryFamily platform;
    ServiceProcess service("TOLM_REPLY_TIMEOUT_MS=500");
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    ChildProcess monitor({HBBTVCTL_PROGRAM, "monitor", "--filter", "ruled", "--rules", "-"});
    ASSERT_TRUE(monitor.WaitForOutput("18 sockets in ")) << monitor.Output();
    const auto tell = [&monitor](const std::string& line, const std::string& answer) {
        const size_t before = monitor.Output().size();
        monitor.Write(line + "\n");
        return WaitFor([&] { return monitor.Output().find(answer, before) != std::string::npos; });
    };
    for (const Bent& bent : kBent) {
        ASSERT_TRUE(tell(bent.rule, "(applied 0 times)")) << bent.rule << monitor.Output();
        for (const auto& [name, arguments] :
             {std::pair{"IChannel.Release", "[1]"}, std::pair{"IVideoBroadcast.NextChannel", "[1]"},
              std::pair{"IConfiguration.GetCountryId", "[]"}}) {
            const int status = StatusOfCall(name, arguments);
            EXPECT_TRUE(Allowed(bent.expected, status)) << bent.rule << ": " << name << " -> " << status;
        }
        ASSERT_TRUE(tell("remove all", "no rules\n")) << monitor.Output();
        EXPECT_EQ(EveryFamily::Unanswered(), "") << "after " << bent.rule;
    }
    EXPECT_FALSE(service.WaitForExit(std::chrono::milliseconds(0)));
}

}  // namespace

}  // namespace hbbtv::test
