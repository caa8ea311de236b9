// The video/broadcast object of the HbbTV browser: IVideoBroadcast over the platform's video/broadcast adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include "ipc/src/plugin/tolm_video_broadcast_events.h"
#include "utils/include/tolm_debug.h"
#include "utils/include/tolm_hidl_client_monitor.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IVideoBroadcast;
using V1_0::IVideoBroadcastCallback;
using V1_0::TolmHbbtvAVComponentType;
using V1_0::TolmRect;

class VideoBroadcast : public TolmService<IVideoBroadcast>, public TolmHidlClientMonitor {
  public:
    VideoBroadcast();

    Return<void> Create(int64_t context, Create_cb _hidl_cb) override;
    Return<int32_t> Destroy(int64_t vb) override;
    Return<int32_t> Release(int64_t vb) override;
    Return<int32_t> RegisterCallback(int64_t vb, const sp<IVideoBroadcastCallback>& cb, int64_t context) override;
    Return<int32_t> UnregisterCallback(int64_t vb) override;
    Return<int32_t> SetWindow(int64_t vb, const TolmRect& rect) override;
    Return<void> GetFullScreen(int64_t vb, GetFullScreen_cb _hidl_cb) override;
    Return<int32_t> SetFullScreen(int64_t vb, bool fullScreen) override;
    Return<void> GetPlayState(int64_t vb, GetPlayState_cb _hidl_cb) override;
    Return<void> BindToCurrentChannel(int64_t vb, BindToCurrentChannel_cb _hidl_cb) override;
    Return<void> CreateChannel_1(int64_t vb, int32_t idType, const hidl_string& dsd, int32_t sid,
                                 CreateChannel_1_cb _hidl_cb) override;
    Return<void> CreateChannel_2(int64_t vb, int32_t idType, int32_t onid, int32_t tsid, int32_t sid, int32_t sourceId,
                                 const hidl_string& ipBroadcastId, CreateChannel_2_cb _hidl_cb) override;
    Return<int32_t> SetChannel(int64_t vb, int64_t channel, bool trickPlay, const hidl_string& url) override;
    Return<int32_t> SetChannel_Ext(int64_t vb, int64_t channel, bool trickPlay, const hidl_string& url,
                                   int32_t quiet) override;
    Return<int32_t> SetChannel_Quiet(int64_t vb, int64_t channel, bool trickPlay, const hidl_string& url,
                                     int32_t quiet) override;
    Return<int32_t> PrevChannel(int64_t vb) override;
    Return<int32_t> NextChannel(int64_t vb) override;
    Return<int32_t> Stop(int64_t vb) override;
    Return<int32_t> SetVolume(int64_t vb, uint32_t volume) override;
    Return<void> GetVolume(int64_t vb, GetVolume_cb _hidl_cb) override;
    Return<void> GetProgrammeNum(int64_t vb, GetProgrammeNum_cb _hidl_cb) override;
    Return<void> GetProgrammeByIndex(int64_t vb, uint32_t index, GetProgrammeByIndex_cb _hidl_cb) override;
    Return<void> GetCurrentChannel(int64_t vb, GetCurrentChannel_cb _hidl_cb) override;
    Return<void> GetAVComponentNumByType(int64_t vb, TolmHbbtvAVComponentType type,
                                         GetAVComponentNumByType_cb _hidl_cb) override;
    Return<void> GetSpecificTypeAVComponentByIndex(int64_t vb, TolmHbbtvAVComponentType type, uint32_t index,
                                                   GetSpecificTypeAVComponentByIndex_cb _hidl_cb) override;
    Return<void> GetCurrentActiveAVComponentNumByType(int64_t vb, TolmHbbtvAVComponentType type,
                                                      GetCurrentActiveAVComponentNumByType_cb _hidl_cb) override;
    Return<void> GetSpecificTypeCurrentActiveAVComponentByIndex(
        int64_t vb, TolmHbbtvAVComponentType type, uint32_t index,
        GetSpecificTypeCurrentActiveAVComponentByIndex_cb _hidl_cb) override;
    Return<int32_t> SelectComponent(int64_t vb, int64_t component) override;
    Return<int32_t> UnselectComponent(int64_t vb, int64_t component) override;
    Return<int32_t> SelectComponentByType(int64_t vb, TolmHbbtvAVComponentType type) override;
    Return<int32_t> UnselectComponentByType(int64_t vb, TolmHbbtvAVComponentType type) override;
    Return<void> CreateAudioComponent(int64_t vb, int32_t componentTag, const hidl_string& language,
                                      bool audioDescription, int32_t channels, const hidl_string& encoding,
                                      CreateAudioComponent_cb _hidl_cb) override;
    Return<void> CreateVideoComponent(int64_t vb, int32_t componentTag, double aspectRatio, const hidl_string& encoding,
                                      CreateVideoComponent_cb _hidl_cb) override;
    Return<void> CreateAVComponentList(bool isActive, TolmHbbtvAVComponentType type,
                                       CreateAVComponentList_cb _hidl_cb) override;
    Return<void> CreateProgrammeList(CreateProgrammeList_cb _hidl_cb) override;
    Return<int32_t> AddStreamEventListener(const hidl_string& strurl, const hidl_string& dvburl,
                                           const hidl_string& eventName) override;
    Return<int32_t> RemoveStreamEventListener(const hidl_string& strurl, const hidl_string& dvburl,
                                              const hidl_string& eventName) override;
    Return<int32_t> ChangeDisplaySource(int32_t source) override;

    void OnHidlClientDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) override;
};

// Forwards an event of the adaptor to the registered client and frees the record's strings. Called on the adaptor's
// server thread.
void TolmVideoBroadcastHidlCallback(const TolmVideoBroadcastEvent& event, const TolmVideoBroadcastEventInfo& info,
                                    const void* context);

extern "C" IVideoBroadcast* HIDL_FETCH_IVideoBroadcast(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
