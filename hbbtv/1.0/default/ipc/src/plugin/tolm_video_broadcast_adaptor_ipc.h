// The platform's video/broadcast objects: requests to them, and their events.
#pragma once

#include <string>

#include "ipc/src/plugin/tolm_video_broadcast_events.h"
#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

// Called for one event at a time, on the endpoint's server thread. The receiver owns the record's
// strings and frees them by TolmFreeVideoBroadcastEventInfo().
using TolmVideoBroadcastCallback = void (*)(const TolmVideoBroadcastEvent& event,
                                            const TolmVideoBroadcastEventInfo& info, const void* context);

// As above, but the record and its strings are valid only during the call.
using TolmMediaSyncCallback = void (*)(const TolmMediaSyncEvent& event, const TolmMediaSyncEventInfo& info,
                                       const void* context);

// `vb` is the handle of a video/broadcast object; `channel`, `component`, `programme` and lists are handles as well.
// The platform defines the integers; the interface package names the known values.
class TolmVideoBroadcastAdaptorIpc : public tolm::TolmAdaptorClient,
                                     public TolmBaseServer,
                                     public tolm::TolmAdaptorInstance<TolmVideoBroadcastAdaptorIpc> {
  public:
    int Create(const void* context, void*& vb);
    int Release(const void* vb);
    int Destroy(const void* vb);

    // Replaces the receiver of all video/broadcast events of this process, even if the platform does not reply. The
    // platform sends `context` with the object's events.
    int RegisterCallback(const void* vb, TolmVideoBroadcastCallback callback, const void* context);
    int UnregisterCallback(const void* vb);

    // Removes the receiver. Sends nothing.
    void ClearCallback();

    // Replaces the receiver of media-synchronisation events; null removes it. Sends nothing.
    void RegisterMediaSyncCallback(TolmMediaSyncCallback callback, const void* context);

    int SetWindow(const void* vb, int x, int y, int w, int h);
    int GetFullScreen(const void* vb, bool& fullScreen);
    int GetPlayState(const void* vb, int& state);
    int BindToCurrentChannel(const void* vb, void*& channel);
    int CreateChannel_1(const void* vb, int idType, const std::string& dsd, int sid, void*& channel);
    int CreateChannel_2(const void* vb, int idType, int onid, int tsid, int sid, int sourceId,
                        const std::string& ipBroadcastId, void*& channel);
    int SetChannel(const void* vb, const void* channel, bool trickPlay, const std::string& url);
    int PrevChannel(const void* vb);
    int NextChannel(const void* vb);
    int SetFullScreen(const void* vb, bool fullScreen);
    int SetVolume(const void* vb, unsigned volume);
    int GetVolume(const void* vb, unsigned& volume);
    int Stop(const void* vb);
    int GetPlaybackOffset(const void* vb, unsigned& offset);
    int GetMaxOffset(const void* vb, unsigned& offset);
    int GetRecordingState(const void* vb, int& state);
    int GetPlayPosition(const void* vb, unsigned& position);
    int GetPlaySpeed(const void* vb, double& speed);
    int GetPlaySpeedNum(const void* vb, unsigned& num);
    int GetPlaySpeedByIndex(const void* vb, unsigned index, double& speed);
    int SetTimeShiftMode(const void* vb, int mode);
    int GetTimeShiftMode(const void* vb, int& mode);
    int GetCurrentTimeShiftMode(const void* vb, int& mode);

    // Does nothing and returns 0: the platform records by other means.
    int RecordNow(const void* vb, unsigned duration, std::string& recordingId);
    int StopRecording(const void* vb);
    int Pause(const void* vb);
    int Resume(const void* vb);
    int SetSpeed(const void* vb, double speed);
    int Seek(const void* vb, int offset, int reference);
    int StopTimeShift(const void* vb);

    // Does nothing and returns 0: the platform does not have the operation.
    int SetChannel_Ext(const void* vb, const void*& channel, bool trickPlay, const std::string& url, int quiet);
    int SetChannel_Quiet(const void* vb, const void* channel, bool trickPlay, const std::string& url, int quiet);
    int GetProgrammeNum(const void* vb, unsigned& num);
    int GetProgrammeByIndex(const void* vb, unsigned index, void*& programme);
    int GetCurrentChannel(const void* vb, void*& channel);
    int GetAVComponentNumByType(const void* vb, int comType, unsigned& num);
    int GetSpecificTypeAVComponentByIndex(const void* vb, int comType, unsigned index, void*& component);
    int GetCurrentActiveAVComponentNumByType(const void* vb, int comType, unsigned& num);
    int GetSpecificTypeCurrentActiveAVComponentByIndex(const void* vb, int comType, unsigned index, void*& component);
    int SelectComponent(const void* vb, const void* component);
    int UnselectComponent(const void* vb, const void* component);
    int SelectComponentByType(const void* vb, int comType);
    int UnselectComponentByType(const void* vb, int comType);
    int CreateAudioComponent(const void* vb, int componentTag, const std::string& language, bool audioDescription,
                             int channels, const std::string& encoding, void*& component);
    int CreateVideoComponent(const void* vb, int componentTag, double aspectRatio, const std::string& encoding,
                             void*& component);
    int CreateAVComponentList(bool isActive, int type, void*& list);
    int CreateProgrammeList(void*& list);
    int ChangeDisplaySource(int source);
    int AddStreamEventListener(const std::string& strurl, const std::string& dvburl, const std::string& eventName);
    int RemoveStreamEventListener(const std::string& strurl, const std::string& dvburl, const std::string& eventName);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmVideoBroadcastAdaptorIpc>;
    TolmVideoBroadcastAdaptorIpc();
    ~TolmVideoBroadcastAdaptorIpc() override;

    bool ForwardVideoBroadcastEvent(const Json::Value& msg);
    bool ForwardMediaSyncEvent(const Json::Value& msg);

    tolm::TolmCallbackSlot<TolmVideoBroadcastCallback> mCallback;
    tolm::TolmCallbackSlot<TolmMediaSyncCallback> mMediaSyncCallback;
};
