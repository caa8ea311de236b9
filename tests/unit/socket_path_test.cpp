// Where socket files lie. The directory is read once per process, so each of these tests needs a process of its own.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "ipc/tolm_ipc_key_converter.h"

namespace {

using tolm::GetSocketFilePath;

TEST(SocketPath, OfAServerIsItsNameInTheDirectory) {
    setenv("TMPDIR", "/data/local/tmp", 1);
    const std::string& name =
        tolm::TolmIpcKeyConverter::GetInstance()->GetSocketName(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB);
    EXPECT_EQ("/data/local/tmp/service_hbbtv_to_plugin_vb", GetSocketFilePath(name));
}

TEST(SocketPath, LiesInTmpWithoutAnEnvironmentVariable) {
    unsetenv("TMPDIR");
    EXPECT_EQ("/tmp/service_plugin_to_hbbtv_vb", GetSocketFilePath("service_plugin_to_hbbtv_vb"));
    EXPECT_EQ("/tmp/service_plugin_to_hbbtv_vb_port_7", GetSocketFilePath("service_plugin_to_hbbtv_vb", 7));
}

TEST(SocketPath, OfAClientEndsWithItsPort) {
    setenv("TMPDIR", "/d", 1);
    EXPECT_EQ("/d/mas_port_0", GetSocketFilePath("mas", 0));
    EXPECT_EQ("/d/mas_port_19", GetSocketFilePath("mas", 19));
    EXPECT_EQ("/d/mas_port_-1", GetSocketFilePath("mas", -1));
    EXPECT_EQ("/d/mas_port_2147483647", GetSocketFilePath("mas", 2147483647));
    EXPECT_EQ("/d/mas_port_-2147483648", GetSocketFilePath("mas", -2147483647 - 1));
}

TEST(SocketPath, StaysWhenTheVariableChangesLater) {
    setenv("TMPDIR", "/first", 1);
    EXPECT_EQ("/first/mas", GetSocketFilePath("mas"));
    setenv("TMPDIR", "/second", 1);
    EXPECT_EQ("/first/mas", GetSocketFilePath("mas"));
    EXPECT_EQ("/first/mas_port_1", GetSocketFilePath("mas", 1));
    unsetenv("TMPDIR");
    EXPECT_EQ("/first/mas", GetSocketFilePath("mas"));
}

TEST(SocketPath, StaysWhenTheFirstPathWasAClients) {
    setenv("TMPDIR", "/first", 1);
    EXPECT_EQ("/first/mas_port_1", GetSocketFilePath("mas", 1));
    setenv("TMPDIR", "/second", 1);
    EXPECT_EQ("/first/mas", GetSocketFilePath("mas"));
}

TEST(SocketPath, KeepsTheSlashAtTheDirectorysEnd) {
    setenv("TMPDIR", "/tmp/", 1);
    EXPECT_EQ("/tmp//mas", GetSocketFilePath("mas"));
}

TEST(SocketPath, OfAnEmptyVariableBeginsWithTheSlash) {
    setenv("TMPDIR", "", 1);
    EXPECT_EQ("/mas", GetSocketFilePath("mas"));
}

TEST(SocketPath, OfAnEmptyNameIsTheDirectory) {
    setenv("TMPDIR", "/d", 1);
    EXPECT_EQ("/d/", GetSocketFilePath(""));
}

TEST(SocketPath, IsMadeByManyThreadsAtOnce) {
    setenv("TMPDIR", "/d", 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) threads.emplace_back([] { EXPECT_EQ("/d/mas", GetSocketFilePath("mas")); });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
