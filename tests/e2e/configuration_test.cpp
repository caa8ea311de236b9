// Events of the configuration reach the processes of several clients until one of them ends.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IConfiguration.h>

#include <string>
#include <vector>

#include "event_connection.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;

constexpr char kAge16[] = R"({"event": 8, "age": 16})";
constexpr char kAge18[] = R"({"event": 8, "age": 18})";
constexpr char kUnregister[] = "{\n\t\"method\" : 34,\n\t\"type\" : 9\n}\n";

class ConfigurationProcesses : public testing::Test {
  protected:
    ConfigurationProcesses() { Find<IConfiguration>(); }

    void Send(const char* event) {
        EventConnection connection(mDirectory / "service_hbbtv_to_plugin_conf", 12);
        ASSERT_TRUE(connection.Send({event}));
    }

    // The last request and the number of requests.
    std::string Requests() const {
        const std::vector<Frame> frames = mPlatform.Frames();
        return std::to_string(frames.size()) + " " + (frames.empty() ? "" : frames.back().payload);
    }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{"service_plugin_to_hbbtv_conf", R"({"ret": 0})"};
    ServiceProcess mService;
};

TEST_F(ConfigurationProcesses, ReachSeveralClientsUntilEachUnregisters) {
    RegisteredClient first("configuration");
    ASSERT_TRUE(first.Registered()) << first.Output();
    RegisteredClient second("further_configuration");
    ASSERT_TRUE(second.Registered()) << second.Output();
    Send(kAge16);
    EXPECT_TRUE(first.WaitForOutput(R"("ratingAge":16)")) << first.Output();
    EXPECT_TRUE(second.WaitForOutput(R"("ratingAge":16)")) << second.Output();

    // Its callback is recognized although it is passed with another call.
    first.Write("unregister\n");
    ASSERT_TRUE(first.WaitForOutput("unregistered\n"));
    Send(kAge18);
    EXPECT_TRUE(second.WaitForOutput(R"("ratingAge":18)")) << second.Output();
    EXPECT_EQ(std::string::npos, first.Output().find(R"("ratingAge":18)")) << first.Output();
    EXPECT_EQ("1 {\n\t\"method\" : 33,\n\t\"type\" : 9\n}\n", Requests());

    second.Write("unregister\n");
    ASSERT_TRUE(second.WaitForOutput("unregistered\n"));
    EXPECT_EQ(std::string("2 ") + kUnregister, Requests());
    // No running process is linked any more.
    first.Kill();
    Send(kAge16);
    EXPECT_EQ(std::string("2 ") + kUnregister, Requests());
}

TEST_F(ConfigurationProcesses, AreDroppedAfterOneClientsProcessHasEnded) {
    RegisteredClient first("configuration");
    ASSERT_TRUE(first.Registered()) << first.Output();
    RegisteredClient second("further_configuration");
    ASSERT_TRUE(second.Registered()) << second.Output();
    second.Kill();
    ASSERT_TRUE(mPlatform.WaitForFrames(2));
    EXPECT_EQ(std::string("2 ") + kUnregister, Requests());
    Send(kAge16);
    EXPECT_EQ(std::string::npos, first.Output().find(R"("ratingAge":16)")) << first.Output();

    RegisteredClient third("configuration");
    ASSERT_TRUE(third.Registered()) << third.Output();
    Send(R"({"event": 2, "audLang": "deu"})");
    EXPECT_TRUE(third.WaitForOutput(R"("audioLanguage":"deu")")) << third.Output();
}

}  // namespace

}  // namespace hbbtv::test
