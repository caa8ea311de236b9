// Events of applications and commands for tabs reach the client's process, and the platform gets a reply even if that
// process ends or hangs.

#include <gtest/gtest.h>
#include <signal.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationManager.h>

#include <future>
#include <string>

#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;

constexpr char kPing[] = R"({"type": 0, "method": 34})";
constexpr char kPinged[] = "{\n\t\"ret\" : 0,\n\t\"status\" : -13\n}\n";
constexpr char kFailed[] = "{\n\t\"ret\" : -1\n}\n";
constexpr char kNobody[] = "null\n";
constexpr char kQuestion[] = R"({"t": 271, "countryCode": "DEU"})";

// Returns the reply to a message of the platform.
std::string Ask(const std::string& socket, const std::string& json) {
    RawConnection connection = RawConnection::To(socket);
    EXPECT_TRUE(connection.Write(FrameBytes(kRequest, 1, json)));
    const auto reply = connection.ReadFrame();
    return reply ? reply->payload : "no reply";
}

TEST(ApplicationClients, TellARegisteredClientOfEventsUntilItsProcessEnds) {
    ScratchDirectory directory;
    ServiceProcess service;
    ASSERT_NE(nullptr, Find<IApplicationManager>());
    const std::string socket = directory / "service_hbbtv_to_plugin_apm";
    const std::string died = "ClientDeathRecipient::serviceDied - client died";
    for (int i = 0; i < 3; ++i) {
        RegisteredClient client("application_manager");
        ASSERT_TRUE(client.Registered()) << client.Output();
        RawConnection events = RawConnection::To(socket);
        ASSERT_TRUE(events.Write(FrameBytes(kOneWay, 1, R"({"t": 237, "appid": 17, "orgid": 19})")));
        EXPECT_TRUE(client.WaitForOutput(R"(onApplicationEvent [1,{"appId":17,"orgId":19},2748])")) << client.Output();
        EXPECT_EQ("{\n\t\"parentalRating\" : 0,\n\t\"ret\" : 0\n}\n", Ask(socket, kQuestion));
        EXPECT_TRUE(client.WaitForOutput(R"(onGetLocalParantalRating ["DEU",0])")) << client.Output();
        client.Kill();
        // All its registrations end, for any number of notices, and the next client can register.
        EXPECT_TRUE(WaitFor([&] { return Ask(socket, kQuestion) == kFailed; }));
    }
    EXPECT_NE(std::string::npos, service.Output().find(died));
    EXPECT_FALSE(service.WaitForExit(std::chrono::milliseconds(0)).has_value());
}

// The query does not wait for the client, which may hang.
TEST(ApplicationClients, TheParentalRatingQuestionIsAnsweredWhileTheClientStandsStill) {
    ScratchDirectory directory;
    ServiceProcess service;
    RegisteredClient client("application_manager");
    ASSERT_TRUE(client.Registered()) << client.Output();
    client.Signal(SIGSTOP);
    const std::string socket = directory / "service_hbbtv_to_plugin_apm";
    EXPECT_EQ("{\n\t\"parentalRating\" : 0,\n\t\"ret\" : 0\n}\n", Ask(socket, kQuestion));
    client.Signal(SIGCONT);
    EXPECT_TRUE(client.WaitForOutput(R"(onGetLocalParantalRating ["DEU",0])")) << client.Output();
}

class BrowserTabs : public ::testing::Test {
  protected:
    std::string Ping() const { return Ask(mDirectory / "service_hbbtv_to_mtm", kPing); }

    ScratchDirectory mDirectory;
    ServiceProcess mService;
};

TEST_F(BrowserTabs, AreCommandedInTheBrowsersProcessUntilItEnds) {
    for (int i = 0; i < 3; ++i) {
        RegisteredClient browser("mtm");
        ASSERT_TRUE(browser.Registered()) << browser.Output();
        EXPECT_EQ(kPinged, Ping());
        EXPECT_TRUE(browser.WaitForOutput("Ping []\n")) << browser.Output();
        browser.Kill();
        EXPECT_TRUE(WaitFor([&] { return Ping() == kNobody; }));
    }
}

TEST_F(BrowserTabs, GetNullAfterTheBrowserHasUnregistered) {
    RegisteredClient browser("mtm");
    ASSERT_TRUE(browser.Registered()) << browser.Output();
    browser.Write("unregister\n");
    ASSERT_TRUE(browser.WaitForOutput("unregistered"));
    EXPECT_EQ(kNobody, Ping());
}

TEST_F(BrowserTabs, OfABrowserThatIsKilledDuringACommandGetAReply) {
    RegisteredClient browser("mtm_hanging");
    ASSERT_TRUE(browser.Registered()) << browser.Output();
    std::future<std::string> reply = std::async(std::launch::async, [this] { return Ping(); });
    ASSERT_TRUE(browser.WaitForOutput("Ping []\n"));
    browser.Kill();
    EXPECT_EQ(kFailed, reply.get());
    EXPECT_TRUE(WaitFor([&] { return Ping() == kNobody; }));
}

// The stub rejects it by ending the process.
TEST_F(BrowserTabs, OfABrowserThatDoesNotAnswerGetAReply) {
    RegisteredClient browser("mtm_silent");
    ASSERT_TRUE(browser.Registered()) << browser.Output();
    EXPECT_EQ(kFailed, Ping());
    EXPECT_TRUE(browser.WaitForExit().has_value());
    EXPECT_TRUE(WaitFor([&] { return Ping() == kNobody; }));
}

TEST_F(BrowserTabs, OfABrowserThatStandsStillGetAReplyAndAreCommandedAgainWhenItGoesOn) {
    RegisteredClient browser("mtm");
    ASSERT_TRUE(browser.Registered()) << browser.Output();
    browser.Signal(SIGSTOP);
    EXPECT_EQ(kFailed, Ping());
    EXPECT_TRUE(mService.WaitForOutput("the client does not return"));
    EXPECT_EQ(kFailed, Ping());
    browser.Signal(SIGCONT);
    EXPECT_TRUE(WaitFor([&] { return Ping() == kPinged; }));
}

}  // namespace

}  // namespace hbbtv::test
