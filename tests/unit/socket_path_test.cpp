// The paths of socket files. The directory is read once per process, so each of these tests needs its own process.
#include <android/log.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "ipc/src/tolm_socket_directory.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "log_capture.h"
#include "scratch_directory.h"

namespace {

using tolm::GetSocketFilePath;

TEST(SocketPath, OfAServerIsItsNameInTheDirectory) {
    setenv("TMPDIR", "/data/local/tmp", 1);
    const std::string& name =
        tolm::TolmIpcKeyConverter::GetInstance()->GetSocketName(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB);
    EXPECT_EQ(GetSocketFilePath(name), "/data/local/tmp/service_hbbtv_to_plugin_vb");
}

TEST(SocketPath, IsInTmpWithoutAnEnvironmentVariable) {
    unsetenv("TMPDIR");
    EXPECT_EQ(GetSocketFilePath("service_plugin_to_hbbtv_vb"), "/tmp/service_plugin_to_hbbtv_vb");
    EXPECT_EQ(GetSocketFilePath("service_plugin_to_hbbtv_vb", 7), "/tmp/service_plugin_to_hbbtv_vb_port_7");
}

TEST(SocketDirectory, IsReportedIfOthersMayReplaceItsFiles) {
    const hbbtv::test::ScratchDirectory directory;
    for (const auto& [mode, warnings] :
         {std::pair<mode_t, size_t>{0700, 0}, {0755, 0}, {0770, 1}, {0777, 1}, {01777, 0}}) {
        ASSERT_EQ(chmod(directory.Path().c_str(), mode), 0);
        const hbbtv::test::LogCapture log(ANDROID_LOG_WARN);
        tolm::CheckSocketDirectory();
        EXPECT_EQ(log.Lines().size(), warnings) << std::oct << mode << log.Text();
    }
}

TEST(SocketPath, OfAClientEndsWithItsPort) {
    setenv("TMPDIR", "/d", 1);
    EXPECT_EQ(GetSocketFilePath("mas", 0), "/d/mas_port_0");
    EXPECT_EQ(GetSocketFilePath("mas", 19), "/d/mas_port_19");
    EXPECT_EQ(GetSocketFilePath("mas", -1), "/d/mas_port_-1");
    EXPECT_EQ(GetSocketFilePath("mas", 2147483647), "/d/mas_port_2147483647");
    EXPECT_EQ(GetSocketFilePath("mas", -2147483647 - 1), "/d/mas_port_-2147483648");
}

TEST(SocketPath, StaysWhenTheVariableChangesLater) {
    setenv("TMPDIR", "/first", 1);
    EXPECT_EQ(GetSocketFilePath("mas"), "/first/mas");
    setenv("TMPDIR", "/second", 1);
    EXPECT_EQ(GetSocketFilePath("mas"), "/first/mas");
    EXPECT_EQ(GetSocketFilePath("mas", 1), "/first/mas_port_1");
    unsetenv("TMPDIR");
    EXPECT_EQ(GetSocketFilePath("mas"), "/first/mas");
}

TEST(SocketPath, StaysWhenTheFirstPathWasAClients) {
    setenv("TMPDIR", "/first", 1);
    EXPECT_EQ(GetSocketFilePath("mas", 1), "/first/mas_port_1");
    setenv("TMPDIR", "/second", 1);
    EXPECT_EQ(GetSocketFilePath("mas"), "/first/mas");
}

TEST(SocketPath, KeepsTheSlashAtTheDirectorysEnd) {
    setenv("TMPDIR", "/tmp/", 1);
    EXPECT_EQ(GetSocketFilePath("mas"), "/tmp//mas");
}

TEST(SocketPath, OfAnEmptyVariableBeginsWithTheSlash) {
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(GetSocketFilePath("mas"), "/mas");
}

TEST(SocketPath, OfAnEmptyNameIsTheDirectory) {
    setenv("TMPDIR", "/d", 1);
    EXPECT_EQ(GetSocketFilePath(""), "/d/");
}

TEST(SocketPath, IsTheSameFromManyThreadsAtOnce) {
    setenv("TMPDIR", "/d", 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) threads.emplace_back([] { EXPECT_EQ(GetSocketFilePath("mas"), "/d/mas"); });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
