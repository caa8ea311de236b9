// The endpoint table, row by row.
#include <android/log.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include "ipc/tolm_ipc_key_converter.h"
#include "log_capture.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcKeyConverter;

struct Row {
    int key;
    uint32_t queueId;
    const char* name;
};

constexpr Row kRows[] = {
    {0, 0x91000000, "input_common"},
    {1, 0x94000000, "mas"},
    {2, 0x94000010, "mas_browser"},
    {3, 0x95000000, "plugin_to_client"},
    {4, 0x95000010, "client_to_plugin"},
    {5, 0x95000020, "apm_client_to_server"},
    {6, 0x95000030, "apm_server_to_client"},
    {7, 0x95000040, "plugin_to_apm"},
    {8, 0x95000050, "apm_to_plugin"},
    {9, 0x95000110, "apm_to_cs"},
    {10, 0x95000120, "cs_to_apm"},
    {11, 0x95000130, "plugin_to_cs"},
    {12, 0x95000140, "cs_to_plugin"},
    {13, 0x96000000, "service_plugin_to_hbbtv_apm"},
    {14, 0x96000001, "service_plugin_to_hbbtv_app_priv"},
    {15, 0x96000100, "service_plugin_to_hbbtv_av_com"},
    {16, 0x96000200, "service_plugin_to_hbbtv_av_ctrl"},
    {17, 0x96000300, "service_plugin_to_hbbtv_cap"},
    {18, 0x96000400, "service_plugin_to_hbbtv_cs"},
    {19, 0x96000500, "service_plugin_to_hbbtv_conf"},
    {20, 0x96000501, "service_plugin_to_hbbtv_local_system"},
    {21, 0x96000600, "service_plugin_to_hbbtv_download_manager"},
    {22, 0x96000700, "service_plugin_to_hbbtv_download_trigger"},
    {23, 0x96000800, "service_plugin_to_hbbtv_drm"},
    {24, 0x96000900, "service_plugin_to_hbbtv_pcm"},
    {25, 0x9600A000, "service_plugin_to_hbbtv_program"},
    {26, 0x96000B00, "service_plugin_to_hbbtv_rs"},
    {27, 0x96000C00, "service_plugin_to_hbbtv_sm"},
    {28, 0x96000D00, "service_plugin_to_hbbtv_vb"},
    {29, 0x96000D01, "service_plugin_to_hbbtv_vb_spv"},
    {30, 0x96000D02, "service_plugin_to_hbbtv_vb_chn"},
    {31, 0x96000D03, "service_plugin_to_hbbtv_vb_chn_config"},
    {32, 0x96000D04, "service_plugin_to_hbbtv_vb_chn_list"},
    {33, 0x96000D05, "service_plugin_to_hbbtv_vb_fav_list"},
    {34, 0x96000D06, "service_plugin_to_hbbtv_vb_fav_list_collect"},
    {35, 0x96010000, "service_hbbtv_to_plugin_apm"},
    {36, 0x96010001, "service_hbbtv_to_plugin_app_priv"},
    {37, 0x96010100, "service_hbbtv_to_plugin_av_com"},
    {38, 0x96010200, "service_hbbtv_to_plugin_av_ctrl"},
    {39, 0x96010300, "service_hbbtv_to_plugin_cap"},
    {40, 0x96010400, "service_hbbtv_to_plugin_cs"},
    {41, 0x96010500, "service_hbbtv_to_plugin_conf"},
    {42, 0x96010501, "service_hbbtv_to_plugin_local_system"},
    {43, 0x96010600, "service_hbbtv_to_plugin_download_manager"},
    {44, 0x96010700, "service_hbbtv_to_plugin_download_trigger"},
    {45, 0x96010800, "service_hbbtv_to_plugin_drm"},
    {46, 0x96010900, "service_hbbtv_to_plugin_pcm"},
    {47, 0x9601A000, "service_hbbtv_to_plugin_program"},
    {48, 0x96010B00, "service_hbbtv_to_plugin_rs"},
    {49, 0x96010C00, "service_hbbtv_to_plugin_sm"},
    {50, 0x96010D00, "service_hbbtv_to_plugin_vb"},
    {51, 0x96010D01, "service_hbbtv_to_plugin_vb_spv"},
    {52, 0x96010D02, "service_hbbtv_to_plugin_vb_chn"},
    {53, 0x96010D03, "service_hbbtv_to_plugin_vb_chn_config"},
    {54, 0x96010D04, "service_hbbtv_to_plugin_vb_chn_list"},
    {55, 0x96010D05, "service_hbbtv_to_plugin_vb_fav_list"},
    {56, 0x96010D06, "service_hbbtv_to_plugin_vb_fav_list_collect"},
    {57, 0x96020000, "service_dsmcc_to_hbbtv"},
    {58, 0x96030000, "service_hbbtv_to_dsmcc"},
    {59, 0x96040000, "service_mtm_to_hbbtv"},
    {60, 0x96050000, "service_hbbtv_to_mtm"},
    {61, 0x96060000, "service_browser_to_gam"},
    {62, 0x96070000, "service_gam_to_browser"},
};

