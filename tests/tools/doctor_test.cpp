// hbbtvctl doctor: the line of each check with its advice, and the exit code.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "common/local_socket.h"
#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

TEST(Doctor, ReportsAMissingDirectory) {
    ScratchDirectory directory;
    const std::string missing = directory / "missing";
    const FinishedRun run = Ctl({"--directory", missing, "doctor"});
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  directory    " + missing +
                                      ": No such file or directory; create it, or set TMPDIR (or --directory) to the "
                                      "directory that service and platform use\n"));
    WriteFile(missing, "");
    EXPECT_THAT(Ctl({"--directory", missing, "doctor"}).output,
                HasSubstr("PROBLEM  directory    " + missing + " is not a directory; set TMPDIR to a directory\n"));
}

TEST(Doctor, ReportsADirectoryThatIsNotWritable) {
    ScratchDirectory directory;
    const std::string forbidden = directory / "forbidden";
    mkdir(forbidden.c_str(), 0755);
    chmod(directory.Path().c_str(), 0777);
    chmod(forbidden.c_str(), 0555);
    const FinishedRun run = CtlWithoutPrivileges({"--directory", forbidden, "doctor"});
    EXPECT_EQ(run.exit, 3) << run.Text();
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  directory    " + forbidden +
                                      " is not writable by this user; change its mode, or use another TMPDIR\n"));
}

TEST(Doctor, FindsSocketsThatThisUserMayNotConnectTo) {
    ScratchDirectory directory;
    chmod(directory.Path().c_str(), 0777);
    const FakePlatform platform("service_plugin_to_hbbtv_vb", "");
    const FakePlatform library("service_hbbtv_to_plugin_vb", "");
    chmod((directory / "service_plugin_to_hbbtv_vb").c_str(), 0);
    chmod((directory / "service_hbbtv_to_plugin_vb").c_str(), 0);
    const FinishedRun sockets = CtlWithoutPrivileges({"doctor"});
    EXPECT_EQ(sockets.exit, 3) << sockets.Text();
    EXPECT_THAT(sockets.output,
                HasSubstr("PROBLEM  platform     1 of 18 sockets are forbidden: service_plugin_to_hbbtv_vb; set the "
                          "mode of the socket to 777, and make its directory searchable\n"));
    EXPECT_THAT(sockets.output, HasSubstr("PROBLEM  library      service_hbbtv_to_plugin_vb is forbidden; set the mode "
                                          "of the socket to 777, and make its directory searchable\n"));
    // The same if the user cannot search the directory.
    const std::string closed = directory / "closed";
    mkdir(closed.c_str(), 0);
    const FinishedRun all = CtlWithoutPrivileges({"--directory", closed, "doctor"});
    chmod(closed.c_str(), 0700);
    EXPECT_EQ(all.exit, 3) << all.Text();
    EXPECT_THAT(all.output, HasSubstr("PROBLEM  platform     18 of 18 sockets are forbidden; "));
}

TEST(Doctor, WarnsOfADirectoryInWhichOthersCanReplaceTheSockets) {
    const ScratchDirectory directory;
    const std::string path = directory.Path();
    for (const auto& [mode, text] : {std::pair{0777, "777"}, std::pair{0770, "770"}, std::pair{0702, "702"}}) {
        chmod(path.c_str(), static_cast<mode_t>(mode));
        EXPECT_THAT(Ctl({"doctor"}).output,
                    HasSubstr("warning  sharing      " + path + " has mode " + text +
                              ": other users can replace the sockets; set the sticky bit: chmod +t\n"));
    }
    for (const mode_t mode : {01777, 0755, 0700}) {
        chmod(path.c_str(), mode);
        EXPECT_THAT(Ctl({"doctor"}).output, HasSubstr("ok       sharing      other users cannot replace the sockets\n"))
            << mode;
    }
}

// Needs root, as the other tests that change the user.
TEST(Doctor, WarnsOfFilesOfTheLibraryThatBelongToAnotherUser) {
    const ScratchDirectory directory;
    constexpr uid_t kOther = 4711;
    for (const char* name :
         {"service_hbbtv_to_plugin_vb", "service_plugin_to_hbbtv_vb_port_7", "service_plugin_to_hbbtv_vb"}) {
        WriteFile(directory / name, "");
        ASSERT_EQ(chown((directory / name).c_str(), kOther, kOther), 0);
    }
    const FinishedRun run = Ctl({"doctor"});
    const std::string advice = " belongs to user 4711, not to " + std::to_string(geteuid()) +
                               "; if the service does not run as that user, remove the file and restart the service\n";
    EXPECT_THAT(run.output, HasSubstr("warning  owner        service_hbbtv_to_plugin_vb" + advice));
    EXPECT_THAT(run.output, HasSubstr("warning  owner        service_plugin_to_hbbtv_vb_port_7" + advice));
    EXPECT_THAT(run.output, Not(HasSubstr("service_plugin_to_hbbtv_vb" + advice))) << "the platform's own";
}

