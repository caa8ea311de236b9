// hbbtvctl doctor: one line for each check, what to do, and the exit code.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

TEST(Doctor, MissesTheDirectory) {
    ScratchDirectory directory;
    const std::string missing = directory / "missing";
    const FinishedRun run = Ctl({"--directory", missing, "doctor"});
    EXPECT_EQ(3, run.exit);
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  directory    " + missing +
                                      ": No such file or directory; create it, or set "
                                      "TMPDIR (or --directory) to the one that service and platform use\n"));
    WriteFile(missing, "");
    EXPECT_THAT(Ctl({"--directory", missing, "doctor"}).output,
                HasSubstr("PROBLEM  directory    " + missing + " is no directory; set TMPDIR to a directory\n"));
}

TEST(Doctor, MindsADirectoryThatIsNotWritable) {
    ScratchDirectory directory;
    const std::string forbidden = directory / "forbidden";
    mkdir(forbidden.c_str(), 0755);
    chmod(directory.Path().c_str(), 0777);
    chmod(forbidden.c_str(), 0555);
    const FinishedRun run = CtlWithoutPrivileges({"--directory", forbidden, "doctor"});
    EXPECT_EQ(3, run.exit) << run.Text();
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  directory    " + forbidden +
                                      " is not writable for this user; sockets cannot "
                                      "be made there; chmod it, or use another TMPDIR\n"));
}

TEST(Doctor, FindsSocketsThatThisUserMayNotConnectTo) {
    ScratchDirectory directory;
    chmod(directory.Path().c_str(), 0777);
    const FakePlatform platform("service_plugin_to_hbbtv_vb", "");
    const FakePlatform library("service_hbbtv_to_plugin_vb", "");
    chmod((directory / "service_plugin_to_hbbtv_vb").c_str(), 0);
    chmod((directory / "service_hbbtv_to_plugin_vb").c_str(), 0);
    const FinishedRun sockets = CtlWithoutPrivileges({"doctor"});
    EXPECT_EQ(3, sockets.exit) << sockets.Text();
    EXPECT_THAT(sockets.output, HasSubstr("PROBLEM  platform     1 of 18 sockets are forbidden: "
                                          "service_plugin_to_hbbtv_vb; chmod 777 the socket, and let the user search "
                                          "its directory\n"));
    EXPECT_THAT(sockets.output, HasSubstr("PROBLEM  library      service_hbbtv_to_plugin_vb is forbidden; chmod 777 "
                                          "the socket, and let the user search its directory\n"));
    // Nor may this user ask what is there.
    const std::string closed = directory / "closed";
    mkdir(closed.c_str(), 0);
    const FinishedRun all = CtlWithoutPrivileges({"--directory", closed, "doctor"});
    chmod(closed.c_str(), 0700);
    EXPECT_EQ(3, all.exit) << all.Text();
    EXPECT_THAT(all.output, HasSubstr("PROBLEM  platform     18 of 18 sockets are forbidden; "));
}

TEST(Doctor, CountsTheBytesOfTheLongestPath) {
    ScratchDirectory directory;
    // 107 bytes are for the directory, a slash and the 50 bytes of service_plugin_to_hbbtv_vb_fav_list_collect_port_6.
    const std::string longest = directory / std::string(56 - directory.Path().size() - 1, 'd');
    ASSERT_EQ(56u, longest.size());
    mkdir(longest.c_str(), 0777);
    EXPECT_THAT(Ctl({"--directory", longest, "doctor"}).output,
                HasSubstr("ok       path length  the longest socket path has 107 of 107 bytes\n"));
    mkdir((longest + "d").c_str(), 0777);
    const FinishedRun run = Ctl({"--directory", longest + "d", "doctor"});
    EXPECT_EQ(3, run.exit);
    EXPECT_THAT(run.output,
                HasSubstr("PROBLEM  path length  the longest socket path has 108 of 107 bytes "
                          "(service_plugin_to_hbbtv_vb_fav_list_collect_port_6); use a directory of at most 56 "
                          "bytes\n"));
    EXPECT_THAT(run.output, Not(HasSubstr("sockets"))) << "they wait for a shorter directory";
}

TEST(Doctor, MissesPlatformAndService) {
    ScratchDirectory directory;
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(3, run.exit);
    EXPECT_THAT(run.output, HasSubstr("PROBLEM  platform     18 of 18 sockets are missing; start the platform (or "
                                      "hbbtv-sim) with the same TMPDIR\n"));
    EXPECT_THAT(
        run.output,
        HasSubstr("PROBLEM  interfaces   " +
                  directory / "hidl: No such file or directory; no process has "
                              "registered an interface; start vantorel.hardware.hbbtv@1.0-service with the same "
                              "TMPDIR (or HIDL_HOST_DIR)\n"));
    const std::string program = HBBTV_SERVICE_PROGRAM;
    EXPECT_EQ("vantorel.hardware.hbbtv@1.0-service", program.substr(program.rfind('/') + 1)) << "its real name";
}

class DoctorOfTheSystem : public InFrontOfTheSystem {
  protected:
    // The only line of a check, without its level and name.
    static std::string Line(const std::string& output, const std::string& begin) {
        const size_t at = output.find(begin);
        EXPECT_NE(std::string::npos, at) << output;
        return at == std::string::npos ? "" : output.substr(at, output.find('\n', at) - at);
    }
};

