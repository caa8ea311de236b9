// The paths of socket files in a library that is compiled for a television. This program compiles the file under test
// itself, with __ANDROID__ defined.
#include <gtest/gtest.h>

#include <cstdlib>

#include "ipc/tolm_ipc_key_converter.h"

namespace {

TEST(AndroidSocketPath, IsInDevSocketWithoutAnEnvironmentVariable) {
    unsetenv("TMPDIR");
    EXPECT_EQ(tolm::GetSocketFilePath("service_plugin_to_hbbtv_vb"), "/dev/socket/hbbtv/service_plugin_to_hbbtv_vb");
    EXPECT_EQ(tolm::GetSocketFilePath("mas", 7), "/dev/socket/hbbtv/mas_port_7");
}

TEST(AndroidSocketPath, IsInTheDirectoryOfTheEnvironmentVariable) {
    setenv("TMPDIR", "/data/local/tmp", 1);
    EXPECT_EQ(tolm::GetSocketFilePath("mas"), "/data/local/tmp/mas");
}

}  // namespace
