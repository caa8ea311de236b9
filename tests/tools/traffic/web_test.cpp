// hbbtvctl web, without a browser: tests/browser/traffic/ has the page.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;

const char* const kExample = HBBTV_SOURCE_DIR "/examples/traffic/slow_channel_change.ndjson";

class WebCommand : public Alone {
  protected:
    // Starts a platform.
    void SetUp() override { ASSERT_TRUE(mPlatform.Ready()); }

    SimulatedPlatform mPlatform;
};

TEST_F(WebCommand, PrintsTheAddressOfARecordingAndEndsAfterItsTime) {
    const FinishedRun run = Ctl({"web", kExample, "--for", "10ms"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_THAT(run.output, MatchesRegex("http://127[.]0[.]0[.]1:[0-9]+/[0-9a-f]+/\n"));
    EXPECT_EQ(run.errors, "");
}

TEST_F(WebCommand, NamesLinesOfARecordingThatCannotBeRead) {
    WriteFile(mDirectory / "cut.ndjson", ReadFile(kExample).substr(0, 2000));
    const FinishedRun run = Ctl({"web", mDirectory / "cut.ndjson", "--for", "10ms"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_THAT(run.errors, ContainsRegex("cut.ndjson:[0-9]+: cut: the file ends in this line; skipped\n"));
    EXPECT_EQ(Ctl({"web", HBBTV_SOURCE_DIR "/README.md"}).exit, 2);
    EXPECT_EQ(Ctl({"web", mDirectory / "none.ndjson"}).exit, 2);
}

TEST_F(WebCommand, RecordsWhatItSeesAndLeavesTheSocketsAsTheyWere) {
    CtlProcess web({"web", "--record", mDirectory / "kept.ndjson"});
    ASSERT_TRUE(web.WaitForOutput("/\n")) << web.Output();
    EXPECT_EQ(Ctl({"send", "channel_config.GetCurrentChannel"}).exit, 0);
    web.Signal(SIGINT);
    EXPECT_EQ(web.WaitForExit(), 0) << web.Output();
    EXPECT_THAT(Ctl({"show", mDirectory / "kept.ndjson"}).output,
                HasSubstr("channel_config.GetCurrentChannel -> 0 handle=0x"));
    EXPECT_EQ(Ctl({"send", "channel_config.GetCurrentChannel"}).exit, 0);
}

TEST_F(WebCommand, RefusesAnotherRelayAndAPortThatIsInUse) {
    CtlProcess web({"web"});
    ASSERT_TRUE(web.WaitForOutput("/\n")) << web.Output();
    const FinishedRun second = Ctl({"web"});
    EXPECT_EQ(second.exit, 3);
    EXPECT_THAT(second.errors, HasSubstr("hbbtvctl web"));
    const std::string output = web.Output();
    const size_t begin = output.find("127.0.0.1:") + 10;
    const std::string port = output.substr(begin, output.find('/', begin) - begin);
    const FinishedRun taken = Ctl({"web", kExample, "--port", port});
    EXPECT_EQ(taken.exit, 3);
    EXPECT_THAT(taken.errors, HasSubstr("cannot serve 127.0.0.1:" + port + ": Address already in use"));
    EXPECT_EQ(Ctl({"web", kExample, "--port", "65536"}).exit, 2);
}

TEST_F(WebCommand, WritesAPageFromARecording) {
    const FinishedRun run =
        Ctl({"show", kExample, "--filter", "op:SetChannel", "--redact", "--html", mDirectory / "page.html"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_EQ(run.output, "");
    const std::string page = ReadFile(mDirectory / "page.html");
    EXPECT_THAT(page, HasSubstr("connect-src 'none'"));
    EXPECT_THAT(page, HasSubstr("\"operation\":\"SetChannel\""));
    EXPECT_THAT(page, HasSubstr("http://hbbtv.example/start?redacted-1"));
    EXPECT_EQ(page.find("anna"), std::string::npos);
    EXPECT_EQ(Ctl({"show", kExample, "--html", mDirectory / "none/page.html"}).exit, 2);
}

}  // namespace

}  // namespace hbbtv::test
