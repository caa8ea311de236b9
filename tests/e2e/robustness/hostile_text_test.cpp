// Text of a hostile peer on its way through the programs: none of it reaches a terminal or the log as it is.

#include <gtest/gtest.h>

#include <string>

#include "common/text/json.h"
#include "event_connection.h"
#include "finished_run.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

const std::string kHostile = "\x1b[2J\nfake line\x7f\xc2\x9b";

// The JSON string of the same text.
std::string InJson() {
    return WriteJson(kHostile);
}

// Returns whether the output neither controls a terminal nor has the peer's line.
testing::AssertionResult IsHarmless(const std::string& output) {
    const bool harmless = output.find_first_of("\x1b\x7f\r\a\b") == std::string::npos &&
                          output.find("\xc2\x9b") == std::string::npos &&
                          output.find("\nfake line") == std::string::npos;
    return harmless ? testing::AssertionSuccess() : testing::AssertionFailure() << output;
}

FinishedRun Ctl(std::vector<std::string> words) {
    words.insert(words.begin(), HBBTVCTL_PROGRAM);
    return RunToEnd(words);
}

TEST(HostileText, OfAPlatformIsEscapedByTheServiceAndByHbbtvctl) {
    const ScratchDirectory directory;
    const std::string members = R"("name": )" + InJson() + R"(, "url": )" + InJson() + R"(, )" + InJson() + ": 1";
    const FakePlatform channels("service_plugin_to_hbbtv_vb_chn", R"({"ret": 0, )" + members + "}");
    const FakePlatform video("service_plugin_to_hbbtv_vb", "\x1b[2J\nfake line");
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);

    const FinishedRun call = Ctl({"call", "IChannel.GetName", "channel=1"});
    EXPECT_EQ(call.exit, 0) << call.Text();
    EXPECT_NE(call.output.find(R"("\u001b[2J\nfake line)"), std::string::npos) << call.output;
    EXPECT_TRUE(IsHarmless(call.output + call.errors));
    EXPECT_EQ(Ctl({"call", "IVideoBroadcast.NextChannel", "vb=1"}).exit, 1);
    for (const char* family : {"channel.GetName", "video_broadcast.NextChannel"}) {
        const FinishedRun send = Ctl({"send", family, "--timeout", "20s"});
        EXPECT_NE(send.output + send.errors, "");
        EXPECT_TRUE(IsHarmless(send.output + send.errors));
    }

    EventConnection events(directory / "service_hbbtv_to_plugin_vb", 7);
    ASSERT_TRUE(events.Send({R"({"event": 1, "type": )" + InJson() + "}"}));
    EXPECT_TRUE(service.WaitForOutput(R"(wrong event obj type \x1b[2J\nfake line\x7f\xc2\x9b)")) << service.Output();
    EXPECT_TRUE(IsHarmless(service.Output()));
}

TEST(HostileText, OfAClientIsEscapedByTheSimulator) {
    const ScratchDirectory directory;
    SimulatedPlatform simulator({"--trace"});
    ASSERT_TRUE(simulator.Ready()) << simulator.Output();
    RawConnection client = RawConnection::To(directory / "service_plugin_to_hbbtv_vb");
    const std::vector<std::string> requests = {
        R"({"type": 3, "method": 63, "source": 0, )" + InJson() + ": " + InJson() + "}",
        R"({"type": 3, "method": 7777, )" + InJson() + ": 1}",
        R"({"type": )" + InJson() + R"(, "method": )" + InJson() + "}", kHostile};
    for (const std::string& request : requests) {
        ASSERT_TRUE(client.Write(FrameBytes(kRequest, 7, request)));
        ASSERT_TRUE(client.ReadFrame().has_value());
    }
    EXPECT_TRUE(simulator.WaitForOutput("ChangeDisplaySource")) << simulator.Output();
    EXPECT_TRUE(simulator.WaitForOutput("fake line")) << simulator.Output();
    EXPECT_TRUE(IsHarmless(simulator.Output()));
    const FinishedRun tell = RunToEnd({HBBTV_SIM_PROGRAM, "--tell", kHostile});
    EXPECT_TRUE(IsHarmless(tell.output + tell.errors));
}

TEST(HostileText, InFileNamesIsEscapedByTheTools) {
    const ScratchDirectory directory;
    const std::string name = directory.Path() + "/" + kHostile;
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{HBBTVCTL_PROGRAM, "play", name + ".play"},
                                               {HBBTVCTL_PROGRAM, "--directory", name, "doctor"},
                                               {HBBTVCTL_PROGRAM, "--directory", name, "list"},
                                               {HBBTVCTL_PROGRAM, name},
                                               {HBBTV_SIM_PROGRAM, "--line-up", name + ".json"},
                                               {HBBTV_SIM_PROGRAM, "--directory", name}}) {
        const FinishedRun run = RunToEnd(command);
        EXPECT_NE(run.exit, std::nullopt);
        const std::string output = run.output + run.errors;
        EXPECT_EQ(output.find_first_of("\x1b\x7f"), std::string::npos) << output;
        EXPECT_EQ(output.find("\xc2\x9b"), std::string::npos) << output;
    }
}

}  // namespace

}  // namespace hbbtv::test
