// hbbtvctl monitor: in front of the simulated platform, and of one that shares no code with it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "ctl.h"
#include "raw_listener.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

constexpr char kChannel[] = "service_plugin_to_hbbtv_vb_chn";

class Monitor : public CtlProcess {
  public:
    explicit Monitor(std::vector<std::string> arguments = {}) : CtlProcess(Command(std::move(arguments))) {
        EXPECT_TRUE(WaitForOutput("listening; press Ctrl-C to stop\n")) << Output();
    }

  private:
    static std::vector<std::string> Command(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "monitor");
        return arguments;
    }
};

class MonitorTest : public Alone {
  protected:
    // Returns the files with their inodes, but not those that commands have written.
    std::set<std::pair<std::string, ino_t>> Sockets() const {
        std::set<std::pair<std::string, ino_t>> sockets;
        for (const auto& entry : std::filesystem::directory_iterator(mDirectory.Path())) {
            struct stat status {};
            if (lstat(entry.path().c_str(), &status) == 0 && S_ISSOCK(status.st_mode)) {
                sockets.insert({entry.path().filename(), status.st_ino});
            }
        }
        return sockets;
    }
    static FinishedRun GetName(const std::string& channel = "0x1") {
        return Ctl({"send", "channel.GetName", channel, "--unchecked", "--timeout", "5s"});
    }
};

TEST_F(MonitorTest, ShowsTheExchangesOfAPlatformThatSharesNoCode) {
    ChildProcess platform({"python3", HBBTV_SOURCE_DIR "/examples/platform/platform.py", mDirectory.Path()});
    ASSERT_TRUE(WaitFor([&] { return Sockets().size() == 2; })) << platform.Output();
    Monitor monitor({"--count", "6"});
    const FinishedRun current = Ctl({"send", "channel_config.GetCurrentChannel"});
    const std::string handle = "0x00004f10";  // the first one of this platform
    EXPECT_THAT(current.output, HasSubstr("\"0x4f10\""));
    GetName(handle);
    EXPECT_EQ(monitor.WaitForExit(), 0);
    EXPECT_THAT(monitor.Output(), HasSubstr("hbbtvctl: 2 sockets in " + mDirectory.Path() + "; listening"));
    EXPECT_THAT(monitor.Output(), HasSubstr("  channel_config.GetCurrentChannel -> 0 handle=" + handle));
    EXPECT_THAT(monitor.Output(),
                HasSubstr("  channel.GetName c_handle=" + handle + " \"First\" -> 0 name=\"First\"  "));
    EXPECT_THAT(monitor.Output(), HasSubstr(" + channel connection 2: library hbbtvctl ("));
    EXPECT_THAT(monitor.Output(), HasSubstr(" - channel connection 2 closed"));
    EXPECT_THAT(monitor.Output(), HasSubstr("\n2 exchanges, 0 errors, ")) << "the statistics";
}

class MonitorOfTheSystem : public InFrontOfTheSystem {};

