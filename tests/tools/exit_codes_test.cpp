// The exit codes that scripts rely on, each provoked in a real system, and the error messages that come with them.

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
        EXPECT_EQ(run.exit, code) << run.Text();
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.errors, "hbbtvctl: " + sentence + "\n");
    }

    std::string Socket() const { return mDirectory / kSocket; }
};

TEST_F(ExitCode, IsZeroOrOneByTheStatus) {
    FakePlatform platform(kSocket, R"({"ret": 0, "handle": "0x10"})");
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    EXPECT_EQ(Ctl(kCall).exit, 0);
    EXPECT_EQ(Ctl(kSend).exit, 0);
    platform.SetReply(R"({"ret": 17})");
    const FinishedRun call = Ctl(kCall);
    EXPECT_EQ(call.exit, 1);
    EXPECT_THAT(call.output, HasSubstr("status   17\n"));
    EXPECT_EQ(call.errors, "") << "a status is not an error of hbbtvctl";
    EXPECT_EQ(Ctl(kSend).exit, 1);
}

TEST_F(ExitCode, IsThreeWithoutAService) {
    Expect(3,
           "no process has registered vantorel.hardware.hbbtv@1.0::IChannelConfig in " +
               mDirectory /
                   "hidl; start the "
                   "service with the same TMPDIR, or run `hbbtvctl doctor`",
           Ctl(kCall));
    EXPECT_EQ(Ctl({"listen", "channel_config"}).exit, 3);
    EXPECT_EQ(Ctl({"bench", "IChannelConfig.GetCurrentChannel"}).exit, 3);
}

TEST_F(ExitCode, IsThreeWithoutASocket) {
    Expect(3, "cannot connect to " + Socket() + ": no such socket; is the other side running with the same directory?",
           Ctl(kSend));
    WriteFile(Socket(), "");
    Expect(3, "cannot connect to " + Socket() + ": not a socket; remove or rename the file, and restart the other side",
           Ctl(kSend));
    const std::string deep = mDirectory / std::string(100, 'd');
    const FinishedRun run = Ctl({"--directory", deep, "send", "channel_config.GetCurrentChannel"});
    Expect(3,
           "cannot connect to " + deep + "/" + kSocket +
               ": the path is longer than 107 bytes, the limit of socket addresses; use a shorter directory",
           run);
    EXPECT_EQ(Ctl({"emit", "channel_config", "changed", "reserved=A"}).exit, 3);
}

TEST_F(ExitCode, IsThreeWithASocketThatThisUserMayNotConnectTo) {
    FakePlatform platform(kSocket, R"({"ret": 0})");
    chmod(mDirectory.Path().c_str(), 0777);
    chmod(Socket().c_str(), 0);
    Expect(3,
           "cannot connect to " + Socket() +
               ": permission denied; the mode of the socket should be 777, and its directory searchable",
           CtlWithoutPrivileges(kSend));
    EXPECT_TRUE(platform.Frames().empty());
}

TEST_F(ExitCode, IsThreeWithAStaleSocket) {
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready());
    platform.Kill();
    Expect(3, "cannot connect to " + Socket() + ": no process serves this socket (stale file); restart the other side",
           Ctl(kSend));
}

TEST_F(ExitCode, IsFourWhenThePlatformHangs) {
    SimulatedPlatform platform({"--fault", "stop-answering:channel_config"});
    ASSERT_TRUE(platform.Ready());
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    Expect(4, Socket() + ": no reply within 100 ms; the other side hangs: check its log, or restart it",
           Ctl(With(kSend, {"--timeout", "100ms"})));
    // Long enough for looking up the interface, which the limit covers as well.
    Expect(4,
           "IChannelConfig.GetCurrentChannel: no reply within 2 s; the service hangs (see `hbbtvctl doctor`), or the "
           "platform does (try `hbbtvctl send`)",
           Ctl(With(kCall, {"--timeout", "2s"})));
}

TEST_F(ExitCode, IsFourWhenTheProcessIsStopped) {
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready());
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    ASSERT_EQ(Ctl(kCall).exit, 0);
    service.Signal(SIGSTOP);
    EXPECT_EQ(Ctl(With(kCall, {"--timeout", "100ms"})).exit, 4);
    const FinishedRun list = Ctl({"list", "--timeout", "100ms"});
    EXPECT_EQ(list.exit, 4);
    EXPECT_EQ(list.output, "") << "all or nothing";
    EXPECT_EQ(Ctl({"listen", "channel_config", "--timeout", "100ms"}).exit, 4);
    EXPECT_EQ(Ctl({"bench", "IChannelConfig.GetCurrentChannel", "--duration", "1ms", "--timeout", "100ms"}).exit, 4);
    platform.Signal(SIGSTOP);
    EXPECT_EQ(Ctl(With(kSend, {"--timeout", "100ms"})).exit, 4);
}

