// The platform's video/broadcast objects: requests to them, and the events that come from them.
#pragma once

#include <string>

#include "ipc/src/plugin/tolm_video_broadcast_events.h"
#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_callback_slot.h"

// Told of an event on the endpoint's server thread, one at a time. Whoever is given the record owns its texts
// (TolmFreeVideoBroadcastEventInfo).
using TolmVideoBroadcastCallback = void (*)(const TolmVideoBroadcastEvent& event,
                                            const TolmVideoBroadcastEventInfo& info, const void* context);

// As above; the record and its texts are valid during the call only.
using TolmMediaSyncCallback = void (*)(const TolmMediaSyncEvent& event, const TolmMediaSyncEventInfo& info,
                                       const void* context);

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success. `vb` is the handle of a video/broadcast
// object, and `channel`, `component`, `programme` and lists are handles as well. What the integers mean is the
// platform's business; the interface package names the values that are known.
class TolmVideoBroadcastAdaptorIpc : public tolm::TolmAdaptorClient,
                                     public TolmBaseServer,
                                     public tolm::TolmAdaptorInstance<TolmVideoBroadcastAdaptorIpc> {
  public:
    int Create(const void* context, void*& vb);
    int Release(const void* vb);
    int Destroy(const void* vb);

    // Makes `callback` the receiver of all video/broadcast events of this process, in place of any earlier one, whether
    // the platform answers or not. The platform sends the context back with the object's events.
    int RegisterCallback(const void* vb, TolmVideoBroadcastCallback callback, const void* context);
    int UnregisterCallback(const void* vb);

    // Forgets the receiver without telling the platform.
    void ClearCallback();

    // Makes `callback` the receiver of media-synchronisation events; null for none. The platform is not told.
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

    // Does nothing and gives 0: the platform records by its own means.
    int RecordNow(const void* vb, unsigned duration, std::string& recordingId);
    int StopRecording(const void* vb);
    int Pause(const void* vb);
    int Resume(const void* vb);
    int SetSpeed(const void* vb, double speed);
    int Seek(const void* vb, int offset, int reference);
    int StopTimeShift(const void* vb);

    // Does nothing and gives 0: the platform has no such operation.
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