TEST_F(DoctorOfTheSystem, FindsNothingWhenAllIsWell) {
    ASSERT_EQ(0, Ctl({"listen", "channel_config", "--for", "1ms"}).exit);
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(0, run.exit) << run.Text();
    EXPECT_EQ("", run.errors);
    EXPECT_THAT(run.output, HasSubstr("ok       directory    " + mDirectory.Path() + " is writable\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       platform     18 of 18 sockets are served by hbbtv-sim (" +
                                      std::to_string(mPlatform->Pid()) + ")\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       library      1 of 8 event sockets are open; "));
    EXPECT_THAT(run.output, HasSubstr("ok       rights       every user may connect to the sockets that are there\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       service      18 of 18 interfaces answer\n"));
    EXPECT_THAT(run.output, HasSubstr("ok       version      nothing but vantorel.hardware.hbbtv@1.0 is registered\n"));
    EXPECT_THAT(run.output, Not(HasSubstr("PROBLEM")));
    const Json::Value document = Document(Ctl({"doctor", "--json"}));
    EXPECT_EQ("directory", document["checks"][0]["check"].asString());
    EXPECT_EQ("ok", document["checks"][0]["level"].asString());
}

TEST_F(DoctorOfTheSystem, FindsStaleSocketsOfThePlatformAndOfTheLibrary) {
    ASSERT_EQ(0, Ctl({"listen", "channel_config", "--for", "1ms"}).exit);
    mPlatform->Kill();
    const FinishedRun platform = Ctl({"doctor"});
    EXPECT_EQ(3, platform.exit);
    EXPECT_EQ(
        "PROBLEM  platform     18 of 18 sockets are stale; its process is gone; start the platform again, it replaces "
        "the file",
        Line(platform.output, "PROBLEM  platform"));
    std::remove((mDirectory / "service_plugin_to_hbbtv_vb").c_str());
    EXPECT_THAT(Ctl({"doctor"}).output, HasSubstr("PROBLEM  platform     1 of 18 sockets are missing: "
                                                  "service_plugin_to_hbbtv_vb; start the platform "));
    mService->Kill();
    const FinishedRun service = Ctl({"doctor"});
    EXPECT_EQ(3, service.exit);
    EXPECT_THAT(service.output,
                HasSubstr("warning  library      service_hbbtv_to_plugin_vb_chn_config is stale; left by a "
                          "process that is gone; the service replaces it at the family's first use\n"));
    EXPECT_THAT(service.output, HasSubstr("PROBLEM  service      0 of 18 interfaces answer; start "
                                          "vantorel.hardware.hbbtv@1.0-service\n"));
}

TEST_F(DoctorOfTheSystem, WarnsOfRightsThatKeepOthersOut) {
    chmod((mDirectory / "service_plugin_to_hbbtv_vb").c_str(), 0755);
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(0, run.exit) << "a warning is no problem";
    EXPECT_THAT(run.output,
                HasSubstr("warning  rights       service_plugin_to_hbbtv_vb has mode 755; processes of other users "
                          "cannot connect; its owner should make it 777\n"));
}

TEST_F(DoctorOfTheSystem, FindsWhatIsNoSocket) {
    mPlatform->Signal(SIGTERM);
    ASSERT_EQ(0, mPlatform->WaitForExit());
    WriteFile(mDirectory / "service_plugin_to_hbbtv_vb", "");
    EXPECT_THAT(
        Ctl({"doctor"}).output,
        HasSubstr("sockets are no socket: service_plugin_to_hbbtv_vb; remove or rename what is in its place\n"));
}

TEST_F(DoctorOfTheSystem, FindsAServiceThatHangs) {
    mService->Signal(SIGSTOP);
    const FinishedRun run = Ctl({"doctor", "--timeout", "100ms"});
    EXPECT_EQ(4, run.exit);
    EXPECT_EQ(
        "PROBLEM  service      IAVComponent does not answer within 100 ms; the service hangs; look where with gdb, or "
        "start it again",
        Line(run.output, "PROBLEM  service"));
}

TEST_F(DoctorOfTheSystem, FindsAnotherVersionOfThePackage) {
    std::string ours;
    for (const auto& entry : std::filesystem::directory_iterator(mDirectory / "hidl")) {
        const std::string name = entry.path().filename();
        if (name.find("::IChannel,") != std::string::npos || name.find("::IChannel") != std::string::npos) ours = name;
    }
    ASSERT_NE("", ours);
    std::string other = ours;
    other.replace(other.find("@1.0"), 4, "@1.1");
    WriteFile(mDirectory / "hidl/" + other, "");
    const FinishedRun run = Ctl({"doctor"});
    EXPECT_EQ(5, run.exit) << run.Text();
    EXPECT_THAT(
        Line(run.output, "PROBLEM  version"),
        MatchesRegex("PROBLEM  version +also registered: vantorel.hardware.hbbtv@1.1::IChannel.*; build service, "
                     "clients and this tool from the same package"));
}

}  // namespace

}  // namespace hbbtv::test