TEST_F(MonitorOfTheSystem, ShowsRequestsAndEventsOfTheService) {
    Monitor monitor({"--filter", "channel_config", "--json", "--record", mDirectory / "all.ndjson"});
    Listener listener({"channel_config", "--count", "1"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    ASSERT_EQ(Ctl({"emit", "channel_config", "changed", "reserved=A"}).exit, 0);
    EXPECT_EQ(listener.WaitForExit(), 0);
    CurrentChannel();
    ASSERT_TRUE(monitor.WaitForOutput("\"operation\":\"GetCurrentChannel\"")) << monitor.Output();
    ASSERT_TRUE(monitor.WaitForOutput("\"operation\":\"changed\"")) << "of a socket that appeared later";
    monitor.Signal(SIGINT);
    EXPECT_EQ(monitor.WaitForExit(), 0);
    EXPECT_THAT(monitor.Output(), Not(HasSubstr("\"family\":\"channel\"")));
    const FinishedRun show = Ctl({"show", mDirectory / "all.ndjson"});
    EXPECT_EQ(show.exit, 0) << show.Text();
    EXPECT_THAT(show.output, HasSubstr(" * channel_config.changed reserved=\"A\""));
}

TEST_F(MonitorOfTheSystem, LeavesTheSystemAsItWasBySignals) {
    const FinishedRun before = Ctl({"list"});
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        Monitor monitor;
        EXPECT_THAT(Ctl({"list"}).output, HasSubstr("serving  hbbtvctl (" + std::to_string(monitor.Pid()) + ")"));
        monitor.Signal(signal);
        EXPECT_EQ(monitor.WaitForExit(), 0) << signal;
        EXPECT_EQ(Ctl({"list"}).output, before.output);
        EXPECT_FALSE(std::filesystem::exists(mDirectory / "hbbtvctl-relay.json"));
    }
    CurrentChannel();
}

// The simulated platform refuses to start while a process answers at its sockets.
TEST_F(MonitorOfTheSystem, FollowsAPlatformThatIsKilledAndStartedAgain) {
    const Monitor monitor;
    const std::vector<std::string> request{"send", "channel_config.GetCurrentChannel"};
    ASSERT_EQ(Ctl(request).exit, 0);
    mPlatform->Kill();
    EXPECT_TRUE(WaitFor([&] { return Ctl(request).exit == 3; })) << "as without the monitor";
    mPlatform = std::make_unique<SimulatedPlatform>();
    ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
    const std::string seen = "platform hbbtv-sim (" + std::to_string(mPlatform->Pid()) + ")";
    EXPECT_TRUE(WaitFor([&] { return Ctl(request).exit == 0 && monitor.Output().find(seen) != std::string::npos; }));
}

TEST_F(MonitorOfTheSystem, IsNotStoppedByATerminal) {
    Monitor monitor;
    monitor.Signal(SIGTSTP);
    CurrentChannel();
}

TEST_F(MonitorTest, ShowsHowLongAnExchangeIsOpen) {
    const FakePlatform platform(kChannel, "{}");
    Monitor monitor({"--rule", "op:GetName hold"});
    CtlProcess asking({"send", "channel.GetName", "0x1", "--timeout", "10s"});
    ASSERT_TRUE(monitor.WaitForOutput("  open for 1.")) << monitor.Output();
    EXPECT_THAT(monitor.Output(),
                HasSubstr("  channel.GetName c_handle=0x00000001 -> no reply yet  [hold]  open for 1."));
    const FinishedRun doctor = Ctl({"doctor"});
    EXPECT_EQ(doctor.exit, 4);
    EXPECT_THAT(doctor.output, MatchesRegex("[^$]*PROBLEM  requests +channel.GetName has been open for [0-9.]+ s; the "
                                            "platform, tools_test \\([0-9]+\\), is alive but does not reply; [^$]*"));
    EXPECT_THAT(doctor.output, HasSubstr("does something to messages on purpose"));
}

// A child of the process that listened keeps the connections, which the kernel attributes to the one that listened.
TEST_F(MonitorTest, DoctorNamesAPlatformThatHasEndedButWhoseConnectionsAreOpen) {
    ChildProcess platform({"python3", "-c",
                           "import os, signal, socket, sys\n"
                           "listener = socket.socket(socket.AF_UNIX)\n"
                           "listener.bind(sys.argv[1])\n"
                           "listener.listen()\n"
                           "if os.fork():\n"
                           "    print('ready', flush=True)\n"
                           "    signal.pause()\n"
                           "os.close(1), os.close(2)\n"
                           "sys.stdin.read()\n",
                           mDirectory / kChannel});
    ASSERT_TRUE(platform.WaitForOutput("ready\n"));
    Monitor monitor;
    CtlProcess asking({"send", "channel.GetName", "0x1", "--timeout", "20s"});
    ASSERT_TRUE(monitor.WaitForOutput("  open for 1.")) << monitor.Output();
    EXPECT_THAT(Ctl({"doctor"}).output, HasSubstr(" is alive but does not reply; "));
    platform.Kill();
    const FinishedRun doctor = Ctl({"doctor"});
    EXPECT_EQ(doctor.exit, 3);
    EXPECT_THAT(doctor.output,
                MatchesRegex("[^$]*PROBLEM  requests +channel.GetName has been open for [0-9.]+ s; the platform, "
                             "python3[0-9.]* \\(" +
                             std::to_string(platform.Pid()) + "\\), has ended; another process keeps[^$]*"));
}

TEST_F(MonitorTest, TheSecondOneSaysWhoIsThere) {
    const FakePlatform platform(kChannel, "{}");
    Monitor first;
    const FinishedRun second = Ctl({"monitor", "--for", "1ms"});
    EXPECT_EQ(second.exit, 3);
    EXPECT_EQ(second.errors, "hbbtvctl: hbbtvctl monitor (" + std::to_string(first.Pid()) +
                                 ") already passes on the sockets in " + mDirectory.Path() + ": only one can\n");
}

TEST_F(MonitorTest, RefusesDirectoriesThatAreMissingOrTheSame) {
    const std::string missing = mDirectory / "missing";
    for (const char* command : {"monitor", "web"}) {
        const FinishedRun run = Ctl({"--directory", missing, command, "--for", "1ms"});
        EXPECT_EQ(run.exit, 3);
        EXPECT_EQ(run.errors,
                  "hbbtvctl: " + missing + ": No such file or directory; create it, or use that of the sockets\n");
    }
    EXPECT_EQ(Ctl({"monitor", "--between", mDirectory.Path(), missing, "--for", "1ms"}).exit, 3);
    const FinishedRun same = Ctl({"monitor", "--between", mDirectory.Path(), mDirectory / ".", "--for", "1ms"});
    EXPECT_EQ(same.exit, 2);
    EXPECT_EQ(same.errors, "hbbtvctl: --between needs two directories; leave it out if there is one\n");
}

TEST_F(MonitorTest, WhatAKilledOneHasLeftIsRestoredByTheNextOneAndByDoctor) {
    const FakePlatform platform(kChannel, R"({"ret":0})");
    const auto before = Sockets();
    for (const bool doctor : {true, false}) {
        Monitor killed;
        killed.Kill();
        EXPECT_EQ(GetName().exit, 3);
        if (doctor) {
            EXPECT_THAT(Ctl({"doctor"}).output,
                        HasSubstr("warning  monitor      hbbtvctl monitor (" + std::to_string(killed.Pid()) +
                                  ") was killed; restored 1 socket that it had left\n"));
        } else {
            const FinishedRun next = Ctl({"monitor", "--for", "1ms"});
            EXPECT_THAT(next.errors, HasSubstr("hbbtvctl: restored 1 socket that a killed monitor had left\n"));
        }
        EXPECT_EQ(Sockets(), before);
        EXPECT_EQ(GetName().exit, 0);
    }
}

TEST_F(MonitorTest, AKilledOneLeavesARecordingWithAllThatItHasShown) {
    const FakePlatform platform(kChannel, R"({"ret":0})");
    const std::string file = mDirectory / "kept.ndjson";
    Monitor killed({"--record", file});
    for (int i = 1; i <= 3; ++i) EXPECT_EQ(GetName("0x100" + std::to_string(i)).exit, 0);
    ASSERT_TRUE(killed.WaitForOutput("c_handle=0x00001003 -> 0")) << killed.Output();
    killed.Kill();
    const FinishedRun show = Ctl({"show", file});
    EXPECT_EQ(show.exit, 0) << show.Text();
    EXPECT_EQ(show.errors, "") << "no line is cut";
    for (int i = 1; i <= 3; ++i) EXPECT_THAT(show.output, HasSubstr("c_handle=0x0000100" + std::to_string(i)));
    Ctl({"doctor"});
}

TEST_F(MonitorTest, OneBetweenTwoDirectoriesLeavesNothingWhenItIsKilled) {
    const FakePlatform platform(kChannel, R"({"ret":0})");
    const std::string library = mDirectory / "library";
    mkdir(library.c_str(), 0777);
    const auto before = Sockets();
    Monitor killed({"--between", library, mDirectory.Path()});
    EXPECT_EQ(Ctl({"--directory", library, "send", "channel.GetName", "0x1"}).exit, 0);
    killed.Kill();
    for (const std::string& directory : {library, mDirectory.Path()}) {
        EXPECT_THAT(Ctl({"--directory", directory, "doctor"}).output, HasSubstr(" was killed; restored "));
    }
    EXPECT_EQ(Sockets(), before);
    EXPECT_TRUE(std::filesystem::is_empty(library));
}

TEST_F(MonitorTest, DoctorReportsOneThatIsStopped) {
    const FakePlatform platform(kChannel, "{}");
    Monitor monitor;
    EXPECT_THAT(Ctl({"doctor"}).output, HasSubstr("ok       monitor      hbbtvctl monitor (" +
                                                  std::to_string(monitor.Pid()) + ") passes on 1 socket\n"));
    monitor.Signal(SIGSTOP);
    EXPECT_THAT(Ctl({"doctor"}).output, HasSubstr("is stopped, so that nothing is passed on; continue it: kill -CONT " +
                                                  std::to_string(monitor.Pid()) + "\n"));
}

TEST_F(MonitorTest, TrafficContinuesWhenTheFileIsFull) {
    const FakePlatform platform(kChannel, R"({"ret":0})");
    const std::string file = mDirectory / "full.ndjson";
    ChildProcess monitor({"bash", "-c", "ulimit -f 1; exec \"$0\" monitor --record \"$1\"", HBBTVCTL_PROGRAM, file});
    ASSERT_TRUE(monitor.WaitForOutput("press Ctrl-C to stop\n"));
    for (int i = 0; i < 5; ++i) EXPECT_EQ(GetName().exit, 0);
    EXPECT_TRUE(monitor.WaitForOutput("hbbtvctl: cannot write " + file +
                                      ": File too large; the traffic continues, its records are lost\n"));
    monitor.Signal(SIGTERM);
    EXPECT_EQ(monitor.WaitForExit(), 0);
    EXPECT_THAT(monitor.Output(), MatchesRegex("[^$]*hbbtvctl: [0-9]+ records in [^ ]+; [0-9]+ are missing\n[^$]*"));
    EXPECT_EQ(Ctl({"show", file}).exit, 0) << "its last line is whole";
}

TEST_F(MonitorTest, TrafficContinuesWhenItsOutputIsNotRead) {
    const FakePlatform platform("service_of_another_family", R"({"ret":0})");
    const std::string pipe = mDirectory / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ChildProcess monitor({"bash", "-c", "exec 3<>\"$1\"; exec \"$0\" monitor --json >&3", HBBTVCTL_PROGRAM, pipe});
    ASSERT_TRUE(monitor.WaitForOutput("press Ctrl-C to stop\n"));
    RawConnection connection = RawConnection::To(mDirectory / "service_of_another_family");
    const std::string large(200000, 'x');
    for (int i = 0; i < 50; ++i) {  // a pipe has 64 KiB
        ASSERT_TRUE(connection.Write(FrameBytes(kRequest, 1, large)));
        ASSERT_TRUE(connection.ReadFrame().has_value()) << i;
    }
    monitor.Signal(SIGTERM);
    EXPECT_EQ(monitor.WaitForExit(), 0) << "although the pipe is full";
}

TEST_F(MonitorTest, TakesRulesFromAFileAndWhileItRuns) {
    const FakePlatform platform(kChannel, R"({"name":"arte","ret":0})");
    WriteFile(mDirectory / "rules", "# of a test\n\nop:GetName answer={\"ret\":5}\n");
    {
        Monitor monitor({"--rules", mDirectory / "rules"});
        EXPECT_THAT(GetName().output, HasSubstr("ret  5"));
        EXPECT_TRUE(monitor.WaitForOutput("  [answer={\"ret\":5}]")) << monitor.Output();
    }
    Ctl({"doctor"});
    Monitor monitor({"--rules", "-"});
    EXPECT_THAT(GetName().output, HasSubstr("name  \"arte\""));
    monitor.Write("on=reply set=name:ZDF\n");
    ASSERT_TRUE(monitor.WaitForOutput("1  on=reply set=name:ZDF  (applied 0 times)\n"));
    EXPECT_THAT(GetName().output, HasSubstr("name  \"ZDF\""));
    monitor.Write("slow\n");
    EXPECT_TRUE(monitor.WaitForOutput("hbbtvctl: rule \"slow\": write slow=BYTES, not \"slow\"\n"));
    monitor.Write("remove all\n");
    ASSERT_TRUE(monitor.WaitForOutput("no rules\n"));
    EXPECT_THAT(GetName().output, HasSubstr("name  \"arte\""));
    EXPECT_EQ(Ctl({"monitor", "--rules", mDirectory / "none"}).exit, 2);
    EXPECT_EQ(Ctl({"monitor", "--rule", "x"}).exit, 2);
    EXPECT_EQ(Ctl({"monitor", "--filter", "ms>"}).exit, 2);
}

TEST_F(MonitorTest, ShowsStatisticsEverySecond) {
    const FakePlatform platform(kChannel, R"({"ret":0})");
    Monitor monitor({"--stats"});
    GetName();
    EXPECT_TRUE(monitor.WaitForOutput("\n1 exchange, 0 errors, ")) << monitor.Output();
    EXPECT_THAT(monitor.Output(), Not(HasSubstr("c_handle")));
}

}  // namespace

}  // namespace hbbtv::test