TEST(Doctor, CountsTheBytesOfTheLongestPath) {
    ScratchDirectory directory;
    // 107 bytes are for the directory, a slash and the 50 bytes of service_plugin_to_hbbtv_vb_fav_list_collect_port_6.
    const std::string longest = directory / std::string(56 - directory.Path().size() - 1, 'd');
    ASSERT_EQ(longest.size(), 56u);
    mkdir(longest.c_str(), 0777);
    EXPECT_THAT(Ctl({"--directory", longest, "doctor"}).output,
                HasSubstr("ok       path length  the longest socket path has 107 of 107 bytes\n"));
    mkdir((longest + "d").c_str(), 0777);
    const FinishedRun run = Ctl({"--directory", longest + "d", "doctor"});
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(
        run.output,
        HasSubstr("PROBLEM  path length  the longest socket path has 108 of 107 bytes "
                  "(service_plugin_to_hbbtv_vb_fav_list_collect_port_6); use a directory of at most 56 bytes\n"));
    EXPECT_THAT(run.output, Not(HasSubstr("sockets"))) << "these checks require a shorter directory";
}

TEST(Doctor, ReportsAMissingPlatformAndService) {
    ScratchDirectory directory;
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  platform     18 of 18 sockets are missing; start the platform (or "
                                      "hbbtv-sim) with the same TMPDIR\n"));
    EXPECT_THAT(run.output,
                HasSubstr("PROBLEM  interfaces   " +
                          directory / "hidl: No such file or directory; no process has registered an interface; start "
                                      "vantorel.hardware.hbbtv@1.0-service with the same TMPDIR (or HIDL_HOST_DIR)\n"));
    const std::string program = HBBTV_SERVICE_PROGRAM;
    EXPECT_EQ(program.substr(program.rfind('/') + 1), "vantorel.hardware.hbbtv@1.0-service") << "its real name";
}

class DoctorOfTheSystem : public InFrontOfTheSystem {
  protected:
    // Returns the only line of a check, without its level and name.
    static std::string Line(const std::string& output, const std::string& begin) {
        const size_t at = output.find(begin);
        EXPECT_NE(at, std::string::npos) << output;
        return at == std::string::npos ? "" : output.substr(at, output.find('\n', at) - at);
    }
};

TEST_F(DoctorOfTheSystem, FindsNoProblemInAGoodSystem) {
    ASSERT_EQ(Ctl({"listen", "channel_config", "--for", "1ms"}).exit, 0);
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(run.output, HasSubstr("ok       directory    " + mDirectory.Path() + " is writable\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       platform     18 of 18 sockets are served by hbbtv-sim (" +
                                      std::to_string(mPlatform->Pid()) + ")\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       library      1 of 8 event sockets are open; "));
    EXPECT_THAT(run.output, HasSubstr("ok       rights       every user can connect to the existing sockets\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       service      18 of 18 interfaces respond\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       version      only vantorel.hardware.hbbtv@1.0 is registered\n"));
    EXPECT_THAT(run.output, Not(HasSubstr("PROBLEM")));
    const Json::Value document = Document(Ctl({"doctor", "--json"}));
    EXPECT_EQ(document["checks"][0]["check"].asString(), "directory");
    EXPECT_EQ(document["checks"][0]["level"].asString(), "ok");
}

TEST_F(DoctorOfTheSystem, FindsStaleSocketsOfThePlatformAndOfTheLibrary) {
    ASSERT_EQ(Ctl({"listen", "channel_config", "--for", "1ms"}).exit, 0);
    mPlatform->Kill();
    const FinishedRun platform = Ctl({"doctor"});
    EXPECT_EQ(platform.exit, 3);
    EXPECT_EQ(Line(platform.output, "PROBLEM  platform"),
              "PROBLEM  platform     18 of 18 sockets are stale; its process has ended; restart the platform, which "
              "replaces the file");
    std::remove((mDirectory / "service_plugin_to_hbbtv_vb").c_str());
    EXPECT_THAT(
        Ctl({"doctor"}).output,
        HasSubstr(
            "PROBLEM  platform     1 of 18 sockets are missing: service_plugin_to_hbbtv_vb; start the platform "));
    mService->Kill();
    const FinishedRun service = Ctl({"doctor"});
    EXPECT_EQ(service.exit, 3);
    EXPECT_THAT(service.output,
                HasSubstr("warning  library      service_hbbtv_to_plugin_vb_chn_config is stale; left by a process "
                          "that has ended; the service replaces it when a client first uses the family\n"));
    EXPECT_THAT(
        service.output,
        HasSubstr("PROBLEM  service      0 of 18 interfaces respond; start vantorel.hardware.hbbtv@1.0-service\n"));
}

