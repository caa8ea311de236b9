// The exit codes that scripts rely on, each provoked for real, with a sentence that says what was tried, where, and
// what to do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include "ctl.h"
#include "raw_listener.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;

const std::vector<std::string> kCall{"call", "IChannelConfig.GetCurrentChannel"};
const std::vector<std::string> kSend{"send", "channel_config.GetCurrentChannel"};
const std::string kSocket = "service_plugin_to_hbbtv_vb_chn_config";

std::vector<std::string> With(std::vector<std::string> words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

class ExitCode : public Alone {
  protected:
    void Expect(int code, const std::string& sentence, const FinishedRun& run) const {
        EXPECT_EQ(code, run.exit) << run.Text();
        EXPECT_EQ("", run.output);
        EXPECT_EQ("hbbtvctl: " + sentence + "\n", run.errors);
    }

    std::string Socket() const { return mDirectory / kSocket; }
};

TEST_F(ExitCode, IsZeroOrOneByTheStatus) {
    FakePlatform platform(kSocket, R"({"ret": 0, "handle": "0x10"})");
    ServiceProcess service;
    ASSERT_NE(nullptr, FindVideoBroadcast());
    EXPECT_EQ(0, Ctl(kCall).exit);
    EXPECT_EQ(0, Ctl(kSend).exit);
    platform.SetReply(R"({"ret": 17})");
    const FinishedRun call = Ctl(kCall);
    EXPECT_EQ(1, call.exit);
    EXPECT_THAT(call.output, HasSubstr("status   17\n"));
    EXPECT_EQ("", call.errors) << "the platform's answer is no error of ours";
    EXPECT_EQ(1, Ctl(kSend).exit);
}

TEST_F(ExitCode, IsThreeWithoutAService) {
    Expect(3,
           "no process has registered vantorel.hardware.hbbtv@1.0::IChannelConfig in " +
               mDirectory /
                   "hidl; start the "
                   "service with the same TMPDIR, or ask `hbbtvctl doctor`",
           Ctl(kCall));
    EXPECT_EQ(3, Ctl({"listen", "channel_config"}).exit);
    EXPECT_EQ(3, Ctl({"bench", "IChannelConfig.GetCurrentChannel"}).exit);
}

TEST_F(ExitCode, IsThreeWithoutASocket) {
    Expect(3, Socket() + ": there is no such socket; is the other side running, with this directory?", Ctl(kSend));
    WriteFile(Socket(), "");
    Expect(3, Socket() + ": is no socket; remove or rename it, and start the other side again", Ctl(kSend));
    const std::string deep = mDirectory / std::string(100, 'd');
    const FinishedRun run = Ctl({"--directory", deep, "send", "channel_config.GetCurrentChannel"});
    Expect(3,
           deep + "/" + kSocket +
               ": the path is longer than the 107 bytes that a socket's address holds; use a shorter directory",
           run);
    EXPECT_EQ(3, Ctl({"emit", "channel_config", "changed"}).exit);
}

TEST_F(ExitCode, IsThreeWithASocketThatThisUserMayNotConnectTo) {
    FakePlatform platform(kSocket, R"({"ret": 0})");
    chmod(mDirectory.Path().c_str(), 0777);
    chmod(Socket().c_str(), 0);
    Expect(3, Socket() + ": the rights of the socket or its directory forbid it; its owner should make the socket 777",
           CtlWithoutPrivileges(kSend));
    EXPECT_TRUE(platform.Frames().empty());
}

TEST_F(ExitCode, IsThreeWithAStaleSocket) {
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready());
    platform.Kill();
    Expect(3, Socket() + ": nobody serves this socket any more (a stale file); start the other side again", Ctl(kSend));
}

TEST_F(ExitCode, IsFourWhenThePlatformHangs) {
    SimulatedPlatform platform({"--fault", "stop-answering:channel_config"});
    ASSERT_TRUE(platform.Ready());
    ServiceProcess service;
    ASSERT_NE(nullptr, FindVideoBroadcast());
    Expect(4, Socket() + ": no answer within 100 ms; the other side hangs: look at its log, or start it again",
           Ctl(With(kSend, {"--timeout", "100ms"})));
    // Long enough for finding the interface, which the limit is for as well.
    Expect(4,
           "IChannelConfig.GetCurrentChannel: no answer within 2 s; the service hangs (`hbbtvctl doctor` looks at it), "
           "or the platform behind it (`hbbtvctl send` asks it directly)",
           Ctl(With(kCall, {"--timeout", "2s"})));
}

TEST_F(ExitCode, IsFourWhenTheProcessIsStopped) {
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready());
    ServiceProcess service;
    ASSERT_NE(nullptr, FindVideoBroadcast());
    ASSERT_EQ(0, Ctl(kCall).exit);
    service.Signal(SIGSTOP);
    EXPECT_EQ(4, Ctl(With(kCall, {"--timeout", "100ms"})).exit);
    const FinishedRun list = Ctl({"list", "--timeout", "100ms"});
    EXPECT_EQ(4, list.exit);
    EXPECT_EQ("", list.output) << "all or nothing";
    EXPECT_EQ(4, Ctl({"listen", "channel_config", "--timeout", "100ms"}).exit);
    EXPECT_EQ(4, Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "1ms", "--timeout", "100ms"}).exit);
    platform.Signal(SIGSTOP);
    EXPECT_EQ(4, Ctl(With(kSend, {"--timeout", "100ms"})).exit);
}