TEST_F(ExitCode, IsFiveWhenTheReplyIsNonsense) {
    FakePlatform platform(kSocket, "nonsense");
    const auto sentence = [&](const std::string& what) {
        return Socket() + ": the reply to channel_config.GetCurrentChannel " + what;
    };
    const FinishedRun nonsense = Ctl(kSend);
    EXPECT_EQ(nonsense.exit, 5);
    EXPECT_THAT(nonsense.errors, testing::StartsWith("hbbtvctl: " + sentence("is not valid JSON: line 1, column 1: ")));
    EXPECT_THAT(nonsense.errors, testing::EndsWith("; it begins \"nonsense\"\n"));
    platform.SetReply(R"(["ret", 0])");
    Expect(5, sentence("is not an object with an integer \"ret\"; it begins \"[\\\"ret\\\", 0]\""), Ctl(kSend));
    platform.SetReply(R"({"ret": "0"})");
    Expect(5, sentence("is not an object with an integer \"ret\"; it begins \"{\\\"ret\\\": \\\"0\\\"}\""), Ctl(kSend));
    platform.SetReply("");
    Expect(5, sentence("is empty: the other side could not parse the message"), Ctl(kSend));
}

TEST_F(ExitCode, IsFiveWhenTheReplyIsTooLarge) {
    RawListener platform(Socket());
    CtlProcess send(kSend);
    RawConnection connection = platform.Accept();
    ASSERT_TRUE(connection.ReadFrame().has_value());
    connection.Write(HeaderBytes(0xffffffff, kReply, 3));
    EXPECT_EQ(send.WaitForExit(), 5);
    EXPECT_EQ(send.Output(), "hbbtvctl: " + Socket() +
                                 ": the header of the reply announces 4294967295 bytes, more than any message has\n");
}

TEST_F(ExitCode, IsSixWhenTheServiceIsKilledDuringTheCall) {
    FakePlatform platform(kSocket, [](const Frame&) { return std::nullopt; });
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    CtlProcess call(kCall);
    ASSERT_TRUE(platform.WaitForFrames(1));
    service.Kill();
    EXPECT_EQ(call.WaitForExit(), 6);
    EXPECT_EQ(call.Output(),
              "hbbtvctl: IChannelConfig.GetCurrentChannel: the service ended during the call; check its log, and "
              "restart it\n");
}

TEST_F(ExitCode, IsSixWhenThePlatformGoesBeforeItsReply) {
    RawListener platform(Socket());
    CtlProcess send(kSend);
    {
        RawConnection connection = platform.Accept();
        ASSERT_TRUE(connection.ReadFrame().has_value());
    }
    EXPECT_EQ(send.WaitForExit(), 6);
    EXPECT_EQ(send.Output(),
              "hbbtvctl: " + Socket() + ": the other side closed the connection without a reply; check its log\n");
}

TEST_F(ExitCode, IsTheCommandsOwnWhenTheReaderOfTheOutputHasGone) {
    const std::string program = HBBTVCTL_PROGRAM;
    const FinishedRun run =
        RunToEnd({"bash", "-c", "set -o pipefail; " + program + " list | true; echo ${PIPESTATUS[0]}"});
    EXPECT_EQ(run.output, "0\n");
    EXPECT_EQ(run.errors, "");
    const FinishedRun full = RunToEnd({"bash", "-c", program + " list >/dev/full"});
    EXPECT_EQ(full.exit, 2);
    EXPECT_EQ(full.errors, "hbbtvctl: cannot write standard output: No space left on device\n");
}

TEST_F(ExitCode, IsTwoWithAStandardDescriptorThatIsClosed) {
    FakePlatform platform(kSocket, R"({"ret": 0})");
    const auto run = [](const std::string& how) { return RunToEnd({"bash", "-c", "\"$0\" " + how, HBBTVCTL_PROGRAM}); };
    const FinishedRun output = run("send channel_config.GetCurrentChannel --json >&-");
    EXPECT_EQ(output.exit, 2);
    EXPECT_EQ(output.errors, "hbbtvctl: cannot write standard output: Bad file descriptor\n");
    const FinishedRun raw = run("send channel_config --raw x --timeout 100ms >&-");
    EXPECT_EQ(raw.exit, 2) << raw.Text();
    EXPECT_EQ(raw.errors, "hbbtvctl: cannot write standard output: Bad file descriptor\n");
    EXPECT_EQ(platform.Frames().size(), 1u) << "printed text does not go to the platform";
    const FinishedRun input = run("send channel_config.CreateChannelList - <&-");
    EXPECT_EQ(input.exit, 2);
    EXPECT_EQ(input.errors, "hbbtvctl: cannot read standard input: Bad file descriptor\n");
    EXPECT_EQ(run("send channel_config.GetCurrentChannel 2>&-").exit, 0) << "standard error is not needed";
}

}  // namespace

}  // namespace hbbtv::test
