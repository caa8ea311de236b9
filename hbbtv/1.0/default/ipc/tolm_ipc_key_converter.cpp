#include "ipc/tolm_ipc_key_converter.h"

#include <cstdlib>

#include "ipc/tolm_log.h"

namespace tolm {

TolmIpcKeyConverter* TolmIpcKeyConverter::sInstance = nullptr;
std::mutex TolmIpcKeyConverter::sMutex;

TolmIpcKeyConverter* TolmIpcKeyConverter::GetInstance() {
    std::lock_guard<std::mutex> lock(sMutex);
    if (sInstance == nullptr) sInstance = new TolmIpcKeyConverter();
    return sInstance;
}

// Queue ids: 0x9600.... are the endpoints that the platform serves, 0x9601.... those that this library serves, 22 keys
// later. The programme endpoints do not follow the pattern of their neighbours; the platform uses these ids.
TolmIpcKeyConverter::TolmIpcKeyConverter()
    : mKeys{
          {TOLM_IPC_KEY_INPUT_COMMON, {0x91000000, 0, "input_common"}},
          {TOLM_IPC_KEY_MAS, {0x94000000, 0, "mas"}},
          {TOLM_IPC_KEY_MAS_BROWSER, {0x94000010, 0, "mas_browser"}},
          {TOLM_IPC_KEY_PLUGIN_TO_CLIENT, {0x95000000, 0, "plugin_to_client"}},
          {TOLM_IPC_KEY_CLIENT_TO_PLUGIN, {0x95000010, 0, "client_to_plugin"}},
          {TOLM_IPC_KEY_APM_CLIENT_TO_SERVER, {0x95000020, 0, "apm_client_to_server"}},
          {TOLM_IPC_KEY_APM_SERVER_TO_CLIENT, {0x95000030, 0, "apm_server_to_client"}},
          {TOLM_IPC_KEY_PLUGIN_TO_APM, {0x95000040, 0, "plugin_to_apm"}},
          {TOLM_IPC_KEY_APM_TO_PLUGIN, {0x95000050, 0, "apm_to_plugin"}},
          {TOLM_IPC_KEY_APM_TO_CS, {0x95000110, 0, "apm_to_cs"}},
          {TOLM_IPC_KEY_CS_TO_APM, {0x95000120, 0, "cs_to_apm"}},
          {TOLM_IPC_KEY_PLUGIN_TO_CS, {0x95000130, 0, "plugin_to_cs"}},
          {TOLM_IPC_KEY_CS_TO_PLUGIN, {0x95000140, 0, "cs_to_plugin"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_APM, {0x96000000, 0, "service_plugin_to_hbbtv_apm"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_APP_PRIV, {0x96000001, 0, "service_plugin_to_hbbtv_app_priv"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_AV_COM, {0x96000100, 0, "service_plugin_to_hbbtv_av_com"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_AV_CTRL, {0x96000200, 0, "service_plugin_to_hbbtv_av_ctrl"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_CAP, {0x96000300, 0, "service_plugin_to_hbbtv_cap"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_CS, {0x96000400, 0, "service_plugin_to_hbbtv_cs"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_CONF, {0x96000500, 0, "service_plugin_to_hbbtv_conf"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_LOCAL_SYSTEM, {0x96000501, 0, "service_plugin_to_hbbtv_local_system"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_DOWNLOAD_MANAGER,
           {0x96000600, 0, "service_plugin_to_hbbtv_download_manager"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_DOWNLOAD_TRIGGER,
           {0x96000700, 0, "service_plugin_to_hbbtv_download_trigger"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_DRM, {0x96000800, 0, "service_plugin_to_hbbtv_drm"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_PCM, {0x96000900, 0, "service_plugin_to_hbbtv_pcm"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_PROGRAM, {0x9600A000, 0, "service_plugin_to_hbbtv_program"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_RS, {0x96000B00, 0, "service_plugin_to_hbbtv_rs"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_SM, {0x96000C00, 0, "service_plugin_to_hbbtv_sm"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB, {0x96000D00, 0, "service_plugin_to_hbbtv_vb"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_SPV, {0x96000D01, 0, "service_plugin_to_hbbtv_vb_spv"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_CHN, {0x96000D02, 0, "service_plugin_to_hbbtv_vb_chn"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_CHN_CONFIG,
           {0x96000D03, 0, "service_plugin_to_hbbtv_vb_chn_config"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_CHN_LIST, {0x96000D04, 0, "service_plugin_to_hbbtv_vb_chn_list"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_FAV_LIST, {0x96000D05, 0, "service_plugin_to_hbbtv_vb_fav_list"}},
          {TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_VB_FAV_LIST_COLLECT,
           {0x96000D06, 0, "service_plugin_to_hbbtv_vb_fav_list_collect"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_APM, {0x96010000, 0, "service_hbbtv_to_plugin_apm"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_APP_PRIV, {0x96010001, 0, "service_hbbtv_to_plugin_app_priv"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_AV_COM, {0x96010100, 0, "service_hbbtv_to_plugin_av_com"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_AV_CTRL, {0x96010200, 0, "service_hbbtv_to_plugin_av_ctrl"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_CAP, {0x96010300, 0, "service_hbbtv_to_plugin_cap"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_CS, {0x96010400, 0, "service_hbbtv_to_plugin_cs"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_CONF, {0x96010500, 0, "service_hbbtv_to_plugin_conf"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_LOCAL_SYSTEM, {0x96010501, 0, "service_hbbtv_to_plugin_local_system"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_DOWNLOAD_MANAGER,
           {0x96010600, 0, "service_hbbtv_to_plugin_download_manager"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_DOWNLOAD_TRIGGER,
           {0x96010700, 0, "service_hbbtv_to_plugin_download_trigger"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_DRM, {0x96010800, 0, "service_hbbtv_to_plugin_drm"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_PCM, {0x96010900, 0, "service_hbbtv_to_plugin_pcm"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_PROGRAM, {0x9601A000, 0, "service_hbbtv_to_plugin_program"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_RS, {0x96010B00, 0, "service_hbbtv_to_plugin_rs"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_SM, {0x96010C00, 0, "service_hbbtv_to_plugin_sm"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB, {0x96010D00, 0, "service_hbbtv_to_plugin_vb"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB_SPV, {0x96010D01, 0, "service_hbbtv_to_plugin_vb_spv"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB_CHN, {0x96010D02, 0, "service_hbbtv_to_plugin_vb_chn"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB_CHN_CONFIG,
           {0x96010D03, 0, "service_hbbtv_to_plugin_vb_chn_config"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB_CHN_LIST, {0x96010D04, 0, "service_hbbtv_to_plugin_vb_chn_list"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB_FAV_LIST, {0x96010D05, 0, "service_hbbtv_to_plugin_vb_fav_list"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB_FAV_LIST_COLLECT,
           {0x96010D06, 0, "service_hbbtv_to_plugin_vb_fav_list_collect"}},
          {TOLM_IPC_KEY_SERVICE_DSMCC_TO_HBBTV, {0x96020000, 0, "service_dsmcc_to_hbbtv"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_DSMCC, {0x96030000, 0, "service_hbbtv_to_dsmcc"}},
          {TOLM_IPC_KEY_SERVICE_MTM_TO_HBBTV, {0x96040000, 0, "service_mtm_to_hbbtv"}},
          {TOLM_IPC_KEY_SERVICE_HBBTV_TO_MTM, {0x96050000, 0, "service_hbbtv_to_mtm"}},
          {TOLM_IPC_KEY_SERVICE_BROWSER_TO_GAM, {0x96060000, 0, "service_browser_to_gam"}},
          {TOLM_IPC_KEY_SERVICE_GAM_TO_BROWSER, {0x96070000, 0, "service_gam_to_browser"}},
      } {}

int TolmIpcKeyConverter::GetMsgQueueId(TolmIpcKeyId key) {
    std::lock_guard<std::mutex> lock(mMutex);
    return static_cast<int>(mKeys[key].msgQueueId);
}

const std::string& TolmIpcKeyConverter::GetSocketName(TolmIpcKeyId key) {
    static const std::string kNoName;
    std::lock_guard<std::mutex> lock(mMutex);
    const auto row = mKeys.find(key);
    if (row == mKeys.end()) {
        TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Cannot find key_id:%d", key);
        return kNoName;
    }
    return row->second.socketName;
}

size_t TolmIpcKeyConverter::GetNum() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mKeys.size();
}

namespace {

#ifdef __ANDROID__
constexpr char kBuiltInDirectory[] = "/dev/socket/hbbtv";
#else
constexpr char kBuiltInDirectory[] = "/tmp";
#endif

}  // namespace

std::string GetSocketFilePath(const std::string& name) {
    // A copy: the environment's own string becomes invalid when the variable changes.
    static const std::string kDirectory = [] {
        const char* directory = getenv("TMPDIR");
        return std::string(directory != nullptr ? directory : kBuiltInDirectory);
    }();
    return kDirectory + "/" + name;
}

std::string GetSocketFilePath(const std::string& name, int port) {
    return GetSocketFilePath(name) + "_port_" + std::to_string(port);
}

}  // namespace tolm
