// The command line of the service: where its sockets are, also in a process that the system does not trust with the
// environment, and what it reports about its start.

#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteListCollection.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "finished_run.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using android::sp;
using testing::HasSubstr;
using vantorel::hardware::hbbtv::V1_0::IFavouriteListCollection;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int64_t kVb = 0x1000;
constexpr size_t kLongestDirectory = 56;

const std::string kImplementation = std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES;

FinishedRun RunService(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{HBBTV_SERVICE_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return RunToEnd(command, std::nullopt, {kImplementation});
}

// Returns a group that this process may give to its files and does not run as; needs root, or a second group.
gid_t AnotherGroup() {
    gid_t groups[64];
    const int count = getgroups(64, groups);
    for (int i = 0; i < count; ++i) {
        if (groups[i] != getegid()) return groups[i];
    }
    return 65534;
}

// Copies a program to the directory so that it runs with another group than its caller: like a service that init starts
// in a domain of its own, it runs with AT_SECURE, and the C library removes TMPDIR before main().
std::string SetGroupIdCopy(const ScratchDirectory& directory, const std::string& program) {
    const std::string copy = directory / "set-gid-" + std::filesystem::path(program).filename().string();
    std::filesystem::copy_file(program, copy);
    EXPECT_EQ(chown(copy.c_str(), static_cast<uid_t>(-1), AnotherGroup()), 0) << "run this test as root";
    EXPECT_EQ(chmod(copy.c_str(), 02755), 0);
    return copy;
}

TEST(ServiceStart, TheEnvironmentOfASetGroupIdCopyLacksTmpdir) {
    const ScratchDirectory directory;
    const FinishedRun run = RunToEnd({SetGroupIdCopy(directory, "/usr/bin/env")}, std::nullopt, {"KEPT=1"});
    EXPECT_THAT(run.output, HasSubstr("KEPT=1\n"));
    EXPECT_THAT(run.output, Not(HasSubstr("TMPDIR=")));
}

TEST(ServiceStart, ASetGroupIdCopyUsesTheDirectoryOfItsArgument) {
    const ScratchDirectory directory;
    const FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    const ChildProcess service({SetGroupIdCopy(directory, HBBTV_SERVICE_WITH_ABSOLUTE_PATHS), directory.Path()},
                               {kImplementation});
    const sp<IVideoBroadcast> vb = FindVideoBroadcast();
    ASSERT_NE(vb, nullptr) << service.Output();
    EXPECT_EQ(static_cast<int32_t>(vb->NextChannel(kVb)), 0);
    EXPECT_TRUE(platform.WaitForFrames(1));
}

TEST(ServiceStart, TheArgumentPrevailsOverTheEnvironment) {
    const ScratchDirectory directory;
    const FakePlatform platform("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    const ChildProcess service({HBBTV_SERVICE_PROGRAM, directory.Path()}, {kImplementation, "TMPDIR=/none"});
    const sp<IVideoBroadcast> vb = FindVideoBroadcast();
    ASSERT_NE(vb, nullptr) << service.Output();
    EXPECT_EQ(static_cast<int32_t>(vb->NextChannel(kVb)), 0);
}

TEST(ServiceStart, TheLongestDirectoryHasRoomForTheLongestSocket) {
    const ScratchDirectory directory;
    const std::string deep = directory / std::string(kLongestDirectory - directory.Path().size() - 1, 'd');
    std::filesystem::create_directory(deep);
    setenv("TMPDIR", deep.c_str(), 1);
    const FakePlatform platform("service_plugin_to_hbbtv_vb_fav_list_collect", R"({"ret": 0})");
    const ChildProcess service({HBBTV_SERVICE_PROGRAM, deep}, {kImplementation});
    const sp<IFavouriteListCollection> lists = Find<IFavouriteListCollection>();
    ASSERT_NE(lists, nullptr) << service.Output();
    EXPECT_EQ(static_cast<int32_t>(lists->ActivateFavouriteList(1, "list")), 0);
    const std::string own = deep + "/service_plugin_to_hbbtv_vb_fav_list_collect_port_6";
    EXPECT_EQ(own.size(), 107u);
    EXPECT_TRUE(std::filesystem::exists(own)) << "the client's own socket";
}

// In the log and on standard error.
void ExpectRefusal(const std::vector<std::string>& arguments, int exit, const std::string& message) {
    const FinishedRun run = RunService(arguments);
    EXPECT_EQ(run.exit, exit) << run.Text();
    EXPECT_THAT("\n" + run.errors, HasSubstr("\n" + message + "\n"));
    EXPECT_THAT(run.errors, testing::ContainsRegex("hbbtv_service E [^\n]* " + message.substr(0, 18)));
    EXPECT_EQ(run.output, "");
}

TEST(ServiceStart, ADirectoryThatCannotBeUsedIsReportedAndEndsTheService) {
    const ScratchDirectory directory;
    const std::string end = "; create it for this user";
    const std::string missing = directory / "missing";
    ExpectRefusal({missing}, 1,
                  "cannot use the directory \"" + missing + "\" for the sockets: No such file or directory" + end);
    const std::string file = directory / "file";
    std::ofstream(file) << "x";
    ExpectRefusal({file}, 1, "cannot use the directory \"" + file + "\" for the sockets: Not a directory" + end);
    const std::string deep = directory / std::string(kLongestDirectory - directory.Path().size(), 'd');
    std::filesystem::create_directory(deep);
    ExpectRefusal(
        {deep}, 1,
        "cannot use the directory \"" + deep + "\" for the sockets: its path is too long for the sockets" + end);
    ExpectRefusal({""}, 1, "cannot use the directory \"\" for the sockets: No such file or directory" + end);
    // No user, root included, may create files here.
    const FinishedRun run = RunService({"/proc/self"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.errors, HasSubstr("\ncannot use the directory \"/proc/self\" for the sockets: "));
}

TEST(ServiceStart, OtherArgumentsAreUsageErrors) {
    const ScratchDirectory directory;
    ExpectRefusal({"/tmp", "more"}, 2, "unexpected argument \"more\"; expected one directory, see --help");
    ExpectRefusal({"--directory"}, 2, "unknown option \"--directory\"; expected one directory, see --help");
}

TEST(ServiceStart, HelpAndVersionArePrintedAndNothingIsServed) {
    const ScratchDirectory directory;
    const FinishedRun help = RunService({"--help"});
    EXPECT_EQ(help.exit, 0);
    EXPECT_THAT(help.output, HasSubstr("\nUsage: vantorel.hardware.hbbtv@1.0-service [DIRECTORY]\n"));
    EXPECT_THAT(help.output, HasSubstr("/dev/socket/hbbtv on a television"));
    EXPECT_EQ(help.errors, "");
    const FinishedRun version = RunService({"--version"});
    EXPECT_EQ(version.exit, 0);
    EXPECT_EQ(version.output, "vantorel.hardware.hbbtv@1.0-service " HBBTV_VERSION "\n");
}

TEST(ServiceStart, WhatIsServedIsInTheLog) {
    const ScratchDirectory directory;
    const ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    EXPECT_TRUE(service.WaitForOutput("\nserving vantorel.hardware.hbbtv@1.0::IVideoBroadcast/default"));
    EXPECT_THAT(service.Output(), testing::ContainsRegex("hbbtv_service I [^\n]* serving vantorel.hardware.hbbtv@1.0::"
                                                         "IVideoBroadcast/default"));
}

TEST(ServiceStart, AMissingImplementationIsInTheLog) {
    const ScratchDirectory directory;
    const FinishedRun run =
        RunToEnd({HBBTV_SERVICE_PROGRAM}, std::nullopt, {"HIDL_HOST_PASSTHROUGH_PATH=" + directory.Path()});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.errors, testing::ContainsRegex(
                                "hbbtv_service E [^\n]* cannot serve vantorel.hardware.hbbtv@1.0::IMtm/default"));
    EXPECT_THAT(run.errors, testing::ContainsRegex("hbbtv_service E [^\n]* is vantorel.hardware.hbbtv@1.0-impl.so"));
}

}  // namespace

}  // namespace hbbtv::test