TEST_F(DoctorOfTheSystem, WarnsOfModesThatExcludeOtherUsers) {
    chmod((mDirectory / "service_plugin_to_hbbtv_vb").c_str(), 0755);
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 0) << "a warning is not a problem";
    EXPECT_THAT(run.output, HasSubstr("warning  rights       service_plugin_to_hbbtv_vb has mode 755; processes of "
                                      "other users cannot connect; set its mode to 777\n"));
}

TEST_F(DoctorOfTheSystem, FindsAFileThatIsNotASocket) {
    mPlatform->Signal(SIGTERM);
    ASSERT_EQ(mPlatform->WaitForExit(), 0);
    WriteFile(mDirectory / "service_plugin_to_hbbtv_vb", "");
    EXPECT_THAT(Ctl({"doctor"}).output, HasSubstr("sockets are not sockets: service_plugin_to_hbbtv_vb; remove or "
                                                  "rename the file, and restart the other side\n"));
}

TEST_F(DoctorOfTheSystem, FindsAServiceThatHangs) {
    mService->Signal(SIGSTOP);
    const FinishedRun run = Ctl({"doctor", "--timeout", "100ms"});
    EXPECT_EQ(run.exit, 4);
    EXPECT_EQ(Line(run.output, "PROBLEM  service"),
              "PROBLEM  service      IAVComponent does not reply within 100 ms; the service hangs; attach gdb to see "
              "where, or restart it");
}

TEST_F(DoctorOfTheSystem, FindsAnotherVersionOfThePackage) {
    std::string ours;
    for (const auto& entry : std::filesystem::directory_iterator(mDirectory / "hidl")) {
        const std::string name = entry.path().filename();
        if (name.find("::IChannel,") != std::string::npos || name.find("::IChannel") != std::string::npos) ours = name;
    }
    ASSERT_NE(ours, "");
    std::string other = ours;
    other.replace(other.find("@1.0"), 4, "@1.1");
    WriteFile(mDirectory / "hidl/" + other, "");
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 5) << run.Text();
    EXPECT_THAT(Line(run.output, "PROBLEM  version"),
                MatchesRegex("PROBLEM  version +also registered: vantorel.hardware.hbbtv@1.1::IChannel.*; build "
                             "service, clients and this tool from the same package"));
}

TEST_F(DoctorOfTheSystem, FindsAPlatformThatIsStopped) {
    ASSERT_EQ(Ctl({"call", "IChannelConfig.GetCurrentChannel"}).exit, 0);
    mPlatform->Signal(SIGSTOP);
    const std::string platform = "hbbtv-sim (" + std::to_string(mPlatform->Pid()) + ")";
    const std::string advice = "; continue it: kill -CONT " + std::to_string(mPlatform->Pid()) + "\n";
    CtlProcess caller({"call", "IChannelConfig.GetCurrentChannel"});
    EXPECT_TRUE(mService->WaitForOutput(" (IChannelConfig.GetCurrentChannel) of process "));
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 4) << run.Text();
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  platform     " + platform + " is stopped" + advice));
    EXPECT_THAT(run.output,
                MatchesRegex("(.|\n)*PROBLEM  requests     IChannelConfig.GetCurrentChannel has been open for "
                             "[0-9.]+ s, no callers wait; hbbtv-sim [(][0-9]+[)] is stopped; (.|\n)*"));
    const FinishedRun tell = RunToEnd({HBBTV_SIM_PROGRAM, "--tell", "help"});
    EXPECT_EQ(tell.exit, 1);
    EXPECT_THAT(tell.errors, HasSubstr(" has not answered within 5 s; it is stopped, or hangs\n"));
    mPlatform->Signal(SIGCONT);
    EXPECT_EQ(caller.WaitForExit(), 0);
}