TolmIpcKeyConverter& Table() {
    return *TolmIpcKeyConverter::GetInstance();
}

TolmIpcKeyId Key(int number) {
    return static_cast<TolmIpcKeyId>(number);
}

TEST(KeyConverter, KnowsTheSocketNameOfEveryKey) {
    for (const Row& row : kRows) EXPECT_EQ(Table().GetSocketName(Key(row.key)), row.name) << row.key;
}

TEST(KeyConverter, KnowsTheMessageQueueIdOfEveryKey) {
    for (const Row& row : kRows) {
        EXPECT_EQ(row.queueId, static_cast<uint32_t>(Table().GetMsgQueueId(Key(row.key)))) << row.key;
    }
}

TEST(KeyConverter, Holds63Rows) {
    EXPECT_EQ(Table().GetNum(), 63u);
}

TEST(KeyConverter, KeepsTheIrregularQueueIdsOfTheProgrammeEndpoints) {
    EXPECT_EQ(static_cast<uint32_t>(Table().GetMsgQueueId(TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_PROGRAM)), 0x9600A000u);
    EXPECT_EQ(static_cast<uint32_t>(Table().GetMsgQueueId(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_PROGRAM)), 0x9601A000u);
}

TEST(KeyConverter, ReportsAnUnknownKeyAndReturnsAnEmptyName) {
    const LogCapture log;
    const StdoutCapture out;
    EXPECT_EQ(Table().GetSocketName(Key(63)), "");
    ASSERT_EQ(log.Lines().size(), 1u) << log.Text();
    const LogLine line = log.Lines()[0];
    EXPECT_EQ(line.priority, ANDROID_LOG_ERROR);
    EXPECT_EQ(line.tag, "tolm_IPC");
    EXPECT_EQ(line.file, "tolm_ipc_key_converter.cpp");
    EXPECT_EQ(line.function, "GetSocketName");
    EXPECT_EQ(line.message, "Cannot find key_id:63");
    EXPECT_EQ(out.Text(), "tolm_IPC \"Cannot find key_id:63\"\n");
    EXPECT_EQ(Table().GetNum(), 63u);
}

TEST(KeyConverter, ReportsANegativeKey) {
    const LogCapture log;
    const StdoutCapture out;
    EXPECT_EQ(Table().GetSocketName(Key(-1)), "");
    EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Cannot find key_id:-1"), 1) << log.Text();
}

TEST(KeyConverter, AddsARowForTheQueueIdOfAnUnknownKeyWithoutALogLine) {
    const LogCapture log;
    EXPECT_EQ(Table().GetMsgQueueId(Key(99)), 0);
    EXPECT_EQ(Table().GetNum(), 64u);
    EXPECT_EQ(Table().GetMsgQueueId(Key(99)), 0);
    EXPECT_EQ(Table().GetNum(), 64u);
    // The row has an empty name, which is valid.
    EXPECT_EQ(Table().GetSocketName(Key(99)), "");
    EXPECT_EQ(log.Lines().size(), 0u) << log.Text();
}

TEST(KeyConverter, ReturnsNamesThatStayValid) {
    const std::string* name = &Table().GetSocketName(TOLM_IPC_KEY_MAS);
    for (int key = 100; key < 1000; ++key) Table().GetMsgQueueId(Key(key));
    EXPECT_EQ(&Table().GetSocketName(TOLM_IPC_KEY_MAS), name);
    EXPECT_EQ("mas", *name);
}

TEST(KeyConverter, IsTheSameForAllThreads) {
    std::vector<TolmIpcKeyConverter*> seen(8);
    std::vector<std::thread> threads;
    for (TolmIpcKeyConverter*& instance : seen) {
        threads.emplace_back([&instance] {
            instance = TolmIpcKeyConverter::GetInstance();
            for (int key = 100; key < 200; ++key) instance->GetMsgQueueId(Key(key));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const TolmIpcKeyConverter* instance : seen) EXPECT_EQ(seen[0], instance);
    EXPECT_EQ(Table().GetNum(), 163u);
}

}  // namespace

}  // namespace hbbtv::test