TEST_F(ExitCode, IsFiveWhenTheReplyIsNonsense) {
    FakePlatform platform(kSocket, "nonsense");
    const auto sentence = [&](const std::string& what) {
        return Socket() + ": the reply to channel_config.GetCurrentChannel " + what;
    };
    const FinishedRun nonsense = Ctl(kSend);
    EXPECT_EQ(5, nonsense.exit);
    EXPECT_THAT(nonsense.errors, testing::StartsWith("hbbtvctl: " + sentence("is not valid JSON: line 1, column 1: ")));
    EXPECT_THAT(nonsense.errors, testing::EndsWith("; it begins \"nonsense\"\n"));
    platform.SetReply(R"(["ret", 0])");
    Expect(5, sentence("is no object with a whole number under \"ret\"; it begins \"[\\\"ret\\\", 0]\""), Ctl(kSend));
    platform.SetReply(R"({"ret": "0"})");
    Expect(5, sentence("is no object with a whole number under \"ret\"; it begins \"{\\\"ret\\\": \\\"0\\\"}\""),
           Ctl(kSend));
    platform.SetReply("");
    Expect(5, sentence("is empty: the other side could not read the message"), Ctl(kSend));
}

TEST_F(ExitCode, IsFiveWhenTheReplyCannotBe) {
    RawListener platform(Socket());
    CtlProcess send(kSend);
    RawConnection connection = platform.Accept();
    ASSERT_TRUE(connection.ReadFrame().has_value());
    connection.Write(HeaderBytes(0xffffffff, kReply, 3));
    EXPECT_EQ(5, send.WaitForExit());
    EXPECT_EQ("hbbtvctl: " + Socket() + ": the answer announces 4294967295 bytes, more than any message has\n",
              send.Output());
}

TEST_F(ExitCode, IsSixWhenTheServiceIsKilledDuringTheCall) {
    FakePlatform platform(kSocket, [](const Frame&) { return std::nullopt; });
    ServiceProcess service;
    ASSERT_NE(nullptr, FindVideoBroadcast());
    CtlProcess call(kCall);
    ASSERT_TRUE(platform.WaitForFrames(1));
    service.Kill();
    EXPECT_EQ(6, call.WaitForExit());
    EXPECT_EQ(
        "hbbtvctl: IChannelConfig.GetCurrentChannel: the service went away during the call; look at its log, and "
        "start it again\n",
        call.Output());
}

TEST_F(ExitCode, IsSixWhenThePlatformGoesBeforeItsReply) {
    RawListener platform(Socket());
    CtlProcess send(kSend);
    {
        RawConnection connection = platform.Accept();
        ASSERT_TRUE(connection.ReadFrame().has_value());
    }
    EXPECT_EQ(6, send.WaitForExit());
    EXPECT_EQ("hbbtvctl: " + Socket() + ": the other side closed the connection without an answer; look at its log\n",
              send.Output());
}

TEST_F(ExitCode, IsTheCommandsOwnWhenTheReaderOfTheOutputHasGone) {
    const std::string program = HBBTVCTL_PROGRAM;
    const FinishedRun run =
        RunToEnd({"bash", "-c", "set -o pipefail; " + program + " list | true; echo ${PIPESTATUS[0]}"});
    EXPECT_EQ("0\n", run.output);
    EXPECT_EQ("", run.errors);
    const FinishedRun full = RunToEnd({"bash", "-c", program + " list >/dev/full"});
    EXPECT_EQ(2, full.exit);
    EXPECT_EQ("hbbtvctl: standard output: No space left on device\n", full.errors);
}

TEST_F(ExitCode, IsTwoWithAStandardDescriptorThatIsClosed) {
    FakePlatform platform(kSocket, R"({"ret": 0})");
    const auto run = [](const std::string& how) { return RunToEnd({"bash", "-c", "\"$0\" " + how, HBBTVCTL_PROGRAM}); };
    const FinishedRun output = run("send channel_config.GetCurrentChannel --json >&-");
    EXPECT_EQ(2, output.exit);
    EXPECT_EQ("hbbtvctl: standard output: Bad file descriptor\n", output.errors);
    const FinishedRun raw = run("send channel_config --raw x --timeout 100ms >&-");
    EXPECT_EQ(2, raw.exit) << raw.Text();
    EXPECT_EQ("hbbtvctl: standard output: Bad file descriptor\n", raw.errors);
    EXPECT_EQ(1u, platform.Frames().size()) << "what is meant for people does not go to the platform";
    const FinishedRun input = run("send channel_config.CreateChannelList - <&-");
    EXPECT_EQ(2, input.exit);
    EXPECT_EQ("hbbtvctl: standard input: cannot be read: Bad file descriptor\n", input.errors);
    EXPECT_EQ(0, run("send channel_config.GetCurrentChannel 2>&-").exit) << "nobody needs it";
}

}  // namespace

}  // namespace hbbtv::test