TEST_F(DoctorOfTheSystem, FindsAPlatformThatDoesNotReplyAndTheCallersThatWait) {
    ASSERT_EQ(RunToEnd({HBBTV_SIM_PROGRAM, "--tell", "stop-answering channel_config"}).exit, 0);
    CtlProcess first({"call", "IChannelConfig.GetCurrentChannel"});
    EXPECT_TRUE(mService->WaitForOutput(" (IChannelConfig.GetCurrentChannel) of process "));
    CtlProcess second({"call", "IChannelConfig.GetCurrentChannel"});
    EXPECT_TRUE(WaitFor([] {
        return Document(Ctl({"status", "channel_config", "--json"}))["families"][0]["requests"]["waiting"].size() == 1;
    }));
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 4) << run.Text();
    EXPECT_THAT(run.output, HasSubstr(" s, 1 caller waits (hbbtvctl (" + std::to_string(second.Pid()) +
                                      ")); hbbtv-sim (" + std::to_string(mPlatform->Pid()) + ") does not reply; "));
}

TEST_F(DoctorOfTheSystem, FindsAClientThatDoesNotReturn) {
    Listener client({"channel_config"});
    ASSERT_TRUE(client.Listens());
    client.Signal(SIGSTOP);
    CtlProcess emit({"emit", "channel_config", "changed", "reserved=A", "--one-way"});
    EXPECT_TRUE(mService->WaitForOutput(", has not returned from an event for "));
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 4) << run.Text();
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  clients      the client of IChannelConfig, hbbtvctl (" +
                                      std::to_string(client.Pid()) + "), has not returned from an event for "));
    client.Signal(SIGCONT);
}

TEST_F(DoctorOfTheSystem, FindsAPlatformThatAcceptsNoConnection) {
    ASSERT_EQ(unlink((mDirectory / "service_plugin_to_hbbtv_vb").c_str()), 0);
    // Its queue is full, and it never accepts.
    const Descriptor listener(ListenOn(mDirectory / "service_plugin_to_hbbtv_vb"));
    ASSERT_EQ(listen(listener.Get(), 0), 0);
    const Descriptor waiting(ConnectTo(mDirectory / "service_plugin_to_hbbtv_vb"));
    ASSERT_GE(waiting.Get(), 0);
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(run.exit, 4) << run.Text();
    EXPECT_THAT(run.output,
                HasSubstr("PROBLEM  platform     no connections are accepted by service_plugin_to_hbbtv_vb; "
                          "its process hangs; restart the platform\n"));
}

// The second service uses the names of the first one, but a directory of sockets of its own.
TEST_F(DoctorOfTheSystem, FindsTwoServicesAndNamesThatWereTaken) {
    const std::string names = mDirectory / "hidl";
    std::vector<std::string> links;
    for (const auto& entry : std::filesystem::directory_iterator(names)) {
        if (entry.is_symlink()) links.push_back(entry.path());
    }
    const std::string other = mDirectory / "other";
    mkdir(other.c_str(), 0700);
    ChildProcess second({HBBTV_SERVICE_PROGRAM, other}, {std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES,
                                                         "HIDL_HOST_DIR=" + other + "/hidl"});
    ASSERT_TRUE(second.WaitForOutput("IVideoBroadcast/default\n"));
    const auto take = [&](const std::string& link) {
        const std::string name = std::filesystem::path(link).filename();
        const std::string target = std::filesystem::read_symlink(other + "/hidl/" + name);
        std::filesystem::remove(names + "/" + target);
        std::filesystem::create_hard_link(other + "/hidl/" + target, names + "/" + target);
        std::filesystem::remove(link);
        std::filesystem::create_symlink(target, link);
    };
    take(links[0]);
    const FinishedRun two = Ctl({"doctor"});
    EXPECT_EQ(two.exit, 3) << two.Text();
    const std::string one = "vantorel.hardware.hbbtv@1.0-service (" + std::to_string(mService->Pid()) + ")";
    const std::string another = "vantorel.hardware.hbbtv@1.0-service (" + std::to_string(second.Pid()) + ")";
    EXPECT_THAT(two.output, HasSubstr("PROBLEM  services     the interfaces are of several processes: " + one +
                                      " has 17, such as "));
    EXPECT_THAT(two.output, HasSubstr("; " + another + " has 1, such as "));
    for (const std::string& link : links) take(link);
    const FinishedRun taken = Ctl({"doctor"});
    EXPECT_EQ(taken.exit, 3) << taken.Text();
    EXPECT_THAT(taken.output, HasSubstr("PROBLEM  services     " + one +
                                        " serves the sockets, but its names have been taken by " + another + "; "));
}

}  // namespace

}  // namespace hbbtv::test
